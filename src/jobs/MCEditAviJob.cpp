#include "MCEditAviJob.h"

#include "MCAviEditor.h"
#include "MCJobFactory.h"
#include "MCMkvReMuxer.h"
#include "MCTrackDumper.h"
#include "MCWords.h"

#include <QTimer>

namespace {

constexpr int kMonitorDelayMs = 100;

} // namespace

MCEditAviJob::MCEditAviJob(QObject *parent)
    : MCEditJob(parent)
{
}

void MCEditAviJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCEditAviJob"),
                                             [](QObject *parent) { return new MCEditAviJob(parent); });
}

void MCEditAviJob::startJob()
{
    beginEditing();
    const QString &type = jobSelection->jobType;
    if (type == MCWords::jobAviTrackExtraction) {
        startExtraction([] { return std::make_shared<MCTrackDumper>(); });
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == MCWords::jobAviTrackAddition) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Adding Tracks"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == MCWords::jobAviJoining) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Joining Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJobWithMultipleSteps);
    } else if (type == MCWords::jobAviSplitting) {
        startSingleStep(std::make_shared<MCAviEditor>(), QStringLiteral("Splitting Videos"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorStartJob);
    } else if (type == MCWords::jobMkvRemux) {
        startSingleStep(std::make_shared<MCMkvReMuxer>(), QStringLiteral("Re-Muxing MKV"), expectedResult());
        QTimer::singleShot(kMonitorDelayMs, this, &MCEditAviJob::monitorMuxStep);
    } else {
        // Nothing to do; ending at once keeps the queue moving.
        refuseJob(QStringLiteral("Kestrane has no steps for \"%1\"").arg(type));
    }
}

MCResultExpectation MCEditAviJob::expectedResult() const
{
    // avisplit starts a cut at the key frame before its start, never later.
    MCResultExpectation result = expectedEditResult(false);
    result.videoTracks = 1;
    return result;
}

void MCEditAviJob::monitorStartJob()
{
    MCMonitorPolicy policy;
    policy.errorShowsLastPercentage = true;
    policy.heartbeatRows = {
        {QStringLiteral("avimerge 1"), progressRow(QStringLiteral("Adding Audio"), QStringLiteral("Muxing"))},
        {QStringLiteral("avimerge 2"), progressRow(QStringLiteral("Adding Audio"), QString())},
        {QStringLiteral("splitting 1"), progressRow(QStringLiteral("Splitting AVI"), QStringLiteral("Splitting"))},
        {QStringLiteral("splitting 2"), progressRow(QStringLiteral("Splitting AVI"), QString())},
    };
    addMonitorLoop(policy);
}
