#include "MCAppDelegate.h"

#include "MCAlertCenter.h"
#include "MCConverter.h"
#include "MCFileInfoReport.h"
#include "MCIntakeProbe.h"
#include "MCInterruptedJobs.h"
#include "MCSaveFolderCheck.h"
#include "MCJob.h"
#include "MCJobTypes.h"
#include "MCLog.h"
#include "MCMkvEditRules.h"
#include "MCMp4EditRules.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCSelectionController.h"
#include "MCVideoFile.h"
#include "MCWatchModeController.h"
#include "MCWords.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

namespace {

const QString kOpen = QStringLiteral("open");
const QString kAdd = QStringLiteral("add");
const QString kDrag = QStringLiteral("drag");
const QString kWatch = QStringLiteral("watch");
const QString kNewFileAdded = QStringLiteral("new file added");

constexpr double kIntakeAlertSeconds = 5.0;
constexpr int kBatchDelayMs = 400;

bool isAvi(const QUrl &url)
{
    return QFileInfo(url.toLocalFile()).suffix().toLower() == QStringLiteral("avi");
}

// The files Edit Files and Edit Tracks take: AVI, Matroska for the MKV
// edits, MP4 and M4V for the MP4 edits.
bool isEditable(const QUrl &url)
{
    return isAvi(url) || MCMkvEditRules::isMatroska(url.toLocalFile()) || MCMp4EditRules::isMp4(url.toLocalFile());
}

// An empty or damaged file would make the join or split tools write a
// result that plays a fraction, or nothing; it is refused as the
// conversion's intake refuses it.
bool isReadableVideo(const QUrl &url, std::shared_ptr<MCReportCache> reports)
{
    MCVideoFile file;
    file.setReportCache(std::move(reports));
    return file.initializeForURL(url).toLower() == QStringLiteral("ok");
}

bool isOneOf(const QString &mode, std::initializer_list<QString> modes)
{
    return std::find(modes.begin(), modes.end(), mode) != modes.end();
}

} // namespace

const QString MCAppDelegate::dropFilesText = QStringLiteral("Drop Video File(s) in the Table Below");

MCAppDelegate::MCAppDelegate(const QString &settingsFilePath, QObject *parent)
    : QObject(parent)
    , m_settingsFilePath(settingsFilePath)
{
    queueSelection = [this](const MCSelectionPtr &selection) {
        if (queueController)
            queueController->addToQueue(selection);
    };
}

MCAppDelegate::~MCAppDelegate()
{
    // The queue may still stop a running job, whose steps read the
    // preferences: it goes first, the preferences last. The watch scan
    // feeds the queue, so it stops before that. An inspection under way
    // ends first: its answer would be taken in by what goes next.
    delete intakeProbe;
    delete watchModeController;
    delete queueController;
    delete presetsController;
    delete selectionController;
    if (MCPreferences::applicationPreferences() == appPreferences)
        MCPreferences::setApplicationPreferences(nullptr);
}

void MCAppDelegate::applicationDidFinishLaunching()
{
    if (m_launched)
        return;
    m_launched = true;
    MCJobTypes::registerAll();
    appPreferences = m_settingsFilePath.isEmpty() ? new MCPreferences(this) : new MCPreferences(m_settingsFilePath, this);
    MCPreferences::setApplicationPreferences(appPreferences);

    currentVideoFile = std::make_shared<MCVideoFile>();
    currentSelection = std::make_shared<MCSelection>();
    currentSelection->initialize();

    selectionController = new MCSelectionController(this);
    presetsController = new MCPresetsController(appPreferences, selectionController, this);
    selectionController->setPresetsController(presetsController);
    selectionController->setCurrentSelection(currentSelection);
    selectionController->setCurrentVideoFile(currentVideoFile);
    selectionController->initialize();
    queueController = new MCQueueController(this, appPreferences);
    queueController->intakeReports = currentVideoFile->reportCache();
    queueController->setJournal(&m_journal);
    // Jobs run again go where a started selection goes, whoever replaced it.
    m_interrupted = new MCInterruptedJobs(m_journal, [this](const MCSelectionPtr &selection) {
        if (queueSelection)
            queueSelection(selection);
    }, this);
    // A result never silently takes another's name: the user decides (the
    // command line answers "Keep Both" unless told to overwrite).
    queueController->existingResults = MCJob::ExistingResults::Ask;
    intakeProbe = new MCIntakeProbe(this);
    watchModeController = new MCWatchModeController(this);
    watchModeController->takeUpMovie = [this](const QUrl &file, QString &refusal) {
        const bool taken = takeUpWatchedMovie(file);
        refusal = m_lastLoadAnswer;
        return taken;
    };
    watchModeController->appPreferences = appPreferences;
    watchModeController->queueController = queueController;
    queueController->setWatchModeController(watchModeController);
    connect(selectionController, &MCSelectionController::endEditingRequested, this, [this] {
        if (endTextEditing)
            endTextEditing();
    });

    setFileTextField(dropFilesText);
    presetsController->initialize();
    presetsController->setLanguageNames(MCConverter().languageList);
    if (selectionController->currentTab().isEmpty())
        selectionController->setCurrentTab(MCWords::tabAvi);
    appPreferences->modifyToolTips();
    setOpenedURLsArray({});
    editFilesURLsArray.clear();
}

