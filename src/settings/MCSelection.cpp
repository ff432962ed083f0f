#include "MCSelection.h"

#include "MCLog.h"
#include "MCVideoFile.h"
#include "MCWords.h"

#include <QFileInfo>
#include <QHash>

namespace {

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

// Integer reading of a short piece as the time fields have always done it:
// leading blanks, an optional sign, then digits; anything else reads 0.
int leadingInteger(const QString &piece)
{
    qsizetype at = 0;
    while (at < piece.size() && piece.at(at).isSpace())
        ++at;
    int sign = 1;
    if (at < piece.size() && (piece.at(at) == QLatin1Char('-') || piece.at(at) == QLatin1Char('+'))) {
        sign = piece.at(at) == QLatin1Char('-') ? -1 : 1;
        ++at;
    }
    int value = 0;
    for (; at < piece.size(); ++at) {
        const QChar c = piece.at(at);
        if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            break;
        value = value * 10 + (c.unicode() - '0');
    }
    return sign * value;
}

bool isAbsent(const std::optional<QString> &text)
{
    return !text.has_value() || text->isNull();
}

} // namespace

MCSelection::MCSelection()
    : mp4Muxer(QStringLiteral("mp4box"))
    , currentEncoder(QStringLiteral("ffmpeg"))
{
}

MCSelection::MCSelection(const MCSelection &other)
    : MCSelection()
{
    editFilesURLsList = other.editFilesURLsList;
    trackList = other.trackList;
    keepTracksList = other.keepTracksList;
    addedAudioTrackList = other.addedAudioTrackList;
    videoTrackFilePath = other.videoTrackFilePath;
    videoTrackFileURL = other.videoTrackFileURL;
    videoTrackFileName = other.videoTrackFileName;
    videoTrackFileShortName = other.videoTrackFileShortName;
    videoTrackFileExtension = other.videoTrackFileExtension;
    videoTrackCodec = other.videoTrackCodec;
    videoTrackFPS = other.videoTrackFPS;
    videoTrackWidth = other.videoTrackWidth;
    videoTrackHeight = other.videoTrackHeight;
    videoTrackBitRate = other.videoTrackBitRate;
    videoTrackPAR = other.videoTrackPAR;
    videoTrackProfile = other.videoTrackProfile;
    headerRemovalFlag = other.headerRemovalFlag;
    jobType = other.jobType;
    jobStatus = other.jobStatus;
    theDevice = other.theDevice;
    userVideoBitRate = other.userVideoBitRate;
    userAudioBitRate = other.userAudioBitRate;
    userFPS = other.userFPS;
    userHeight = other.userHeight;
    userWidth = other.userWidth;
    userPassNumber = other.userPassNumber;
    userParWidth = other.userParWidth;
    userParHeight = other.userParHeight;
    splitType = other.splitType;
    splitSize = other.splitSize;
    splitNumber = other.splitNumber;
    splitStartTimeText = other.splitStartTimeText;
    splitEndTimeText = other.splitEndTimeText;
    splitStartTimeSeconds = other.splitStartTimeSeconds;
    splitEndTimeSeconds = other.splitEndTimeSeconds;
    splitDurationText = other.splitDurationText;
    splitDurationSeconds = other.splitDurationSeconds;
    vidCount = other.vidCount;
    audCount = other.audCount;
    subCount = other.subCount;
}

std::shared_ptr<MCSelection> MCSelection::copy() const
{
    auto copied = std::make_shared<MCSelection>(*this);
    QHash<const MCVideoTrack *, MCVideoTrackPtr> clones;
    const auto cloneAll = [&clones](MCTrackList &tracks) {
        for (MCVideoTrackPtr &track : tracks) {
            if (!track)
                continue;
            MCVideoTrackPtr &clone = clones[track.get()];
            if (!clone)
                clone = std::make_shared<MCVideoTrack>(*track);
            track = clone;
        }
    };
    cloneAll(copied->trackList);
    cloneAll(copied->addedAudioTrackList);
    cloneAll(copied->keepTracksList);
    return copied;
}

void MCSelection::initialize()
{
    setDefaultSelectionProperties();
}

void MCSelection::setDefaultSelectionProperties()
{
    const QString none = QStringLiteral("none");
    const QString zero = QStringLiteral("0");
    const QString zeroTime = QStringLiteral("00:00:00");

    videoTrackFilePath = none;
    videoTrackFileURL = QUrl::fromLocalFile(QString());
    videoTrackFileName = none;
    videoTrackFileShortName = none;
    videoTrackFileExtension = none;
    videoTrackCodec = none;
    videoTrackFPS = zero;
    videoTrackWidth = zero;
    videoTrackHeight = zero;
    videoTrackBitRate = zero;
    videoTrackPAR = zero;
    videoTrackProfile = none;
    headerRemovalFlag = false;
    jobType = none;
    jobStatus = QStringLiteral("Queued");
    theDevice = none;
    userVideoBitRate = zero;
    userAudioBitRate = zero;
    userFPS = QStringLiteral("29.97");
    userHeight = zero;
    // Empty rather than "0": the rules treat an empty width as "not chosen".
    userWidth = QLatin1String("");
    userPassNumber = zero;
    userParWidth = zero;
    userParHeight = zero;
    splitType = none;
    splitSize = zero;
    splitNumber = zero;
    splitStartTimeText = zeroTime;
    splitEndTimeText = zeroTime;
    splitDurationText = zeroTime;
    splitStartTimeSeconds = zero;
    splitEndTimeSeconds = zero;
    splitDurationSeconds = zero;
}

