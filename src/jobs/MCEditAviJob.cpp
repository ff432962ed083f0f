#include "MCEditAviJob.h"

#include "MCAviEditor.h"
#include "MCJobFactory.h"
#include "MCLog.h"
#include "MCMkvReMuxer.h"
#include "MCTrackDumper.h"

#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

QString extractionLabelFor(const QString &trackType)
{
    if (trackType == QStringLiteral("Video"))
        return QStringLiteral("Extracting Video Track");
    if (trackType == QStringLiteral("Audio"))
        return QStringLiteral("Extracting Audio Track");
    if (trackType == QStringLiteral("Subtitle"))
        return QStringLiteral("Extracting Subtitle Track");
    return QStringLiteral("Extracting");
}

int leadingInteger(const QString &status)
{
    return status.section(QLatin1Char('%'), 0, 0).trimmed().toInt();
}

} // namespace

MCEditAviJob::MCEditAviJob(QObject *parent)
    : MCJob(parent)
{
}

MCEditAviJob::~MCEditAviJob()
{
    // The monitor thread reads this job's counters; it must end first.
    stopMonitorThread();
}

void MCEditAviJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCEditAviJob"),
                                             [](QObject *parent) { return new MCEditAviJob(parent); });
}

void MCEditAviJob::startJob()
{
    setStepPIDList({});
    setProgressList({});
    theTracks = jobSelection->trackList;
    setStepConverterList({});
    progressStepCounter = 1;
    muxStepCounter = 1;
    oldStepProgress = 0;

    const QString &type = jobSelection->jobType;
    if (type == QStringLiteral("AVI Track Extraction")) {
        startExtraction();
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("AVI Track Addition")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Adding Tracks"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("AVI Joining")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Joining Videos"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJobWithMultipleSteps);
    } else if (type == QStringLiteral("AVI Splitting")) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Splitting Videos"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == QStringLiteral("MKV Remux")) {
        startSingleStep(std::make_shared<MCMkvReMuxer>(), QStringLiteral("Re-Muxing MKV"));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorMuxStep);
    } else {
        // Nothing to do; ending at once keeps the queue moving.
        MCLog::line(QStringLiteral("No editing steps for \"%1\"").arg(type));
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::jobDone);
    }
}

void MCEditAviJob::startExtraction()
{
    QList<MCConverterPtr> steps;
    for (int i = 0; i < theTracks.size(); ++i) {
        auto step = std::make_shared<MCTrackDumper>();
        step->inititializeForTrack(i, extractionLabelFor(theTracks.at(i)->trackType), true);
        steps.append(step);
    }
    setStepConverterList(steps);
    for (const MCConverterPtr &step : steps) {
        startStep(step, false);
        // The extracted tracks are what the user asked for: they outlive the job.
        if (!step->isTemporaryOutput)
            tempFilesToDeleteList.removeAll(step->outputFileURL.toLocalFile());
    }
}

void MCEditAviJob::startSingleStep(const MCConverterPtr &step, const QString &label)
{
    // Track addition takes its audio file from the first track of the list.
    step->inititializeForTrack(0, label, true);
    setStepConverterList({step});
    startStep(step, true);
}

void MCEditAviJob::monitorStartJob()
{
    addMonitorLoop([this] { return startMonitorTickOfEditing(); }, [this] { jobDone(); });
}

bool MCEditAviJob::startMonitorTickOfEditing()
{
    const QList<MCConverterPtr> steps = stepConverterList();
    QVariantList rows;
    qsizetype complete = 0;
    for (const MCConverterPtr &step : steps) {
        if (!step) {
            ++complete;
            continue;
        }
        QString status = step->monitorConversion();
        if (status == QStringLiteral("Complete")) {
            ++complete;
        } else if (status == QStringLiteral("avimerge 1")) {
            rows.append(progressRow(QStringLiteral("Adding Audio"), QStringLiteral("Muxing")));
        } else if (status == QStringLiteral("avimerge 2")) {
            rows.append(progressRow(QStringLiteral("Adding Audio"), QString()));
        } else if (status == QStringLiteral("splitting 1")) {
            rows.append(progressRow(QStringLiteral("Splitting AVI"), QStringLiteral("Splitting")));
        } else if (status == QStringLiteral("splitting 2")) {
            rows.append(progressRow(QStringLiteral("Splitting AVI"), QString()));
        } else {
            if (status == QStringLiteral("error"))
                status = QStringLiteral("%1%").arg(oldStepProgress);
            rows.append(progressRow(step->stepName, status));
        }
        oldStepProgress = leadingInteger(status);
    }
    setProgressList(rows);
    return complete >= steps.size();
}

void MCEditAviJob::monitorStartJobWithMultipleSteps()
{
    addMonitorLoop(
        [this] {
            return countedMonitorTick(progressStepCounter, oldStepProgress, [](const MCConverterPtr &step, int counter) {
                return QStringLiteral("%1 Step #%2").arg(step->stepName).arg(counter);
            });
        },
        [this] { jobDone(); });
}

void MCEditAviJob::monitorMuxStep()
{
    addMonitorLoop(
        [this] {
            return countedMonitorTick(muxStepCounter, oldStepProgress, [](const MCConverterPtr &, int counter) {
                return QStringLiteral("Muxing Step #%1").arg(counter);
            });
        },
        [this] { jobDone(); });
}
