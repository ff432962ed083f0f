#include "MCTrackListParser.h"

#include "MCMediaInfoReport.h"

#include <QFileInfo>

using MCMediaInfoReport::SectionKind;

namespace {

const QString kVideo = QStringLiteral("Video");
const QString kAudio = QStringLiteral("Audio");
const QString kSubtitle = QStringLiteral("Subtitle");

qint64 integerOf(const QString &text)
{
    return MCMediaInfoReport::leadingInteger(text);
}

// Three-letter codes are skipped, except the four language names of three letters.
bool isLanguageName(const QString &value)
{
    if (value.size() >= 4)
        return true;
    for (const char *name : {"Ewe", "Ido", "Lao", "Twi"}) {
        if (value.startsWith(QLatin1String(name)))
            return true;
    }
    return false;
}

bool isRawNumber(const QString &value)
{
    bool ok = false;
    value.trimmed().toLongLong(&ok);
    return ok;
}

} // namespace

MCTrackListParser::MCTrackListParser(const MCCodecTable &video, const MCCodecTable &audio, const MCCodecTable &subtitle)
    : m_video(video)
    , m_audio(audio)
    , m_subtitle(subtitle)
{
}

MCVideoTrackPtr MCTrackListParser::externalSubtitleTrack(const QUrl &url)
{
    auto track = std::make_shared<MCVideoTrack>();
    const QFileInfo info(url.toLocalFile());
    track->trackFilePath = url.toLocalFile();
    track->trackFileExtension = info.suffix();
    track->trackFileName = info.fileName();
    const qsizetype at = track->trackFilePath.indexOf(track->trackFileName);
    track->trackPathToFileFolder = at < 0 ? track->trackFilePath : track->trackFilePath.left(at);
    track->trackFileURL = url;
    track->trackURLToFileFolder = QUrl::fromLocalFile(track->trackPathToFileFolder);
    track->trackCodec = info.suffix().toLower();
    track->trackExtension = track->trackCodec;
    track->trackLanguage = QStringLiteral("undetermined");
    track->trackType = QStringLiteral("External Subtitle");
    track->trackTitle = QStringLiteral("Added Subtitle");
    track->trackMp4boxID = QStringLiteral("1");
    track->trackMencoderID = QStringLiteral("1");
    track->trackMkvmergeID = QStringLiteral("0");
    track->trackInfo = QStringLiteral("Subtitle: (%1)").arg(track->trackCodec);
    return track;
}

MCTrackListResult MCTrackListParser::parse(const QStringList &lines, const QUrl &url) const
{
    const QString extension = QFileInfo(url.toLocalFile()).suffix().toLower();
    // A subtitle file is always given whole, even when mediainfo reports a
    // Text section for it.
    if (MCVideoFile::subtitleFileExtensions().contains(extension))
        return {{externalSubtitleTrack(url)}, {}};

    const auto headers = MCMediaInfoReport::headers(lines);
    if (headers.isEmpty())
        return {{}, QStringLiteral("not a video")};

    MCTrackList tracks;
    tracks.reserve(200);
    int videoIndex = 0;
    int audioIndex = 0;
    int subtitleIndex = 0;
    for (qsizetype p = 0; p < headers.size(); ++p) {
        auto track = std::make_shared<MCVideoTrack>();
        setFileFields(*track, url);
        switch (headers.at(p).kind) {
        case SectionKind::Video:
            track->trackType = kVideo;
            track->trackIndex = QString::number(++videoIndex);
            track->userCodec = QStringLiteral("passthru");
            break;
        case SectionKind::Audio:
            track->trackType = kAudio;
            track->trackIndex = QString::number(++audioIndex);
            track->userCodec = QStringLiteral("passthru");
            break;
        default:
            track->trackType = kSubtitle;
            track->trackIndex = QString::number(++subtitleIndex);
            track->userCodec = QStringLiteral("mux");
            break;
        }
        const qsizetype end = p + 1 < headers.size() ? headers.at(p + 1).line : lines.size();
        for (qsizetype i = headers.at(p).line; i < end; ++i)
            readSectionLine(*track, lines.at(i), p);
        finishIdentifiers(*track, headers.size());
        tracks.append(track);
    }
    return finalPass(tracks);
}

void MCTrackListParser::setFileFields(MCVideoTrack &track, const QUrl &url) const
{
    const QFileInfo info(url.toLocalFile());
    track.trackFilePath = url.toLocalFile();
    track.trackFileExtension = info.suffix();
    track.trackFileName = info.fileName();
    const qsizetype at = track.trackFilePath.indexOf(track.trackFileName);
    track.trackPathToFileFolder = at < 0 ? track.trackFilePath : track.trackFilePath.left(at);
    track.trackFileURL = url;
    track.trackURLToFileFolder = QUrl::fromLocalFile(track.trackPathToFileFolder);
}