QString MCAppDelegate::currentTab() const
{
    return selectionController ? selectionController->currentTab() : QString();
}

void MCAppDelegate::setFileTextField(const QString &text)
{
    if (m_fileTextField == text)
        return;
    m_fileTextField = text;
    emit fileTextFieldChanged();
}

void MCAppDelegate::setOpeningFileMode(const QString &mode)
{
    if (m_openingFileMode == mode)
        return;
    m_openingFileMode = mode;
    emit openingFileModeChanged();
}

void MCAppDelegate::setOpenedURLsArray(const QList<QUrl> &urls)
{
    m_openedURLsArray = urls;
    emit openedURLsArrayChanged();
}

// ---------------------------------------------------------------- intake

void MCAppDelegate::openedFileHubForFiles(const QList<QUrl> &urls)
{
    setOpenedURLsArray(urls);
    if (urls.isEmpty())
        return;
    if (m_openingFileMode == kWatch) {
        takeUpWatchedMovie(urls.first());
        return;
    }
    if (testNewFileURL(urls.first(), true) == kNewFileAdded && currentSelection->headerRemovalFlag)
        offerHeaderRemovalRemux();
}

bool MCAppDelegate::takeUpWatchedMovie(const QUrl &url)
{
    setOpeningFileMode(kWatch);
    setOpenedURLsArray({url});
    m_lastLoadAnswer.clear();
    if (testNewFileURL(url, false) != kNewFileAdded)
        return false;
    QTimer::singleShot(MCWatchModeController::jobStartDelayMs, this, [this] { startJob(); });
    return true;
}

void MCAppDelegate::offerHeaderRemovalRemux()
{
    MCAlert alert;
    alert.message = QStringLiteral("This video appears to have header removal compression.  This may cause issues when "
                                   "you convert or play the video.");
    alert.informativeText = QStringLiteral("Would you like Kestrane to create a copy of this video with this feature turned off.");
    alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    MCAlertCenter::instance().present(alert, [self = QPointer<MCAppDelegate>(this)](int code) {
        if (self)
            self->handleHeaderCompression(code);
    });
}

void MCAppDelegate::handleHeaderCompression(int returnCode)
{
    if (returnCode == MCAlertFirstButtonReturn)
        queueRemux();
}

void MCAppDelegate::queueRemux()
{
    currentSelection->jobType = MCWords::jobMkvRemux;
    queueCurrentSelection();
    // The queue keeps its own copy; the live record goes back to what the
    // tab decides, so a Convert right after still converts.
    selectionController->updateTabs();
}

QString MCAppDelegate::testNewFileURL(const QUrl &url, bool withAlerts)
{
    const QString tab = currentTab().toLower();
    // The conversion tabs take a file and its added tracks alike.
    if (tab == QStringLiteral("avi") || tab == QStringLiteral("mkv") || tab == QStringLiteral("mp4"))
        return testForAviTab(url, withAlerts);
    if (tab == QStringLiteral("edit files"))
        return testForEditFilesTab(withAlerts);
    if (tab == QStringLiteral("edit tracks"))
        return testForEditTracksTab(url, withAlerts);
    return {};
}

QString MCAppDelegate::testForAviTab(const QUrl &url, bool withAlerts)
{
    const QString meaning = currentVideoFile->whatToDoWithFile(url);
    if (meaning == QStringLiteral("replace file"))
        return loadRule(url, withAlerts);
    if (meaning == QStringLiteral("add file"))
        addTrackAndApplyPresets(url, withAlerts);
    else if (meaning == QStringLiteral("not a video file"))
        alertErrorOpening(url, QStringLiteral("Kestrane can't open this file."), withAlerts);
    return {};
}

