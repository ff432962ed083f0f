#pragma once

#include "MCVideoFile.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <memory>

class MCSelectionController;

// A track-selection preset: picks, for a newly loaded file, its first video
// track and the audio and subtitle tracks found by an ordered list of filters
// (by track number, all, or by language, codec and channel layout). Applying
// it only changes the tracks' trackSelected flags and then hands over to the
// selection rules.
//
// A filter is a dictionary of texts under the keys below; the lists are kept
// in the form the preferences store them.
class MCPresetSelections
{
public:
    static inline const QString keyTrackChoice = QStringLiteral("currentTrackChoice");
    static inline const QString keyTrackNumber = QStringLiteral("currentTrackNumber");
    static inline const QString keyLanguage = QStringLiteral("currentLanguage");
    static inline const QString keyCodec = QStringLiteral("currentCodec");
    static inline const QString keyChannels = QStringLiteral("currentChannels");

    static inline const QString choiceNone = QStringLiteral("None");
    static inline const QString choiceAll = QStringLiteral("All");
    static inline const QString choiceAudioNumber = QStringLiteral("Audio Track Number");
    static inline const QString choiceSubtitleNumber = QStringLiteral("Subtitle Track Number");
    static inline const QString choiceProperties = QStringLiteral("Tracks w/ Properties ...");
    static inline const QString anyLanguage = QStringLiteral("Any Language");
    static inline const QString anyCodec = QStringLiteral("Any Codec");
    static inline const QString anyType = QStringLiteral("Any Type");
    static inline const QString stereoOnly = QStringLiteral("Stereo Only");
    static inline const QString surroundOnly = QStringLiteral("Surround Only");
    static inline const QString modeApplyAll = QStringLiteral("Apply All");
    static inline const QString modePrioritized = QStringLiteral("Prioritized");

    // The file the preset is applied to and the rules it tells, both given
    // by the application (and replaced when a new file loads).
    explicit MCPresetSelections(std::shared_ptr<MCVideoFile> file = {}, MCSelectionController *controller = nullptr);

    QString pName;
    QString pSelectedVideoTrack;
    QString pSelectedAudioLanguage;
    bool pAudioIsByLanguage = false;
    QString pSelectedSubtitleLanguage;
    bool pSubtitleIsByLanguage = false;
    bool useFirstIfNoAudioLanguageMatch = true;
    bool useFirstIfNoSubtitleLanguageMatch = true;
    bool isEditable = false;
    std::shared_ptr<MCVideoFile> currentVideoFile;
    MCSelectionController *selectionController = nullptr;
    QVariantList pAudioFilterArray;
    QString pAudioFilterMode;
    QVariantList pSubtitleFilterArray;
    QString pSubtitleFilterMode;

    // The older single choices, kept for old records; setting one keeps its
    // by-language flag in step.
    QString pSelectedAudioTrack() const { return m_pSelectedAudioTrack; }
    void setPSelectedAudioTrack(const QString &choice);
    QString pSelectedSubtitleTrack() const { return m_pSelectedSubtitleTrack; }
    void setPSelectedSubtitleTrack(const QString &choice);

    void initializeAsByID();          // "Manual"
    void initializeAsFirst();         // "First Track"
    void initializeAsAll();           // "All Tracks"
    void initializeAsNewUserPreset(); // "User Preset"

    void addDictionaryToAudioFilterArray();
    void addDictionaryToSubtitleFilterArray();

    QVariantMap makeRecord() const;
    // Reads a stored record; a record written before filters existed gets
    // filters made from its older single choices.
    void initFromRecord(const QVariantMap &record);

    // Selects the tracks of currentVideoFile and tells the selection rules.
    void makeSelections();

    static QVariantMap audioFilter(const QString &choice, const QString &number, const QString &language,
                                   const QString &codec, const QString &channels);
    static QVariantMap subtitleFilter(const QString &choice, const QString &number, const QString &language,
                                      const QString &codec);

private:
    QString m_pSelectedAudioTrack;
    QString m_pSelectedSubtitleTrack;
};

using MCPresetSelectionsPtr = std::shared_ptr<MCPresetSelections>;
