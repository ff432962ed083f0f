#pragma once

#include "MCConverter.h"

// The AVI editing step: joins AVI files with mencoder, splits one with
// avisplit, or adds an audio track with avimerge.
class MCAviEditor : public MCConverter
{
public:
    MCAviEditor();

    // "AVI Joining", "AVI Splitting" (by "time" or "size") and "AVI Track
    // Addition"; anything else answers "error" and starts nothing.
    QString startConversionFor(const MCSelectionPtr &selection) override;
    // "Complete" when the tool has ended. avimerge and avisplit print no
    // progress, so they alternate "avimerge 1"/"avimerge 2" and
    // "splitting 1"/"splitting 2"; a join shows mencoder's percentage.
    QString monitorConversion() override;

    QStringList findMismatchedProperetiesFor(const QList<QUrl> &urls) const;

    // avisplit's arguments between the input and "-o" for the selection's
    // split values; empty when avisplit cannot serve them.
    static MCOptionList splitArgumentsFor(const MCSelection &selection);

private:
    QString startJoining();
    QString startSplitting();
    QString startAddingAudio();
    // The common ending: the log tail, the guard against writing over an
    // input, the start in the background.
    QString launch(const QString &tool, MCOptionList arguments, const QList<QUrl> &inputs);
    QString stemInSaveFolder(const QUrl &input);
    QString heartbeat(const QString &word);
};
