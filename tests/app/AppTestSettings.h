#pragma once

#include "MCPreferences.h"
#include "TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <QString>
#include <QVariantMap>

// A settings file holding one user settings preset, "Copy" (passes the
// video through, keeps the audio), after the built-in ones; into the given
// target ("AVI", "MKV"), or without one as presets were stored before.
inline QString settingsWithCopyPreset(const QString &folder, const QString &target = {})
{
    const QString settings = folder + QStringLiteral("/kestrane.ini");
    MCPreferences preferences(settings);
    QVariantMap copy{
        {QStringLiteral("pName"), QStringLiteral("Copy")}, {QStringLiteral("pDevice"), QStringLiteral("General")},
        {QStringLiteral("pTypeOfProcessIndex"), 0}, {QStringLiteral("pVideoActionIndex"), 0},
        {QStringLiteral("pStereoActionIndex"), 0}, {QStringLiteral("pSurroundActionIndex"), 0},
        {QStringLiteral("pSubAction"), QStringLiteral("Extract")}, {QStringLiteral("isEditable"), true}};
    if (!target.isEmpty())
        copy.insert(QStringLiteral("pTarget"), target);
    preferences.saveUserPresetSettingsListFor({copy});
    return settings;
}

// Media made once per test program.
inline QString appMedia(const QString &name)
{
    static QTemporaryDir dir;
    return dir.filePath(name);
}

// A clip of test picture and stereo sound in the given codecs, made once.
inline QString appClip(const QString &name, const QString &codecs = QStringLiteral("-c:v mpeg4 -c:a ac3"), int seconds = 2,
                       const QString &size = QStringLiteral("160x120"))
{
    const QString path = appMedia(name);
    if (QFile::exists(path))
        return path;
    return testsupport::ffmpeg(QFileInfo(path).path(), name,
                               QStringLiteral("-f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 -ac 2 %3")
                                   .arg(size).arg(seconds).arg(codecs));
}
