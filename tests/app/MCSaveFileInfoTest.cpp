// "Save File Info": mediainfo's full report of each file, written whole as
// NAME.info.txt into the save folder or beside the file, touching nothing else.
#include "AppTestSettings.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

class SaveFileInfoTest : public ::testing::Test, protected LaunchedApp
{
protected:
    void SetUp() override
    {
        for (const QString &name : {u"first.avi"_s, u"second.avi"_s})
            testsupport::ffmpeg(media.path(), name, u"-f lavfi -i testsrc2=s=160x120:r=25:d=1 -c:v mpeg4"_s);
    }

    void open(const QString &tab, const QStringList &names)
    {
        QStringList paths;
        for (const QString &name : names)
            paths << media.filePath(name);
        openOn(app, tab, u"open"_s, paths);
    }
    void saveInto(const QString &folder) { app.appPreferences->saveDirectoryURL = QUrl::fromLocalFile(folder); }

    QTemporaryDir media, saveFolder;
};

TEST_F(SaveFileInfoTest, WritesBesideTheFileOrIntoTheSaveFolderReplacingOnlyAnEarlierReport)
{
    EXPECT_TRUE(app.saveFileInfo().isEmpty()); // nothing loaded: nothing to report
    open(u"AVI"_s, {u"first.avi"_s});
    write(media.filePath(u"first.avi.info.txt"_s), "an earlier report\n");
    write(media.filePath(u"first.info.txt"_s), "the user's own notes\n");
    const QByteArray video = contents(media.filePath(u"first.avi"_s));
    app.helpMenuItemSelected(u"Save File Info"_s);
    EXPECT_TRUE(contents(media.filePath(u"first.avi.info.txt"_s)).contains("Complete name"));
    EXPECT_EQ(contents(media.filePath(u"first.info.txt"_s)), QByteArray("the user's own notes\n"));
    EXPECT_EQ(contents(media.filePath(u"first.avi"_s)), video);
    // Written whole: no temporary file is left behind.
    EXPECT_EQ(QDir(media.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{u"first.avi"_s, u"first.avi.info.txt"_s, u"first.info.txt"_s, u"second.avi"_s}));

    // The Edit Files tab reports every listed file.
    saveInto(saveFolder.path());
    open(u"Edit Files"_s, {u"first.avi"_s, u"second.avi"_s});
    const QStringList written = app.saveFileInfo();
    EXPECT_EQ(written, (QStringList{saveFolder.filePath(u"first.avi.info.txt"_s), saveFolder.filePath(u"second.avi.info.txt"_s)}));
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(SaveFileInfoTest, WhatCannotBeWrittenIsLeftAloneAndTold)
{
    open(u"AVI"_s, {u"first.avi"_s});
    // A folder of the report's name stays as it is, with its contents.
    ASSERT_TRUE(QDir(saveFolder.path()).mkpath(u"first.avi.info.txt"_s));
    write(saveFolder.filePath(u"first.avi.info.txt/keep"_s), "kept\n");
    saveInto(saveFolder.path());
    EXPECT_TRUE(app.saveFileInfo().isEmpty());
    EXPECT_EQ(contents(saveFolder.filePath(u"first.avi.info.txt/keep"_s)), QByteArray("kept\n"));

    // A save folder that has gone away is not made again.
    saveInto(saveFolder.filePath(u"gone"_s));
    EXPECT_TRUE(app.saveFileInfo().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(saveFolder.filePath(u"gone"_s)));
    ASSERT_EQ(alerts->alerts.size(), 2);
    EXPECT_EQ(alerts->alerts.at(1).message, u"Kestrane could not save the file information."_s);
    EXPECT_TRUE(alerts->alerts.at(1).informativeText.contains(u"/gone/first.avi.info.txt"_s));
}

} // namespace
