#include "MCQueuePanel.h"

#include "MCFailedRowColour.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCProgressDelegate.h"
#include "MCProgressTableModel.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCToolTipBinder.h"

#include <QApplication>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
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
    , m_open([](const QUrl &url) { QDesktopServices::openUrl(url); })
{
    setObjectName(QStringLiteral("queuePanel"));
    setFeatures(QDockWidget::DockWidgetClosable | QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    auto *content = new QWidget(this);
    auto *layout = new QVBoxLayout(content);
    buildJobTable(content);
    buildProgressTable(content);

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
    connect(queue, &MCQueueController::jobEnded, this, &MCQueuePanel::jobEnded);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_clearButton);
    buttons->addWidget(m_pauseButton);

    layout->addWidget(new QLabel(QStringLiteral("Jobs"), content));
    layout->addWidget(m_jobTable, 3);
    layout->addWidget(m_details);
    layout->addWidget(new QLabel(QStringLiteral("Progress"), content));
    layout->addWidget(m_progressTable, 2);
    layout->addLayout(buttons);
    setWidget(content);

    toolTips->bind(m_jobTable, QStringLiteral("ttQueueJobTable"));
    toolTips->bind(m_progressTable, QStringLiteral("ttQueueTable"));
    toolTips->bind(m_clearButton, QStringLiteral("ttQueueClearButton"));
    toolTips->bind(m_pauseButton, QStringLiteral("ttQueuePauseButton"));
}

void MCQueuePanel::buildJobTable(QWidget *content)
{
    m_jobTable = makeTable(content);
    m_jobTable->setObjectName(QStringLiteral("jobTable"));
    auto *rows = new MCFailedRowColour(m_jobTable);
    rows->setSourceModel(m_queue->qJobArrayController());
    m_jobTable->setModel(rows);
    // Long names keep both ends, where they differ most.
    m_jobTable->setTextElideMode(Qt::ElideMiddle);
    m_jobTable->setWordWrap(false);
    m_jobTable->setItemDelegateForColumn(MCQueueJobModel::DeleteColumn, new DeleteButtonDelegate(m_jobTable));
    auto *header = m_jobTable->horizontalHeader();
    header->setMinimumSectionSize(28);
    header->setSectionResizeMode(MCQueueJobModel::DeleteColumn, QHeaderView::Fixed);
    header->resizeSection(MCQueueJobModel::DeleteColumn, 28);
    header->setSectionResizeMode(MCQueueJobModel::FileNameColumn, QHeaderView::Stretch);
    header->setSectionResizeMode(MCQueueJobModel::JobTypeColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(MCQueueJobModel::StatusColumn, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(MCQueueJobModel::OutputColumn, QHeaderView::Stretch);
    connect(m_jobTable, &QTableView::clicked, this, [this](const QModelIndex &index) {
        m_queue->deleteJobRow(index.row(), index.column());
    });
    m_jobTable->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_jobTable, &QWidget::customContextMenuRequested, this, [this](const QPoint &point) {
        QModelIndex index = m_jobTable->indexAt(point);
        if (!index.isValid())
            index = m_jobTable->currentIndex(); // the menu key
        if (!index.isValid())
            return;
        std::unique_ptr<MCJobMenu> menu(jobMenu(index.row()));
        menu->exec(m_jobTable->viewport()->mapToGlobal(point));
    });

    m_details = new QLabel(content);
    m_details->setObjectName(QStringLiteral("jobDetails"));
    m_details->setWordWrap(true);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->hide();
    connect(m_jobTable->selectionModel(), &QItemSelectionModel::selectionChanged, this, &MCQueuePanel::showDetails);
    connect(rows, &QAbstractItemModel::dataChanged, this, &MCQueuePanel::showDetails);
    connect(rows, &QAbstractItemModel::rowsRemoved, this, &MCQueuePanel::showDetails);
}

void MCQueuePanel::buildProgressTable(QWidget *content)
{
    m_progressTable = makeTable(content);
    m_progressTable->setObjectName(QStringLiteral("progressTable"));
    m_progressTable->setModel(m_queue->jobProgressArrayController());
    m_progressTable->setItemDelegateForColumn(1, new MCProgressDelegate(m_progressTable));
    m_progressTable->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_progressTable->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    m_progressTable->setSelectionMode(QAbstractItemView::NoSelection);
}

MCJobMenu *MCQueuePanel::jobMenu(int row)
{
    return new MCJobMenu(m_jobTable->model()->index(row, MCQueueJobModel::FileNameColumn), m_open, m_jobTable);
}

void MCQueuePanel::showDetails()
{
    const QModelIndexList selected = m_jobTable->selectionModel()->selectedRows(MCQueueJobModel::FileNameColumn);
    if (selected.isEmpty()) {
        m_details->clear();
        m_details->hide();
        return;
    }
    const QModelIndex row = selected.first();
    m_details->setText(row.data(MCQueueJobModel::DetailsRole).toString());
    MCMainWindow::setColorName(m_details, row.data(MCQueueJobModel::FailedRole).toBool() ? QStringLiteral("red")
                                                                                       : QStringLiteral("black"));
    m_details->show();
}

void MCQueuePanel::jobEnded(MCJob *job)
{
    // A failure is explained without a click, unless the user is looking at
    // another job.
    if (!job || !job->hasFailed() || m_jobTable->selectionModel()->hasSelection())
        return;
    const int row = static_cast<int>(m_queue->qJobList().indexOf(job));
    if (row >= 0)
        m_jobTable->selectRow(row);
}
