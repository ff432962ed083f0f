#pragma once

#include <QString>

// The answer of one mask edit: the text the field shows, where the caret
// stands, and whether the user is told off with a beep.
struct MCTimeEdit
{
    QString text;
    int caret = 0;
    bool beep = false;
};

// Keeps a split time field (HH:MM:SS, or HH:MM:SS,mmm as subtitles write it)
// behaving like a fixed mask that is overwritten in place: only digits and
// ":" are taken, the separators never move, deleted digits become "0", and
// the text never grows past the mask. The window hands every edit of the
// field to controlTextDidChange and shows the answer; the selection rules
// learn the texts from the two notifications.
class MCTimeValidator
{
public:
    QString oldText;
    int oldSelectedLocation = 0;
    int oldSelectedLength = 0;
    QString srtTimeFormat; // carried with the validator; the mask does not read it

    // Remembers the field's text and selection as editing begins.
    // Always allows editing; the same routine serves the end of editing.
    bool textShouldBeginEditing(const QString &text, int selectionLocation, int selectionLength);
    bool textShouldEndEditing(const QString &text, int selectionLocation, int selectionLength);

    // After every keystroke: applies the mask to the field's new text and
    // caret, remembers the result and posts "timeTextFieldChangedNotification"
    // with the text as object and {"textFieldID": fieldID}.
    MCTimeEdit controlTextDidChange(const QString &fieldID, const QString &newText, int caret);

    // When the field is left: answers the normalised text and posts
    // "timeTextFieldExitedNotification" with it and {"theTextField": fieldID}.
    // An entry is never refused.
    QString isValidObject(const QString &fieldID, const QString &text);

    // The mask rules alone, over the text before and after one edit.
    static MCTimeEdit maskEdit(const QString &oldText, const QString &newText, int caret);

    // Hours x 3600 + minutes x 60 + seconds; milliseconds after "," dropped.
    static double convertTimeInSecondsFrom(const QString &text);
    // "%02d:%02d:%02d"; hours above 99 print with more digits.
    static QString convertToTextTimeFrom(double seconds);

    static constexpr int maskLength = 8;
    static constexpr int subtitleMaskLength = 12;
};
