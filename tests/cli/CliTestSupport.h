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

// Runs the kestrane-cli built beside the test program.
struct CliResult
{
    int status = -1;
    QString out;
    QString err;
};

inline QString cliPath()
{
    return QCoreApplication::applicationDirPath() + QStringLiteral("/kestrane-cli");
}

inline CliResult runCli(const QStringList &arguments, int timeoutMs = 180000)
{
    QProcess process;
    process.start(cliPath(), arguments);
    process.closeWriteChannel();
    process.waitForFinished(timeoutMs);
    CliResult result;
    result.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

// A settings file of its own in dir, keeping no logs; answers its path.
inline QString quietSettings(const QString &dir)
{
    const QString settings = dir + QStringLiteral("/kestrane.ini");
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

// H.264, AAC stereo and an SRT subtitle in Matroska.
inline QString threeTrackMkv(int seconds = 2)
{
    const QString dir = cliMediaDir();
    const QString name = QStringLiteral("three-%1.mkv").arg(seconds);
    if (QFile::exists(dir + QLatin1Char('/') + name))
        return dir + QLatin1Char('/') + name;
    const QString srt = writeSrt(dir + QStringLiteral("/sub.srt"));
    return testsupport::ffmpeg(dir, name,
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=%1 -f lavfi -i sine=d=%1:r=48000 -i '%2' "
                                              "-map 0:v -map 1:a -map 2 -ac 2 -c:v libx264 -preset ultrafast -c:a aac -c:s srt")
                                   .arg(seconds)
                                   .arg(srt));
}

// An XviD/MP3 AVI as MEncoder writes them (MEncoder misreads ffmpeg's MP3 in AVI).
inline QString xvidAvi(const QString &name, int seconds = 2)
{
    const QString dir = cliMediaDir();
    const QString path = dir + QLatin1Char('/') + name;
    if (QFile::exists(path))
        return path;
    const QString pcm = testsupport::ffmpeg(dir, name + QStringLiteral(".pcm.avi"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=%1 -f lavfi -i sine=d=%1:r=48000 "
                                                           "-ac 2 -c:v mpeg4 -vtag XVID -g 25 -q:v 5 -c:a pcm_s16le")
                                                .arg(seconds));
    testsupport::run(QStringLiteral("mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'").arg(pcm, path));
    QFile::remove(pcm);
    return path;
}

inline QStringList filesIn(const QString &dir)
{
    return QDir(dir).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
}

// H.264 with German AC-3 5.1 and an SRT subtitle, three seconds, a key
// frame every second.
inline QString surroundMkv()
{
    const QString dir = cliMediaDir();
    if (QFile::exists(dir + QStringLiteral("/surround.mkv")))
        return dir + QStringLiteral("/surround.mkv");
    const QString srt = writeSrt(dir + QStringLiteral("/surround.srt"));
    return testsupport::ffmpeg(dir, QStringLiteral("surround.mkv"),
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=3 -f lavfi -i sine=d=3:r=48000 -i '%1' "
                                              "-filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s]' "
                                              "-map 0:v -map '[s]' -map 2 -c:v libx264 -preset ultrafast -g 25 -c:a ac3 "
                                              "-c:s srt -metadata:s:a:0 language=ger")
                                   .arg(srt));
}

// mediainfo's words for each track of a kind, e.g. {"AAC/2"} for "Audio;%Format%/%Channel(s)%".
inline QStringList described(const QString &path, const QString &inform)
{
    QString out;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1\\n' '%2'").arg(inform, path), &out);
    return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
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
    void SetUp() override
    {
        settings = settingsDir.path() + QStringLiteral("/kestrane.ini");
        MCPreferences preferences(settings);
        preferences.keepLogsFlag = false;
        preferences.savePreferencesToDefaults();
    }

    QStringList common() const { return {QStringLiteral("--settings"), settings, QStringLiteral("--save-dir"), saveDir.path()}; }

    QTemporaryDir settingsDir;
    QTemporaryDir saveDir;
    QString settings;
};
