#include "MCConvertToMp4Job.h"

#include "MCJobFactory.h"
#include "MCMkvExtractor.h"
#include "MCMp4Muxer.h"
#include "MCMp4TabRules.h"
#include "MCProfileEditor.h"
#include "MCSubtitleConverter.h"
#include "MCTrackDumper.h"

#include <QDir>
#include <QFileInfo>
#include <QTimer>

namespace {

constexpr int kPhaseDelayMs = 100;

const QString kPassthru = QStringLiteral("passthru");
const QString kMux = QStringLiteral("mux");

bool isSubtitle(const MCVideoTrack &track)
{
    return track.trackType == QStringLiteral("Subtitle") || track.trackType == QStringLiteral("External Subtitle");
}

bool isMp4Container(const QString &extension)
{
    return extension == QStringLiteral("mp4") || extension == QStringLiteral("m4v");
}

QString extensionOf(const QUrl &file)
{
    return QFileInfo(file.toLocalFile()).suffix().toLower();
}

} // namespace

MCConvertToMp4Job::MCConvertToMp4Job(QObject *parent)
    : MCConversionJob(parent)
{
    keepsOnlyLogs = true;
}

void MCConvertToMp4Job::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCConvertToMp4Job"),
                                             [](QObject *parent) { return new MCConvertToMp4Job(parent); });
}

QString MCConvertToMp4Job::conversionRefusal(const MCSelection &selection)
{
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track->userCodec.toLower() == kPassthru) {
            if (const QString refusal = MCMp4TabRules::dumpRefusal(*track); !refusal.isEmpty())
                return refusal;
        }
        if (track->trackType != QStringLiteral("Audio"))
            continue;
        const QString codec = (track->userCodec.toLower() == kPassthru ? track->trackCodec : track->userCodec).toLower();
        if (codec != QStringLiteral("aac") && codec != QStringLiteral("ac3")) {
            const QString name = track->trackTitle == QStringLiteral("none") ? track->trackLanguage : track->trackTitle;
            return QStringLiteral("The audio track \"%1\" (%2) cannot be copied into an MP4 file; convert it to AAC or AC-3.")
                .arg(name, track->trackCodec);
        }
    }
    return {};
}

void MCConvertToMp4Job::startJob()
{
    if (startTrackSteps(conversionRefusal(*jobSelection), [this](int i) { return stepForTrack(i); }))
        QTimer::singleShot(kPhaseDelayMs, this, &MCConvertToMp4Job::monitorStartJob);
}

MCConverterPtr MCConvertToMp4Job::stepForTrack(int i)
{
    const MCVideoTrackPtr &track = theTracks.at(i);
    const QString codec = track->userCodec.toLower();
    const QString container = track->trackFileExtension.toLower();
    const bool video = track->trackType == QStringLiteral("Video");
    const bool audio = track->trackType == QStringLiteral("Audio");
    if (isSubtitle(*track)) {
        if (codec == kMux && track->trackType == QStringLiteral("Subtitle") && container == QStringLiteral("mkv")) {
            track->convertSubFlag = track->trackCodec != QStringLiteral("srt");
            auto step = std::make_shared<MCMkvExtractor>();
            step->inititializeForTrack(i, QStringLiteral("Extracting Subtitle"), false);
            return step;
        }
        track->convertSubFlag = codec == kMux && track->trackCodec != QStringLiteral("srt");
        return nullptr;
    }
    if (!video && !audio)
        return nullptr;
    const QString kind = video ? QStringLiteral("Video") : QStringLiteral("Audio");
    if (codec != kPassthru)
        return encodingStepFor(i);
    MCConverterPtr step;
    const QStringList usable = video ? QStringList{QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("h264")}
                                     : QStringList{QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("aac"),
                                                   QStringLiteral("ac3")};
    if (usable.contains(container))
        return nullptr;
    if (container == QStringLiteral("mkv")) {
        step = std::make_shared<MCMkvExtractor>();
        step->inititializeForTrack(i, QStringLiteral("Extracting %1").arg(kind), false);
    } else {
        step = std::make_shared<MCTrackDumper>();
        step->inititializeForTrack(i, QStringLiteral("Dumping %1").arg(kind), false);
    }
    return step;
}

void MCConvertToMp4Job::monitorStartJob()
{
    addMonitorLoop(MCMonitorPolicy::start(), [this] { processNewTracks(); });
}

