#include "MCTrackListParser.h"

#include "MCContainers.h"
#include "MCMediaInfoReport.h"

#include <QFileInfo>

using MCMediaInfoReport::SectionKind;

namespace {

const QString kVideo = QStringLiteral("Video");
const QString kAudio = QStringLiteral("Audio");
const QString kSubtitle = QStringLiteral("Subtitle");

qint64 integerOf(QStringView text)
{
    return MCMediaInfoReport::leadingInteger(text);
}

// Short values are language codes and are skipped, except the four language
// names of three letters.
bool isLanguageName(QStringView value)
{
    if (value.size() >= 4)
        return true;
    for (const char16_t *name : {u"Ewe", u"Ido", u"Lao", u"Twi"}) {
        if (value.startsWith(QStringView(name)))
            return true;
    }
    return false;
}

// mediainfo prints each number raw and then formatted ("128000", then
// "128 kb/s"; "6", then "6 channels" or "1 channel"); only the raw one counts.
bool isRawNumber(QStringView value)
{
    bool ok = false;
    [[maybe_unused]] const qint64 number = value.trimmed().toLongLong(&ok);
    return ok;
}

bool isFormattedBitRate(QStringView value)
{
    return value.endsWith(u"ps") || value.endsWith(u"b/s");
}

// The name and folder fields every track of one file shares.
MCVideoTrack fileFieldsFor(const QUrl &url)
{
    MCVideoTrack track;
    const QFileInfo info(url.toLocalFile());
    track.trackFilePath = url.toLocalFile();
    track.trackFileExtension = info.suffix();
    track.trackFileName = info.fileName();
    const qsizetype at = track.trackFilePath.indexOf(track.trackFileName);
    track.trackPathToFileFolder = at < 0 ? track.trackFilePath : track.trackFilePath.left(at);
    track.trackFileURL = url;
    track.trackURLToFileFolder = QUrl::fromLocalFile(track.trackPathToFileFolder);
    return track;
}

} // namespace

MCTrackListParser::MCTrackListParser(const MCVideoFile &file)
{
    const auto prepare = [](const QList<QStringList> &codecs, const QStringList &names, const QStringList &extensions) {
        Table table{{}, names, extensions};
        for (const QStringList &patterns : codecs) {
            QStringList lowered;
            for (const QString &pattern : patterns)
                lowered.append(pattern.toLower());
            table.patterns.append(lowered);
        }
        return table;
    };
    m_video = prepare(file.videoCodecList, file.videoInfoList, file.videoExtList);
    m_audio = prepare(file.audioCodecList, file.audioInfoList, file.audioExtList);
    m_subtitle = prepare(file.subtitleCodecList, file.subtitleInfoList, file.subtitleExtList);
}

MCVideoTrackPtr MCTrackListParser::externalSubtitleTrack(const QUrl &url)
{
    auto track = std::make_shared<MCVideoTrack>(fileFieldsFor(url));
    track->trackCodec = track->trackFileExtension.toLower();
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
        return finalPass({externalSubtitleTrack(url)});

    const auto headers = MCMediaInfoReport::headers(lines);
    if (headers.isEmpty())
        return {{}, QStringLiteral("not a video")};

    const MCVideoTrack fileFields = fileFieldsFor(url);
    MCTrackList tracks;
    tracks.reserve(std::max<qsizetype>(200, headers.size()));
    int videoIndex = 0;
    int audioIndex = 0;
    int subtitleIndex = 0;
    for (qsizetype p = 0; p < headers.size(); ++p) {
        auto track = std::make_shared<MCVideoTrack>(fileFields);
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
        QString streamId;
        for (qsizetype i = headers.at(p).line; i < end; ++i)
            readSectionLine(*track, lines.at(i), p, streamId);
        // Today's mediainfo gives Flash Video streams no ID: numbered by
        // position, as an ID of 0 is.
        if (streamId.isEmpty())
            number(*track, u"0", p);
        finishIdentifiers(*track, headers.size());
        useMpegStreamId(*track, streamId);
        tracks.append(track);
    }
    return finalPass(std::move(tracks));
}

void MCTrackListParser::readSectionLine(MCVideoTrack &track, QStringView line, qsizetype position,
                                        QString &streamId) const
{
    const auto [key, value, valid] = MCMediaInfoReport::keyValue(line);
    if (!valid)
        return;
    if (key.startsWith(u"Title")) {
        track.trackTitle = value.toString();
    } else if (key.startsWith(u"Language")) {
        if (isLanguageName(value))
            track.trackLanguage = value.toString();
    } else if (key.startsWith(u"Bit rate  ") || key.startsWith(u"Nominal bit rate  ")) {
        // The first raw bit rate wins.
        if (track.trackBitRate == u"0" && !isFormattedBitRate(value))
            track.trackBitRate = QString::number(integerOf(value) / 1000);
    } else if (key.startsWith(u"Channel(s)")) {
        if (!value.endsWith(u"channels") && isRawNumber(value))
            track.trackNumberOfChannels = value.trimmed().toString();
    } else if (key.startsWith(u"Codec  ")) {
        classify(track, value);
    } else if (key.startsWith(u"ID   ")) {
        number(track, value, position);
        // The section's own id comes first; a Menu section after the last
        // track falls into it with the id of the program table.
        if (streamId.isEmpty())
            streamId = value.toString();
    }
}

