#pragma once

#include "MCVideoFile.h"

#include <QStringView>

#include <optional>

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

    // The id MPlayer and MEncoder give an audio stream of an MPEG transport
    // or program stream, from mediainfo's "ID" value; nothing for other
    // containers, whose audio keeps the usual numbering.
    static std::optional<qint64> mplayerAudioId(const QString &fileExtension, QStringView streamId);

private:
    struct Table
    {
        QList<QStringList> patterns; // lower-cased once
        QStringList names;
        QStringList extensions;
    };

    void readSectionLine(MCVideoTrack &track, QStringView line, qsizetype position, QString &streamId) const;
    void classify(MCVideoTrack &track, QStringView value) const;
    void number(MCVideoTrack &track, QStringView value, qsizetype position) const;
    static void finishIdentifiers(MCVideoTrack &track, qsizetype headerCount);
    static void useMpegStreamId(MCVideoTrack &track, const QString &streamId);
    static MCTrackListResult finalPass(MCTrackList tracks);

    Table m_video;
    Table m_audio;
    Table m_subtitle;
};
