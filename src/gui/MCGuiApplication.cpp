#include "MCGuiApplication.h"

#include "MCAlertCenter.h"
#include "MCGuiAlertPresenter.h"
#include "MCHelpers.h"
#include "MCJob.h"
#include "MCJobTypes.h"
#include "MCMoviePlayer.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCQueueController.h"
#include "MCQueuePanel.h"

#include "MCAboutBox.h"
#include "MCDesktopNotification.h"
#include "MCDropTableView.h"
#include "MCFileChooser.h"
#include "MCGuiLinks.h"
#include "MCPreferencesController.h"
#include "MCQueueEndNotifier.h"
#include "MCScreenshotTour.h"
#include "MCTrackTableModel.h"
#include "MCVideoFile.h"

#if KESTRANE_HAVE_APP
#include "MCAppDelegate.h"
#include "MCPresetsController.h"
#include "MCWatchModeController.h"
#include "MCWatchWindow.h"
#include "MCWindowBinding.h"
#endif

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QStringListModel>
#include <QTabWidget>
#include <QTimer>

namespace {
const QString kGeometry = QStringLiteral("windowGeometry");
const QString kTab = QStringLiteral("currentTab");
const QString kQueueVisible = QStringLiteral("queuePanelVisible");
const QString kWindowState = QStringLiteral("windowState");
} // namespace

MCGuiApplication::MCGuiApplication(QObject *parent)
    : QObject(parent)
{
#if KESTRANE_HAVE_APP
    m_delegate = new MCAppDelegate(QString(), this);
    m_delegate->applicationDidFinishLaunching();
    m_preferences = m_delegate->appPreferences;
    m_queue = m_delegate->queueController;
#else
    m_preferences = MCPreferences::applicationPreferences();
    MCJobTypes::registerAll();
    m_queue = new MCQueueController(this);
    m_queue->appPreferences = m_preferences;
#endif
    m_window = std::make_unique<MCMainWindow>(m_preferences, m_queue);
    m_presenter = std::make_shared<MCGuiAlertPresenter>([this]() -> QWidget * { return m_window.get(); });
    MCAlertCenter::instance().setPresenter(m_presenter);
}

MCGuiApplication::~MCGuiApplication()
{
    if (MCAlertCenter::instance().presenter() == m_presenter)
        MCAlertCenter::instance().setPresenter(nullptr);
}

void MCGuiApplication::start(const QStringList &arguments)
{
    QStringList files = arguments;
    const bool tour = files.removeAll(QStringLiteral("--screenshot-tour")) > 0;
    wireWindow();
    m_preferences->modifyToolTips();
    if (!tour)
        restoreGuiSettings();
    m_window->fitOnScreen();
    m_window->show();
    // Again once a window manager has put its frame around the window.
    QTimer::singleShot(0, m_window.get(), &MCMainWindow::fitOnScreen);
    QList<QUrl> urls;
    for (const QString &file : std::as_const(files))
        urls << QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath());
    if (!urls.isEmpty())
        QTimer::singleShot(0, this, [this, urls] { openFiles(urls, QStringLiteral("drag")); });
#if KESTRANE_HAVE_APP
    // Jobs a killed Kestrane left behind are offered once the window stands.
    if (!tour)
        QTimer::singleShot(0, m_delegate, &MCAppDelegate::offerInterruptedJobs);
#endif
    if (tour) {
        m_tourFiles = urls;
        startScreenshotTour();
    }
}

void MCGuiApplication::createGuiSettingsDictionary()
{
    QVariantMap settings;
    settings.insert(kGeometry, m_window->saveGeometry());
    settings.insert(kWindowState, m_window->saveState());
    settings.insert(kTab, MCMainWindow::tabNames().value(m_window->tabs->currentIndex()));
    settings.insert(kQueueVisible, m_window->queuePanel->isVisible());
    m_preferences->guiSettingsDictionary = settings;
}

void MCGuiApplication::restoreGuiSettings()
{
    const QVariantMap &settings = m_preferences->guiSettingsDictionary;
    if (settings.contains(kGeometry))
        m_window->restoreGeometry(settings.value(kGeometry).toByteArray());
    if (settings.contains(kWindowState))
        m_window->restoreState(settings.value(kWindowState).toByteArray());
    const int tab = MCMainWindow::tabNames().indexOf(settings.value(kTab).toString());
#if KESTRANE_HAVE_APP
    // A tab change counts as leaving the settings preset; the restored tab
    // is no such change, so the presets chosen last time are put back after it.
    const int selectionIndex = m_preferences->selectionIndex;
    const int settingIndex = m_preferences->settingIndex;
    if (tab >= 0)
        m_window->tabs->setCurrentIndex(tab);
    m_delegate->presetsController->restoreMethodIndexes(selectionIndex, settingIndex);
#else
    if (tab >= 0)
        m_window->tabs->setCurrentIndex(tab);
#endif
    m_window->queuePanel->setVisible(settings.value(kQueueVisible, false).toBool());
}

