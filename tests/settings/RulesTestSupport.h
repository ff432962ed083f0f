#pragma once

#include "MCPresetsController.h"
#include "MCSelectionController.h"
#include "MCVideoFile.h"

#include <QList>

#include <memory>

// Hand-built files and a wired selection rules / preset store pair, so the
// rules can be driven without inspecting media.
namespace rulestest {

struct TrackShape
{
    const char *type;
    const char *codec = "none";
    const char *channels = "0";
    const char *language = "English";
    bool selected = true;
    bool external = false;
};

inline MCVideoTrackPtr makeTrack(const TrackShape &shape)
{
    auto track = std::make_shared<MCVideoTrack>();
    track->trackType = QString::fromLatin1(shape.type);
    track->trackCodec = QString::fromLatin1(shape.codec);
    track->trackNumberOfChannels = QString::fromLatin1(shape.channels);
    track->trackLanguage = QString::fromLatin1(shape.language);
    track->trackBitRate = QStringLiteral("192");
    track->trackSelected = shape.selected;
    track->externalTrackFlag = shape.external;
    return track;
}

inline std::shared_ptr<MCVideoFile> makeFile(const QList<TrackShape> &tracks,
                                             const QString &extension = QStringLiteral("avi"))
{
    auto file = std::make_shared<MCVideoFile>();
    file->theFileName = QStringLiteral("clip.") + extension;
    file->theFilePath = QStringLiteral("/videos/clip.") + extension;
    file->theFileExtension = extension;
    file->theWidth = QStringLiteral("640");
    file->theHeight = QStringLiteral("480");
    file->theVideoBitRate = QStringLiteral("1000");
    file->theVideoCodec = QStringLiteral("h264");
    file->theFPS = QStringLiteral("25");
    int videos = 0, audios = 0, subtitles = 0;
    for (const TrackShape &shape : tracks) {
        file->trackList.append(makeTrack(shape));
        file->trackList.last()->trackFileExtension = extension;
        const QString type = QString::fromLatin1(shape.type);
        videos += type == QLatin1String("Video");
        audios += type == QLatin1String("Audio");
        subtitles += type.endsWith(QLatin1String("Subtitle"));
    }
    file->theNumberOfVideoTracks = QString::number(videos);
    file->theNumberOfAudioTracks = QString::number(audios);
    file->theNumberOfSubTracks = QString::number(subtitles);
    return file;
}

// The rules with a preset store, as the application wires them.
struct Rules
{
    explicit Rules(MCPreferences *preferences = nullptr)
        : presets(preferences, &rules)
    {
        rules.initialize();
        rules.setPresetsController(&presets);
        presets.initialize();
    }

    // Loads a file the way intake does: fresh record, then the track table.
    void load(const std::shared_ptr<MCVideoFile> &file)
    {
        rules.setCurrentVideoFile(file);
        auto selection = std::make_shared<MCSelection>();
        selection->initialize();
        selection->initializeFrom(*file);
        rules.setCurrentSelection(selection);
        rules.trackTableSelectionChanged();
    }

    MCSelection &record() { return *rules.currentSelection(); }

    MCSelectionController rules;
    MCPresetsController presets;
};

// A file loaded onto a tab, every track selected, 800 kbit/s typed.
struct OnTab : Rules
{
    OnTab(const QString &tab, const QList<TrackShape> &tracks, const char *extension)
    {
        load(makeFile(tracks, QString::fromLatin1(extension)));
        rules.setCurrentTab(tab);
        rules.setEnteredUserVideoBitRate(QStringLiteral("800"));
        rules.updateTabs();
    }

    MCTrackList &tracks() { return rules.currentVideoFile()->trackList; }
    MCVideoTrackPtr track(int i) { return tracks().at(i); }
    QString why() { return rules.convertRefusalText(); }
};

} // namespace rulestest
