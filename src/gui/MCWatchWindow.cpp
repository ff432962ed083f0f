#include "MCWatchWindow.h"

#include "MCDropTableView.h"
#include "MCFileChooser.h"
#include "MCJob.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCWatchModeController.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QListWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// The folders among dropped locations; files are not watched folders.
QList<QUrl> foldersIn(const QMimeData *data)
{
    QList<QUrl> folders;
    for (const QUrl &url : MCDropTableView::localFilesIn(data)) {
        if (QFileInfo(url.toLocalFile()).isDir())
            folders << url;
    }
    return folders;
}

} // namespace

MCWatchWindow::MCWatchWindow(MCWatchModeController *controller, QWidget *mainWindow)
    : QWidget(nullptr, Qt::Window)
    , m_controller(controller)
    , m_mainWindow(mainWindow)
{
    setWindowTitle(QStringLiteral("Kestrane - Watch Folder"));
    setObjectName(QStringLiteral("watchWindow"));
    setAcceptDrops(true);
    auto *layout = new QVBoxLayout(this);
    auto *intro = new QLabel(QStringLiteral("Every new video put into this folder is converted with the current presets."), this);
    intro->setWordWrap(true);
    layout->addWidget(intro);

    auto *row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("Folder:"), this));
    pathField = new QLineEdit(this);
    pathField->setReadOnly(true);
    pathField->setMinimumWidth(360);
    row->addWidget(pathField, 1);
    chooseButton = new QPushButton(QStringLiteral("Choose..."), this);
    row->addWidget(chooseButton);
    layout->addLayout(row);

    auto *buttons = new QHBoxLayout;
    statusLabel = new QLabel(this);
    buttons->addWidget(statusLabel, 1);
    endButton = new QPushButton(QStringLiteral("End Watch Mode"), this);
    buttons->addWidget(endButton);
    layout->addLayout(buttons);
    givenUpList = new QListWidget(this);
    givenUpList->setObjectName(QStringLiteral("givenUpList"));
    givenUpList->setToolTip(QStringLiteral("Movies that could not be converted after %1 attempts").arg(MCWatchModeFollowUp::maxAttempts));
    givenUpList->setVisible(false);
    layout->addWidget(givenUpList);

    pathField->setText(controller->watchFolderPath());
    connect(controller, &MCWatchModeController::watchFolderPathChanged, this, [this] {
        pathField->setText(m_controller->watchFolderPath());
        m_dropHint.clear();
        showStatus();
    });
    connect(controller, &MCWatchModeController::appIsInWatchModeChanged, this, &MCWatchWindow::showStatus);
    if (MCQueueController *queue = controller->queueController) {
        connect(queue->qJobArrayController(), &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex &, int first, int last) { jobsQueued(first, last); });
    }
    connect(controller, &MCWatchModeController::movieGivenUp, this, &MCWatchWindow::movieGivenUp);
    connect(controller, &MCWatchModeController::toggleWindowsRequested, this, &MCWatchWindow::toggleWindows);
    connect(controller, &MCWatchModeController::folderChooserRequested, this, &MCWatchWindow::openFolderChooser);
    connect(chooseButton, &QPushButton::clicked, controller, &MCWatchModeController::chooseWatchFolderURL);
    connect(endButton, &QPushButton::clicked, controller, &MCWatchModeController::endWatchMode);
    showStatus();
    adjustSize();
}

void MCWatchWindow::showStatus()
{
    QString text;
    if (!m_dropHint.isEmpty())
        text = m_dropHint;
    else if (m_controller->isScanning())
        text = m_lastTakenUp.isEmpty() ? QStringLiteral("Waiting for new videos.")
                                       : QStringLiteral("Last taken up: %1").arg(m_lastTakenUp);
    else if (m_controller->watchFolderPath() != MCWatchModeController::invalidFolderMessage)
        text = QStringLiteral("Not watching: choose the folder to start again.");
    // Without a usable folder the folder field already says what to do.
    statusLabel->setText(text);
}

void MCWatchWindow::jobsQueued(int first, int last)
{
    // Only what the scan queued counts: a movie the presets select nothing
    // in is taken up by the intake but never queued.
    if (!m_controller->appIsInWatchMode() || !m_controller->queueController)
        return;
    const QList<MCJob *> &jobs = m_controller->queueController->qJobList();
    if (last >= jobs.size() || first > last)
        return;
    m_lastTakenUp = jobs.at(last)->jobFileName;
    m_dropHint.clear();
    showStatus();
}

void MCWatchWindow::movieGivenUp(const QUrl &file, const QString &reason)
{
    givenUpList->addItem(QStringLiteral("Not converted: %1 (%2)").arg(file.fileName(), reason));
    givenUpList->setVisible(true);
}

void MCWatchWindow::closeEvent(QCloseEvent *event)
{
    // Closing the watch window is the way back, not the end of Kestrane.
    if (m_controller->appIsInWatchMode()) {
        event->ignore();
        m_controller->endWatchMode();
        return;
    }
    QWidget::closeEvent(event);
}

void MCWatchWindow::dragEnterEvent(QDragEnterEvent *event)
{
    MCDropTableView::acceptLocalFiles(event);
}

void MCWatchWindow::dropEvent(QDropEvent *event)
{
    if (!MCDropTableView::acceptLocalFiles(event))
        return;
    const QList<QUrl> folders = foldersIn(event->mimeData());
    if (folders.isEmpty()) {
        m_dropHint = QStringLiteral("Drop a folder here to watch it.");
        showStatus();
        return;
    }
    m_dropHint.clear();
    m_controller->watchFolderChosen(folders.first());
    showStatus();
}

void MCWatchWindow::toggleWindows(bool towardsWatchWindow)
{
    if (!m_mainWindow)
        return;
    if (towardsWatchWindow)
        switchWindows(m_mainWindow, this);
    else
        switchWindows(this, m_mainWindow);
}

void MCWatchWindow::switchWindows(QWidget *out, QWidget *in)
{
    auto *fadeOut = new QPropertyAnimation(out, "windowOpacity", out);
    fadeOut->setDuration(animationDurationMs);
    fadeOut->setEndValue(0.0);
    fadeOut->start(QAbstractAnimation::DeleteWhenStopped);
    QPointer<QWidget> leaving(out);
    QTimer::singleShot(animationDurationMs + 100, out, [leaving] {
        if (!leaving)
            return;
        leaving->hide();
        leaving->setWindowOpacity(1.0);
    });

    // Placed once shown, when its frame has its final size; unseen at
    // opacity 0 until then.
    in->setWindowOpacity(0.0);
    in->show();
    const QRect placed = MCWatchModeController::frameLevelWithTopOf(out->frameGeometry(), in->frameGeometry().size());
    in->move(placed.topLeft());
    in->raise();
    in->activateWindow();
    auto *fadeIn = new QPropertyAnimation(in, "windowOpacity", in);
    fadeIn->setDuration(animationDurationMs);
    fadeIn->setEndValue(1.0);
    fadeIn->start(QAbstractAnimation::DeleteWhenStopped);
}

void MCWatchWindow::openFolderChooser()
{
    const QString current = m_controller->watchFolderPath();
    QFileDialog *chooser = MCFileChooser::open(
        this, QStringLiteral("Select the folder to watch."), QFileDialog::Directory,
        current.startsWith(QLatin1Char('/')) ? current : QString(),
        [this](const QList<QUrl> &urls) { m_controller->watchFolderChosen(urls.first()); });
    // Cancelling leaves the scan stopped; the status says so.
    connect(chooser, &QDialog::finished, this, &MCWatchWindow::showStatus);
}
