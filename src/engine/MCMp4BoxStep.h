#pragma once

#include "MCConverter.h"

// The common ground of the steps that run MP4Box: its place in the resource
// folder, the guarded start in the background and the progress it prints as
// a bar followed by "| (NN/100)".
class MCMp4BoxStep : public MCConverter
{
public:
    // "Complete" once MP4Box has ended; while it runs the percentage of its
    // last progress line, or "error" when that line is something else.
    QString monitorConversion() override;

    // The count of "| (45/100)" as "45%"; a line without one is read whole,
    // an empty one as "0%", anything that is not a count as "error".
    static QString progressFromLine(const QString &line);

protected:
    // Runs MP4Box with the arguments and the log tail. Nothing starts
    // ("error") when MP4Box is missing or the output or log would be written
    // over one of the inputs. A new output is announced, so that a watched
    // folder does not take it up as a movie.
    QString launchMp4Box(MCOptionList arguments, const QList<QUrl> &inputs);
};
