#include "MCGuiApplication.h"

#include "MCAboutBox.h"
#include "MCAlertCenter.h"
#include "MCAppDelegate.h"
#include "MCDesktopNotification.h"
#include "MCFileChooser.h"
#include "MCGuiAlertPresenter.h"
#include "MCGuiLinks.h"
#include "MCHelpers.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCMoviePlayer.h"
#include "MCPreferences.h"
#include "MCPreferencesController.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCQueueEndNotifier.h"
#include "MCQueuePanel.h"
#include "MCVideoFile.h"
#include "MCWatchModeController.h"
#include "MCWatchWindow.h"
#include "MCWindowBinding.h"

#include <QAction>
#include <QDir>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

namespace {
const QString kGeometry = QStringLiteral("windowGeometry");
const QString kTab = QStringLiteral("currentTab");
const QString kQueueVisible = QStringLiteral("queuePanelVisible");
const QString kWindowState = QStringLiteral("windowState");
const QString kOpenFolder = QStringLiteral("openFolder");
} // namespace

MCGuiApplication::MCGuiApplication(QObject *parent)
    : QObject(parent)
    , m_delegate(new MCAppDelegate(QString(), this))
{
    m_delegate->applicationDidFinishLaunching();
    m_preferences = m_delegate->appPreferences;
    m_window = std::make_unique<MCMainWindow>(m_preferences, m_delegate->queueController);
    m_presenter = std::make_shared<MCGuiAlertPresenter>([this]() -> QWidget * { return m_window.get(); });
    MCAlertCenter::instance().setPresenter(m_presenter);
}

MCGuiApplication::~MCGuiApplication()
{
    if (MCAlertCenter::instance().presenter() == m_presenter)
        MCAlertCenter::instance().setPresenter(nullptr);
}

MCQueueController *MCGuiApplication::queue() const
{
    return m_delegate->queueController;
}

void MCGuiApplication::start(const QStringList &files)
{
    wireWindow();
    m_preferences->modifyToolTips();
    restoreGuiSettings();
    m_window->fitOnScreen();
    m_window->show();
    // Again once a window manager has put its frame around the window.
    QTimer::singleShot(0, m_window.get(), &MCMainWindow::fitOnScreen);
    QList<QUrl> urls;
    for (const QString &file : files)
        urls << QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath());
    if (!urls.isEmpty())
        QTimer::singleShot(0, this, [this, urls] { openFiles(urls, QStringLiteral("drag")); });
    // Jobs a killed Kestrane left behind are offered once the window stands.
    QTimer::singleShot(0, m_delegate, &MCAppDelegate::offerInterruptedJobs);
}

void MCGuiApplication::createGuiSettingsDictionary()
{
    QVariantMap settings;
    settings.insert(kGeometry, m_window->saveGeometry());
    settings.insert(kWindowState, m_window->saveState());
    settings.insert(kTab, MCMainWindow::tabNames().value(m_window->tabs->currentIndex()));
    settings.insert(kQueueVisible, m_window->queuePanel->isVisible());
    settings.insert(kOpenFolder, m_openFolder);
    m_preferences->guiSettingsDictionary = settings;
}

void MCGuiApplication::restoreGuiSettings()
{
    const QVariantMap &settings = m_preferences->guiSettingsDictionary;
    if (settings.contains(kGeometry))
        m_window->restoreGeometry(settings.value(kGeometry).toByteArray());
    if (settings.contains(kWindowState))
        m_window->restoreState(settings.value(kWindowState).toByteArray());
    // A tab change counts as leaving the settings preset; the restored tab
    // is no such change, so the presets chosen last time are put back after it.
    const int selectionIndex = m_preferences->selectionIndex;
    const int settingIndex = m_preferences->settingIndex;
    const int tab = MCMainWindow::tabNames().indexOf(settings.value(kTab).toString());
    if (tab >= 0)
        m_window->tabs->setCurrentIndex(tab);
    m_delegate->presetsController->restoreMethodIndexes(selectionIndex, settingIndex);
    m_window->queuePanel->setVisible(settings.value(kQueueVisible, false).toBool());
    m_openFolder = settings.value(kOpenFolder).toString();
}

