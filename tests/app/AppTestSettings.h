#pragma once

#include "MCAppDelegate.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCSelectionController.h"
#include "TestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QVariantMap>

// A settings file holding one user settings preset, "Copy" (passes the
// video through, keeps the audio), after the built-in ones; into the given
// target ("AVI", "MKV", "MP4"), or without one as presets were stored before.
inline QString settingsWithCopyPreset(const QString &folder, const QString &target = {})
{
    const QString settings = folder + QStringLiteral("/kestrane.ini");
    QVariantMap copy{{"pName", "Copy"},          {"pDevice", "General"},   {"pTypeOfProcessIndex", 0}, {"pVideoActionIndex", 0},
                     {"pStereoActionIndex", 0}, {"pSurroundActionIndex", 0}, {"pSubAction", "Extract"}, {"isEditable", true}};
    if (!target.isEmpty())
        copy.insert(QStringLiteral("pTarget"), target);
    MCPreferences(settings).saveUserPresetSettingsListFor({copy});
    return settings;
}

// A clip of test picture and stereo sound in the given codecs, made once per test program.
inline QString appClip(const QString &name, const QString &codecs = QStringLiteral("-c:v mpeg4 -c:a ac3"), int seconds = 2,
                       const QString &size = QStringLiteral("160x120"))
{
    static QTemporaryDir dir;
    const QString path = dir.filePath(name);
    if (QFile::exists(path))
        return path;
    return testsupport::ffmpeg(dir.path(), name,
                               QStringLiteral("-f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 -ac 2 %3")
                                   .arg(size).arg(seconds).arg(codecs));
}

// Takes files in as the window does, on a tab and in a mode ("open", "drag", "add", "watch").
inline void openOn(MCAppDelegate &app, const QString &tab, const QString &mode, const QStringList &paths)
{
    app.selectionController->setCurrentTab(tab);
    app.setOpeningFileMode(mode);
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << QUrl::fromLocalFile(path);
    app.openedFileHubForFiles(urls);
}

// The application launched on settings with the "Copy" preset, its alerts recorded.
struct LaunchedApp
{
    explicit LaunchedApp(const QString &target = {})
        : alerts(testsupport::recordAlerts()), app(settingsWithCopyPreset(settingsDir.path(), target))
    {
        app.applicationDidFinishLaunching();
    }

    QTemporaryDir settingsDir;
    std::shared_ptr<RecordingAlertPresenter> alerts;
    MCAppDelegate app;
};

// With the "First Track" and "Copy" presets chosen and a fresh watch folder;
// scans are driven by hand.
struct WatchingApp : LaunchedApp
{
    explicit WatchingApp(const QString &target = {})
        : LaunchedApp(target)
    {
        MCPresetsController *presets = app.presetsController;
        presets->setSelectionMethodIndex(presets->presetSelectionsNamesList.indexOf(QStringLiteral("First Track")));
        presets->setSettingMethodIndex(presets->presetSettingsNamesList.indexOf(QStringLiteral("Copy")));
        app.appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.path());
    }

    QString path(const QString &name) const { return folder.filePath(name); }

    QTemporaryDir folder;
};
