#pragma once

#include "MCSelection.h"

#include <QList>
#include <QString>
#include <QUrl>

// What Edit Files and Edit Tracks do with Matroska files: the same edits as
// on an AVI (join, split, extract), plus splitting by duration and removing
// tracks, run by the MKV editing job under the "MKV ..." job types.
namespace MCMkvEditRules {

// Edit Tracks' third row (after extract and add).
inline constexpr int removeTracksRow = 2;
// Edit Files' third split type (after time and size).
inline constexpr int splitByDurationRow = 2;

bool isMatroska(const QString &pathOrExtension);
bool allMatroska(const QList<QUrl> &files);
// One edit joins or splits files of one container (AVI, MKV or MP4).
bool mixesContainers(const QList<QUrl> &files);
// "AVI Joining" / "AVI Splitting" for AVI files, "MKV ..." for MKV files,
// and the MP4 edits for MP4 files.
QString fileEditJobType(const QString &aviJobType, const QList<QUrl> &files);

// Edit Tracks on an MKV file: sets the job type for the row and answers
// whether the selected tracks can be edited so. Extraction takes any
// selected tracks of the file itself; removal takes the selected ones away
// and must leave at least one; adding tracks is for AVI files.
bool decideTrackEdit(MCSelection &selection, int editTrackRow);

// The explanation Edit Tracks shows under the removal row.
QString removalLabel();

} // namespace MCMkvEditRules
