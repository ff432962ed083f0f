#include "Matrix.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>

QString ProcessResult::lastErrorLine() const
{
    const QString text = err.trimmed();
    return text.isEmpty() ? u"(no message)"_s : text.section(u'\n', -1).trimmed();
}

ProcessResult runProcess(const QString &program, const QStringList &arguments, const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    ProcessResult result;
    if (!process.waitForFinished(240000)) {
        process.kill();
        process.waitForFinished();
        result.err = u"%1 did not start, or did not end within 240 s"_s.arg(program);
        return result;
    }
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.bytes = process.readAllStandardOutput();
    result.out = QString::fromUtf8(result.bytes);
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

MediaFacts probeMedia(const QString &path)
{
    MediaFacts facts;
    const QString report = runProcess(u"mediainfo"_s, {u"--Output=JSON"_s, path}).out;
    const QJsonArray tracks
        = QJsonDocument::fromJson(report.toUtf8()).object().value(u"media"_s).toObject().value(u"track"_s).toArray();
    for (const QJsonValue &value : tracks) {
        const QJsonObject track = value.toObject();
        const QString type = track.value(u"@type"_s).toString();
        if (type == u"General"_s) {
            facts.readable = true;
            facts.container = track.value(u"Format"_s).toString();
            continue;
        }
        StreamFacts &stream = type == u"Video"_s ? facts.video : facts.audio;
        if ((type != u"Video"_s && type != u"Audio"_s) || stream.present)
            continue;
        const auto text = [&track](const QString &key) { return track.value(key).toString(); };
        stream = {true, text(u"Format"_s), text(u"Format_Profile"_s), text(u"CodecID"_s), text(u"Duration"_s).toDouble(),
                  text(u"FrameRate"_s).toDouble(), text(u"Width"_s).toInt(), text(u"Channels"_s).toInt()};
    }
    return facts;
}

DecodedFacts decodeMedia(const QString &path)
{
    const ProcessResult decoded = runProcess(
        u"ffmpeg"_s, {u"-nostdin"_s, u"-hide_banner"_s, u"-i"_s, path, u"-map"_s, u"0:v:0"_s, u"-vf"_s,
                      u"signalstats,metadata=print:key=lavfi.signalstats.YAVG,fps=2,scale=64:48,format=gray"_s, u"-f"_s,
                      u"framemd5"_s, u"-"_s, u"-map"_s, u"0:a:0"_s, u"-af"_s, u"silencedetect=n=-30dB:d=0.2,volumedetect"_s,
                      u"-f"_s, u"null"_s, u"/dev/null"_s});
    DecodedFacts facts;
    if (!decoded.ok())
        facts.error = decoded.lastErrorLine();
    for (const QString &line : decoded.out.split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(u'#'))
            facts.pictureHashes << line.section(u',', 5).trimmed();
    }
    facts.brokenPackets = static_cast<int>(decoded.err.count(u"Error while decoding"_s));
    // A white picture averages far above anything in the test picture.
    static const QRegularExpression frame(u"pts_time:([0-9.]+)[^\\n]*\\n[^\\n]*YAVG=([0-9.]+)"_s);
    for (auto match = frame.globalMatch(decoded.err); match.hasNext();) {
        const QRegularExpressionMatch found = match.next();
        if (found.captured(2).toDouble() > 200) {
            facts.flash = found.captured(1).toDouble();
            break;
        }
    }
    static const QRegularExpression silenceEnd(u"silence_end: ([0-9.]+)"_s);
    if (const QRegularExpressionMatch end = silenceEnd.match(decoded.err); end.hasMatch())
        facts.soundStart = end.captured(1).toDouble();
    static const QRegularExpression loudest(u"max_volume: (-?[0-9.]+) dB"_s);
    if (const QRegularExpressionMatch match = loudest.match(decoded.err); match.hasMatch())
        facts.maxVolumeDb = match.captured(1).toDouble();
    return facts;
}

QByteArray greyPicture(const QString &path, double seconds)
{
    const ProcessResult decoded
        = runProcess(u"ffmpeg"_s, {u"-nostdin"_s, u"-v"_s, u"error"_s, u"-ss"_s, QString::number(seconds), u"-i"_s, path,
                                   u"-frames:v"_s, u"1"_s, u"-vf"_s, u"scale=%1:%2,format=gray"_s.arg(kGreyWidth).arg(kGreyHeight),
                                   u"-f"_s, u"rawvideo"_s, u"-"_s});
    return decoded.bytes.size() == kGreyWidth * kGreyHeight ? decoded.bytes : QByteArray();
}
