#pragma once

#include "MCSelection.h"

#include <QObject>
#include <QString>

// The rules of the "MKV" tab: conversion of the selected tracks into a
// Matroska file. Video is copied or re-encoded to MPEG-4 in one or two
// passes; each audio track, chosen in the audio-track chooser, is copied or
// encoded into AAC stereo, AAC 5.1 or AC-3 5.1, optionally with a stereo
// copy beside it; subtitles are muxed as they are or left out. Like the
// other tabs it publishes flags, colours ("black", "red") and canConvert,
// and writes each selected track's wanted output into the record. The "MP4"
// tab has the same rows and derives from these rules.
class MCMkvTabRules : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canConvert MEMBER canConvert NOTIFY stateChanged)
    Q_PROPERTY(QString convertRefusalText MEMBER convertRefusalText NOTIFY stateChanged)
    Q_PROPERTY(int videoMatrixIndex READ videoMatrixIndex WRITE setVideoMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(int audioMatrixIndex READ audioMatrixIndex WRITE setAudioMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(bool addStereoTrack READ addStereoTrack WRITE setAddStereoTrack NOTIFY stateChanged)
    Q_PROPERTY(int subtitleMatrixIndex READ subtitleMatrixIndex WRITE setSubtitleMatrixIndex NOTIFY stateChanged)
    Q_PROPERTY(bool canAddStereoTrack MEMBER canAddStereoTrack NOTIFY stateChanged)
    Q_PROPERTY(bool audioSelected MEMBER audioSelected NOTIFY stateChanged)
    Q_PROPERTY(bool subtitleSelected MEMBER subtitleSelected NOTIFY stateChanged)
    Q_PROPERTY(bool mustConvertVideoTrack MEMBER mustConvertVideoTrack NOTIFY stateChanged)
    Q_PROPERTY(QString videoPassThruColor MEMBER videoPassThruColor NOTIFY stateChanged)
    Q_PROPERTY(QString surroundColor MEMBER surroundColor NOTIFY stateChanged)

public:
    enum VideoRow { VideoPassthru, VideoOnePass, VideoTwoPasses };
    enum AudioRow { AudioPassthru, AudioAacStereo, AudioAac51, AudioAc351 };
    enum SubtitleRow { SubtitleMux, SubtitleDrop };

    // What the user typed in the shared number fields.
    struct Typed
    {
        QString videoBitRate;
        QString width;
        bool videoBitRateOK = true;
        bool widthOK = true;
    };

    explicit MCMkvTabRules(QObject *parent = nullptr);

    // The decision, run after every change. chosenAudio is the index of the
    // audio-track chooser: its track takes the audio rows; when another track
    // is chosen, the rows first show that track's own choice.
    void decide(MCSelection &selection, int chosenAudio, const Typed &typed);

    int videoMatrixIndex() const { return m_videoRow; }
    void setVideoMatrixIndex(int row);
    int audioMatrixIndex() const { return m_audioRow; }
    void setAudioMatrixIndex(int row);
    bool addStereoTrack() const { return m_addStereoTrack; }
    void setAddStereoTrack(bool add);
    int subtitleMatrixIndex() const { return m_subtitleRow; }
    void setSubtitleMatrixIndex(int row);

    // The next decision shows the chosen track's wish in the rows again
    // (a preset has just written every track's wish).
    void showChosenTrackAgain() { m_shownAudioTrack.clear(); }

    // The audio row a track's wish reads as (a wish no row gives: passthru).
    static int audioRowFor(const MCVideoTrack &track);
    // The bit rate (kbit/s) each encoded audio row asks for.
    static QString audioBitRateFor(int row);
    // Writes an audio row's wanted output into the track, with the stereo
    // copy where the track has more than two channels and keeps them.
    static void wantAudio(MCVideoTrack &track, int row, bool stereoCopy);

    bool canConvert = false;
    QString convertRefusalText;
    bool canAddStereoTrack = false;
    bool audioSelected = false;
    bool subtitleSelected = false;
    bool mustConvertVideoTrack = false;
    QString videoPassThruColor = QStringLiteral("black");
    QString surroundColor = QStringLiteral("black");

    // Whether the target holds a track of this codec as it is (a preset's
    // best guess copies only what it holds). An MKV holds any.
    virtual bool holdsVideo(const QString &codec) const;
    virtual bool holdsAudio(const QString &codec) const;

signals:
    void stateChanged();

protected:
    // What the other targets of these rows change: the job the record
    // names, the container in the texts, and what the target's job cannot
    // take as it is (the last asked once the track counts and the bit
    // rates are fine; "" when it can).
    virtual QString conversionJobType() const;
    virtual QString containerName() const;
    virtual QString copyRefusal(const MCSelection &selection) const;

private:
    // Why the selection cannot become the target as chosen; empty when it can.
    QString refusalFor(const MCSelection &selection, const Typed &typed) const;
    void applyVideoRow(MCSelection &selection, MCVideoTrack &track) const;
    void showChoiceOf(const MCVideoTrack &track);

    int m_videoRow = VideoPassthru;
    int m_audioRow = AudioPassthru;
    bool m_addStereoTrack = false;
    int m_subtitleRow = SubtitleMux;
    QString m_shownAudioTrack;
};
