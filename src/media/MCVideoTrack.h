#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <memory>

// One stream of a media file, or an added subtitle or audio file: what the
// inspection found, how each tool addresses it, and what the user and the
// job want done with it. Numbers are decimal texts; "0" and "none" are empty.
class MCVideoTrack
{
public:
    MCVideoTrack();

    // Inspection facts
    QString trackType = QStringLiteral("none");
    QString trackIndex = QStringLiteral("0");
    QString trackCodec = QStringLiteral("none");
    QString trackExtension = QStringLiteral("none");
    QString trackInfo = QStringLiteral("none");
    QString trackTitle = QStringLiteral("none");
    QString trackLanguage = QStringLiteral("undetermined");
    QString trackBitRate = QStringLiteral("0");
    QString trackNumberOfChannels = QStringLiteral("0");
    bool trackDefaultFlag = false;
    bool trackForcedFlag = false;

    // Tool identifiers
    QString trackMp4boxID = QStringLiteral("0");
    QString trackMkvmergeID = QStringLiteral("0");
    QString trackFfmpegID = QStringLiteral("0");
    QString trackMencoderID = QStringLiteral("0");
    QString selectedAudioTrackIndex = QStringLiteral("0");

    // Source file
    QString trackFilePath = QStringLiteral("none");
    QString trackFileName = QStringLiteral("none");
    QString trackFileExtension = QStringLiteral("none");
    QString trackPathToFileFolder = QStringLiteral("none");
    QUrl trackFileURL;
    QUrl trackURLToFileFolder;
    QUrl convertedFileURL;

    // Choices
    bool trackSelected = false;
    QString userCodec = QStringLiteral("none");
    QString userBitRate = QStringLiteral("0");
    QString userNumberOfChannels = QStringLiteral("0");
    bool isStereoCopyFlag = false;
    bool createStereoCopyFlag = false;
    bool externalTrackFlag = false;
    bool convertSubFlag = false;
    bool wasReEncoded = false;

    // Muxing values, filled by initializeForMuxing
    QString muxingTrackType = QStringLiteral("none");
    QString muxingTrackLanguage = QStringLiteral("none");
    QString muxingTrackTitle = QStringLiteral("none");
    QString muxingTrackMp4boxID = QStringLiteral("none");
    QString muxingTrackMencoderID = QStringLiteral("none");
    QString muxingTrackCodec = QStringLiteral("none");
    QUrl muxingTrackFileURL;
    QString muxingTrackExtension = QStringLiteral("none");
    QString muxingTrackFileExtension = QStringLiteral("none");

    void initializeForMuxing();

    QString stringFromTrackProperties() const;
    void logTrackProperties() const;
    void logMuxingTrackProperties() const;

    // (name, value) pairs in report order, flags as 0 or 1.
    QList<std::pair<QString, QString>> trackPropertyPairs() const;
    QList<std::pair<QString, QString>> muxingPropertyPairs() const;
};

// Track records are shared: a selection and its file see the same track.
using MCVideoTrackPtr = std::shared_ptr<MCVideoTrack>;
using MCTrackList = QList<MCVideoTrackPtr>;
