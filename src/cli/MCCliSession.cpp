#include "MCCliSession.h"

#include "MCAlertCenter.h"
#include "MCAppDelegate.h"
#include "MCCliAlertPresenter.h"
#include "MCCliMkvChoices.h"
#include "MCCliResume.h"
#include "MCDryRun.h"
#include "MCInputFileCheck.h"
#include "MCJob.h"
#include "MCJobWatcher.h"
#include "MCMkvEditRules.h"
#include "MCMp4EditRules.h"
#include "MCPreferences.h"
#include "MCPresetCatalog.h"
#include "MCPresetsController.h"
#include "MCProgressPrinter.h"
#include "MCQueueController.h"
#include "MCSelectionController.h"
#include "MCSignalWatcher.h"
#include "MCTerminalText.h"
#include "MCVideoFile.h"
#include "MCWatchModeController.h"
#include "MCWords.h"

#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

#include <cstdio>

namespace {

const QString kProgram = QStringLiteral("kestrane-cli");
const QString kHeaderRemovalQuestion = QStringLiteral("This video appears to have header removal compression.");

// Long enough for a batch's later files, which the controller takes in
// 0.4 s after the start.
constexpr int kSettleMs = 600;
constexpr int kPollMs = 20;

void printError(const QString &text)
{
    MCTerminalText::print(stderr, text + QLatin1Char('\n'));
}

QString fileNameOf(const QString &path)
{
    return QFileInfo(path).fileName();
}

} // namespace

MCCliSession::MCCliSession(MCCliOptions options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
{
}

MCCliSession::~MCCliSession()
{
    // They follow the controller's queue and print through the printer.
    delete m_watcher;
    delete m_dryRun;
    m_app.reset();
    MCAlertCenter::instance().setPresenter(nullptr);
}

void MCCliSession::fail(const QString &text)
{
    printError(text);
    m_status = 1;
}

void MCCliSession::refuse(const QString &fileName, const QString &why)
{
    printError(QStringLiteral("%1: %2: %3").arg(kProgram, fileName, why));
    m_refused = true;
}

int MCCliSession::run()
{
    if (const int usage = setUp(); usage >= 0)
        return usage;
    auto *signalWatcher = new MCSignalWatcher(this);
    connect(signalWatcher, &MCSignalWatcher::signalled, this, &MCCliSession::interrupted);
    if (m_options.resume)
        return MCCliResume::runAgain(*m_app) > 0 ? finish() : 0;
    if (!m_options.dryRun)
        MCCliResume::tellOfInterruptedJobs(*m_app);

    const QString &command = m_options.command;
    int usage = -1;
    if (command == QStringLiteral("convert"))
        usage = convert();
    else if (command == QStringLiteral("join"))
        usage = join();
    else if (command == QStringLiteral("split"))
        usage = split();
    else if (command == QStringLiteral("extract"))
        usage = extract();
    else if (command == QStringLiteral("remove-tracks"))
        usage = removeTracks();
    else if (command == QStringLiteral("add-audio") || command == QStringLiteral("add-tracks"))
        usage = addTracks();
    else if (command == QStringLiteral("par"))
        usage = par();
    else if (command == QStringLiteral("remux"))
        usage = remux();
    else if (command == QStringLiteral("watch"))
        return watch();
    if (usage >= 0)
        return usage;
    return finish();
}

QString MCCliSession::loadFailureLine(const QString &fileName, const QString &answer)
{
    const QString why = answer.compare(QStringLiteral("track not identified"), Qt::CaseInsensitive) == 0
                            ? QStringLiteral("Kestrane could not identify one or more of the tracks in this file.")
                            : QStringLiteral("Kestrane could not identify this file as a video!!!!!!!!!.");
    return QStringLiteral("Error Opening: %1: %2").arg(fileName, why);
}

int MCCliSession::setUp()
{
    const bool remuxAnswer = m_options.remuxHeaderRemoval == QStringLiteral("yes");
    MCAlertCenter::instance().setPresenter(std::make_shared<MCCliAlertPresenter>([remuxAnswer](const MCAlert &alert) {
        if (alert.message.startsWith(kHeaderRemovalQuestion))
            return remuxAnswer ? MCAlertFirstButtonReturn : MCAlertSecondButtonReturn;
        return MCAlertFirstButtonReturn;
    }));

    m_app = std::make_unique<MCAppDelegate>(m_options.settingsFile);
    m_app->applicationDidFinishLaunching();
    if (!m_options.saveDir.isEmpty()) {
        // For this run only: the preference itself is never saved from here.
        m_app->appPreferences->saveDirectoryURL = QUrl::fromLocalFile(QFileInfo(m_options.saveDir).absoluteFilePath());
    }
    if (m_options.overwrite)
        m_app->queueController->existingResults = MCJob::ExistingResults::Replace;
    m_app->queueSelection = [this](const MCSelectionPtr &selection) { takeSelection(selection); };
    connect(m_app.get(), &MCAppDelegate::batchFileSkipped, this,
            [this](const QUrl &url, const QString &answer) { fail(loadFailureLine(url.fileName(), answer)); });

    m_printer = std::make_unique<MCProgressPrinter>(MCProgressPrinter::modeFor(stdout, m_options.quiet));
    if (m_options.dryRun)
        m_dryRun = new MCDryRun(stdout, this);
    else
        m_watcher = new MCJobWatcher(m_app->queueController, m_printer.get(), this);
    return choosePresets();
}

int MCCliSession::choosePresets()
{
    MCPresetCatalog presets(*m_app->presetsController);
    const auto choose = [&presets](MCPresetCatalog::Kind kind, const QString &name) {
        if (presets.choose(kind, name))
            return true;
        const QString kindName = kind == MCPresetCatalog::Kind::Selection ? QStringLiteral("selection") : QStringLiteral("settings");
        printError(QStringLiteral("%1: unknown %2 preset '%3' (known: %4)")
                       .arg(kProgram, kindName, name, presets.names(kind).join(QStringLiteral(", "))));
        return false;
    };
    QString selection = m_options.selectionPreset;
    if (selection.isEmpty())
        selection = m_options.tracks ? QStringLiteral("Manual") : QStringLiteral("First Track");
    const QString settings = m_options.settingsPreset.isEmpty() ? QStringLiteral("Manual") : m_options.settingsPreset;
    if (!choose(MCPresetCatalog::Kind::Selection, selection) || !choose(MCPresetCatalog::Kind::Settings, settings))
        return 2;
    return -1;
}

// ---------------------------------------------------------------- intake

QList<QUrl> MCCliSession::checkedFiles(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths) {
        if (const QString problem = MCInputFileCheck::problem(path); !problem.isEmpty())
            fail(QStringLiteral("%1: %2: %3").arg(kProgram, path, problem));
        else
            urls << QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    }
    return urls;
}

