#include "MCMediaSummary.h"

#include "MCHelpers.h"
#include "MCMediaInfoReport.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#ifdef KESTRANE_HAS_LIBMEDIAINFO
#include <MediaInfoDLL/MediaInfoDLL_Static.h>
#endif

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

MCMediaSummary MCMediaSummary::ofOwnResult(const QString &path)
{
#ifdef KESTRANE_HAS_LIBMEDIAINFO
    const QFileInfo file(path);
    if (!file.isFile() || file.size() == 0)
        return {};
    void *handle = MediaInfoA_New();
    MediaInfoA_Option(handle, "Output", "JSON");
    QByteArray json;
    if (MediaInfoA_Open(handle, QFile::encodeName(file.absoluteFilePath()).constData()) != 0)
        json = MediaInfoA_Inform(handle, 0);
    MediaInfoA_Close(handle);
    MediaInfoA_Delete(handle);
    // A name the library cannot take (not in the locale's encoding) goes to the tool.
    if (!json.isEmpty())
        return fromJson(json);
#endif
    return of(path);
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

MCMediaSummary MCMediaSummary::fromReport(const QStringList &lines)
{
    MCMediaSummary summary;
    QString section;
    bool durationRead = false;
    // Each key comes several times, in several forms: the first is the plain value.
    QStringList *formats = nullptr;
    bool formatRead = false;
    bool channelsRead = false;
    for (const QString &line : lines) {
        if (MCMediaInfoReport::isSectionTitle(line)) {
            section = line.trimmed().section(QLatin1Char(' '), 0, 0);
            formats = section == QStringLiteral("Video") ? &summary.videoFormats
                      : section == QStringLiteral("Audio") ? &summary.audioFormats
                                                          : nullptr;
            if (formats)
                formats->append(QString());
            if (section == QStringLiteral("Audio"))
                summary.audioChannels.append(QString());
            else if (section == QStringLiteral("Text"))
                ++summary.textCount;
            formatRead = channelsRead = false;
            continue;
        }
        const MCMediaInfoReport::KeyValue pair = MCMediaInfoReport::keyValue(line);
        if (!pair.valid)
            continue;
        const QString key = pair.key.trimmed().toString();
        const QString value = pair.value.trimmed().toString();
        if (key == QStringLiteral("Format") && !formatRead) {
            formatRead = true;
            if (section == QStringLiteral("General"))
                summary.readable = !value.isEmpty();
            else if (formats)
                formats->last() = value;
        } else if (section == QStringLiteral("General") && key == QStringLiteral("Duration") && !durationRead) {
            durationRead = true;
            summary.durationSeconds = value.toDouble() / 1000.0; // milliseconds
        } else if (section == QStringLiteral("General") && key == QStringLiteral("IsTruncated")) {
            summary.truncated = value.startsWith(QStringLiteral("Yes"));
        } else if (section == QStringLiteral("Audio") && key == QStringLiteral("Channel(s)") && !channelsRead) {
            channelsRead = true;
            summary.audioChannels.last() = value;
        }
    }
    return summary;
}
