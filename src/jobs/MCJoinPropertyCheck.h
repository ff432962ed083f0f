#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

// Before files are joined: which of their properties differ between
// neighbours, and the warning that names them. Both joining steps (MKV and
// AVI) ask the same check.
class MCJoinPropertyCheck
{
public:
    // What is compared of one file.
    struct FileProperties
    {
        QString fps;
        QString width;
        QString height;
        QStringList trackCounts; // video, audio, subtitle
        QStringList trackTypes;  // ordered by MP4Box track id
        QStringList trackCodecs;
    };

    // Inspects the file with mediainfo.
    static FileProperties propertiesOfFile(const QUrl &url);

    // The names of the properties that differ between any two neighbours, in
    // the order "Frame Rate", "Video Resolution", "Track Count",
    // "Track Types", "Track Codecs", each at most once; empty for fewer
    // than two files.
    static QStringList mismatchedProperties(const QList<FileProperties> &files);

    static QStringList findMismatchedProperetiesFor(const QList<QUrl> &urls);

    // A self-closing warning (15 seconds) naming the properties; the join
    // goes ahead whatever the answer.
    static void showJoinWarning(const QStringList &mismatchedNames);

    static constexpr double joinWarningSeconds = 15.0;
};