void MCCliSession::openFiles(const QString &tab, const QList<QUrl> &urls)
{
    m_app->openFiles(tab, urls);
}

bool MCCliSession::loaded(const QUrl &url) const
{
    const MCVideoFile &file = *m_app->currentVideoFile;
    return !file.trackList.isEmpty() && file.theFileURL.toLocalFile() == url.toLocalFile();
}

bool MCCliSession::selectTracks(const QList<int> &positions, const QUrl &url)
{
    const MCTrackList &tracks = m_app->currentVideoFile->trackList;
    for (const int position : positions) {
        if (position > tracks.size()) {
            fail(QStringLiteral("%1: %2: there is no track %3 (the file has %4)").arg(kProgram, url.fileName()).arg(position).arg(tracks.size()));
            return false;
        }
    }
    m_app->selectionController->chooseTracks(positions);
    return true;
}

void MCCliSession::applyExplicitSettings()
{
    MCSelectionController *rules = m_app->selectionController;
    // --to wins over the target of a settings preset.
    if (const QString wanted = m_options.targetTab(); !m_options.target.isEmpty() && rules->currentTab() != wanted)
        rules->setCurrentTab(wanted);
    if (rules->conversionTab(rules->currentTab())) {
        MCCliMkvChoices::apply(m_options, *rules);
        return;
    }
    if (m_options.stereoCopy)
        rules->chooseStereoCopy(true);
    if (!m_options.device.isEmpty())
        rules->setMp4Device(m_options.device);
    if (!m_options.video.isEmpty())
        rules->setVideoMatrixIndex(static_cast<int>(QStringList{QStringLiteral("passthru"), QStringLiteral("mpeg4"), QStringLiteral("mpeg4-2pass")}.indexOf(m_options.video)));
    if (!m_options.bitrate.isEmpty())
        rules->setEnteredUserVideoBitRate(m_options.bitrate);
    if (!m_options.width.isEmpty())
        rules->setEnteredUserWidth(m_options.width);
    if (!m_options.audio.isEmpty())
        rules->setAudioMatrixIndex(static_cast<int>(QStringList{QStringLiteral("passthru"), QStringLiteral("mp3"), QStringLiteral("ac3")}.indexOf(m_options.audio)));
    if (!m_options.audioBitrate.isEmpty())
        m_app->currentSelection->userAudioBitRate = m_options.audioBitrate;
    if (!m_options.subtitles.isEmpty())
        rules->setSubtitleMatrixIndex(m_options.subtitles == QStringLiteral("burn") ? 0 : 1);
    rules->updateTabs();
}