void MCSelection::initializeFrom(const MCVideoFile &file)
{
    videoTrackFilePath = file.theFilePath;
    videoTrackFileURL = file.theFileURL;
    videoTrackFileName = file.theFileName;
    videoTrackFileShortName = file.theFileShortName;
    videoTrackFileExtension = file.theFileExtension;

    videoTrackCodec = file.theVideoCodec;
    videoTrackFPS = file.theFPS;
    videoTrackWidth = file.theWidth;
    videoTrackHeight = file.theHeight;
    videoTrackBitRate = file.theVideoBitRate;
    videoTrackPAR = file.videoPAR;
    videoTrackProfile = file.codecProfile;
    headerRemovalFlag = file.headerRemovalFlag;

    // The user starts from the source's own numbers (the height is left alone).
    userVideoBitRate = file.theVideoBitRate;
    userFPS = file.theFPS;
    userWidth = file.theWidth;

    vidCount = QStringLiteral("0");
    audCount = QStringLiteral("0");
    subCount = QStringLiteral("0");
    addedAudioTrackList = MCTrackList();
}

void MCSelection::addAnyStereoTracks()
{
    MCTrackList added;
    for (const MCVideoTrackPtr &source : std::as_const(trackList)) {
        if (!source || source->trackType != QLatin1String("Audio") || !source->createStereoCopyFlag)
            continue;
        auto stereo = std::make_shared<MCVideoTrack>();
        stereo->trackSelected = source->trackSelected;
        stereo->trackType = source->trackType;
        stereo->trackMp4boxID = source->trackMp4boxID;
        stereo->trackMencoderID = source->trackMencoderID;
        stereo->trackIndex = source->trackIndex;
        stereo->trackFfmpegID = source->trackFfmpegID;
        stereo->trackLanguage = source->trackLanguage;
        stereo->trackExtension = source->trackExtension;
        // The source's channel count stays: the down-mix is asked for
        // through userNumberOfChannels alone.
        stereo->trackNumberOfChannels = source->trackNumberOfChannels;
        stereo->trackMkvmergeID = source->trackMkvmergeID;
        stereo->trackDefaultFlag = source->trackDefaultFlag;
        stereo->trackForcedFlag = source->trackForcedFlag;
        stereo->trackFileURL = source->trackFileURL;
        stereo->trackFilePath = source->trackFilePath;
        stereo->trackFileName = source->trackFileName;
        stereo->trackFileExtension = source->trackFileExtension;
        stereo->externalTrackFlag = source->externalTrackFlag;
        stereo->wasReEncoded = source->wasReEncoded;
        stereo->selectedAudioTrackIndex = source->selectedAudioTrackIndex;

        stereo->trackTitle = QStringLiteral("Added Stereo Track");
        stereo->trackCodec = QStringLiteral("aac");
        stereo->userCodec = QStringLiteral("aac");
        stereo->userNumberOfChannels = QStringLiteral("2");
        stereo->userBitRate = QStringLiteral("160");
        stereo->isStereoCopyFlag = true;
        stereo->createStereoCopyFlag = false;
        added.append(stereo);
    }
    addedAudioTrackList = added;
}

QString MCSelection::secondsForTimeText(const QString &text)
{
    // mid() answers an empty piece past the end, so a short text reads as 0.
    const int hours = leadingInteger(text.mid(0, 2));
    const int minutes = leadingInteger(text.mid(3, 2));
    const int seconds = leadingInteger(text.mid(6, 2));
    return QString::number(hours * 3600 + minutes * 60 + seconds);
}

void MCSelection::initializeSplitForStartTime(const std::optional<QString> &start,
                                              const std::optional<QString> &end)
{
    if (!isAbsent(start)) {
        splitStartTimeText = *start;
        splitStartTimeSeconds = secondsForTimeText(*start);
    }
    if (!isAbsent(end)) {
        splitEndTimeText = *end;
        splitEndTimeSeconds = secondsForTimeText(*end);
    }
}

void MCSelection::initializeSplitDurationForTimeText(const QString &text)
{
    splitDurationText = text;
    splitDurationSeconds = secondsForTimeText(text);
}

