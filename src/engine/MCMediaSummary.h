#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// What mediainfo says a finished result holds: enough to tell a real result
// from an empty, truncated or foreign file.
struct MCMediaSummary
{
    bool readable = false; // mediainfo recognised a media file
    bool truncated = false; // the file ends before its own headers say it does
    double durationSeconds = 0.0;
    QStringList videoFormats;
    QStringList audioFormats;
    QStringList audioChannels;
    int textCount = 0;

    qsizetype videoCount() const { return videoFormats.size(); }
    qsizetype audioCount() const { return audioFormats.size(); }

    // Runs mediainfo (from the resource folder) on the file. Blocks; safe
    // on any thread.
    static MCMediaSummary of(const QString &path);
    // The same report for a file Kestrane's own tools wrote, read by
    // MediaInfo's library in this process where the build has it (a user's
    // files always go to the tool, in a process of its own).
    static MCMediaSummary ofOwnResult(const QString &path);
    // Reads mediainfo's JSON report.
    static MCMediaSummary fromJson(const QByteArray &json);
    // Reads the full text report ("mediainfo -f") the intake keeps.
    static MCMediaSummary fromReport(const QStringList &lines);
};
