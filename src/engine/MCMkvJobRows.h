#pragma once

#include <QString>

class MCSelection;

// The queue's rows for the Matroska jobs. The window and the command line
// name them "MKV ..."; the MKV jobs and their steps branch on the word of
// the same edit on an AVI ("AVI Joining", "AVI Conversion", ...), so the
// queue hands each job a selection that carries that word.
namespace MCMkvJobRows {

// "MCConvertToMkvJob" or "MCEditMkvJob" for an MKV job type, else empty.
QString jobClassFor(const QString &jobType);
// The word the job's own selection carries; the type itself for any other.
QString branchTypeFor(const QString &jobType);
// Splitting makes one job per file, as on an AVI.
bool oneJobPerFile(const QString &jobType);
// What the job's copy of the selection needs before it is queued: stereo
// copies become tracks of a conversion, whose steps pair with its tracks by
// position, so a subtitle left out of the file leaves the list too.
void prepareJobSelection(MCSelection &selection);

} // namespace MCMkvJobRows
