#pragma once

#include "MCMediaSummary.h"
#include "MCVideoTrack.h"

#include <QString>
#include <QStringList>

#include <functional>

// What a finished result must look like before it may take its final name.
// Steps carry one; the job checks every result against it.
struct MCResultExpectation
{
    // mediainfo must read the file as media (raw streams and subtitle files
    // included); otherwise a non-empty file is enough.
    bool media = false;
    // Exact stream counts; -1 leaves them unchecked.
    int videoTracks = -1;
    int audioTracks = -1;
    // Or: the first duration source's audio tracks and this many more.
    int addedAudioTracks = -1;
    // The result lasts as long as these files together...
    QStringList durationSources;
    // ...or as the part [rangeStart, rangeEnd) of them (seconds; a cut may
    // begin up to cutSlackSeconds early, at a key frame, and, where the tool
    // waits for the next key frame instead, begin up to cutLateSeconds late).
    double rangeStart = -1.0;
    double rangeEnd = -1.0;
    double cutSlackSeconds = 0.0;
    double cutLateSeconds = 0.0;

    // A media file holding one track for each video and audio track of the
    // list, as long as durationSource.
    static MCResultExpectation holding(const MCTrackList &tracks, const QString &durationSource);
};

namespace MCResultCheck {

// How far a result's duration may stray from the expected one: a second,
// or 1% of a long film.
double toleranceFor(double expectedSeconds);

using SummaryReader = std::function<MCMediaSummary(const QString &path)>;

// "" when the file meets the expectation, else what is wrong with it, in
// words a user can act on. Runs mediainfo on the file; the sources' summaries
// come from readSource. Safe on any thread.
QString check(const QString &path, const MCResultExpectation &expected, const SummaryReader &readSource = MCMediaSummary::of);

} // namespace MCResultCheck
