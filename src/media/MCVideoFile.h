#pragma once

#include "MCHelpers.h"
#include "MCVideoTrack.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>

// The answer of the track parser: the tracks, or a failure word
// ("track not identified", "not a video") and no tracks.
struct MCTrackListResult
{
    MCTrackList tracks;
    QString failure;
    bool ok() const { return failure.isEmpty(); }
};

// One codec classification table: classes of match patterns, the class
// names stored as the track's codec, and the extensions for a lone stream.
struct MCCodecTable
{
    QList<QStringList> codecList;
    QStringList infoList;
    QStringList extList;
};

// The inspected source file: names, a few file-level video properties and
// the ordered list of its tracks, all learnt from mediainfo's full report
// (and mkvinfo's, for header-removal compression in Matroska files).
class MCVideoFile : public MCHelpers
{
public:
    MCVideoFile();

    QString theFilePath;
    QUrl theFileURL;
    QString theFileName;
    QString theFileExtension;
    QString theFileShortName;
    QString pathToFileFolder;
    QString addedFilePath;
    QString addedFileName;
    QString addedFileExtension;
    QString addedPathToFileFolder;
    MCTrackList trackList;
    QString theNumberOfVideoTracks;
    QString theNumberOfAudioTracks;
    QString theNumberOfSubTracks;
    bool isVideoFile = false;
    QString theDuration;
    QString theFPS;
    QString videoPAR;
    QString theWidth;
    QString theHeight;
    QString codecProfile;
    QString theVideoBitRate;
    QString theVideoCodec;
    bool headerRemovalFlag = false;
    MCCodecTable videoTable;
    MCCodecTable audioTable;
    MCCodecTable subtitleTable;
    QUrl mediainfoURL;
    QUrl mkvinfoURL;

    void initialize();
    void setFileDefaultPropertyValues();

    QString quickInitializeForURL(const QUrl &url);
    QString initializeForURL(const QUrl &url);
    QString whatToDoWithFile(const QUrl &url);
    QString addTrack(const QUrl &url);
    MCTrackListResult makeTrackListFor(const QUrl &url);
    void setFilePropertiesFor(const QUrl &url);
    bool checkForHeaderRemovalFor(const QUrl &url);

    void logFileProperties() const;
    QString stringFromFileProperties() const;

    // The parsers, over a report's lines, without running anything.
    MCTrackListResult trackListFromReport(const QStringList &lines, const QUrl &url) const;
    void filePropertiesFromReport(const QStringList &lines);
    void setNameFieldsFor(const QUrl &url);

    // mediainfo's full report of a file, split into lines.
    QStringList mediaInfoReportFor(const QUrl &url) const;

    static const QStringList &subtitleFileExtensions();

private:
    // initializeForURL inspects a file once and parses the same report for
    // the tracks and the file properties.
    QUrl m_reportURL;
    QStringList m_reportLines;
    std::optional<bool> m_headerRemovalAnswer;
};