void MCTrackListParser::classify(MCVideoTrack &track, QStringView value) const
{
    const Table &table = track.trackType == kVideo ? m_video : track.trackType == kAudio ? m_audio : m_subtitle;
    const QString lowered = value.toString().toLower();
    for (qsizetype i = 0; i < table.patterns.size(); ++i) {
        for (const QString &pattern : table.patterns.at(i)) {
            if (!lowered.contains(pattern))
                continue;
            // No early stop: a later class that also matches wins.
            track.trackCodec = table.names.at(i);
            track.trackExtension = table.extensions.at(i);
            // Audio info is closed later, with the channel count.
            track.trackInfo = track.trackType + QStringLiteral(": (") + track.trackCodec;
            if (track.trackType != kAudio)
                track.trackInfo += QLatin1Char(')');
        }
    }
}

void MCTrackListParser::number(MCVideoTrack &track, QStringView value, qsizetype position) const
{
    const QString extension = track.trackFileExtension.toLower();
    // mediainfo counts AVI streams from 0, MP4Box from 1; transport-stream
    // identifiers are packet ids, so those streams go by position.
    if (extension == u"avi")
        track.trackMp4boxID = QString::number(integerOf(value) + 1);
    else if (extension == u"mts" || extension == u"ts")
        track.trackMp4boxID = QString::number(position + 1);
    else
        track.trackMp4boxID = value.toString();
    const qint64 id = integerOf(track.trackMp4boxID);
    if (id == 0 || id >= 701)
        track.trackMp4boxID = QString::number(position + 1);
    track.trackFfmpegID = QString::number(integerOf(track.trackMp4boxID) - 1);
}

void MCTrackListParser::finishIdentifiers(MCVideoTrack &track, qsizetype headerCount)
{
    // A file of one stream is addressed as stream 0 whatever its id says.
    if (headerCount == 1)
        track.trackFfmpegID = QStringLiteral("0");
    track.trackMkvmergeID = headerCount == 1 ? QStringLiteral("0") : QString::number(integerOf(track.trackMp4boxID) - 1);

    const QString extension = track.trackFileExtension.toLower();
    const qint64 typeIndex = integerOf(track.trackIndex);
    qint64 mencoderID = typeIndex;
    // WebM is Matroska under another name; MPlayer reads Flash Video through
    // FFmpeg, which counts each kind of stream from 0 as well.
    if (extension == u"mkv" || extension == u"ogm" || extension == u"mp4" || extension == u"m4v" || extension == u"mov"
        || extension == u"webm" || extension == u"flv")
        mencoderID = typeIndex - 1;
    else if (extension == u"avi")
        mencoderID = integerOf(track.trackMp4boxID) - 1;
    else if (extension == u"wmv")
        mencoderID = integerOf(track.trackMp4boxID);
    track.trackMencoderID = QString::number(mencoderID);
}

void MCTrackListParser::useMpegStreamId(MCVideoTrack &track, const QString &streamId)
{
    if (track.trackType != kAudio || streamId.isEmpty())
        return;
    if (const std::optional<qint64> id = mplayerAudioId(track.trackFileExtension, streamId))
        track.trackMencoderID = QString::number(*id);
}

std::optional<qint64> MCTrackListParser::mplayerAudioId(const QString &fileExtension, QStringView streamId)
{
    // A transport stream's audio is addressed by its packet id ("4114" or
    // "4114 (0x1012)").
    if (MCContainers::isTransportStream(fileExtension))
        return integerOf(streamId);
    if (!MCContainers::isProgramStream(fileExtension))
        return std::nullopt;
    // In a program stream, audio in the private stream (AC-3, DTS, LPCM:
    // "189 (0xBD)-128 (0x80)") goes by its sub-stream id; MPEG audio
    // (streams 192 to 223) by its number from 0.
    const qsizetype dash = streamId.lastIndexOf(u'-');
    if (dash >= 0)
        return integerOf(streamId.mid(dash + 1));
    constexpr qint64 kFirstMpegAudio = 0xC0;
    const qint64 id = integerOf(streamId);
    if (id >= kFirstMpegAudio && id < kFirstMpegAudio + 32)
        return id - kFirstMpegAudio;
    return std::nullopt;
}

MCTrackListResult MCTrackListParser::finalPass(MCTrackList tracks)
{
    for (const MCVideoTrackPtr &track : std::as_const(tracks)) {
        // An unknown video or audio codec makes the file unusable; an
        // unknown subtitle is only left out.
        if (track->trackCodec.startsWith(u"none") && track->trackType != kSubtitle)
            return {{}, QStringLiteral("track not identified")};
        if (track->trackTitle.startsWith(u"none"))
            track->trackTitle = QStringLiteral("%1 Track").arg(track->trackType);
        if (track->trackType == kAudio)
            track->trackInfo = QStringLiteral("%1 %2ch.)").arg(track->trackInfo, track->trackNumberOfChannels);
    }
    tracks.removeIf([](const MCVideoTrackPtr &track) { return track->trackCodec.startsWith(u"none"); });
    return {std::move(tracks), {}};
}