void MCCliSession::takeSelection(const MCSelectionPtr &selection)
{
    // A watched folder's movies converted to AVI are refused alike.
    // A settings preset may make "convert" another job (extracting tracks):
    // only a conversion takes the explicit choices and the conversion check.
    // A tab whose rules refuse the file leaves the job type "none": that is a
    // refused conversion too, and gets the tab's reason.
    const bool conversionType = selection->jobType == MCWords::jobAviConversion || selection->jobType == MCWords::jobMkvConversion
                                || selection->jobType == MCWords::jobMp4Conversion || selection->jobType == QStringLiteral("none");
    const bool converting = conversionType
                            && (m_options.command == QStringLiteral("convert") || m_options.command == QStringLiteral("watch"));
    if (converting) {
        // A file that did not load has had its alert already.
        if (m_app->currentVideoFile->trackList.isEmpty())
            return;
        applyExplicitSettings();
        if (!m_app->selectionController->canConvert) {
            refuse(fileNameOf(selection->videoTrackFilePath), m_app->selectionController->convertRefusalText());
            return;
        }
    }
    if (m_dryRun) {
        m_dryRun->take(selection, *m_app->currentVideoFile);
        ++m_queued;
        return;
    }
    MCQueueController *queue = m_app->queueController;
    const qsizetype before = queue->qJobList().size();
    queue->addToQueue(selection);
    const qsizetype added = queue->qJobList().size() - before;
    if (added <= 0)
        fail(QStringLiteral("%1: %2: nothing to queue for \"%3\"").arg(kProgram, fileNameOf(selection->videoTrackFilePath), selection->jobType));
    m_queued += static_cast<int>(std::max<qsizetype>(added, 0));
}

bool MCCliSession::startAllowed(QString *why) const
{
    MCSelectionController *rules = m_app->selectionController;
    const QString &command = m_options.command;
    if (command == QStringLiteral("join") && !rules->canJoin) {
        *why = QStringLiteral("cannot join: it takes at least two files of one kind: AVI, MKV or MP4");
        return false;
    }
    if (command == QStringLiteral("split") && !rules->canSplit && !m_options.durationSeconds.isEmpty()) {
        *why = QStringLiteral("cannot split: only MKV files are split by duration");
        return false;
    }
    if (command == QStringLiteral("split") && !rules->canSplit) {
        *why = m_options.startTime.isEmpty() ? QStringLiteral("cannot split: size and number of pieces must be whole numbers above 0")
                                             : QStringLiteral("cannot split: the end time must come after the start time");
        return false;
    }
    if (command == QStringLiteral("remove-tracks") && !rules->canEditTracks) {
        *why = QStringLiteral("cannot remove tracks: it takes an MKV or MP4 file, and at least one of its tracks must stay");
        return false;
    }
    if ((command == QStringLiteral("extract") || command == QStringLiteral("add-audio")) && !rules->canEditTracks) {
        *why = command == QStringLiteral("extract") ? QStringLiteral("cannot extract: select at least one track of the file itself")
                                                    : QStringLiteral("cannot add: no audio track was added");
        return false;
    }
    if (command == QStringLiteral("add-tracks") && !rules->canEditTracks) {
        *why = QStringLiteral("cannot add: an MP4 takes added AAC or AC-3 audio and SRT or SUB subtitle files");
        return false;
    }
    if (command == QStringLiteral("par") && !rules->canEditPAR) {
        *why = QStringLiteral("cannot set the pixel aspect ratio: par takes MP4 and M4V files");
        return false;
    }
    return true;
}

void MCCliSession::startIfAllowed(const QUrl &url, const QString &jobType)
{
    QString why;
    if (!startAllowed(&why)) {
        fail(QStringLiteral("%1: %2: %3").arg(kProgram, url.fileName(), why));
        return;
    }
    m_app->startJob(jobType);
}

// ---------------------------------------------------------------- commands

