#include "MCVideoFile.h"

#include "MCCodecTables.h"
#include "MCLog.h"
#include "MCMediaInfoReport.h"
#include "MCTrackListParser.h"

#include <QFileInfo>

#include <algorithm>
#include <future>

using MCMediaInfoReport::SectionKind;

namespace {

const QString kNone = QStringLiteral("none");
const QString kZero = QStringLiteral("0");

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

// Only readable, non-empty regular files are given to mediainfo: given a
// folder it reports every file inside as if they were one, and a pipe or a
// device would keep it reading for ever.
bool isInspectable(const QUrl &url)
{
    const QString path = url.toLocalFile();
    if (path.isEmpty())
        return false;
    const QFileInfo info(path);
    return info.isFile() && info.isReadable() && info.size() > 0;
}

bool isMatroska(const QUrl &url)
{
    return QFileInfo(url.toLocalFile()).suffix().toLower().startsWith(QStringLiteral("mkv"));
}

QString folderOfPath(const QString &path, const QString &fileName)
{
    const qsizetype at = fileName.isEmpty() ? -1 : path.indexOf(fileName);
    return at < 0 ? path : path.left(at);
}

QString shortNameOf(const QString &fileName, const QString &lowerExtension)
{
    const qsizetype at = fileName.indexOf(QLatin1Char('.') + lowerExtension);
    return at < 0 ? fileName : fileName.left(at);
}

struct HeaderCounts
{
    int video = 0;
    int audio = 0;
    int text = 0;

    void add(SectionKind kind)
    {
        if (kind == SectionKind::Video)
            ++video;
        else if (kind == SectionKind::Audio)
            ++audio;
        else if (kind == SectionKind::Text)
            ++text;
    }
    int total() const { return video + audio + text; }
};

bool isRawDecimal(QStringView value)
{
    bool ok = false;
    [[maybe_unused]] const double number = value.trimmed().toDouble(&ok);
    return ok;
}

} // namespace

MCVideoFile::MCVideoFile()
{
    initialize();
}

void MCVideoFile::initialize()
{
    const QString resources = resourceFolderPath();
    mediainfoURL = QUrl::fromLocalFile(resources + QStringLiteral("/mediainfo"));
    mkvinfoURL = QUrl::fromLocalFile(resources + QStringLiteral("/mkvinfo"));
    setFileDefaultPropertyValues();
    const MCCodecTable video = MCCodecTables::video();
    videoCodecList = video.codecList;
    videoInfoList = video.infoList;
    videoExtList = video.extList;
    const MCCodecTable audio = MCCodecTables::audio();
    audioCodecList = audio.codecList;
    audioInfoList = audio.infoList;
    audioExtList = audio.extList;
    const MCCodecTable subtitle = MCCodecTables::subtitle();
    subtitleCodecList = subtitle.codecList;
    subtitleInfoList = subtitle.infoList;
    subtitleExtList = subtitle.extList;
}

void MCVideoFile::setFileDefaultPropertyValues()
{
    theFilePath = kNone;
    theFileURL = QUrl::fromLocalFile(QString());
    theFileName = kNone;
    theFileExtension = kNone;
    theFileShortName = kNone;
    pathToFileFolder = kNone;
    addedFilePath = kNone;
    addedFileName = kNone;
    addedFileExtension = kNone;
    addedPathToFileFolder = kNone;
    trackList.clear();
    theNumberOfVideoTracks = kZero;
    theNumberOfAudioTracks = kZero;
    theNumberOfSubTracks = kZero;
    isVideoFile = false;
    theDuration = kZero;
    theFPS = kZero;
    videoPAR = kZero;
    theWidth = kZero;
    theHeight = kZero;
    codecProfile = kNone;
    theVideoBitRate = kZero;
    theVideoCodec = kNone;
    headerRemovalFlag = false;
}

const QStringList &MCVideoFile::subtitleFileExtensions()
{
    static const QStringList extensions{QStringLiteral("ssa"), QStringLiteral("ass"), QStringLiteral("srt"),
                                        QStringLiteral("sub")};
    return extensions;
}

QStringList MCVideoFile::mediaInfoReportFor(const QUrl &url) const
{
    if (!isInspectable(url))
        return {};
    const QString path = url.toLocalFile();
    if (const std::optional<QStringList> kept = m_reports->report(path))
        return *kept;
    const QString report = doShellScriptFor(mediainfoURL, {QStringLiteral("-f"), url}, toolTimeLimitMs);
    const QStringList lines = report.isEmpty() ? QStringList() : MCMediaInfoReport::lines(report);
    // A failed run is tried again next time.
    if (!lines.isEmpty())
        m_reports->storeReport(path, lines);
    return lines;
}