bool MCConvertToMp4Job::copiesH264Video() const
{
    if (theTracks.isEmpty())
        return false;
    const MCVideoTrack &first = *theTracks.first();
    return first.trackType == QStringLiteral("Video") && first.userCodec.toLower() == kPassthru
           && first.trackCodec.toLower() == QStringLiteral("h264");
}

void MCConvertToMp4Job::runOffMainThread(std::function<void(QStringList *)> work, std::function<void()> next)
{
    if (jobIsCancelled())
        return;
    monitorQueue.start([this, work = std::move(work), next = std::move(next)] {
        auto made = std::make_shared<QStringList>();
        work(made.get());
        QMetaObject::invokeMethod(
            this,
            [this, made, next] {
                if (jobIsCancelled())
                    return;
                tempFilesToDeleteList << *made;
                next();
            },
            Qt::QueuedConnection);
    });
}

void MCConvertToMp4Job::processNewTracks()
{
    // The copied stream and the converted subtitles are Kestrane's own files.
    if (!MCConverter::isRecordingCommands() && !ensureStaging()) {
        refuseToStart(failureReason());
        return;
    }
    runOffMainThread(
        [this](QStringList *made) {
            if (copiesH264Video())
                patchCopiedStream(made);
            convertSubtitles(made);
        },
        [this] { QTimer::singleShot(kPhaseDelayMs, this, &MCConvertToMp4Job::muxStep); });
}

void MCConvertToMp4Job::patchCopiedStream(QStringList *newTempFiles)
{
    const MCVideoTrackPtr &video = theTracks.first();
    const QString stream = video->muxingTrackFileURL.toLocalFile();
    // A track inside the user's MP4 is patched in the muxed result instead.
    if (isMp4Container(extensionOf(video->muxingTrackFileURL)))
        return;
    if (jobSelection->sourcePaths().contains(QFileInfo(stream).absoluteFilePath())) {
        // The user's own stream is never written: the copy is patched.
        const QString copy = QDir(stagingFolderPath()).filePath(QFileInfo(stream).fileName());
        if (!QFile::copy(stream, copy))
            return;
        newTempFiles->append(copy);
        video->muxingTrackFileURL = QUrl::fromLocalFile(copy);
    }
    MCProfileEditor editor;
    editor.editProfileLevelForURL(video->muxingTrackFileURL, jobSelection);
}

void MCConvertToMp4Job::convertSubtitles(QStringList *newTempFiles)
{
    for (const MCVideoTrackPtr &track : std::as_const(theTracks)) {
        if (track->userCodec.toLower() != kMux)
            continue;
        const QString extension = track->muxingTrackFileExtension.toLower();
        QUrl converted;
        if (extension == QStringLiteral("ass") || extension == QStringLiteral("ssa")) {
            MCSubtitleConverter converter;
            converted = converter.convertSubtitleForURL(track->muxingTrackFileURL, jobSelection, stagingFolderPath());
            if (!converter.tempFileToDeleteURL.isEmpty())
                newTempFiles->append(converter.tempFileToDeleteURL.toLocalFile());
        } else if (extension == QStringLiteral("srt")) {
            converted = MCSubtitleConverter().checkAndFixSrt(track->muxingTrackFileURL);
        }
        if (!converted.isEmpty()) {
            track->muxingTrackFileURL = converted;
            track->muxingTrackFileExtension = extensionOf(converted);
        }
    }
}

void MCConvertToMp4Job::muxStep()
{
    m_muxer = std::make_shared<MCMp4Muxer>();
    m_muxer->inititializeForTrack(0, QStringLiteral("Muxing Tracks"), true);
    m_muxer->expectedResult = MCResultExpectation::holding(theTracks, jobSelection->videoTrackFileURL.toLocalFile());
    setStepConverterList({m_muxer});
    setStepPIDList({});
    setProgressList({});
    startStep(m_muxer, true);
    resetMonitorCounters();
    QTimer::singleShot(kPhaseDelayMs, this, &MCConvertToMp4Job::monitorMuxStep);
}

void MCConvertToMp4Job::monitorMuxStep()
{
    addMonitorLoop(MCMonitorPolicy::muxSteps(), [this] { processNewMuxedFile(); });
}

void MCConvertToMp4Job::processNewMuxedFile()
{
    // The last loop finds the muxer done, checks its result and puts it in place.
    const auto finish = [this] { addMonitorLoop(MCMonitorPolicy::muxSteps()); };
    if (!copiesH264Video()) {
        finish();
        return;
    }
    runOffMainThread(
        [this](QStringList *) {
            MCProfileEditor editor;
            editor.editProfileLevelForURL(m_muxer->outputFileURL, jobSelection);
        },
        finish);
}
