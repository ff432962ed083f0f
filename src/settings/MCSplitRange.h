#pragma once

#include <QString>

// The time range of a split as entered (HH:MM:SS, seconds may carry a
// fraction). A range the tools would misread is never passed on.
class MCSplitRange
{
public:
    // Seconds of an HH:MM:SS text; -1 when the text is not one.
    static double secondsOfTimeText(const QString &text);
    // Both ends readable and the end after the start.
    static bool isValidTimeRange(const QString &startText, const QString &endText);
};
