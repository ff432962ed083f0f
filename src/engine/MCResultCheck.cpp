#include "MCResultCheck.h"

#include "MCMediaSummary.h"

#include <QFileInfo>

#include <algorithm>

namespace {

int countOfType(const MCTrackList &tracks, const QString &type)
{
    return static_cast<int>(std::count_if(tracks.cbegin(), tracks.cend(),
                                          [&type](const MCVideoTrackPtr &track) { return track->trackType == type; }));
}

} // namespace

MCResultExpectation MCResultExpectation::holding(const MCTrackList &tracks, const QString &durationSource)
{
    MCResultExpectation expected;
    expected.media = true;
    expected.videoTracks = countOfType(tracks, QStringLiteral("Video"));
    expected.audioTracks = countOfType(tracks, QStringLiteral("Audio"));
    expected.durationSources = {durationSource};
    return expected;
}

namespace MCResultCheck {

namespace {

QString countProblem(const char *kind, qsizetype found, int wanted)
{
    if (wanted < 0 || found == wanted)
        return {};
    if (found == 0)
        return QStringLiteral("it has no %1").arg(QLatin1String(kind));
    return QStringLiteral("it has %1 %2 tracks instead of %3").arg(found).arg(QLatin1String(kind)).arg(wanted);
}

double totalDuration(const QStringList &files, const SummaryReader &readSource)
{
    double total = 0.0;
    for (const QString &file : files)
        total += readSource(file).durationSeconds;
    return total;
}

QString durationProblem(double found, const MCResultExpectation &expected, const SummaryReader &readSource)
{
    if (expected.durationSources.isEmpty())
        return {};
    const double source = totalDuration(expected.durationSources, readSource);
    if (source <= 0.0)
        return {}; // nothing to compare with
    double low = source;
    double high = source;
    if (expected.rangeStart >= 0.0 && expected.rangeEnd > expected.rangeStart) {
        // A range that runs past the end of the film ends with the film.
        const double end = std::min(expected.rangeEnd, source);
        high = std::max(0.0, end - expected.rangeStart) + expected.cutSlackSeconds;
        low = std::max(0.0, end - expected.rangeStart - expected.cutLateSeconds);
    }
    const double tolerance = toleranceFor(high);
    if (found + tolerance >= low && found - tolerance <= high)
        return {};
    return QStringLiteral("it lasts %1 s where %2 s were expected")
        .arg(found, 0, 'f', 1)
        .arg(low == high ? QString::number(low, 'f', 1)
                         : QStringLiteral("%1 to %2").arg(low, 0, 'f', 1).arg(high, 0, 'f', 1));
}

} // namespace

double toleranceFor(double expectedSeconds)
{
    return std::max(1.0, expectedSeconds * 0.01);
}

QString check(const QString &path, const MCResultExpectation &expected, const SummaryReader &readSource)
{
    const QFileInfo file(path);
    if (!file.isFile())
        return QStringLiteral("it was not written");
    if (file.size() == 0)
        return QStringLiteral("it is empty");
    if (!expected.media)
        return {};
    const MCMediaSummary summary = MCMediaSummary::ofOwnResult(path);
    if (!summary.readable)
        return QStringLiteral("it cannot be read as media");
    // A tool that could not write on (a full disk) may still end happily.
    if (summary.truncated)
        return QStringLiteral("it is cut short (is the disk full?)");
    int audioTracks = expected.audioTracks;
    if (expected.addedAudioTracks >= 0 && !expected.durationSources.isEmpty())
        audioTracks = static_cast<int>(readSource(expected.durationSources.first()).audioCount()) + expected.addedAudioTracks;
    for (const QString &problem : {countProblem("video", summary.videoCount(), expected.videoTracks),
                                   countProblem("audio", summary.audioCount(), audioTracks),
                                   durationProblem(summary.durationSeconds, expected, readSource)}) {
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

} // namespace MCResultCheck
