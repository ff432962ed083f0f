#pragma once

#include "MCConverter.h"

// The common ground of the steps that run mkvmerge: the save folder, the
// guarded start in the background and the progress read from the log.
class MCMkvmergeStep : public MCConverter
{
public:
    // "Complete" once mkvmerge has ended; while it runs the percentage of
    // its last progress line, or "error" when that line is something else.
    QString monitorConversion() override;

    // The last piece after ": " when it ends in "%", else "error".
    static QString progressFromLine(const QString &line);

protected:
    // mkvmerge ends with 1 when it only warned; its output is fine then.
    bool exitCodeMeansSuccess(int exitCode) const override { return exitCode <= 1; }
    // The preferences' save folder, else the folder of the given file.
    QUrl saveFolderBeside(const QUrl &file) const;
    // Runs mkvmerge with the arguments and the log tail; "error" and nothing
    // started when the output or the log would write over an input.
    QString launchMkvmerge(MCOptionList arguments, const QList<QUrl> &inputs);
};
