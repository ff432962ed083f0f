#pragma once

#include "MCSelection.h"

#include <QString>

// What the MKV jobs refuse before any tool runs: values mkvmerge would
// misread, edits that would leave nothing, tracks mkvextract cannot write.
// Each answers "" when the job can go ahead, else the reason in words the
// user can act on. The selection rules may ask the same questions up front.
class MCMkvJobChecks
{
public:
    // A split by time must lie within the file (fileSeconds long; 0 when
    // unknown) and end after it starts; a size or a duration must be above 0.
    static QString splitRefusal(const MCSelection &selection, double fileSeconds);
    // Removing tracks must leave at least one.
    static QString removalRefusal(const MCSelection &selection);
    // mkvextract writes the video, audio and subtitle tracks of an MKV file.
    static QString extractionRefusal(const MCVideoTrack &track);
    // The conversion pairs its steps with the selection's tracks by position,
    // so the list may hold only video and audio tracks and subtitles muxed
    // as they are.
    static QString conversionRefusal(const MCSelection &selection);
};
