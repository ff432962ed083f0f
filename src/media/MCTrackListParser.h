#pragma once

#include "MCVideoFile.h"

#include <QStringView>

// Builds a file's track list from mediainfo's full report: one track per
// section header, classified with the file's codec tables and numbered for
// each tool.
class MCTrackListParser
{
public:
    explicit MCTrackListParser(const MCVideoFile &file);

    MCTrackListResult parse(const QStringList &lines, const QUrl &url) const;

    // The track for a subtitle file given whole ("External Subtitle").
    static MCVideoTrackPtr externalSubtitleTrack(const QUrl &url);

private:
    struct Table
    {
        QList<QStringList> patterns; // lower-cased once
        QStringList names;
        QStringList extensions;
    };

    void readSectionLine(MCVideoTrack &track, QStringView line, qsizetype position) const;
    void classify(MCVideoTrack &track, QStringView value) const;
    void number(MCVideoTrack &track, QStringView value, qsizetype position) const;
    static void finishIdentifiers(MCVideoTrack &track, qsizetype headerCount);
    static MCTrackListResult finalPass(MCTrackList tracks);

    Table m_video;
    Table m_audio;
    Table m_subtitle;
};
