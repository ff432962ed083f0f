#pragma once

#include "TestSupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

// Runs the tool stand-ins through the resource folder, as Kestrane does.
namespace standin {

inline QString toolPath(const QString &name)
{
    return qEnvironmentVariable("KESTRANE_RESOURCES") + QLatin1Char('/') + name;
}

// `arguments` is written as in Kestrane's command lines (file names quoted).
inline int runTool(const QString &name, const QString &arguments, QString *output = nullptr)
{
    return testsupport::run(QStringLiteral("\"%1\" %2").arg(toolPath(name), arguments), output);
}

// As an assertion: the tool exited with 0; a failure shows what it wrote.
inline testing::AssertionResult runs(const QString &name, const QString &arguments, QString *output = nullptr)
{
    QString log;
    const bool ok = runTool(name, arguments, &log) == 0;
    if (output)
        *output = log;
    return ok ? testing::AssertionSuccess() : testing::AssertionFailure() << log.toStdString();
}

using testsupport::checksum;

inline QStringList filesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

inline double seconds(const QString &path, const QString &kind)
{
    return testsupport::mediaInfo(path, kind, QStringLiteral("Duration")).toDouble() / 1000.0;
}

inline int integer(const QString &path, const QString &kind, const QString &parameter)
{
    return testsupport::mediaInfo(path, kind, parameter).toInt();
}

// One mediainfo parameter of every track of a kind, "|" after each.
inline QString everyTrack(const QString &path, const QString &kind, const QString &parameter)
{
    QString output;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1;%%2%|' '%3'").arg(kind, parameter, path), &output);
    return output.trimmed();
}

// ffprobe's flags of the first video packet ("K_" for a key frame).
inline QString firstVideoFlags(const QString &path)
{
    QString output;
    testsupport::run(QStringLiteral("ffprobe -v error -select_streams v -read_intervals %+#1 -show_entries packet=flags "
                                    "-of csv=p=0 '%1'").arg(path), &output);
    return output.section(QLatin1Char('\n'), 0, 0).trimmed();
}

// Mean loudness in dB of one channel (FL, FC, ...) of a file's first audio.
inline double channelLoudness(const QString &path, const QString &channel)
{
    QString output;
    testsupport::run(QStringLiteral("ffmpeg -hide_banner -nostdin -i '%1' -map 0:a:0 -af 'pan=mono|c0=%2,volumedetect' "
                                    "-f null - 2>&1 | grep mean_volume").arg(path, channel), &output);
    return output.section(QStringLiteral("mean_volume:"), 1).section(QLatin1Char('d'), 0, 0).trimmed().toDouble();
}

} // namespace standin
