#pragma once

#include <QString>

class MCSelection;

// The queue's rows for the Matroska and MP4 jobs. The window and the
// command line name them "MKV ..." and "MP4 ..."; the MKV jobs and their
// steps branch on the word of the same edit on an AVI ("AVI Joining",
// "AVI Conversion", ...), so the queue hands each job a selection that
// carries that word. The MP4 jobs keep their own words.
namespace MCMkvJobRows {

// The job class of an MKV or MP4 job type, else empty.
QString jobClassFor(const QString &jobType);
// The word the job's own selection carries; the type itself for any other.
QString branchTypeFor(const QString &jobType);
// Splitting makes one job per file, as on an AVI; so does setting the
// pixel aspect ratio of MP4 files.
bool oneJobPerFile(const QString &jobType);
// What the job's copy of the selection needs before it is queued: stereo
// copies become tracks of a conversion, whose steps pair with its tracks by
// position, so a subtitle left out of the file leaves the list too. An
// MP4 track addition lists the file's own tracks before the added ones.
void prepareJobSelection(MCSelection &selection);

} // namespace MCMkvJobRows