void MCTrackListParser::readSectionLine(MCVideoTrack &track, const QString &line, qsizetype position) const
{
    const auto [key, value, valid] = MCMediaInfoReport::keyValue(line);
    if (!valid)
        return;
    if (key.startsWith(QStringLiteral("Title"))) {
        track.trackTitle = value;
    } else if (key.startsWith(QStringLiteral("Language"))) {
        if (isLanguageName(value))
            track.trackLanguage = value;
    } else if (key.startsWith(QStringLiteral("Bit rate  ")) || key.startsWith(QStringLiteral("Nominal bit rate  "))) {
        if (track.trackBitRate == QStringLiteral("0") && !value.endsWith(QStringLiteral("ps")))
            track.trackBitRate = QString::number(integerOf(value) / 1000);
    } else if (key.startsWith(QStringLiteral("Channel(s)"))) {
        // Only the raw count: the formatted one ends in "channels" (or "channel").
        if (!value.endsWith(QStringLiteral("channels")) && isRawNumber(value))
            track.trackNumberOfChannels = value.trimmed();
    } else if (key.startsWith(QStringLiteral("Codec  "))) {
        classify(track, value);
    } else if (key.startsWith(QStringLiteral("ID   "))) {
        number(track, value, position);
    }
}

void MCTrackListParser::classify(MCVideoTrack &track, const QString &value) const
{
    const MCCodecTable &table = track.trackType == kVideo ? m_video : track.trackType == kAudio ? m_audio : m_subtitle;
    const QString lowered = value.toLower();
    for (qsizetype i = 0; i < table.codecList.size(); ++i) {
        for (const QString &pattern : table.codecList.at(i)) {
            if (!lowered.contains(pattern.toLower()))
                continue;
            // No early stop: a later class that also matches wins.
            track.trackCodec = table.infoList.at(i);
            track.trackExtension = table.extList.at(i);
            track.trackInfo = track.trackType + QStringLiteral(": (") + track.trackCodec;
            if (track.trackType != kAudio)
                track.trackInfo += QLatin1Char(')');
        }
    }
}

void MCTrackListParser::number(MCVideoTrack &track, const QString &value, qsizetype position) const
{
    const QString extension = track.trackFileExtension.toLower();
    if (extension == QStringLiteral("avi"))
        track.trackMp4boxID = QString::number(integerOf(value) + 1);
    else if (extension == QStringLiteral("mts") || extension == QStringLiteral("ts"))
        track.trackMp4boxID = QString::number(position + 1);
    else
        track.trackMp4boxID = value;
    const qint64 id = integerOf(track.trackMp4boxID);
    if (id == 0 || id >= 701)
        track.trackMp4boxID = QString::number(position + 1);
    track.trackFfmpegID = QString::number(integerOf(track.trackMp4boxID) - 1);
}

void MCTrackListParser::finishIdentifiers(MCVideoTrack &track, qsizetype headerCount) const
{
    if (headerCount == 1)
        track.trackFfmpegID = QStringLiteral("0");
    track.trackMkvmergeID = headerCount == 1 ? QStringLiteral("0") : QString::number(integerOf(track.trackMp4boxID) - 1);

    const QString extension = track.trackFileExtension.toLower();
    const qint64 typeIndex = integerOf(track.trackIndex);
    qint64 mencoderID = typeIndex;
    if (QStringList{QStringLiteral("mkv"), QStringLiteral("ogm"), QStringLiteral("mp4"), QStringLiteral("m4v"), QStringLiteral("mov")}.contains(extension))
        mencoderID = typeIndex - 1;
    else if (extension == QStringLiteral("avi") || extension == QStringLiteral("flv"))
        mencoderID = integerOf(track.trackMp4boxID) - 1;
    else if (extension == QStringLiteral("wmv"))
        mencoderID = integerOf(track.trackMp4boxID);
    track.trackMencoderID = QString::number(mencoderID);
}

MCTrackListResult MCTrackListParser::finalPass(MCTrackList tracks) const
{
    MCTrackList unidentifiedSubtitles;
    for (const MCVideoTrackPtr &track : std::as_const(tracks)) {
        if (track->trackCodec.startsWith(QStringLiteral("none"))) {
            if (track->trackType != kSubtitle)
                return {{}, QStringLiteral("track not identified")};
            unidentifiedSubtitles.append(track);
        }
        if (track->trackTitle.startsWith(QStringLiteral("none")))
            track->trackTitle = QStringLiteral("%1 Track").arg(track->trackType);
        if (track->trackType == kAudio)
            track->trackInfo = QStringLiteral("%1 %2ch.)").arg(track->trackInfo, track->trackNumberOfChannels);
    }
    tracks.removeIf([&](const MCVideoTrackPtr &track) { return unidentifiedSubtitles.contains(track); });
    return {tracks, {}};
}