void MCVideoFile::setNameFieldsFor(const QUrl &url)
{
    const QFileInfo info(url.toLocalFile());
    theFilePath = url.toLocalFile();
    theFileURL = url;
    theFileName = info.fileName();
    theFileExtension = info.suffix().toLower();
    pathToFileFolder = folderOfPath(theFilePath, theFileName);
    theFileShortName = shortNameOf(theFileName, theFileExtension);
}

QString MCVideoFile::quickInitializeForURL(const QUrl &url)
{
    const QStringList lines = mediaInfoReportFor(url);
    if (lines.isEmpty())
        return QStringLiteral("error");
    const auto videoLines = std::count_if(lines.cbegin(), lines.cend(), [](const QString &line) {
        return line.compare(QStringLiteral("Video"), Qt::CaseInsensitive) == 0;
    });
    if (videoLines < 1)
        return QStringLiteral("error");
    setNameFieldsFor(url);
    return QStringLiteral("OK");
}

QString MCVideoFile::initializeForURL(const QUrl &url)
{
    if (!isInspectable(url))
        return QStringLiteral("not a video");
    // mkvinfo runs beside mediainfo, so a Matroska file costs about one
    // tool's time; mediainfo runs once for the tracks and the properties.
    std::future<bool> headerCheck;
    if (isMatroska(url))
        headerCheck = std::async(std::launch::async, [this, url] { return checkForHeaderRemovalFor(url); });
    const QStringList lines = mediaInfoReportFor(url);
    MCTrackListResult result = trackListFromReport(lines, url);
    const bool headerRemoval = headerCheck.valid() && headerCheck.get();
    if (!result.ok())
        return result.failure;

    setFileDefaultPropertyValues();
    setNameFieldsFor(url);
    filePropertiesFromReport(lines);
    headerRemovalFlag = headerRemoval;
    trackList = std::move(result.tracks);
    takeVideoTrackProperties();
    return QStringLiteral("OK");
}

void MCVideoFile::takeVideoTrackProperties()
{
    // The last video track wins.
    for (const MCVideoTrackPtr &track : std::as_const(trackList)) {
        if (track->trackType == QStringLiteral("Video")) {
            theVideoBitRate = track->trackBitRate;
            theVideoCodec = track->trackCodec;
        }
    }
}

void MCVideoFile::setFilePropertiesFor(const QUrl &url)
{
    setNameFieldsFor(url);
    filePropertiesFromReport(mediaInfoReportFor(url));
    headerRemovalFlag = theFileExtension.startsWith(QStringLiteral("mkv")) && checkForHeaderRemovalFor(url);
}

void MCVideoFile::filePropertiesFromReport(const QStringList &lines)
{
    HeaderCounts counts;
    // Today's mediainfo prints a frame rate for audio and text streams too;
    // the file's rate comes from the General and Video sections only.
    bool frameRateSection = true;
    for (const QString &line : lines) {
        const SectionKind kind = MCMediaInfoReport::headerKind(line);
        if (kind != SectionKind::None) {
            counts.add(kind);
            frameRateSection = kind == SectionKind::Video;
            continue;
        }
        if (MCMediaInfoReport::isSectionTitle(line)) {
            frameRateSection = line.startsWith(QStringLiteral("General")) || line.startsWith(QStringLiteral("Video"));
            continue;
        }
        const auto [key, value, valid] = MCMediaInfoReport::keyValue(line);
        if (!valid)
            continue;
        if (key.startsWith(u"Frame rate  ")) {
            if (frameRateSection && isRawDecimal(value))
                theFPS = value.toString();
        } else if (key.startsWith(u"Pixel aspect ratio")) {
            videoPAR = value.toString();
        } else if (key.startsWith(u"Width  ")) {
            if (!value.endsWith(u"pixels"))
                theWidth = value.toString();
        } else if (key.startsWith(u"Height  ")) {
            if (!value.endsWith(u"pixels"))
                theHeight = value.toString();
        } else if (key.startsWith(u"Codec profile ")) {
            if (value.contains(u'@'))
                codecProfile = value.toString();
        }
    }
    theNumberOfVideoTracks = QString::number(counts.video);
    theNumberOfAudioTracks = QString::number(counts.audio);
    theNumberOfSubTracks = QString::number(counts.text);
}

bool MCVideoFile::checkForHeaderRemovalFor(const QUrl &url) const
{
    if (!isInspectable(url))
        return false;
    const QString path = url.toLocalFile();
    if (const std::optional<bool> kept = m_reports->headerRemoval(path))
        return *kept;
    const QString answer = doShellScriptFor(mkvinfoURL, {url}, toolTimeLimitMs);
    const bool found = answer.contains(QStringLiteral("header removal"));
    // Only a run that answered is worth keeping.
    if (!answer.isEmpty())
        m_reports->storeHeaderRemoval(path, found);
    return found;
}

