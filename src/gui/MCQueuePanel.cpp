#include "MCQueuePanel.h"

#include "MCJob.h"
#include "MCProgressDelegate.h"
#include "MCProgressTableModel.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCToolTipBinder.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace {

// The delete column: a small close icon per row.
class DeleteButtonDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
        const QIcon icon = style->standardIcon(QStyle::SP_DialogCloseButton);
        const int side = qMin(16, option.rect.height() - 4);
        const QRect target(option.rect.center() - QPoint(side / 2, side / 2), QSize(side, side));
        icon.paint(painter, target);
    }
};

QTableView *makeTable(QWidget *parent)
{
    auto *table = new QTableView(parent);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    table->setAlternatingRowColors(true);
    table->horizontalHeader()->setHighlightSections(false);
    return table;
}

} // namespace

MCQueuePanel::MCQueuePanel(MCQueueController *queue, MCToolTipBinder *toolTips, QWidget *parent)
    : QDockWidget(QStringLiteral("Queue"), parent)
    , m_queue(queue)
{
    setObjectName(QStringLiteral("queuePanel"));
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);

    m_jobTable = makeTable(content);
    m_jobTable->setModel(queue->qJobArrayController());
    m_jobTable->setItemDelegateForColumn(MCQueueJobModel::DeleteColumn, new DeleteButtonDelegate(m_jobTable));
    auto *jobHeader = m_jobTable->horizontalHeader();
    jobHeader->setSectionResizeMode(MCQueueJobModel::DeleteColumn, QHeaderView::Fixed);
    jobHeader->resizeSection(MCQueueJobModel::DeleteColumn, 28);
    jobHeader->setSectionResizeMode(MCQueueJobModel::FileNameColumn, QHeaderView::Stretch);
    jobHeader->setSectionResizeMode(MCQueueJobModel::JobTypeColumn, QHeaderView::ResizeToContents);
    jobHeader->setSectionResizeMode(MCQueueJobModel::StatusColumn, QHeaderView::ResizeToContents);
    connect(m_jobTable, &QTableView::clicked, this, [this](const QModelIndex &index) {
        m_queue->deleteJobRow(index.row(), index.column());
    });

    m_progressTable = makeTable(content);
    m_progressTable->setModel(queue->jobProgressArrayController());
    m_progressTable->setItemDelegateForColumn(1, new MCProgressDelegate(m_progressTable));
    m_progressTable->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_progressTable->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_progressTable->setSelectionMode(QAbstractItemView::NoSelection);

    m_pauseButton = new QPushButton(queue->pauseButtonTitle(), content);
    m_clearButton = new QPushButton(QStringLiteral("Clear"), content);
    m_pauseButton->setEnabled(queue->qJobIsRunning());
    connect(m_pauseButton, &QPushButton::clicked, queue, &MCQueueController::pauseQueueButton);
    connect(m_clearButton, &QPushButton::clicked, queue, &MCQueueController::clearQueueButton);
    connect(queue, &MCQueueController::pauseButtonTitleChanged, this,
            [this] { m_pauseButton->setText(m_queue->pauseButtonTitle()); });
    connect(queue, &MCQueueController::qJobIsRunningChanged, this,
            [this] { m_pauseButton->setEnabled(m_queue->qJobIsRunning()); });
    connect(queue, &MCQueueController::drawerOpenRequested, this, [this] {
        if (!isVisible())
            show();
    });
    connect(queue, &MCQueueController::drawerCloseRequested, this, &QWidget::hide);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_clearButton);
    buttons->addWidget(m_pauseButton);

    layout->addWidget(new QLabel(QStringLiteral("Jobs"), content));
    layout->addWidget(m_jobTable, 3);
    layout->addWidget(new QLabel(QStringLiteral("Progress"), content));
    layout->addWidget(m_progressTable, 2);
    layout->addLayout(buttons);
    setWidget(content);

    toolTips->bind(m_jobTable, QStringLiteral("ttQueueJobTable"));
    toolTips->bind(m_progressTable, QStringLiteral("ttQueueTable"));
    toolTips->bind(m_clearButton, QStringLiteral("ttQueueClearButton"));
    toolTips->bind(m_pauseButton, QStringLiteral("ttQueuePauseButton"));
}
