// Prints (a) the time of an AVI conversion through the queue against the
// same mencoder command run by hand, and (b) Kestrane's own CPU use while a
// job runs: its process plus the short monitoring commands it starts, not
// the encoder (which is detached and so not one of Kestrane's children).
#include "MCConvertToAviJob.h"
#include "MCJob.h"
#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"
#include "MCPreferences.h"
#include "MCQueueController.h"
#include "MCVideoFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>

#include <cstdio>

namespace {

int runShell(const QString &command)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), command});
    process.waitForFinished(-1);
    return process.exitCode();
}

double cpuSeconds()
{
    double total = 0;
    for (int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        total += usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    }
    return total;
}

MCSelectionPtr selectionFor(const QString &path)
{
    MCVideoFile file;
    if (file.initializeForURL(QUrl::fromLocalFile(path)) != QStringLiteral("OK"))
        qFatal("cannot inspect %s", qPrintable(path));
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->initializeFrom(file);
    selection->trackList = file.trackList;
    selection->jobType = QStringLiteral("AVI Conversion");
    selection->userVideoBitRate = QStringLiteral("2000");
    selection->userPassNumber = QStringLiteral("1");
    selection->subCount = QStringLiteral("0");
    for (const MCVideoTrackPtr &track : selection->trackList) {
        track->trackSelected = true;
        track->userCodec = track->trackType == QStringLiteral("Video") ? QStringLiteral("mpeg4") : QStringLiteral("mp3");
        track->userBitRate = QStringLiteral("128");
    }
    return selection;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    qputenv("XDG_STATE_HOME", dir.filePath(QStringLiteral("state")).toUtf8());
    MCPreferences preferences(dir.filePath(QStringLiteral("settings.ini")));
    preferences.saveDirectoryURL = QUrl::fromLocalFile(dir.filePath(QStringLiteral("save")));
    preferences.keepLogsFlag = false;
    QDir().mkpath(preferences.saveDirectoryURL.toLocalFile());
    MCPreferences::setApplicationPreferences(&preferences);
    MCConvertToAviJob::registerJobType();

    std::printf("Generating a 60-second 1920x1080 clip...\n");
    std::fflush(stdout);
    const QString pcm = dir.filePath(QStringLiteral("source.pcm.avi"));
    const QString source = dir.filePath(QStringLiteral("source.avi"));
    runShell(QStringLiteral("ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc2=s=1920x1080:r=25:d=60 "
                            "-f lavfi -i sine=d=60:r=48000 -ac 2 -c:v mpeg4 -vtag XVID -q:v 6 -c:a pcm_s16le '%1' && "
                            "mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2' >/dev/null 2>&1")
                 .arg(pcm, source));
    QFile::remove(pcm);

    const MCSelectionPtr selection = selectionFor(source);

    // (a) by hand: the step's own command, run in the foreground.
    MCMencoderVideo step;
    step.prepareFor(selection);
    MCOptionList foreground = step.optionArray1;
    foreground.removeLast(); // "& echo $!"
    const QString command = MCHelpers::commandFromOptions(
        MCHelpers::doubleQuotedFormOf(MCHelpers::urlOfApp(step.mencoderVersion).toLocalFile()), foreground);
    QElapsedTimer clock;
    clock.start();
    runShell(command);
    const double byHand = clock.elapsed() / 1000.0;
    QFile::remove(step.outputFileURL.toLocalFile());

    // (b) through the queue.
    MCQueueController queue;
    qint64 startedAt = 0;
    const double cpuBefore = cpuSeconds();
    clock.restart();
    queue.addToQueue(selection);
    MCJob *job = queue.qJobList().constLast();
    QEventLoop loop;
    QObject::connect(job, &MCJob::jobStatusChanged, job, [&] {
        if (job->jobStatus() == QStringLiteral("Running"))
            startedAt = clock.elapsed();
        else if (job->jobStatus() == QStringLiteral("Completed") || job->jobStatus() == QStringLiteral("Failed"))
            loop.quit();
    });
    // Watches the encoder itself, to tell the tool's time from the job's.
    qint64 encoderEndedAt = 0;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        const MCConverterPtr encoder = job->stepConverterList().value(0);
        if (encoder && encoder->toolWasStarted() && encoderEndedAt == 0 && !encoder->toolIsRunning())
            encoderEndedAt = clock.elapsed();
    });
    watch.start(100);
    loop.exec();
    const double total = clock.elapsed() / 1000.0;
    const double fromStart = total - startedAt / 1000.0;
    const double cpu = cpuSeconds() - cpuBefore;

    std::printf("mencoder by hand:               %.2f s\n", byHand);
    std::printf("through the queue, job running:  %.2f s (%.3fx)\n", fromStart, fromStart / byHand);
    std::printf("through the queue, from adding:  %.2f s (%.3fx)\n", total,
                total / byHand);
    std::printf("encoder in the queue:            %.2f s; job ended %.2f s after the encoder\n",
                (encoderEndedAt - startedAt) / 1000.0, total - encoderEndedAt / 1000.0);
    std::printf("Kestrane CPU while the job ran:  %.3f s of %.2f s = %.2f%% of one core\n", cpu, total,
                100.0 * cpu / total);
    return 0;
}