MCTrackListResult MCVideoFile::makeTrackListFor(const QUrl &url) const
{
    if (!isInspectable(url))
        return {{}, QStringLiteral("not a video")};
    return trackListFromReport(mediaInfoReportFor(url), url);
}

MCTrackListResult MCVideoFile::trackListFromReport(const QStringList &lines, const QUrl &url) const
{
    return MCTrackListParser(*this).parse(lines, url);
}

QString MCVideoFile::whatToDoWithFile(const QUrl &url)
{
    if (trackList.isEmpty())
        return QStringLiteral("replace file");
    if (!isInspectable(url))
        return QStringLiteral("not a video file");
    HeaderCounts counts;
    for (const auto &header : MCMediaInfoReport::headers(mediaInfoReportFor(url)))
        counts.add(header.kind);
    if (counts.total() > 1)
        return QStringLiteral("replace file");
    if (counts.video == 0 && counts.audio + counts.text == 1)
        return QStringLiteral("add file");
    if (counts.total() == 1)
        return QStringLiteral("replace file");
    // "sup" is let through here although the track parser refuses it.
    const QString extension = QFileInfo(url.toLocalFile()).suffix().toLower();
    if (subtitleFileExtensions().contains(extension) || extension == QStringLiteral("sup"))
        return QStringLiteral("add file");
    return QStringLiteral("not a video file");
}

QString MCVideoFile::addTrack(const QUrl &url)
{
    const MCTrackListResult result = makeTrackListFor(url);
    if (!result.ok())
        return result.failure;
    if (result.tracks.size() > 1)
        return QStringLiteral("too many tracks");
    const MCVideoTrackPtr track = result.tracks.constFirst();
    if (track->trackType.startsWith(QStringLiteral("Video")))
        return QStringLiteral("adding video track");
    track->externalTrackFlag = true;
    trackList.append(track);

    int video = 0;
    int audio = 0;
    int subtitle = 0;
    for (const MCVideoTrackPtr &each : std::as_const(trackList)) {
        if (each->trackType == QStringLiteral("Video"))
            each->trackIndex = QString::number(++video);
        else if (each->trackType == QStringLiteral("Audio"))
            each->trackIndex = QString::number(++audio);
        else if (each->trackType == QStringLiteral("Subtitle") || each->trackType == QStringLiteral("External Subtitle"))
            each->trackIndex = QString::number(++subtitle);
    }
    theNumberOfVideoTracks = QString::number(video);
    theNumberOfAudioTracks = QString::number(audio);
    theNumberOfSubTracks = QString::number(subtitle);
    return QStringLiteral("OK");
}

QString MCVideoFile::stringFromFileProperties() const
{
    QString text = QStringLiteral("\n\n\n################################   Video File Porperties  ######################################\n");
    const QList<std::pair<QString, QString>> fields{
        {QStringLiteral("theFilePath"), theFilePath},
        {QStringLiteral("theFileName"), theFileName},
        {QStringLiteral("theFileShortName"), theFileShortName},
        {QStringLiteral("theFileExtension"), theFileExtension},
        {QStringLiteral("pathToFileFolder"), pathToFileFolder},
        {QStringLiteral("theFPS"), theFPS},
        {QStringLiteral("videoPAR"), videoPAR},
        {QStringLiteral("theWidth"), theWidth},
        {QStringLiteral("theHeight"), theHeight},
        {QStringLiteral("codecProfile"), codecProfile},
        {QStringLiteral("theVideoBitRate"), theVideoBitRate},
        {QStringLiteral("theVideoCodec"), theVideoCodec},
        {QStringLiteral("headerRemovalFlag"), flagText(headerRemovalFlag)},
        {QStringLiteral("theNumberOfVideoTracks"), theNumberOfVideoTracks},
        {QStringLiteral("theNumberOfAudioTracks"), theNumberOfAudioTracks},
        {QStringLiteral("theNumberOfSubTracks"), theNumberOfSubTracks},
    };
    for (const auto &[name, value] : fields)
        text += QStringLiteral("%1 = %2\n").arg(name, value);
    int number = 0;
    for (const MCVideoTrackPtr &track : trackList) {
        text += QStringLiteral("\n################################   Track #%1  ######################################\n").arg(++number);
        text += track->stringFromTrackProperties();
    }
    return text;
}

void MCVideoFile::logFileProperties() const
{
    // The same lines as the text report, without its blank lines.
    for (const QString &line : stringFromFileProperties().split(QLatin1Char('\n'))) {
        if (!line.isEmpty())
            MCLog::line(line);
    }
}