QString MCAppDelegate::testForEditFilesTab(bool withAlerts)
{
    const bool adding = m_openingFileMode == kAdd;
    if (!adding && !isOneOf(m_openingFileMode, {kOpen, kDrag, kWatch}))
        return {};
    if (!adding)
        editFilesURLsArray.clear();
    const QString refusal = adding ? QStringLiteral("Kestrane can't add the track from this file.")
                                   : QStringLiteral("Kestrane can only edit AVI, MKV and MP4 files.");
    for (const QUrl &url : std::as_const(m_openedURLsArray)) {
        if (!isEditable(url))
            alertErrorOpening(url, refusal, withAlerts);
        else if (!isReadableVideo(url, currentVideoFile->reportCache()))
            alertErrorOpening(url, QStringLiteral("Kestrane could not identify this file as a video!!!!!!!!!."), withAlerts);
        else
            editFilesURLsArray.append(url);
    }
    m_editFilesPathsArray.clear();
    for (const QUrl &url : std::as_const(editFilesURLsArray))
        m_editFilesPathsArray << url.toLocalFile();
    emit editFilesPathsArrayChanged();
    currentSelection->editFilesURLsList = editFilesURLsArray;
    selectionController->updateTabs();
    return {};
}

QString MCAppDelegate::testForEditTracksTab(const QUrl &url, bool withAlerts)
{
    const QString meaning = currentVideoFile->whatToDoWithFile(url);
    if (meaning == QStringLiteral("add file")) {
        addTrackAndApplyPresets(url, withAlerts);
    } else if (meaning == QStringLiteral("not a video file")) {
        alertErrorOpening(url, QStringLiteral("Kestrane can't open this file."), withAlerts);
    } else if (meaning == QStringLiteral("replace file")) {
        if (isEditable(url))
            return loadRule(url, withAlerts);
        alertErrorOpening(url, QStringLiteral("Kestrane can only edit the tracks of AVI, MKV and MP4 files."), withAlerts);
    }
    return {};
}

QString MCAppDelegate::loadRule(const QUrl &url, bool withAlerts)
{
    if (isOneOf(m_openingFileMode, {kOpen, kDrag, kWatch})) {
        loadNewFileTracksFrom(url, withAlerts);
        // A file that did not load leaves the earlier one in place: saying
        // "new file added" then would start that earlier file again (a
        // watched folder would convert the previous movie once more).
        if (m_lastLoadAnswer.toLower() != QStringLiteral("ok"))
            return {};
        applyPresets();
        return kNewFileAdded;
    }
    alertErrorOpening(url, QStringLiteral("Kestrane can't add the track from this file."), withAlerts);
    return {};
}

void MCAppDelegate::addTrackAndApplyPresets(const QUrl &url, bool withAlerts)
{
    // A track added without alerts (watch mode, a batch) is ignored.
    if (!withAlerts)
        return;
    addFileTrackFrom(url);
    applyPresets();
}

void MCAppDelegate::alertErrorOpening(const QUrl &url, const QString &text, bool withAlerts) const
{
    if (!withAlerts)
        return;
    MCAlert alert;
    alert.message = QStringLiteral("Error Opening: %1").arg(url.fileName());
    alert.informativeText = text;
    alert.timeoutSeconds = kIntakeAlertSeconds;
    MCAlertCenter::instance().present(alert);
}

void MCAppDelegate::loadNewFileTracksFrom(const QUrl &url, bool withAlerts)
{
    // The old file stays loaded when the new one fails.
    auto candidate = std::make_shared<MCVideoFile>();
    candidate->takeReportFrom(*currentVideoFile);
    m_lastLoadAnswer = candidate->initializeForURL(url);
    const QString answer = m_lastLoadAnswer.toLower();
    if (answer == QStringLiteral("ok")) {
        *currentVideoFile = std::move(*candidate);
        setFileTextField(currentVideoFile->theFilePath);
        currentSelection->initializeFrom(*currentVideoFile);
        selectionController->setEnteredUserWidth(currentSelection->videoTrackWidth);
        selectionController->setEnteredUserVideoBitRate(currentSelection->videoTrackBitRate);
        selectionController->setEnteredUserFPS(currentSelection->videoTrackFPS);
        selectionController->updateTabs();
    } else if (answer == QStringLiteral("track not identified")) {
        alertErrorOpening(url, QStringLiteral("Kestrane could not identify one or more of the tracks in this file."), withAlerts);
    } else if (answer == QStringLiteral("not a video")) {
        alertErrorOpening(url, QStringLiteral("Kestrane could not identify this file as a video!!!!!!!!!."), withAlerts);
    }
}

