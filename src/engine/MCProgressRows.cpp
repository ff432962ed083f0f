#include "MCProgressRows.h"

namespace {

const QString kComplete = QStringLiteral("Complete");
const QString kError = QStringLiteral("error");

int leadingInteger(const QString &status)
{
    return status.section(QLatin1Char('%'), 0, 0).trimmed().toInt();
}

} // namespace

QVariantMap MCProgressRows::row(const QString &step, const QString &progress)
{
    return {{QStringLiteral("Step"), step}, {QStringLiteral("Progress"), progress}};
}

void MCProgressRows::resetCounters()
{
    QMutexLocker lock(&m_mutex);
    m_stepCounter = 1;
    m_lastValue = 0;
}

int MCProgressRows::stepCounter() const
{
    QMutexLocker lock(&m_mutex);
    return m_stepCounter;
}

int MCProgressRows::lastValue() const
{
    QMutexLocker lock(&m_mutex);
    return m_lastValue;
}

void MCProgressRows::beginTick(const QVariantList &previousRows)
{
    QMutexLocker lock(&m_mutex);
    m_previousRows = previousRows;
}

QVariantList MCProgressRows::previousRows() const
{
    QMutexLocker lock(&m_mutex);
    return m_previousRows;
}

QVariantMap MCProgressRows::rowFor(const MCMonitorPolicy &policy, const QString &stepName, QString status, qsizetype position)
{
    QMutexLocker lock(&m_mutex);
    if (status == kError && !policy.errorShowsLastPercentage) {
        // No news: the step's row of the tick before stands.
        if (position < m_previousRows.size()) {
            const QVariantMap previous = m_previousRows.at(position).toMap();
            if (previous.value(QStringLiteral("Step")).toString() == stepName)
                return previous;
        }
        return row(stepName, QString());
    }
    if (status == kError)
        status = QStringLiteral("%1%").arg(m_lastValue);
    if (policy.errorShowsLastPercentage) {
        // "Complete" reads as 0, so a counter also steps once as the tool ends.
        const int value = leadingInteger(status);
        if (policy.countedLabel && m_lastValue > value)
            ++m_stepCounter;
        m_lastValue = value;
    }
    if (status == kComplete && !policy.keepFinishedRows)
        return {};
    if (const auto heartbeat = policy.heartbeatRows.constFind(status); heartbeat != policy.heartbeatRows.cend())
        return *heartbeat;
    const QString label = policy.countedLabel ? policy.countedLabel(stepName, m_stepCounter) : stepName;
    return row(label, status);
}
