#include "MCStepStatus.h"

#include <QRegularExpression>

#include <algorithm>

std::optional<double> MCStepStatus::percentIn(const QString &status)
{
    static const QRegularExpression pattern(QStringLiteral("(\\d+(?:\\.\\d+)?)\\s*%"));
    QRegularExpressionMatchIterator it = pattern.globalMatch(status);
    std::optional<double> last;
    while (it.hasNext())
        last = it.next().captured(1).toDouble();
    if (last)
        last = std::clamp(*last, 0.0, 100.0);
    return last;
}