void MCAppDelegate::addFileTrackFrom(const QUrl &url)
{
    if (currentVideoFile->addTrack(url).toLower() == QStringLiteral("ok")) {
        selectionController->updateTabs();
        return;
    }
    alertErrorOpening(url, QStringLiteral("Kestrane can't add this track to the current video."), true);
}

void MCAppDelegate::applyPresets()
{
    presetsController->applyCurrentPresetSelections();
    presetsController->applyCurrentPresetSettings();
}

// ---------------------------------------------------------------- start

QString MCAppDelegate::saveFolderForCurrentJob() const
{
    const QString preferred = appPreferences ? appPreferences->saveDirectoryURL.toLocalFile() : QString();
    if (!preferred.isEmpty())
        return preferred;
    if (currentTab() == MCWords::tabEditFiles) {
        const QList<QUrl> &files = currentSelection->editFilesURLsList;
        return files.isEmpty() ? QString() : QFileInfo(files.first().toLocalFile()).absolutePath();
    }
    const QString source = currentSelection->videoTrackFileURL.toLocalFile();
    return source.isEmpty() ? QString() : QFileInfo(source).absolutePath();
}

bool MCAppDelegate::checkSaveFolderIsWritable()
{
    const std::optional<MCAlert> refusal = MCSaveFolderCheck::refusal(saveFolderForCurrentJob());
    if (refusal)
        MCAlertCenter::instance().present(*refusal);
    return !refusal;
}

void MCAppDelegate::queueCurrentSelection()
{
    if (queueSelection)
        queueSelection(currentSelection);
}

void MCAppDelegate::markEditTrackSources()
{
    if (currentTab() != MCWords::tabEditTracks || selectionController->editTrackMatrixIndex() != 1)
        return;
    // Adding tracks keeps every track of the source itself.
    for (const MCVideoTrackPtr &track : std::as_const(currentVideoFile->trackList)) {
        if (track->trackFilePath == currentSelection->videoTrackFilePath)
            track->trackSelected = true;
    }
    selectionController->trackTableSelectionChanged();
}

void MCAppDelegate::openFiles(const QString &tab, const QList<QUrl> &urls)
{
    selectionController->setCurrentTab(tab);
    setOpeningFileMode(kOpen);
    openedFileHubForFiles(urls);
}

void MCAppDelegate::addFiles(const QList<QUrl> &urls)
{
    setOpeningFileMode(kAdd);
    for (const QUrl &url : urls)
        openedFileHubForFiles({url});
}

void MCAppDelegate::takeInFilesAfterInspection(const QList<QUrl> &urls, const QString &mode, const std::function<void()> &done)
{
    intakeProbe->inspect(urls, currentVideoFile->reportCache(), [this, urls, mode, done] {
        setOpeningFileMode(mode);
        openedFileHubForFiles(urls);
        if (done)
            done();
    });
}

bool MCAppDelegate::startJob(const QString &jobType)
{
    if (endTextEditing)
        endTextEditing();
    if (!checkSaveFolderIsWritable())
        return false;
    if (jobType == MCWords::jobMkvRemux) {
        queueRemux();
        return true;
    }
    if (currentTab() == MCWords::tabEditFiles) {
        // Join and Split name the AVI jobs; Matroska and MP4 files take their own.
        if (!jobType.isEmpty())
            currentSelection->jobType = MCMkvEditRules::fileEditJobType(jobType, currentSelection->editFilesURLsList);
        queueCurrentSelection();
        return true;
    }
    if (m_openedURLsArray.size() == 1) {
        markEditTrackSources();
        queueCurrentSelection();
        return true;
    }
    if (!m_openedURLsArray.isEmpty())
        startBatch();
    return true;
}

void MCAppDelegate::startBatch()
{
    if (presetsController->settingMethodIndex() == 0 || presetsController->selectionMethodIndex() == 0) {
        MCAlert alert;
        alert.message = QStringLiteral("You must use a preset other than \"Manual\" for both the settings pop up and the track "
                                       "selections pop up to convert the batch of files you dragged to the application.");
        alert.timeoutSeconds = kIntakeAlertSeconds;
        MCAlertCenter::instance().present(alert);
        return;
    }
    // A first file that does not load is skipped like any other; queueing
    // then would convert whatever was loaded before.
    if (testNewFileURL(m_openedURLsArray.first(), true) == kNewFileAdded) {
        markEditTrackSources();
        queueCurrentSelection();
        if (redrawQueueDrawer)
            redrawQueueDrawer();
    } else {
        emit batchFileSkipped(m_openedURLsArray.first(), m_lastLoadAnswer);
    }
    QTimer::singleShot(kBatchDelayMs, this, &MCAppDelegate::finishStartProcess);
}