int MCCliSession::convert()
{
    const QList<QUrl> urls = checkedFiles(m_options.files);
    if (urls.isEmpty())
        return -1;
    // The files open where the settings preset works ("Extract Tracks"
    // extracts); opening them elsewhere would cancel the preset. --to names
    // the conversion's tab itself.
    const QString presetTab = MCPresetCatalog(*m_app->presetsController).tabOfChosenSettings();
    if (!m_options.target.isEmpty())
        openFiles(m_options.targetTab(), urls);
    else
        openFiles(presetTab.isEmpty() ? MCWords::tabAvi : presetTab, urls);
    if (urls.size() == 1) {
        if (!loaded(urls.first()))
            return -1;
        if (m_options.tracks && !selectTracks(*m_options.tracks, urls.first()))
            return -1;
    }
    m_app->startJob();
    return -1;
}

int MCCliSession::join()
{
    const QList<QUrl> urls = checkedFiles(m_options.files);
    if (urls.isEmpty())
        return -1;
    openFiles(MCWords::tabEditFiles, urls);
    QString why;
    if (!startAllowed(&why)) {
        fail(QStringLiteral("%1: %2").arg(kProgram, why));
        return -1;
    }
    m_app->startJob(MCWords::jobAviJoining);
    return -1;
}

QList<QUrl> MCCliSession::openForFileEdit()
{
    const QList<QUrl> urls = checkedFiles(m_options.files);
    if (urls.isEmpty())
        return {};
    openFiles(MCWords::tabEditFiles, urls);
    // Files Edit Files refused have had their message.
    return m_app->editFilesURLsArray.isEmpty() ? QList<QUrl>() : urls;
}

int MCCliSession::split()
{
    const QList<QUrl> urls = openForFileEdit();
    if (urls.isEmpty())
        return -1;
    MCSelectionController *rules = m_app->selectionController;
    if (!m_options.startTime.isEmpty()) {
        rules->splitTypeMatrixIndex = 0;
        rules->setSplitStartTime(m_options.startTime);
        rules->setSplitEndTime(m_options.endTime);
    } else if (!m_options.durationSeconds.isEmpty()) {
        rules->splitTypeMatrixIndex = MCMkvEditRules::splitByDurationRow;
        rules->setSplitDuration(MCCliMkvChoices::durationText(m_options.durationSeconds));
    } else {
        rules->splitTypeMatrixIndex = 1;
        rules->setEnteredSplitSize(m_options.sizeMB);
        rules->setEnteredSplitNumber(m_options.pieces);
    }
    rules->updateTabs();
    startIfAllowed(urls.first(), MCWords::jobAviSplitting);
    return -1;
}

int MCCliSession::extract()
{
    return editTracks(0);
}

int MCCliSession::removeTracks()
{
    return editTracks(MCMkvEditRules::removeTracksRow);
}

int MCCliSession::editTracks(int row)
{
    const QList<QUrl> urls = checkedFiles(m_options.files);
    if (urls.isEmpty())
        return -1;
    m_app->selectionController->setCurrentTab(MCWords::tabEditTracks);
    m_app->selectionController->setEditTrackMatrixIndex(row);
    openFiles(MCWords::tabEditTracks, urls);
    if (!loaded(urls.first()))
        return -1;
    if (m_options.tracks && !selectTracks(*m_options.tracks, urls.first()))
        return -1;
    m_app->selectionController->updateTabs();
    startIfAllowed(urls.first(), QString());
    return -1;
}

int MCCliSession::par()
{
    const QList<QUrl> urls = openForFileEdit();
    if (urls.isEmpty())
        return -1;
    MCSelectionController *rules = m_app->selectionController;
    rules->setEnteredParWidth(m_options.parWidth);
    rules->setEnteredParHeight(m_options.parHeight);
    rules->updateTabs();
    startIfAllowed(urls.first(), MCWords::jobParEditing);
    return -1;
}

int MCCliSession::addTracks()
{
    const QList<QUrl> video = checkedFiles(m_options.files.mid(0, 1));
    if (video.isEmpty())
        return -1;
    // Each container has its own command, so the files given are checked
    // against the right job's rules.
    const bool intoMp4 = m_options.command == QStringLiteral("add-tracks");
    if (intoMp4 != MCMp4EditRules::isMp4(video.first().toLocalFile())) {
        fail(QStringLiteral("%1: %2: %3").arg(kProgram, video.first().fileName(),
                                              intoMp4 ? QStringLiteral("add-tracks takes an MP4 or M4V file (add-audio an AVI file)")
                                                      : QStringLiteral("add-audio takes an AVI file (add-tracks an MP4 or M4V file)")));
        return -1;
    }
    m_app->selectionController->setCurrentTab(MCWords::tabEditTracks);
    m_app->selectionController->setEditTrackMatrixIndex(1);
    openFiles(MCWords::tabEditTracks, video);
    if (!loaded(video.first()))
        return -1;
    const MCVideoFile &file = *m_app->currentVideoFile;
    for (const QUrl &audio : checkedFiles(m_options.files.mid(1))) {
        const qsizetype before = file.trackList.size();
        m_app->addFiles({audio});
        if (file.trackList.size() == before)
            m_status = 1; // its alert said why
    }
    QList<int> added;
    for (qsizetype i = 0; i < file.trackList.size(); ++i) {
        const MCVideoTrack &track = *file.trackList.at(i);
        if (track.externalTrackFlag && (track.trackType == MCWords::trackAudio || intoMp4))
            added << static_cast<int>(i + 1);
    }
    m_app->selectionController->chooseTracks(added);
    startIfAllowed(video.first(), QString());
    return -1;
}

