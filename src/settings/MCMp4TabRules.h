#pragma once

#include "MCMkvTabRules.h"

#include <QStringList>

// The rules of the "MP4" tab: the rows of the "MKV" tab (video copied or
// MPEG-4 in one or two passes; per audio track passthru, AAC stereo, AAC
// 5.1 or AC-3 5.1 with an optional stereo copy; subtitles muxed or left
// out), for the MP4 conversion job. What differs is what that job can take
// as it is, and the device the record names: the muxer gives some devices
// an M4V and "-ipod", and a copied H.264 video gets the level its device
// plays.
class MCMp4TabRules : public MCMkvTabRules
{
    Q_OBJECT
    Q_PROPERTY(QStringList deviceList READ deviceList CONSTANT)

public:
    explicit MCMp4TabRules(QObject *parent = nullptr);

    // "General" first, then the devices the muxer and the level patch know.
    static const QStringList &deviceList();

    // MP4Box takes H.264 and MPEG-4 pictures, and AAC and AC-3 sound.
    static bool isMp4Video(const QString &codec);
    static bool isMp4Audio(const QString &codec);
    bool holdsVideo(const QString &codec) const override { return isMp4Video(codec); }
    bool holdsAudio(const QString &codec) const override { return isMp4Audio(codec); }
    // Subtitles go in as text: SRT, SubViewer/MicroDVD, or SSA/ASS turned
    // into SRT first.
    static bool isTextSubtitle(const QString &codec);
    // Why a track copied out of a file that is neither MKV nor MP4 (through
    // MEncoder's and MPlayer's dumps) would not play in the MP4; "" when it would.
    static QString dumpRefusal(const MCVideoTrack &track);

protected:
    QString conversionJobType() const override;
    QString containerName() const override;
    QString copyRefusal(const MCSelection &selection) const override;

private:
    QString subtitleRefusal(const MCVideoTrack &track) const;
};
