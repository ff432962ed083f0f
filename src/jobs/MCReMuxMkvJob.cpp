#include "MCReMuxMkvJob.h"

#include "MCJobFactory.h"
#include "MCMkvReMuxer.h"

#include <QTimer>

MCReMuxMkvJob::MCReMuxMkvJob(QObject *parent)
    : MCJob(parent)
{
}

MCReMuxMkvJob::~MCReMuxMkvJob()
{
    stopMonitorThread();
}

void MCReMuxMkvJob::registerJobType()
{
    MCJobFactory::instance().registerJobType(QStringLiteral("MCReMuxMkvJob"),
                                             [](QObject *parent) { return new MCReMuxMkvJob(parent); });
}

void MCReMuxMkvJob::startJob()
{
    auto remuxer = std::make_shared<MCMkvReMuxer>();
    remuxer->inititializeForTrack(0, QStringLiteral("Re-Muxing MKV"), true);
    setStepConverterList({remuxer});
    setStepPIDList({});
    setProgressList({});
    startStep(remuxer, true);
    QTimer::singleShot(100, this, &MCReMuxMkvJob::monitorStartJob);
}

void MCReMuxMkvJob::monitorStartJob()
{
    addMonitorLoop([this] { return remuxMonitorTick(); }, [this] { jobDone(); });
}

bool MCReMuxMkvJob::remuxMonitorTick()
{
    // The rows of the tick before, by step position.
    const QVariantList previous = progressList();
    const QList<MCConverterPtr> steps = stepConverterList();
    QVariantList rows;
    qsizetype complete = 0;
    for (qsizetype k = 0; k < steps.size(); ++k) {
        const MCConverterPtr &step = steps.at(k);
        if (!step) {
            ++complete;
            continue;
        }
        const QString status = step->monitorConversion();
        if (status == QStringLiteral("Complete")) {
            ++complete;
            rows.append(progressRow(step->stepName, status));
        } else if (status == QStringLiteral("error")) {
            rows.append(k < previous.size() ? previous.at(k) : QVariant(progressRow(step->stepName, QString())));
        } else {
            rows.append(progressRow(step->stepName, status));
        }
    }
    setProgressList(rows);
    return complete >= steps.size();
}