void MCAppDelegate::finishStartProcess()
{
    // A batch started while another is still taken in joins its end.
    const bool chainRunning = takingInBatch();
    m_batchToTakeIn += m_openedURLsArray.mid(1);
    if (!chainRunning)
        takeInNextBatchFile();
}

// One file at a time: its inspection runs off this thread, beside the job
// already running, and the queue's turn from one job to the next is never
// held up by the files still to come.
void MCAppDelegate::takeInNextBatchFile()
{
    if (m_batchToTakeIn.isEmpty())
        return;
    const QUrl url = m_batchToTakeIn.constFirst();
    intakeProbe->inspect({url}, currentVideoFile->reportCache(), [this, url] {
        if (!m_batchToTakeIn.isEmpty())
            m_batchToTakeIn.removeFirst();
        takeInBatchFile(url);
        takeInNextBatchFile();
    });
}

void MCAppDelegate::takeInBatchFile(const QUrl &url)
{
    m_lastLoadAnswer.clear();
    if (testNewFileURL(url, false) != kNewFileAdded || m_lastLoadAnswer.toLower() != QStringLiteral("ok")) {
        emit batchFileSkipped(url, m_lastLoadAnswer);
        return;
    }
    markEditTrackSources();
    queueCurrentSelection();
    if (redrawQueueDrawer)
        redrawQueueDrawer();
}

// ---------------------------------------------------------------- help menu

void MCAppDelegate::helpMenuItemSelected(const QString &title)
{
    if (title == QStringLiteral("Online Guide") || title == QStringLiteral("Online Troubleshooting")) {
        const QString address = title == QStringLiteral("Online Guide") ? onlineGuideAddress : onlineTroubleshootingAddress;
        if (openWebPage && !address.isEmpty())
            openWebPage(QUrl(address));
    } else if (title == QStringLiteral("Show Tool Tips") || title == QStringLiteral("Hide Tool Tips")) {
        appPreferences->setShowToolTipsFlag(title == QStringLiteral("Show Tool Tips"));
        appPreferences->modifyToolTips();
    } else if (title == QStringLiteral("Save File Info")) {
        saveFileInfo();
    }
}

QStringList MCAppDelegate::saveFileInfo()
{
    QList<QUrl> files;
    if (currentTab() == MCWords::tabEditFiles)
        files = editFilesURLsArray;
    else if (currentVideoFile && !currentVideoFile->theFileURL.isEmpty())
        files << currentVideoFile->theFileURL;
    return MCFileInfoReport().save(files, appPreferences ? appPreferences->saveDirectoryURL.toLocalFile() : QString());
}

// ---------------------------------------------------------------- interrupted jobs

QList<MCJobJournal::Entry> MCAppDelegate::interruptedJobs()
{
    return m_interrupted->find();
}

void MCAppDelegate::runInterruptedJobsAgain(const QList<MCJobJournal::Entry> &jobs)
{
    m_interrupted->runAgain(jobs);
}

void MCAppDelegate::forgetInterruptedJobs(const QList<MCJobJournal::Entry> &jobs)
{
    m_interrupted->forget(jobs);
}

void MCAppDelegate::offerInterruptedJobs()
{
    m_interrupted->offer();
}

// ---------------------------------------------------------------- quit

void MCAppDelegate::stopAndEmptyQueue()
{
    if (!queueController)
        return;
    if (queueController->qJobIsRunning())
        queueController->quitJobAlertClosed(MCAlertFirstButtonReturn);
    while (!queueController->qJobList().isEmpty())
        queueController->deleteJobRow(static_cast<int>(queueController->qJobList().size()) - 1, 0);
}

void MCAppDelegate::applicationShouldTerminate(const std::function<void(bool)> &reply)
{
    if (!queueController || !queueController->qJobIsRunning() || !queueController->currentJob()) {
        reply(true);
        return;
    }
    queueController->pauseCurrentJob();
    MCAlert alert;
    alert.message = QStringLiteral("Videos are still being processed.  Quit anyways?");
    alert.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    alert.style = MCAlert::Style::Warning;
    MCAlertCenter::instance().present(alert, [self = QPointer<MCAppDelegate>(this), reply](int code) {
        if (!self || code != MCAlertFirstButtonReturn) {
            reply(false); // the job stays paused
            return;
        }
        self->stopAndEmptyQueue();
        if (self->createGuiSettingsDictionary)
            self->appPreferences->guiSettingsDictionary = self->createGuiSettingsDictionary();
        self->appPreferences->savePreferencesToDefaults();
        self->appPreferences->savePreferencesToDefaults();
        reply(true);
    });
}