QList<std::pair<QString, QString>> MCSelection::selectionPropertyPairs() const
{
    return {
        {QStringLiteral("videoTrackFilePath"), videoTrackFilePath},
        {QStringLiteral("videoTrackFileName"), videoTrackFileName},
        {QStringLiteral("videoTrackFileShortName"), videoTrackFileShortName},
        {QStringLiteral("videoTrackFileExtension"), videoTrackFileExtension},
        {QStringLiteral("videoTrackCodec"), videoTrackCodec},
        {QStringLiteral("videoTrackFPS"), videoTrackFPS},
        {QStringLiteral("videoTrackWidth"), videoTrackWidth},
        {QStringLiteral("videoTrackHeight"), videoTrackHeight},
        {QStringLiteral("videoTrackBitRate"), videoTrackBitRate},
        {QStringLiteral("videoTrackPAR"), videoTrackPAR},
        {QStringLiteral("videoTrackProfile"), videoTrackProfile},
        {QStringLiteral("headerRemovalFlag"), flagText(headerRemovalFlag)},
        {QStringLiteral("jobType"), jobType},
        {QStringLiteral("theDevice"), theDevice},
        {QStringLiteral("userVideoBitRate"), userVideoBitRate},
        {QStringLiteral("userAudioBitRate"), userAudioBitRate},
        {QStringLiteral("userFPS"), userFPS},
        {QStringLiteral("userHeight"), userHeight},
        {QStringLiteral("userWidth"), userWidth},
        {QStringLiteral("userPassNumber"), userPassNumber},
        {QStringLiteral("splitType"), splitType},
        {QStringLiteral("splitSize"), splitSize},
        {QStringLiteral("splitNumber"), splitNumber},
        {QStringLiteral("splitStartTimeText"), splitStartTimeText},
        {QStringLiteral("splitEndTimeText"), splitEndTimeText},
        {QStringLiteral("splitStartTimeSeconds"), splitStartTimeSeconds},
        {QStringLiteral("splitEndTimeSeconds"), splitEndTimeSeconds},
        {QStringLiteral("splitDurationText"), splitDurationText},
        {QStringLiteral("splitDurationSeconds"), splitDurationSeconds},
    };
}

namespace {

template <typename DumpTrack>
void logSelection(const MCSelection &selection, DumpTrack dumpTrack)
{
    MCLog::line(QStringLiteral(
        "#############################  NEW SELECTION PROPERTIES  ################################"));
    for (const auto &[name, value] : selection.selectionPropertyPairs())
        MCLog::line(QStringLiteral("%1 = %2").arg(name, value));

    // One running count over both lists: the first added track follows the
    // last selected one.
    int number = 0;
    for (const MCVideoTrackPtr &track : selection.trackList) {
        MCLog::line(QStringLiteral(
            "############################# TRACK #%1 PROPERTIES  ################################")
                        .arg(++number));
        if (track)
            dumpTrack(*track);
    }
    for (const MCVideoTrackPtr &track : selection.addedAudioTrackList) {
        MCLog::line(QStringLiteral("############################# ADDED AUDIO TRACK #%1 PROPERTIES  "
                                   "################################")
                        .arg(++number));
        if (track)
            dumpTrack(*track);
    }
}

} // namespace

void MCSelection::logSelectionProperties() const
{
    logSelection(*this, [](const MCVideoTrack &track) { track.logTrackProperties(); });
}

void MCSelection::logSelectionMuxingProperties() const
{
    logSelection(*this, [](const MCVideoTrack &track) { track.logMuxingTrackProperties(); });
}

bool MCSelection::editsFiles() const
{
    return !editFilesURLsList.isEmpty()
           && (jobType.endsWith(QStringLiteral(" Joining")) || jobType.endsWith(QStringLiteral(" Splitting"))
               || jobType == MCWords::jobParEditing);
}

QStringList MCSelection::sourcePaths() const
{
    QStringList paths{videoTrackFileURL.toLocalFile(), videoTrackFilePath};
    for (const QUrl &url : editFilesURLsList)
        paths << url.toLocalFile();
    for (const MCTrackList &list : {trackList, addedAudioTrackList, keepTracksList}) {
        for (const MCVideoTrackPtr &track : list) {
            if (track)
                paths << track->trackFileURL.toLocalFile() << track->trackFilePath;
        }
    }
    for (QString &path : paths)
        path = QFileInfo(path).absoluteFilePath();
    return paths;
}

void MCSelection::takeSelectedTracks(const MCTrackList &fileTracks)
{
    trackList.clear();
    keepTracksList.clear();
    int videos = 0;
    int audios = 0;
    int subtitles = 0;
    for (const MCVideoTrackPtr &track : fileTracks) {
        if (!track->trackSelected) {
            keepTracksList.append(track);
            continue;
        }
        trackList.append(track);
        videos += track->trackType == MCWords::trackVideo;
        audios += track->trackType == MCWords::trackAudio;
        subtitles += track->trackType == MCWords::trackSubtitle || track->trackType == QStringLiteral("External Subtitle");
    }
    vidCount = QString::number(videos);
    audCount = QString::number(audios);
    subCount = QString::number(subtitles);
    addAnyStereoTracks();
    int audioNumber = 0;
    for (const MCVideoTrackPtr &track : std::as_const(trackList)) {
        if (track->trackType == MCWords::trackAudio)
            track->selectedAudioTrackIndex = QString::number(audioNumber++);
    }
}