int MCCliSession::remux()
{
    const QList<QUrl> urls = checkedFiles(m_options.files);
    if (urls.isEmpty())
        return -1;
    if (QFileInfo(urls.first().toLocalFile()).suffix().toLower() != QStringLiteral("mkv")) {
        fail(QStringLiteral("%1: %2: remux takes a Matroska (.mkv) file").arg(kProgram, urls.first().fileName()));
        return -1;
    }
    // The offer made at loading is declined: the remux is queued once, below.
    openFiles(MCWords::tabAvi, urls);
    if (!loaded(urls.first()))
        return -1;
    if (!m_app->startJob(MCWords::jobMkvRemux))
        m_status = 1;
    return -1;
}

// ---------------------------------------------------------------- the run

void MCCliSession::interrupted(int signalNumber)
{
    if (m_signal != 0)
        return;
    m_signal = signalNumber;
    m_jobCutShort = m_app->queueController->qJobIsRunning();
    if (m_app->watchModeController->isScanning())
        m_app->watchModeController->endWatchMode();
    if (m_watcher)
        m_watcher->stopAll([this] { m_app->stopAndEmptyQueue(); });
}

int MCCliSession::finish()
{
    bool settled = false;
    QEventLoop loop;
    QTimer::singleShot(kSettleMs, &loop, [&settled] { settled = true; });
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        if (m_signal != 0 || (settled && !m_app->takingInBatch() && (m_dryRun || m_watcher->queueIsIdle())))
            loop.quit();
    });
    poll.start(kPollMs);
    loop.exec();
    if (m_signal != 0)
        return 128 + m_signal;
    if (m_dryRun && !m_dryRun->run())
        m_status = 1;
    if (m_watcher && m_watcher->failedCount() > 0)
        m_status = 1;
    if (m_queued == 0)
        m_status = 1;
    // A refused choice is a usage error, whatever happened to other files.
    return m_refused ? 2 : m_status;
}

// ---------------------------------------------------------------- watch

int MCCliSession::watch()
{
    const QString folder = QFileInfo(m_options.files.first()).absoluteFilePath();
    MCWatchModeController *watchMode = m_app->watchModeController;
    // For this run only, like --save-dir: the preference is not saved.
    m_app->appPreferences->watchFolderURL = QUrl::fromLocalFile(folder);
    watchMode->startWatchMode(true);
    if (!watchMode->isScanning()) {
        printError(QStringLiteral("%1: %2: %3").arg(kProgram, m_options.files.first(), MCWatchModeController::invalidFolderMessage));
        return 1;
    }
    connect(watchMode, &MCWatchModeController::moviesTakenUp, this, [this](const QList<QUrl> &files) {
        for (const QUrl &file : files)
            m_printer->note(QStringLiteral("New movie: %1").arg(file.toLocalFile()));
    });
    connect(watchMode, &MCWatchModeController::movieGivenUp, this, [this](const QUrl &file, const QString &reason) {
        fail(QStringLiteral("%1: %2: not converted after %3 attempts: %4")
                 .arg(kProgram, file.toLocalFile()).arg(MCWatchModeFollowUp::maxAttempts).arg(reason));
    });
    m_printer->note(QStringLiteral("Watching %1 (Ctrl-C to stop)").arg(folder));

    QEventLoop loop;
    QTimer poll;
    connect(&poll, &QTimer::timeout, &loop, [&] {
        if (m_signal != 0 && m_watcher->queueIsIdle())
            loop.quit();
    });
    poll.start(kPollMs);
    loop.exec();
    if (m_jobCutShort)
        return 128 + m_signal;
    return (m_watcher->failedCount() > 0 || m_refused) ? 1 : 0;
}
