// The About box names each tool of the resource folder with its version.
#include "MCAboutBox.h"
#include "MCToolVersions.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QtWidgets>

namespace {

TEST(ToolVersions, EachToolAnswersInItsOwnWordsAndMissingOrSilentOnesAreNamed)
{
    QTemporaryDir folder;
    // tool, its script, what the About box shows (null: not checked).
    const QList<std::tuple<const char *, QByteArray, const char *>> tools{
        {"mediainfo", "echo 'MediaInfo Command line, '; echo 'MediaInfoLib - v23.04'", "MediaInfoLib - v23.04"},
        {"Frameworks/mkvmerge", "echo \"mkvmerge v74.0.0 ('You Oughta Know') 64-bit\"", "mkvmerge v74.0.0 ('You Oughta Know') 64-bit"},
        {"ffmpeg", "echo 'ffmpeg version 5.1.4 Copyright (c) 2000-2023 the FFmpeg developers'", "ffmpeg version 5.1.4"},
        {"mplayer", "echo 'MPlayer UNKNOWN-12 (C) 2000-2023 MPlayer Team'; exit 1", "MPlayer UNKNOWN-12"},
        {"mencoder", "exit 0", "no version reported"},
        {"Frameworks/mkvextract", "exec sleep 60", nullptr}, // never answers: stopped in time
        {"kestrane-mediatool", "exit 2", nullptr}};
    for (const auto &[tool, script, shown] : tools) {
        const QString path = folder.filePath(QString::fromLatin1(tool));
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("#!/bin/sh\n" + script + '\n') > 0);
        file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    }
    QFile::link(folder.filePath(QStringLiteral("kestrane-mediatool")), folder.filePath(QStringLiteral("avisplit")));

    MCAboutBox about(folder.path());
    ASSERT_TRUE(testsupport::waitUntil([&] { return about.versions()->isFinished(); }, MCToolVersions::timeoutMs + 3000));
    QMap<QString, QString> shown;
    for (int row = 0; row < about.toolTable()->rowCount(); ++row)
        shown.insert(about.toolTable()->item(row, 0)->text(), about.toolTable()->item(row, 1)->text());
    for (const auto &[tool, script, text] : tools)
        EXPECT_TRUE(!text || shown.value(QString::fromLatin1(tool)) == QLatin1String(text)) << tool << ": " << shown.value(QString::fromLatin1(tool)).toStdString();
    EXPECT_TRUE(shown.value(QStringLiteral("avisplit")).startsWith(QStringLiteral("Kestrane's own")))
        << shown.value(QStringLiteral("avisplit")).toStdString();
    EXPECT_EQ(shown.value(QStringLiteral("mkvinfo")), QStringLiteral("not found"));
}

} // namespace