void MCGuiApplication::wireWindow()
{
    MCMainWindow *w = m_window.get();
    m_binding = new MCWindowBinding(w, m_delegate, this);
    m_delegate->redrawQueueDrawer = [w] { w->queuePanel->update(); };
    m_delegate->openWebPage = [](const QUrl &url) { QDesktopServices::openUrl(url); };
    m_delegate->onlineGuideAddress = QString::fromLatin1(MCGuiLinks::onlineGuide);
    m_delegate->onlineTroubleshootingAddress = QString::fromLatin1(MCGuiLinks::onlineTroubleshooting);
    m_delegate->createGuiSettingsDictionary = [this] {
        createGuiSettingsDictionary();
        return m_preferences->guiSettingsDictionary;
    };
    MCWatchModeController *watchMode = m_delegate->watchModeController;
    m_watchWindow = std::make_unique<MCWatchWindow>(watchMode, w);
    connect(w->watchButton, &QPushButton::clicked, watchMode, [watchMode] { watchMode->startWatchMode(true); });
    connect(w->openButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("open")); });
    connect(w->addButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->addTracksButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->playButton, &QPushButton::clicked, this, &MCGuiApplication::playMovie);
    new MCQueueEndNotifier(queue(), [](const QString &summary, const QString &body) {
        MCDesktopNotification::send(summary, body);
    }, this);
    w->askToClose = [this](std::function<void(bool)> reply) { applicationShouldTerminate(reply); };
    connect(m_delegate, &MCAppDelegate::openedURLsArrayChanged, this, [this] {
        const QList<QUrl> urls = m_delegate->openedURLsArray();
        if (!urls.isEmpty() && urls.first().isLocalFile())
            m_openFolder = QFileInfo(urls.first().toLocalFile()).absolutePath();
    });
    wireMenus();
}

void MCGuiApplication::wireMenus()
{
    MCMainWindow *w = m_window.get();
    connect(w->openAction, &QAction::triggered, this, [this] { openFilePanel(QStringLiteral("open")); });
    connect(w->addAction, &QAction::triggered, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->preferencesAction, &QAction::triggered, w->preferencesPanel, &MCPreferencesController::openPreferences);
    connect(w->quitAction, &QAction::triggered, w, &QWidget::close);
    connect(w->saveFileInfoAction, &QAction::triggered, m_delegate,
            [this] { m_delegate->helpMenuItemSelected(QStringLiteral("Save File Info")); });
    connect(w->onlineGuideAction, &QAction::triggered, this,
            [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(MCGuiLinks::onlineGuide))); });
    connect(w->troubleshootingAction, &QAction::triggered, this,
            [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(MCGuiLinks::onlineTroubleshooting))); });
    connect(w->toolTipsAction, &QAction::triggered, this, [this] {
        m_preferences->setShowToolTipsFlag(!m_preferences->showToolTipsFlag);
        m_preferences->modifyToolTips();
    });
    connect(w->aboutAction, &QAction::triggered, this, &MCGuiApplication::showAboutBox);
}

void MCGuiApplication::openFilePanel(const QString &mode)
{
    const auto fileMode = mode == QLatin1String("open") ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
    // Where the last file came from, else the home folder, never the
    // folder the program happened to be started in.
    const QString folder = QFileInfo(m_openFolder).isDir() ? m_openFolder : QDir::homePath();
    MCFileChooser::open(m_window.get(), QStringLiteral("Select video file to open:"), fileMode, folder,
                        [this, mode](const QList<QUrl> &urls) {
                            QTimer::singleShot(100, this, [this, urls, mode] { openFiles(urls, mode); });
                        });
}

void MCGuiApplication::openFiles(const QList<QUrl> &urls, const QString &mode)
{
    m_binding->openFiles(urls, mode);
}

void MCGuiApplication::applicationShouldTerminate(const std::function<void(bool)> &reply)
{
    m_delegate->applicationShouldTerminate([this, reply](bool quit) {
        if (quit) {
            createGuiSettingsDictionary();
            m_preferences->savePreferencesToDefaults();
        }
        reply(quit);
    });
}

void MCGuiApplication::showAboutBox()
{
    auto *about = new MCAboutBox(MCHelpers::resourceFolderPath(), m_window.get());
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->show();
}

void MCGuiApplication::playMovie()
{
    const std::shared_ptr<MCVideoFile> file = m_delegate->currentVideoFile;
    if (!file || file->trackList.isEmpty())
        return;
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->initializeFrom(*file);
    selection->trackList.clear();
    int subtitles = 0;
    for (const MCVideoTrackPtr &track : std::as_const(file->trackList)) {
        if (!track->trackSelected)
            continue;
        selection->trackList << track;
        if (track->trackType.contains(QLatin1String("Subtitle")))
            ++subtitles;
    }
    selection->subCount = QString::number(subtitles);
    MCMoviePlayer().playMovie(selection);
}