void MCGuiApplication::wireWindow()
{
    MCMainWindow *w = m_window.get();
#if KESTRANE_HAVE_APP
    m_binding = new MCWindowBinding(w, m_delegate, this);
    m_delegate->redrawQueueDrawer = [w] { w->queuePanel->update(); };
    m_delegate->openWebPage = [](const QUrl &url) { QDesktopServices::openUrl(url); };
    m_delegate->onlineGuideAddress = QString::fromLatin1(MCGuiLinks::onlineGuide);
    m_delegate->onlineTroubleshootingAddress = QString::fromLatin1(MCGuiLinks::onlineTroubleshooting);
    m_delegate->createGuiSettingsDictionary = [this] {
        createGuiSettingsDictionary();
        return m_preferences->guiSettingsDictionary;
    };
    connect(w->saveFileInfoAction, &QAction::triggered, m_delegate,
            [this] { m_delegate->helpMenuItemSelected(QStringLiteral("Save File Info")); });
    MCWatchModeController *watchMode = m_delegate->watchModeController;
    m_watchWindow = std::make_unique<MCWatchWindow>(watchMode, w);
    w->watchButton->setEnabled(true);
    connect(w->watchButton, &QPushButton::clicked, watchMode, [watchMode] { watchMode->startWatchMode(true); });
#else
    auto drop = [this](const QList<QUrl> &urls) { openFiles(urls, QStringLiteral("drag")); };
    connect(w->trackTable, &MCDropTableView::filesDropped, this, drop);
    connect(w->fileTable, &MCDropTableView::filesDropped, this, drop);
    connect(w, &MCMainWindow::filesDropped, this, drop);
    // Without the selection rules only what the loaded file allows is offered.
    for (QPushButton *button : {w->convertButton, w->joinButton, w->splitButton, w->remuxButton, w->startTrackEditButton})
        button->setEnabled(false);
#endif
    connect(w->openButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("open")); });
    connect(w->openAction, &QAction::triggered, this, [this] { openFilePanel(QStringLiteral("open")); });
    connect(w->addButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->addTracksButton, &QPushButton::clicked, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->addAction, &QAction::triggered, this, [this] { openFilePanel(QStringLiteral("add")); });
    connect(w->preferencesAction, &QAction::triggered, w->preferencesPanel, &MCPreferencesController::openPreferences);
    connect(w->quitAction, &QAction::triggered, w, &QWidget::close);
    connect(w->onlineGuideAction, &QAction::triggered, this,
            [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(MCGuiLinks::onlineGuide))); });
    connect(w->troubleshootingAction, &QAction::triggered, this,
            [] { QDesktopServices::openUrl(QUrl(QString::fromLatin1(MCGuiLinks::onlineTroubleshooting))); });
    connect(w->toolTipsAction, &QAction::triggered, this, [this] {
        m_preferences->setShowToolTipsFlag(!m_preferences->showToolTipsFlag);
        m_preferences->modifyToolTips();
    });
    connect(w->playButton, &QPushButton::clicked, this, &MCGuiApplication::playMovie);
    connect(w->aboutAction, &QAction::triggered, this, &MCGuiApplication::showAboutBox);
    new MCQueueEndNotifier(m_queue, [](const QString &summary, const QString &body) {
        MCDesktopNotification::send(summary, body);
    }, this);
    w->askToClose = [this](std::function<void(bool)> reply) { applicationShouldTerminate(reply); };
}

void MCGuiApplication::openFilePanel(const QString &mode)
{
    const auto fileMode = mode == QLatin1String("open") ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
    MCFileChooser::open(m_window.get(), QStringLiteral("Select video file to open:"), fileMode, QString(),
                        [this, mode](const QList<QUrl> &urls) {
                            QTimer::singleShot(100, this, [this, urls, mode] { openFiles(urls, mode); });
                        });
}

void MCGuiApplication::openFiles(const QList<QUrl> &urls, const QString &mode)
{
    if (urls.isEmpty())
        return;
#if KESTRANE_HAVE_APP
    m_binding->openFiles(urls, mode);
    return;
#endif
    if (m_window->tabs->currentIndex() == 1) {
        listEditFiles(urls, mode == QLatin1String("add"));
        return;
    }
    if (mode == QLatin1String("add")) {
        MCAlert alert;
        alert.message = QStringLiteral("Error Opening: %1").arg(urls.first().fileName());
        alert.informativeText = QStringLiteral("Kestrane can't add the track from this file.");
        alert.timeoutSeconds = 5.0;
        MCAlertCenter::instance().present(alert);
        return;
    }
    loadFile(urls.first());
}

