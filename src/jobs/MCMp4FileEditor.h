#pragma once

#include "MCMp4BoxStep.h"

// Edits MP4 files with MP4Box: removes tracks (from a copy of the file),
// joins files, splits one by a time range or by size, sets the picture's
// pixel aspect ratio; and for a join MP4Box refused, makes a cleaned copy of
// one file. Every edit but the in-place rewrite writes a new file.
class MCMp4FileEditor : public MCMp4BoxStep
{
public:
    MCMp4FileEditor();

    // Set before the start: the step makes the cleaned copy of this file
    // for a join retry, whatever the selection's job type.
    QUrl fileToClean;

    // By the selection's job type: "MP4 Track Removal", "MP4 Joining",
    // "MP4 Splitting", "PAR Editing". Any other, and values MP4Box cannot
    // serve, answer "error" and start nothing.
    QString startConversionFor(const MCSelectionPtr &selection) override;
    // A copy of the file re-added into a new one, which leaves behind the
    // tracks that are neither video, audio nor subtitles.
    QString removeSysTracksFromURL(const QUrl &file, const MCSelectionPtr &selection);
    // Rewrites the file in place with its index in front, so it can play
    // while it loads. Never one of the selection's sources.
    QString moveMetadataToFrontForURL(const QUrl &file, const MCSelectionPtr &selection);
    QStringList findMismatchedProperetiesFor(const QList<QUrl> &urls) const;
    // A split's results are the pieces MP4Box named after the output.
    QStringList resultPaths() const override;

    // "-splitx START:END" or "-splits KB"; empty when the values cannot be served.
    static QString splitOptionFor(const MCSelection &selection);
    // The pixel aspect ratio in thousandths (40:33 gives 1212); 0 when the
    // width or height is not a positive number.
    static int parThousandthsFor(const MCSelection &selection);
private:
    // "-tmp FOLDER" when the save folder lies on a mounted volume, so that
    // MP4Box's scratch file stays on the output's disk; else nothing.
    static MCOptionList temporaryFolderOptions(const QUrl &saveFolder);

    QString startRemoval();
    QString startJoining(const QList<QUrl> &files);
    QString startSplitting();
    QString startParEditing();
    // Output and log "NAME.WHAT.EXT" and "NAME.WHAT.log" in the save folder.
    void nameOutputAfter(const QUrl &file, const QString &what);

    bool m_splitting = false;
};
