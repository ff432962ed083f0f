#pragma once

#include "MCPreferences.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

// Runs the kestrane-cli built beside the test program.
struct CliResult
{
    int status = -1;
    QString out;
    QString err;
};

inline QString cliPath()
{
    return QCoreApplication::applicationDirPath() + u"/kestrane-cli"_s;
}

inline CliResult runCli(const QStringList &arguments, int timeoutMs = 180000)
{
    QProcess process;
    process.start(cliPath(), arguments);
    process.closeWriteChannel();
    process.waitForFinished(timeoutMs);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()), QString::fromUtf8(process.readAllStandardError())};
}

// A command line without quoting, e.g. words(u"convert --to mkv a.mkv"_s).
inline QStringList words(const QString &line)
{
    return line.split(u' ', Qt::SkipEmptyParts);
}

// A settings file of its own in dir, keeping no logs; answers its path.
inline QString quietSettings(const QString &dir)
{
    const QString settings = dir + u"/kestrane.ini"_s;
    MCPreferences preferences(settings);
    preferences.keepLogsFlag = false;
    preferences.savePreferencesToDefaults();
    return settings;
}

// Tiny clips, made once per test program.
inline QString cliMediaDir()
{
    static QTemporaryDir dir;
    return dir.path();
}

inline QString writeSrt(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write("1\n00:00:00,000 --> 00:00:01,500\nHello\n\n");
    return path;
}

// A clip in cliMediaDir made by ffmpeg from these arguments, unless it is there.
inline QString cliClip(const QString &name, const QString &arguments)
{
    const QString path = cliMediaDir() + u'/' + name;
    return QFile::exists(path) ? path : testsupport::ffmpeg(cliMediaDir(), name, arguments);
}

// Picture and sound of that many seconds, as ffmpeg inputs.
inline QString testInputs(int seconds, const QString &size = u"160x120"_s)
{
    return u"-f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 "_s.arg(size).arg(seconds);
}

// H.264, AAC stereo and an SRT subtitle in Matroska.
inline QString threeTrackMkv(int seconds = 2)
{
    const QString srt = writeSrt(cliMediaDir() + u"/sub.srt"_s);
    return cliClip(u"three-%1.mkv"_s.arg(seconds),
                   testInputs(seconds) + u"-i '%1' -map 0:v -map 1:a -map 2 -ac 2 -c:v libx264 -preset ultrafast -c:a aac -c:s srt"_s.arg(srt));
}

// An XviD/MP3 AVI as MEncoder writes them (MEncoder misreads ffmpeg's MP3 in AVI).
inline QString xvidAvi(const QString &name, int seconds = 2)
{
    const QString path = cliMediaDir() + u'/' + name;
    if (QFile::exists(path))
        return path;
    const QString pcm = cliClip(name + u".pcm.avi"_s, testInputs(seconds) + u"-ac 2 -c:v mpeg4 -vtag XVID -g 25 -q:v 5 -c:a pcm_s16le"_s);
    testsupport::run(u"mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'"_s.arg(pcm, path));
    QFile::remove(pcm);
    return path;
}

// H.264 with German AC-3 5.1 and an SRT subtitle, three seconds, a key
// frame every second.
inline QString surroundMkv()
{
    const QString srt = writeSrt(cliMediaDir() + u"/surround.srt"_s);
    return cliClip(u"surround.mkv"_s,
                   testInputs(3) + u"-i '%1' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s]' "
                                   "-map 0:v -map '[s]' -map 2 -c:v libx264 -preset ultrafast -g 25 -c:a ac3 "
                                   "-c:s srt -metadata:s:a:0 language=ger"_s.arg(srt));
}

// mediainfo's words for each track of a kind, e.g. {"AAC/2"} for "Audio;%Format%/%Channel(s)%".
inline QStringList described(const QString &path, const QString &inform)
{
    QString out;
    testsupport::run(u"mediainfo --Inform='%1\\n' '%2'"_s.arg(inform, path), &out);
    return out.split(u'\n', Qt::SkipEmptyParts);
}

inline double playingMs(const QString &path)
{
    return testsupport::mediaInfo(path, u"General"_s, u"Duration"_s).toDouble();
}

// Everything in a folder, hidden entries and folders included: a job's
// private working folder among them while it runs.
inline QStringList entriesIn(const QString &dir)
{
    return QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

// A run of kestrane-cli on a settings file of its own (no logs kept) that
// writes into a folder of its own.
class CliTest : public ::testing::Test
{
protected:
    void SetUp() override { settings = quietSettings(settingsDir.path()); }

    QStringList common() const { return {u"--settings"_s, settings, u"--save-dir"_s, saveDir.path()}; }
    CliResult run(const QStringList &arguments) const { return runCli(common() + arguments); }
    QString saved(const QString &name) const { return saveDir.path() + u'/' + name; }
    QStringList written() const { return QDir(saveDir.path()).entryList(QDir::Files, QDir::Name); }
    void clearResults() const
    {
        for (const QString &name : written())
            QFile::remove(saved(name));
    }

    QTemporaryDir settingsDir;
    QTemporaryDir saveDir;
    QString settings;
};

// Every command line must end with status 2 and one line naming the program.
inline void expectUsageMistakes(const QList<QStringList> &mistakes, const QStringList &before = {})
{
    for (const QStringList &arguments : mistakes) {
        const CliResult result = runCli(before + arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.err.startsWith(u"kestrane-cli: "_s)) << result.err.toStdString();
    }
}
