#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// What the command line asked for: one command, its files and the options.
// Options that take a value accept "--name VALUE" and "--name=VALUE", and
// the global ones may stand before or after the command.
struct MCCliOptions
{
    QString command;
    QStringList files;

    // Global
    bool help = false;
    bool version = false;
    bool dryRun = false;
    bool quiet = false;
    bool overwrite = false; // a result may take the place of a file of its name
    bool resume = false;    // run the jobs an earlier, killed run left unfinished
    QString settingsFile;
    QString saveDir;

    // inspect
    bool json = false;

    // convert (and the track choice of extract)
    QString selectionPreset;
    QString settingsPreset;
    std::optional<QList<int>> tracks; // 1-based positions in the file's track list
    QString device;
    QString video;   // passthru, mpeg4, mpeg4-2pass
    QString bitrate; // kbit/s
    QString width;
    QString target;  // avi (the default), mkv, mp4
    QString audio;   // passthru, mp3, ac3; into MKV and MP4 passthru, aac, aac-5.1, ac3
    QString audioBitrate;
    bool stereoCopy = false;
    QString subtitles; // burn, extract; into MKV and MP4 mux, drop
    QString remuxHeaderRemoval; // yes, no; empty: no

    // presets add-selection: "none", "all", a track number or properties
    QStringList audioFilters;
    QStringList subtitleFilters;

    // split
    QString startTime; // HH:MM:SS
    QString endTime;
    QString sizeMB;
    QString pieces;
    QString durationSeconds; // MKV only: pieces of this many seconds

    // par: the pixel aspect ratio W:H
    QString parWidth;
    QString parHeight;

    bool intoMkv() const { return target == QStringLiteral("mkv"); }
    bool intoMp4() const { return target == QStringLiteral("mp4"); }
    // The tab the conversion's target names ("AVI" without --to).
    QString targetTab() const;
    // Whether any of the explicit conversion choices was given.
    bool hasExplicitSettings() const;

    static const QStringList &commands();
    // The audio bit rates the window offers.
    static const QStringList &audioBitRates();

    // Parses the arguments (without the program name). Answers an error
    // text for bad usage, or nothing.
    static std::optional<QString> parse(const QStringList &arguments, MCCliOptions &out);
};
