#include "MediaProbe.h"

#include "MatrixProcess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

namespace {

StreamFacts streamFrom(const QJsonObject &track)
{
    StreamFacts facts;
    facts.present = true;
    facts.format = track.value(QStringLiteral("Format")).toString();
    facts.formatProfile = track.value(QStringLiteral("Format_Profile")).toString();
    facts.codecId = track.value(QStringLiteral("CodecID")).toString();
    facts.seconds = track.value(QStringLiteral("Duration")).toString().toDouble();
    facts.frameRate = track.value(QStringLiteral("FrameRate")).toString().toDouble();
    facts.channels = track.value(QStringLiteral("Channels")).toString().toInt();
    facts.width = track.value(QStringLiteral("Width")).toString().toInt();
    return facts;
}

} // namespace

bool isMpeg4Visual(const StreamFacts &video)
{
    return video.format == QLatin1String("MPEG-4 Visual") || video.codecId.compare(QLatin1String("xvid"), Qt::CaseInsensitive) == 0;
}

MediaFacts probeMedia(const QString &path)
{
    MediaFacts facts;
    const ProcessResult report = runProcess(QStringLiteral("mediainfo"), {QStringLiteral("--Output=JSON"), path});
    const QJsonArray tracks = QJsonDocument::fromJson(report.out.toUtf8())
                                  .object()
                                  .value(QStringLiteral("media"))
                                  .toObject()
                                  .value(QStringLiteral("track"))
                                  .toArray();
    for (const QJsonValue &value : tracks) {
        const QJsonObject track = value.toObject();
        const QString type = track.value(QStringLiteral("@type")).toString();
        if (type == QLatin1String("General")) {
            facts.readable = true;
            facts.container = track.value(QStringLiteral("Format")).toString();
        } else if (type == QLatin1String("Video") && !facts.video.present) {
            facts.video = streamFrom(track);
        } else if (type == QLatin1String("Audio") && !facts.audio.present) {
            facts.audio = streamFrom(track);
        }
    }
    return facts;
}

bool DecodedFacts::pictureMoves() const
{
    // Half a second in against the last picture: a picture repeated from the
    // start shows as equal hashes, a picture never decoded as none.
    if (pictureHashes.size() < 3)
        return false;
    return pictureHashes.at(1) != pictureHashes.last();
}

DecodedFacts decodeMedia(const QString &path)
{
    const QStringList arguments{
        QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-i"), path,
        QStringLiteral("-map"), QStringLiteral("0:v:0"), QStringLiteral("-vf"),
        QStringLiteral("signalstats,metadata=print:key=lavfi.signalstats.YAVG,fps=2,scale=64:48,format=gray"),
        QStringLiteral("-f"), QStringLiteral("framemd5"), QStringLiteral("-"),
        QStringLiteral("-map"), QStringLiteral("0:a:0"), QStringLiteral("-af"),
        QStringLiteral("silencedetect=n=-30dB:d=0.2,volumedetect"), QStringLiteral("-f"), QStringLiteral("null"),
        QStringLiteral("/dev/null")};
    const ProcessResult decoded = runProcess(QStringLiteral("ffmpeg"), arguments);
    DecodedFacts facts;
    if (!decoded.ok())
        facts.error = decoded.lastErrorLine();
    for (const QString &line : decoded.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        if (!line.startsWith(QLatin1Char('#')))
            facts.pictureHashes << line.section(QLatin1Char(','), 5).trimmed();
    }
    facts.brokenPackets = static_cast<int>(decoded.err.count(QStringLiteral("Error while decoding")));
    // A white picture averages far above anything in the test picture.
    static const QRegularExpression frame(QStringLiteral("pts_time:([0-9.]+)[^\\n]*\\n[^\\n]*YAVG=([0-9.]+)"));
    for (auto match = frame.globalMatch(decoded.err); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        if (found.captured(2).toDouble() > 200) {
            facts.flash = found.captured(1).toDouble();
            break;
        }
    }
    static const QRegularExpression silenceEnd(QStringLiteral("silence_end: ([0-9.]+)"));
    if (const QRegularExpressionMatch end = silenceEnd.match(decoded.err); end.hasMatch())
        facts.soundStart = end.captured(1).toDouble();
    static const QRegularExpression loudest(QStringLiteral("max_volume: (-?[0-9.]+) dB"));
    if (const QRegularExpressionMatch match = loudest.match(decoded.err); match.hasMatch())
        facts.maxVolumeDb = match.captured(1).toDouble();
    return facts;
}

QByteArray greyPicture(const QString &path, double seconds)
{
    const ProcessResult decoded = runProcess(
        QStringLiteral("ffmpeg"),
        {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-ss"),
         QString::number(seconds), QStringLiteral("-i"), path, QStringLiteral("-frames:v"), QStringLiteral("1"),
         QStringLiteral("-vf"), QStringLiteral("scale=%1:%2,format=gray").arg(kGreyWidth).arg(kGreyHeight),
         QStringLiteral("-f"), QStringLiteral("rawvideo"), QStringLiteral("-")});
    return decoded.bytes.size() == kGreyWidth * kGreyHeight ? decoded.bytes : QByteArray();
}

