#include "MCSplitRange.h"

#include <QStringList>

double MCSplitRange::secondsOfTimeText(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 3)
        return -1;
    double seconds = 0;
    for (const QString &part : parts) {
        bool ok = false;
        const double value = part.toDouble(&ok);
        if (!ok || value < 0)
            return -1;
        seconds = seconds * 60 + value;
    }
    return seconds;
}

bool MCSplitRange::isValidTimeRange(const QString &startText, const QString &endText)
{
    const double start = secondsOfTimeText(startText);
    const double end = secondsOfTimeText(endText);
    return start >= 0 && end > start;
}
