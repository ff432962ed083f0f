#pragma once

#include "MCConverter.h"

// Turns an ASS or SSA subtitle file into SRT with MPlayer's subtitle dump,
// synchronously, in the folder given (the job's private one), so the dump
// and its renamed result never meet a file of the user's.
class MCSubtitleConverter : public MCConverter
{
public:
    MCSubtitleConverter();

    // The SRT file made from the subtitle, or an empty URL when MPlayer made
    // none. The result is also tempFileToDeleteURL.
    QUrl convertSubtitleForURL(const QUrl &subtitle, const MCSelectionPtr &selection, const QString &workFolder);
    // An SRT file goes in as it is.
    QUrl checkAndFixSrt(const QUrl &subtitle) const { return subtitle; }
    // "no file" when the dump is missing, else "OK" once the blank lines the
    // dump leaves between a time line and its text are gone.
    QString fixDumpedSrt(const QUrl &dump) const;
    static QString withoutBlanksAfterTimeLines(const QString &text);
};
