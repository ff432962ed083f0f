#pragma once

#include "MCPreferences.h"

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
