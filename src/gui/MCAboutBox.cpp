#include "MCAboutBox.h"

#include "MCToolVersions.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

MCAboutBox::MCAboutBox(const QString &resourceFolder, QWidget *parent)
    : QDialog(parent)
    , m_versions(new MCToolVersions(resourceFolder, this))
{
    setObjectName(QStringLiteral("aboutBox"));
    setWindowTitle(QStringLiteral("About Kestrane"));
    auto *title = new QLabel(QStringLiteral("<b>Kestrane %1</b>").arg(QApplication::applicationVersion()), this);
    auto *text = new QLabel(QStringLiteral("Converts and edits video files with the command-line tools below, "
                                           "found in the resource folder %1. Built with Qt %2.")
                                .arg(resourceFolder.isEmpty() ? QStringLiteral("(none found)") : resourceFolder,
                                     QString::fromLatin1(qVersion())),
                            this);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);

    m_table = new QTableWidget(static_cast<int>(m_versions->tools().size()), 2, this);
    m_table->setHorizontalHeaderLabels({QStringLiteral("Tool"), QStringLiteral("Version")});
    m_table->verticalHeader()->hide();
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(1, QHeaderView::Stretch);
    for (int row = 0; row < m_versions->tools().size(); ++row)
        showTool(row);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(title);
    layout->addWidget(text);
    layout->addWidget(m_table, 1);
    layout->addWidget(buttons);
    resize(640, 420);

    connect(m_versions, &MCToolVersions::toolChanged, this, &MCAboutBox::showTool);
    m_versions->start();
}

void MCAboutBox::showTool(int row)
{
    const MCToolVersions::Tool &tool = m_versions->tools().at(row);
    auto *name = new QTableWidgetItem(tool.name);
    name->setToolTip(tool.path);
    m_table->setItem(row, 0, name);
    m_table->setItem(row, 1, new QTableWidgetItem(tool.version));
}
