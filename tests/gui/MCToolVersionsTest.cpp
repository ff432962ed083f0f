// The About box names each tool of the resource folder with its version.
#include "MCAboutBox.h"
#include "MCToolVersions.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTableWidget>
#include <QTemporaryDir>

namespace {

void writeTool(const QString &path, const QByteArray &script)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\n" + script);
    file.close();
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}

TEST(ToolVersions, EachToolAnswersInItsOwnWordsAndMissingOnesAreNamed)
{
    QTemporaryDir folder;
    writeTool(folder.filePath(QStringLiteral("mediainfo")), "echo 'MediaInfo Command line, '; echo 'MediaInfoLib - v23.04'\n");
    writeTool(folder.filePath(QStringLiteral("Frameworks/mkvmerge")), "echo \"mkvmerge v74.0.0 ('You Oughta Know') 64-bit\"\n");
    writeTool(folder.filePath(QStringLiteral("ffmpeg")), "echo 'ffmpeg version 5.1.4 Copyright (c) 2000-2023 the FFmpeg developers'\n");
    writeTool(folder.filePath(QStringLiteral("mplayer")), "echo 'MPlayer UNKNOWN-12 (C) 2000-2023 MPlayer Team'; exit 1\n");
    writeTool(folder.filePath(QStringLiteral("mencoder")), "exit 0\n");
    writeTool(folder.filePath(QStringLiteral("kestrane-mediatool")), "exit 2\n");
    QFile::link(folder.filePath(QStringLiteral("kestrane-mediatool")), folder.filePath(QStringLiteral("avisplit")));

    MCAboutBox about(folder.path());
    MCToolVersions *versions = about.versions();
    ASSERT_TRUE(testsupport::waitUntil([&] { return versions->isFinished(); }, 10000));
    QMap<QString, QString> shown;
    for (int row = 0; row < about.toolTable()->rowCount(); ++row)
        shown.insert(about.toolTable()->item(row, 0)->text(), about.toolTable()->item(row, 1)->text());
    EXPECT_EQ(shown.value(QStringLiteral("mediainfo")), QStringLiteral("MediaInfoLib - v23.04"));
    EXPECT_EQ(shown.value(QStringLiteral("Frameworks/mkvmerge")), QStringLiteral("mkvmerge v74.0.0 ('You Oughta Know') 64-bit"));
    EXPECT_EQ(shown.value(QStringLiteral("ffmpeg")), QStringLiteral("ffmpeg version 5.1.4"));
    EXPECT_EQ(shown.value(QStringLiteral("mplayer")), QStringLiteral("MPlayer UNKNOWN-12"));
    EXPECT_EQ(shown.value(QStringLiteral("mencoder")), QStringLiteral("no version reported"));
    EXPECT_TRUE(shown.value(QStringLiteral("avisplit")).startsWith(QStringLiteral("Kestrane's own")))
        << shown.value(QStringLiteral("avisplit")).toStdString();
    EXPECT_EQ(shown.value(QStringLiteral("mkvinfo")), QStringLiteral("not found"));
    EXPECT_EQ(shown.value(QStringLiteral("mp4boxUpdated/MP4box")), QStringLiteral("not found"));
}

TEST(ToolVersions, AToolThatNeverAnswersIsStoppedInTime)
{
    QTemporaryDir folder;
    writeTool(folder.filePath(QStringLiteral("ffmpeg")), "exec sleep 60\n");
    MCToolVersions versions(folder.path());
    versions.start();
    EXPECT_TRUE(testsupport::waitUntil([&] { return versions.isFinished(); }, MCToolVersions::timeoutMs + 3000));
}

} // namespace