void MCGuiApplication::loadFile(const QUrl &url)
{
    auto file = std::make_shared<MCVideoFile>();
    const QString answer = file->initializeForURL(url).toLower();
    if (answer == QLatin1String("ok")) {
        m_videoFile = file;
        m_window->trackModel->setTracks(file->trackList);
        m_window->fileTextField->setText(file->theFilePath);
        return;
    }
    MCAlert alert;
    alert.message = QStringLiteral("Error Opening: %1").arg(url.fileName());
    alert.informativeText = answer == QLatin1String("track not identified")
                                ? QStringLiteral("Kestrane could not identify one or more of the tracks in this file.")
                                : QStringLiteral("Kestrane could not identify this file as a video!!!!!!!!!.");
    alert.timeoutSeconds = 5.0;
    MCAlertCenter::instance().present(alert);
}

void MCGuiApplication::listEditFiles(const QList<QUrl> &urls, bool append)
{
    if (!append)
        m_editFiles.clear();
    for (const QUrl &url : urls) {
        if (QFileInfo(url.toLocalFile()).suffix().compare(QLatin1String("avi"), Qt::CaseInsensitive) == 0) {
            m_editFiles << url;
            continue;
        }
        MCAlert alert;
        alert.message = QStringLiteral("Error Opening: %1").arg(url.fileName());
        alert.informativeText = append ? QStringLiteral("Kestrane can't add the track from this file.")
                                       : QStringLiteral("Kestrane can only edit AVI files.");
        alert.timeoutSeconds = 5.0;
        MCAlertCenter::instance().present(alert);
    }
    QStringList paths;
    for (const QUrl &url : std::as_const(m_editFiles))
        paths << url.toLocalFile();
    m_window->fileModel->setStringList(paths);
}

void MCGuiApplication::applicationShouldTerminate(const std::function<void(bool)> &reply)
{
#if KESTRANE_HAVE_APP
    // The delegate asks about a running job; the window's state is saved
    // whichever way the quit was approved.
    m_delegate->applicationShouldTerminate([this, reply](bool quit) {
        if (quit) {
            createGuiSettingsDictionary();
            m_preferences->savePreferencesToDefaults();
        }
        reply(quit);
    });
    return;
#endif
    auto finish = [this, reply] {
        createGuiSettingsDictionary();
        m_preferences->savePreferencesToDefaults();
        reply(true);
    };
    if (!m_queue->qJobIsRunning() || !m_queue->currentJob()) {
        finish();
        return;
    }
    m_queue->currentJob()->pauseJob();
    MCAlert alert;
    alert.message = QStringLiteral("Videos are still being processed.  Quit anyways?");
    alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    alert.style = MCAlert::Style::Warning;
    MCAlertCenter::instance().present(alert, [this, finish, reply](int code) {
        if (code != MCAlertFirstButtonReturn) {
            reply(false); // the job stays paused
            return;
        }
        if (MCJob *job = m_queue->currentJob())
            job->stopJob();
        finish();
    });
}

void MCGuiApplication::startScreenshotTour()
{
    MCMainWindow *w = m_window.get();
    QList<MCScreenshotTour::Stop> stops{
        {QStringLiteral("main-avi"), [w] { w->tabs->setCurrentIndex(0); }},
        {QStringLiteral("main-edit-files"),
         [this, w] {
             w->tabs->setCurrentIndex(1);
             w->tableStack->setCurrentIndex(1);
             w->trackToggles->hide();
             openFiles(m_tourFiles, QStringLiteral("drag"));
         }},
        {QStringLiteral("main-edit-tracks"),
         [w] {
             w->tabs->setCurrentIndex(2);
             w->tableStack->setCurrentIndex(0);
             w->trackToggles->show();
         }},
        {QStringLiteral("queue-panel"), [w] { w->tabs->setCurrentIndex(0); w->queuePanel->show(); }},
        {QStringLiteral("preferences"), [w] { w->preferencesPanel->openPreferences(); }},
    };
#if KESTRANE_HAVE_APP
    // Watching the samples' folder, for this run only.
    stops << MCScreenshotTour::Stop{QStringLiteral("watch-window"), [this, w] {
                                        w->preferencesPanel->reject();
                                        if (!m_tourFiles.isEmpty())
                                            m_preferences->watchFolderURL = m_tourFiles.first().adjusted(QUrl::RemoveFilename);
                                        w->watchButton->click();
                                    }};
#endif
    auto *tour = new MCScreenshotTour(stops, this);
    tour->start();
}

void MCGuiApplication::showAboutBox()
{
    auto *about = new MCAboutBox(MCHelpers::resourceFolderPath(), m_window.get());
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->show();
}

void MCGuiApplication::playMovie()
{
#if KESTRANE_HAVE_APP
    m_videoFile = m_delegate->currentVideoFile;
#endif
    if (!m_videoFile || m_videoFile->trackList.isEmpty())
        return;
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->initializeFrom(*m_videoFile);
    selection->trackList.clear();
    int subtitles = 0;
    for (const MCVideoTrackPtr &track : std::as_const(m_videoFile->trackList)) {
        if (!track->trackSelected)
            continue;
        selection->trackList << track;
        if (track->trackType.contains(QLatin1String("Subtitle")))
            ++subtitles;
    }
    selection->subCount = QString::number(subtitles);
    MCMoviePlayer().playMovie(selection);
}
