// Prints how long inspecting a file takes compared with one bare mediainfo
// run, and how long parsing a 200-track report takes.

#include "MCHelpers.h"
#include "MCMediaInfoReport.h"
#include "MCVideoFile.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kRuns = 10;

double millisecondsPerRun(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < kRuns; ++i)
        work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6 / kRuns;
}

QStringList syntheticReport(int tracks)
{
    QStringList lines{QStringLiteral("General"), QStringLiteral("Format                                   : Matroska"), QString()};
    for (int i = 0; i < tracks; ++i) {
        const bool video = i == 0;
        lines << (video ? QStringLiteral("Video") : QStringLiteral("Audio #%1").arg(i))
              << QStringLiteral("ID                                       : %1").arg(i + 1)
              << QStringLiteral("Codec                                    : %1").arg(video ? "V_MPEG4/ISO/AVC" : "A_AC3")
              << QStringLiteral("Codec                                    : %1").arg(video ? "AVC" : "AC-3")
              << QStringLiteral("Bit rate                                 : 448000")
              << QStringLiteral("Bit rate                                 : 448 kb/s")
              << QStringLiteral("Channel(s)                               : 6")
              << QStringLiteral("Channel(s)                               : 6 channels")
              << QStringLiteral("Title                                    : Track %1").arg(i)
              << QStringLiteral("Language                                 : en")
              << QStringLiteral("Language                                 : English") << QString();
    }
    return lines;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString clip = dir.path() + QStringLiteral("/bench.mkv");
    QProcess::execute(QStringLiteral("ffmpeg"),
                      {QStringLiteral("-nostdin"), QStringLiteral("-loglevel"), QStringLiteral("error"), QStringLiteral("-y"),
                       QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("testsrc=size=640x360:rate=25"),
                       QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("sine=sample_rate=48000"),
                       QStringLiteral("-t"), QStringLiteral("10"), QStringLiteral("-c:v"), QStringLiteral("libx264"),
                       QStringLiteral("-preset"), QStringLiteral("ultrafast"), QStringLiteral("-c:a"), QStringLiteral("ac3"), clip});
    const QString avi = dir.path() + QStringLiteral("/bench.avi");
    QProcess::execute(QStringLiteral("ffmpeg"), {QStringLiteral("-nostdin"), QStringLiteral("-loglevel"), QStringLiteral("error"),
                                                 QStringLiteral("-i"), clip, QStringLiteral("-c:v"), QStringLiteral("mpeg4"),
                                                 QStringLiteral("-c:a"), QStringLiteral("libmp3lame"), avi});
    const QString resources = MCHelpers::resourceFolderPath();
    const QUrl mediainfo = QUrl::fromLocalFile(resources + QStringLiteral("/mediainfo"));
    const QUrl mkvinfo = QUrl::fromLocalFile(resources + QStringLiteral("/mkvinfo"));
    for (const QString &path : {avi, clip}) {
        const QUrl url = QUrl::fromLocalFile(path);
        const double bare = millisecondsPerRun([&] { MCHelpers::doShellScriptFor(mediainfo, {QStringLiteral("-f"), url}); });
        const double load = millisecondsPerRun([&] {
            MCVideoFile file;
            file.initializeForURL(url);
        });
        std::printf("inspect %s: bare mediainfo -f --Legacy %.1f ms, initializeForURL %.1f ms, ratio %.2f (aim <= 1.20)\n",
                    qPrintable(QFileInfo(path).fileName()), bare, load, load / bare);
        if (path.endsWith(QStringLiteral(".mkv"))) {
            const double header = millisecondsPerRun([&] { MCHelpers::doShellScriptFor(mkvinfo, {url}); });
            std::printf("  Matroska files also run mkvinfo (bare: %.1f ms) beside mediainfo: ratio to the slower tool %.2f\n",
                        header, load / std::max(bare, header));
        }
    }

    const QStringList report = syntheticReport(200);
    const MCVideoFile parser;
    MCTrackListResult result;
    const double parse = millisecondsPerRun([&] { result = parser.trackListFromReport(report, QUrl::fromLocalFile(QStringLiteral("/x/many.mkv"))); });
    std::printf("parse: %lld tracks from a %lld-line report in %.3f ms (aim < 5 ms)\n", static_cast<long long>(result.tracks.size()),
                static_cast<long long>(report.size()), parse);
    return 0;
}
