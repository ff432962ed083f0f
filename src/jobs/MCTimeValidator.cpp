#include "MCTimeValidator.h"

#include "MCNotificationCenter.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QString kAcceptedCharacters = QStringLiteral("0123456789:");

bool isSeparator(QChar c)
{
    return c == QLatin1Char(':') || c == QLatin1Char(',');
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

QChar charAt(const QString &text, int i)
{
    return i < text.size() ? text.at(i) : QChar();
}

struct Written
{
    QString text;
    int position = 0;
    bool beep = false;
    bool refused = false;
};

// Writes typed characters over text from position on: typed separators are
// skipped (the mask keeps its own), a digit that lands on a separator goes
// one place further, and nothing is written at or past limit.
Written writeTyped(const QString &text, const QString &typed, int position, int limit, bool commaIsTyped,
                   bool refuseOthers)
{
    Written out{text, position};
    for (const QChar c : typed) {
        if (c == QLatin1Char(':') || (commaIsTyped && c == QLatin1Char(',')))
            continue;
        if (refuseOthers && !isDigit(c)) {
            out.refused = true;
            return out;
        }
        if (out.position < out.text.size() && isSeparator(out.text.at(out.position)))
            ++out.position;
        if (out.position >= limit) {
            out.beep = true;
            break;
        }
        if (out.position < out.text.size())
            out.text[out.position] = c;
        else
            out.text.append(c);
        ++out.position;
    }
    return out;
}

MCTimeEdit putBack(const QString &oldText, int caret, bool beep)
{
    return {oldText, std::clamp(caret, 0, int(oldText.size())), beep};
}

MCTimeEdit typing(const QString &oldText, const QString &newText, int caret)
{
    const int grown = int(newText.size() - oldText.size());
    int p = -1;
    for (int i = 0; i < MCTimeValidator::maskLength; ++i) {
        if (charAt(newText, i) != charAt(oldText, i)) {
            p = i;
            break;
        }
    }
    if (p < 0 || caret <= p)
        return putBack(oldText, caret - grown, false);
    for (const QChar c : newText) {
        if (!kAcceptedCharacters.contains(c))
            return putBack(oldText, p, true);
    }
    const Written written = writeTyped(oldText, newText.mid(p, caret - p), p, MCTimeValidator::maskLength,
                                       false, false);
    int newCaret = written.position;
    if (newCaret == 2 || newCaret == 5)
        ++newCaret;
    return {written.text, std::min(newCaret, int(written.text.size())), written.beep};
}

MCTimeEdit deleting(const QString &oldText, const QString &newText, int caret)
{
    const int shrunk = int(oldText.size() - newText.size());
    int p = caret - shrunk;
    for (int i = 0; i < newText.size(); ++i) {
        if (newText.at(i) != oldText.at(i)) {
            p = i;
            break;
        }
    }
    QString text = oldText;
    bool beep = false;
    const int runEnd = caret + shrunk; // where the replaced run ended in the old text
    if (p < caret) {
        // Typed over a selection: the typed characters overwrite the mask,
        // which never grows (12 is the subtitle form HH:MM:SS,mmm).
        const int start = std::max(p, 0);
        const int limit = std::min(MCTimeValidator::subtitleMaskLength, int(oldText.size()));
        const Written written = writeTyped(text, newText.mid(start, caret - start), start, limit, true, true);
        if (written.refused)
            return putBack(oldText, start, true);
        text = written.text;
        beep = written.beep;
        // Typed digits that hopped a separator end later than the editor's caret.
        caret = std::max(caret, written.position);
    }
    // The deleted run becomes zeros; a separator stays and its zero goes one on.
    for (int i = caret; i < runEnd && i < text.size(); ++i) {
        if (isSeparator(text.at(i)) && ++i >= text.size())
            break;
        if (!isSeparator(text.at(i)))
            text[i] = QLatin1Char('0');
    }
    return {text, std::clamp(caret, 0, int(text.size())), beep};
}

// The leading decimal number of a piece of text; 0 when there is none.
double leadingNumber(const QString &text)
{
    int end = 0;
    while (end < text.size() && (isDigit(text.at(end)) || text.at(end) == QLatin1Char('.')))
        ++end;
    bool ok = false;
    const double value = text.left(end).toDouble(&ok);
    return ok ? value : 0.0;
}

} // namespace

bool MCTimeValidator::textShouldBeginEditing(const QString &text, int selectionLocation, int selectionLength)
{
    oldText = text;
    oldSelectedLocation = selectionLocation;
    oldSelectedLength = selectionLength;
    return true;
}

bool MCTimeValidator::textShouldEndEditing(const QString &text, int selectionLocation, int selectionLength)
{
    return textShouldBeginEditing(text, selectionLocation, selectionLength);
}

MCTimeEdit MCTimeValidator::controlTextDidChange(const QString &fieldID, const QString &newText, int caret)
{
    const MCTimeEdit edit = maskEdit(oldText, newText, caret);
    oldText = edit.text;
    MCNotificationCenter::defaultCenter().post(MCNotificationName::timeTextFieldChanged, edit.text,
                                               {{QStringLiteral("textFieldID"), fieldID}});
    return edit;
}

QString MCTimeValidator::isValidObject(const QString &fieldID, const QString &text)
{
    const QString normalised = convertToTextTimeFrom(convertTimeInSecondsFrom(text));
    MCNotificationCenter::defaultCenter().post(MCNotificationName::timeTextFieldExited, normalised,
                                               {{QStringLiteral("theTextField"), fieldID}});
    return normalised;
}

MCTimeEdit MCTimeValidator::maskEdit(const QString &oldText, const QString &newText, int caret)
{
    caret = std::clamp(caret, 0, int(newText.size()));
    if (newText.size() >= oldText.size())
        return typing(oldText, newText, caret);
    return deleting(oldText, newText, caret);
}

double MCTimeValidator::convertTimeInSecondsFrom(const QString &text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    const double hours = leadingNumber(parts.value(0));
    const double minutes = leadingNumber(parts.value(1));
    const double seconds = leadingNumber(parts.value(2).section(QLatin1Char(','), 0, 0));
    return hours * 3600 + minutes * 60 + seconds;
}

QString MCTimeValidator::convertToTextTimeFrom(double seconds)
{
    constexpr double kMax = std::numeric_limits<qint32>::max();
    constexpr double kMin = std::numeric_limits<qint32>::min();
    const qint32 s = std::isnan(seconds) ? 0 : qint32(std::clamp(std::trunc(seconds), kMin, kMax));
    return QString::asprintf("%02d:%02d:%02d", s / 3600, (s / 60) % 60, s % 60);
}
