#include "MCVideoFile.h"

#include "MCCodecTables.h"
#include "MCLog.h"
#include "MCMediaInfoReport.h"
#include "MCTrackListParser.h"

#include <QFileInfo>

#include <future>

using MCMediaInfoReport::SectionKind;

namespace {

const QString kNone = QStringLiteral("none");
const QString kZero = QStringLiteral("0");

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

QString folderOfPath(const QString &path, const QString &fileName)
{
    const qsizetype at = path.indexOf(fileName);
    return at < 0 ? path : path.left(at);
}

QString shortNameOf(const QString &fileName, const QString &lowerExtension)
{
    if (lowerExtension.isEmpty())
        return fileName;
    const qsizetype at = fileName.indexOf(QLatin1Char('.') + lowerExtension);
    return at < 0 ? fileName : fileName.left(at);
}

void countHeader(SectionKind kind, int &video, int &audio, int &text)
{
    if (kind == SectionKind::Video)
        ++video;
    else if (kind == SectionKind::Audio)
        ++audio;
    else if (kind == SectionKind::Text)
        ++text;
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
    videoTable = MCCodecTables::video();
    audioTable = MCCodecTables::audio();
    subtitleTable = MCCodecTables::subtitle();
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
    if (!m_reportURL.isEmpty() && url == m_reportURL)
        return m_reportLines;
    // Only regular files are inspected: mediainfo would list a folder's
    // contents as if they were one file.
    if (!QFileInfo(url.toLocalFile()).isFile())
        return {};
    const QString report = doShellScriptFor(mediainfoURL, {QStringLiteral("-f"), url});
    return report.isEmpty() ? QStringList() : MCMediaInfoReport::lines(report);
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
    // mkvinfo runs beside mediainfo, so a Matroska file costs one tool's time.
    std::future<bool> headerCheck;
    if (QFileInfo(url.toLocalFile()).suffix().toLower().startsWith(QStringLiteral("mkv")))
        headerCheck = std::async(std::launch::async, [this, url] { return checkForHeaderRemovalFor(url); });
    m_reportURL = QUrl();
    m_reportLines = mediaInfoReportFor(url);
    m_reportURL = url;
    m_headerRemovalAnswer = headerCheck.valid() ? std::optional<bool>(headerCheck.get()) : std::nullopt;
    const MCTrackListResult result = makeTrackListFor(url);
    if (!result.ok()) {
        m_reportURL = QUrl();
        m_headerRemovalAnswer.reset();
        return result.failure;
    }
    setFileDefaultPropertyValues();
    setFilePropertiesFor(url);
    m_reportURL = QUrl();
    m_reportLines.clear();
    trackList = result.tracks;
    for (const MCVideoTrackPtr &track : std::as_const(trackList)) {
        if (track->trackType == QStringLiteral("Video")) {
            theVideoBitRate = track->trackBitRate;
            theVideoCodec = track->trackCodec;
        }
    }
    return QStringLiteral("OK");
}

void MCVideoFile::setFilePropertiesFor(const QUrl &url)
{
    setNameFieldsFor(url);
    filePropertiesFromReport(mediaInfoReportFor(url));
    if (!theFileExtension.startsWith(QStringLiteral("mkv")))
        headerRemovalFlag = false;
    else
        headerRemovalFlag = m_headerRemovalAnswer ? *m_headerRemovalAnswer : checkForHeaderRemovalFor(url);
    m_headerRemovalAnswer.reset();
}

void MCVideoFile::filePropertiesFromReport(const QStringList &lines)
{
    int video = 0;
    int audio = 0;
    int text = 0;
    // Today's mediainfo also prints a frame rate for audio and text streams;
    // the file's rate is read from the General and Video sections only.
    bool inFrameRateSection = true;
    for (const QString &line : lines) {
        const SectionKind kind = MCMediaInfoReport::headerKind(line);
        if (kind != SectionKind::None) {
            countHeader(kind, video, audio, text);
            inFrameRateSection = kind == SectionKind::Video;
            continue;
        }
        if (!line.contains(QStringLiteral(": ")) && !line.trimmed().isEmpty())
            inFrameRateSection = line.startsWith(QStringLiteral("General"));
        const auto [key, value, valid] = MCMediaInfoReport::keyValue(line);
        if (!valid)
            continue;
        if (key.startsWith(QStringLiteral("Frame rate  "))) {
            if (inFrameRateSection && !value.endsWith(QStringLiteral("fps"), Qt::CaseInsensitive))
                theFPS = value;
        } else if (key.startsWith(QStringLiteral("Pixel aspect ratio"))) {
            videoPAR = value;
        } else if (key.startsWith(QStringLiteral("Width  "))) {
            if (!value.endsWith(QStringLiteral("pixels")))
                theWidth = value;
        } else if (key.startsWith(QStringLiteral("Height  "))) {
            if (!value.endsWith(QStringLiteral("pixels")))
                theHeight = value;
        } else if (key.startsWith(QStringLiteral("Codec profile "))) {
            if (value.contains(QLatin1Char('@')))
                codecProfile = value;
        }
    }
    theNumberOfVideoTracks = QString::number(video);
    theNumberOfAudioTracks = QString::number(audio);
    theNumberOfSubTracks = QString::number(text);
}

bool MCVideoFile::checkForHeaderRemovalFor(const QUrl &url)
{
    return doShellScriptFor(mkvinfoURL, {url}).contains(QStringLiteral("header removal"));
}

MCTrackListResult MCVideoFile::makeTrackListFor(const QUrl &url)
{
    return trackListFromReport(mediaInfoReportFor(url), url);
}

MCTrackListResult MCVideoFile::trackListFromReport(const QStringList &lines, const QUrl &url) const
{
    return MCTrackListParser(videoTable, audioTable, subtitleTable).parse(lines, url);
}

QString MCVideoFile::whatToDoWithFile(const QUrl &url)
{
    if (trackList.isEmpty())
        return QStringLiteral("replace file");
    int video = 0;
    int audio = 0;
    int text = 0;
    for (const auto &header : MCMediaInfoReport::headers(mediaInfoReportFor(url)))
        countHeader(header.kind, video, audio, text);
    const int total = video + audio + text;
    if (total > 1)
        return QStringLiteral("replace file");
    if (video == 0 && audio + text == 1)
        return QStringLiteral("add file");
    if (total == 1)
        return QStringLiteral("replace file");
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
    QString text = stringFromFileProperties();
    while (text.startsWith(QLatin1Char('\n')))
        text.remove(0, 1);
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        if (!line.isEmpty())
            MCLog::line(line);
    }
}
