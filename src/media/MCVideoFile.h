#pragma once

#include "MCHelpers.h"
#include "MCReportCache.h"
#include "MCVideoTrack.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <memory>

// The answer of the track parser: the tracks, or a failure word
// ("track not identified", "not a video") and no tracks.
struct MCTrackListResult
{
    MCTrackList tracks;
    QString failure;
    bool ok() const { return failure.isEmpty(); }
};

// The inspected source file: names, a few file-level video properties and
// the ordered list of its tracks, all learnt from mediainfo's full report
// (and mkvinfo's, for header-removal compression in Matroska files).
// Operations answer result words ("OK", "error", "not a video", ...).
class MCVideoFile : public MCHelpers
{
public:
    MCVideoFile(); // runs initialize()

    QString theFilePath = QStringLiteral("none");
    QUrl theFileURL = QUrl::fromLocalFile(QString());
    QString theFileName = QStringLiteral("none");
    QString theFileExtension = QStringLiteral("none"); // lower-cased
    QString theFileShortName = QStringLiteral("none");
    QString pathToFileFolder = QStringLiteral("none"); // ends with "/"
    QString addedFilePath = QStringLiteral("none");
    QString addedFileName = QStringLiteral("none");
    QString addedFileExtension = QStringLiteral("none");
    QString addedPathToFileFolder = QStringLiteral("none");
    MCTrackList trackList;
    QString theNumberOfVideoTracks = QStringLiteral("0");
    QString theNumberOfAudioTracks = QStringLiteral("0");
    QString theNumberOfSubTracks = QStringLiteral("0");
    bool isVideoFile = false;
    QString theDuration = QStringLiteral("0");
    QString theFPS = QStringLiteral("0");
    QString videoPAR = QStringLiteral("0");
    QString theWidth = QStringLiteral("0");
    QString theHeight = QStringLiteral("0");
    QString codecProfile = QStringLiteral("none");
    QString theVideoBitRate = QStringLiteral("0");
    QString theVideoCodec = QStringLiteral("none");
    bool headerRemovalFlag = false;

    // Codec classification: classes of match patterns, the class names
    // stored as a track's codec, and the extensions for a lone stream.
    QList<QStringList> videoCodecList;
    QStringList videoInfoList;
    QStringList videoExtList;
    QList<QStringList> audioCodecList;
    QStringList audioInfoList;
    QStringList audioExtList;
    QList<QStringList> subtitleCodecList;
    QStringList subtitleInfoList;
    QStringList subtitleExtList;

    QUrl mediainfoURL; // resource folder + "/mediainfo"
    QUrl mkvinfoURL;   // resource folder + "/mkvinfo"
    // How long the inspecting tools may run; a file they hang on is not a video.
    int toolTimeLimitMs = 30000;

    void initialize();
    void setFileDefaultPropertyValues();

    // "error" or "OK"; fills the name fields only.
    QString quickInitializeForURL(const QUrl &url);
    // "track not identified", "not a video" or "OK"; the full inspection.
    QString initializeForURL(const QUrl &url);
    // For a further file: "replace file", "add file" or "not a video file".
    QString whatToDoWithFile(const QUrl &url);
    // "track not identified", "not a video", "too many tracks",
    // "adding video track" or "OK".
    QString addTrack(const QUrl &url);
    MCTrackListResult makeTrackListFor(const QUrl &url) const;
    void setFilePropertiesFor(const QUrl &url);
    bool checkForHeaderRemovalFor(const QUrl &url) const;

    void logFileProperties() const;
    QString stringFromFileProperties() const;

    // The parsers over a report's lines; they run nothing.
    MCTrackListResult trackListFromReport(const QStringList &lines, const QUrl &url) const;
    void filePropertiesFromReport(const QStringList &lines);
    void setNameFieldsFor(const QUrl &url);

    // mediainfo's full report of a file, split into lines; empty for
    // anything that is not a readable regular file.
    // The last report read is kept: a file asked about and then loaded is
    // inspected once.
    QStringList mediaInfoReportFor(const QUrl &url) const;
    // Shares the reports another file object has read (the loaded file was
    // asked what to do with a new one, which then loads).
    void takeReportFrom(const MCVideoFile &other) { m_reports = other.m_reports; }
    // The reports this file object reads and keeps; an inspection run
    // elsewhere (off the window's thread) fills the same cache.
    std::shared_ptr<MCReportCache> reportCache() const { return m_reports; }
    void setReportCache(std::shared_ptr<MCReportCache> cache) { m_reports = std::move(cache); }

    // The extensions of subtitle files that are added whole.
    static const QStringList &subtitleFileExtensions();

private:
    void takeVideoTrackProperties();

    std::shared_ptr<MCReportCache> m_reports = std::make_shared<MCReportCache>();
};
