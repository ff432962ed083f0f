#pragma once

#include "MCConverter.h"

#include <QMap>

// Lowers the H.264 level a video declares, without re-encoding, for players
// that refuse a stream above their level: the level byte of the sequence
// parameter set is rewritten in place (after the NAL byte 0x67 in a raw
// stream, inside the avcC box in an MP4), and mediainfo is asked whether it
// now reads the new level. Runs its tools synchronously; never a job step.
class MCProfileEditor : public MCConverter
{
public:
    MCProfileEditor();

    // Profile name as mediainfo prints it -> "67" + profile, constraint and
    // level bytes (raw stream), or the three bytes alone (avcC).
    QMap<QString, QString> profilesDictionaryLong;
    QMap<QString, QString> profilesDictionaryShort;

    // "changed", "not changed", "no change needed", "no device", "error",
    // or "source file" (a user's file is never written).
    QString editProfileLevelForURL(const QUrl &file, const MCSelectionPtr &selection);
    // The profile the device needs ("" when the video is fine as it is), or
    // "no device" for a device without a level limit.
    static QString targetProfileFor(const QString &device, const QString &profile);
    QString editHexForURL(const QUrl &file, const QString &oldProfile, const QString &newProfile);

    // (hex offset of the dump line, the line), ("no match") or ("error").
    QStringList findFirstOffsetInURL(const QUrl &file, const QString &hex, const QString &direction,
                                     const QString &size) const;
    // Writes the new bytes over every place within 256 bytes of the first
    // old bytes of the found line.
    QString replaceInURL(const QUrl &file, const QString &oldHex, const QString &newHex,
                         const QStringList &offsetArray) const;
    // Writes the new bytes over the old ones inside the avcC box of the found
    // line only (the header's copy and the parameter set it carries).
    QString replaceInAvcCBox(const QUrl &file, const QString &oldHex, const QString &newHex,
                             const QStringList &offsetArray) const;

    static QStringList makeHexListFrom(const QString &hex);
    // The hex value plus the decimal one, printed as lower-case hex.
    static QString addHexString(const QString &hex, const QString &decimal);
    // Whether mediainfo's profile line shows the profile ("High@L4.0" is
    // printed "High@L4" today).
    static bool profileLineShows(const QString &line, const QString &profile);

private:
    bool fileShowsProfile(const QUrl &file, const QString &profile) const;
    QStringList findInSpan(const QUrl &file, const QString &hex, const QString &span) const;
    QStringList bytesAt(const QUrl &file, qint64 offset, int count) const;
    void writeBytes(const QUrl &file, const QStringList &bytes, qint64 offset) const;
};
