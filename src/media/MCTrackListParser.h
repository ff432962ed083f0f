#pragma once

#include "MCVideoFile.h"

// Builds a file's track list from mediainfo's full report: one track per
// section header, classified with the codec tables and numbered for each tool.
class MCTrackListParser
{
public:
    MCTrackListParser(const MCCodecTable &video, const MCCodecTable &audio, const MCCodecTable &subtitle);

    MCTrackListResult parse(const QStringList &lines, const QUrl &url) const;

    // The track for a subtitle file given whole ("External Subtitle").
    static MCVideoTrackPtr externalSubtitleTrack(const QUrl &url);

private:
    void setFileFields(MCVideoTrack &track, const QUrl &url) const;
    void readSectionLine(MCVideoTrack &track, const QString &line, qsizetype position) const;
    void classify(MCVideoTrack &track, const QString &value) const;
    void number(MCVideoTrack &track, const QString &value, qsizetype position) const;
    void finishIdentifiers(MCVideoTrack &track, qsizetype headerCount) const;
    MCTrackListResult finalPass(MCTrackList tracks) const;

    const MCCodecTable &m_video;
    const MCCodecTable &m_audio;
    const MCCodecTable &m_subtitle;
};
