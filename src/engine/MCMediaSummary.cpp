#include "MCMediaSummary.h"

#include "MCHelpers.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace {

constexpr int kMediaInfoTimeoutMs = 60000;

} // namespace

MCMediaSummary MCMediaSummary::of(const QString &path)
{
    const QFileInfo file(path);
    const QString mediainfo = MCHelpers::urlOfApp(QStringLiteral("mediainfo")).toLocalFile();
    if (!file.isFile() || file.size() == 0 || mediainfo.isEmpty())
        return {};
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(mediainfo, {QStringLiteral("--Output=JSON"), file.absoluteFilePath()});
    if (!process.waitForFinished(kMediaInfoTimeoutMs) || process.exitCode() != 0) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    return fromJson(process.readAllStandardOutput());
}

MCMediaSummary MCMediaSummary::fromJson(const QByteArray &json)
{
    MCMediaSummary summary;
    const QJsonArray tracks = QJsonDocument::fromJson(json).object().value(QStringLiteral("media")).toObject().value(
        QStringLiteral("track")).toArray();
    for (const QJsonValue &value : tracks) {
        const QJsonObject track = value.toObject();
        const QString type = track.value(QStringLiteral("@type")).toString();
        const QString format = track.value(QStringLiteral("Format")).toString();
        if (type == QStringLiteral("General")) {
            summary.durationSeconds = track.value(QStringLiteral("Duration")).toString().toDouble();
            // A file mediainfo cannot place has a General section without a format.
            summary.readable = !format.isEmpty();
            summary.truncated = track.value(QStringLiteral("extra")).toObject().value(QStringLiteral("IsTruncated")).toString().startsWith(
                QStringLiteral("Yes"));
        } else if (type == QStringLiteral("Video")) {
            summary.videoFormats << format;
        } else if (type == QStringLiteral("Audio")) {
            summary.audioFormats << format;
            summary.audioChannels << track.value(QStringLiteral("Channels")).toString();
        } else if (type == QStringLiteral("Text")) {
            ++summary.textCount;
        }
    }
    return summary;
}
