#include "MCWatchWindow.h"

#include "MCWatchModeController.h"

#include <QCloseEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPropertyAnimation>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

MCWatchWindow::MCWatchWindow(MCWatchModeController *controller, QWidget *mainWindow)
    : QWidget(nullptr, Qt::Window)
    , m_controller(controller)
    , m_mainWindow(mainWindow)
{
    setWindowTitle(QStringLiteral("Kestrane - Watch Folder"));
    setObjectName(QStringLiteral("watchWindow"));
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
    lastTakenUpLabel = new QLabel(QStringLiteral("Waiting for new videos."), this);
    buttons->addWidget(lastTakenUpLabel, 1);
    endButton = new QPushButton(QStringLiteral("End Watch Mode"), this);
    buttons->addWidget(endButton);
    layout->addLayout(buttons);

    pathField->setText(controller->watchFolderPath());
    connect(controller, &MCWatchModeController::watchFolderPathChanged, this,
            [this] { pathField->setText(m_controller->watchFolderPath()); });
    connect(controller, &MCWatchModeController::moviesTakenUp, this, [this](const QList<QUrl> &files) {
        lastTakenUpLabel->setText(QStringLiteral("Last taken up: %1").arg(files.last().fileName()));
    });
    connect(controller, &MCWatchModeController::toggleWindowsRequested, this, &MCWatchWindow::toggleWindows);
    connect(controller, &MCWatchModeController::folderChooserRequested, this, &MCWatchWindow::openFolderChooser);
    connect(chooseButton, &QPushButton::clicked, controller, &MCWatchModeController::chooseWatchFolderURL);
    connect(endButton, &QPushButton::clicked, controller, &MCWatchModeController::endWatchMode);
    adjustSize();
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
    auto *panel = new QFileDialog(this, QStringLiteral("Select the folder to watch."));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setWindowModality(Qt::WindowModal);
    if (m_controller->watchFolderPath().startsWith(QLatin1Char('/')))
        panel->setDirectory(m_controller->watchFolderPath());
    connect(panel, &QFileDialog::urlSelected, m_controller, &MCWatchModeController::watchFolderChosen);
    panel->open();
}
