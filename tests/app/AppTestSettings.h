#pragma once

#include "MCPreferences.h"

#include <QString>
#include <QVariantMap>

// A settings file holding one user settings preset, "Copy" (passes the
// video through, keeps the audio), after the built-in ones.
inline QString settingsWithCopyPreset(const QString &folder)
{
    const QString settings = folder + QStringLiteral("/kestrane.ini");
    MCPreferences preferences(settings);
    preferences.saveUserPresetSettingsListFor({QVariantMap{
        {QStringLiteral("pName"), QStringLiteral("Copy")}, {QStringLiteral("pDevice"), QStringLiteral("General")},
        {QStringLiteral("pTypeOfProcessIndex"), 0}, {QStringLiteral("pVideoActionIndex"), 0},
        {QStringLiteral("pStereoActionIndex"), 0}, {QStringLiteral("pSurroundActionIndex"), 0},
        {QStringLiteral("pSubAction"), QStringLiteral("Extract")}, {QStringLiteral("isEditable"), true}}});
    return settings;
}
