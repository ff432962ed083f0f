// "Save File Info": mediainfo's full report of each file, written whole as
// NAME.info.txt into the save folder or beside the file, touching nothing else.
#include "MCAppDelegate.h"

#include "MCPreferences.h"
#include "MCSelectionController.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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

class SaveFileInfoTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(media.isValid() && saveFolder.isValid() && settings.isValid());
        alerts = testsupport::recordAlerts();
        app = std::make_unique<MCAppDelegate>(settings.path() + QStringLiteral("/kestrane.ini"));
        app->applicationDidFinishLaunching();
        for (const QString &name : {QStringLiteral("first.avi"), QStringLiteral("second.avi")})
            testsupport::ffmpeg(media.path(), name,
                                QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=1 -c:v mpeg4"));
    }

    QString mediaFile(const QString &name) const { return media.path() + QLatin1Char('/') + name; }

    void open(const QString &tab, const QStringList &names)
    {
        app->selectionController->setCurrentTab(tab);
        app->setOpeningFileMode(QStringLiteral("open"));
        QList<QUrl> urls;
        for (const QString &name : names)
            urls << QUrl::fromLocalFile(mediaFile(name));
        app->openedFileHubForFiles(urls);
    }

    QTemporaryDir media, saveFolder, settings;
    std::shared_ptr<RecordingAlertPresenter> alerts;
    std::unique_ptr<MCAppDelegate> app;
};

TEST_F(SaveFileInfoTest, WritesBesideTheFileReplacingOnlyAnEarlierReport)
{
    open(QStringLiteral("AVI"), {QStringLiteral("first.avi")});
    const QString report = mediaFile(QStringLiteral("first.avi.info.txt"));
    write(report, "an earlier report\n");
    write(mediaFile(QStringLiteral("first.info.txt")), "the user's own notes\n");
    const QByteArray video = contents(mediaFile(QStringLiteral("first.avi")));

    app->helpMenuItemSelected(QStringLiteral("Save File Info"));

    const QByteArray text = contents(report);
    EXPECT_TRUE(text.contains("Complete name")) << text.constData();
    EXPECT_TRUE(text.contains("first.avi"));
    EXPECT_FALSE(text.contains("an earlier report"));
    EXPECT_EQ(contents(mediaFile(QStringLiteral("first.info.txt"))), QByteArray("the user's own notes\n"));
    EXPECT_EQ(contents(mediaFile(QStringLiteral("first.avi"))), video);
    // Written whole: no temporary file is left behind.
    EXPECT_EQ(QDir(media.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name),
              (QStringList{QStringLiteral("first.avi"), QStringLiteral("first.avi.info.txt"),
                           QStringLiteral("first.info.txt"), QStringLiteral("second.avi")}));
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(SaveFileInfoTest, EditFilesTabReportsEveryListedFileIntoTheSaveFolder)
{
    app->appPreferences->saveDirectoryURL = QUrl::fromLocalFile(saveFolder.path());
    open(QStringLiteral("Edit Files"), {QStringLiteral("first.avi"), QStringLiteral("second.avi")});
    const QStringList written = app->saveFileInfo();
    EXPECT_EQ(written, (QStringList{saveFolder.path() + QStringLiteral("/first.avi.info.txt"),
                                    saveFolder.path() + QStringLiteral("/second.avi.info.txt")}));
    EXPECT_TRUE(contents(written.value(1)).contains("second.avi"));
    EXPECT_EQ(QDir(saveFolder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
    EXPECT_FALSE(QFile::exists(mediaFile(QStringLiteral("first.avi.info.txt"))));
}

TEST_F(SaveFileInfoTest, WhatCannotBeWrittenIsLeftAlone)
{
    // Nothing loaded: nothing to report.
    EXPECT_TRUE(app->saveFileInfo().isEmpty());

    open(QStringLiteral("AVI"), {QStringLiteral("first.avi")});
    // A folder of the report's name stays as it is, with its contents.
    ASSERT_TRUE(QDir(saveFolder.path()).mkpath(QStringLiteral("first.avi.info.txt")));
    write(saveFolder.path() + QStringLiteral("/first.avi.info.txt/keep"), "kept\n");
    app->appPreferences->saveDirectoryURL = QUrl::fromLocalFile(saveFolder.path());
    EXPECT_TRUE(app->saveFileInfo().isEmpty());
    EXPECT_EQ(contents(saveFolder.path() + QStringLiteral("/first.avi.info.txt/keep")), QByteArray("kept\n"));
    EXPECT_EQ(QDir(saveFolder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QStringLiteral("first.avi.info.txt")});

    // A save folder that has gone away is not made again.
    app->appPreferences->saveDirectoryURL = QUrl::fromLocalFile(saveFolder.path() + QStringLiteral("/gone"));
    EXPECT_TRUE(app->saveFileInfo().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(saveFolder.path() + QStringLiteral("/gone")));
    // Both failures were told, not only logged.
    ASSERT_EQ(alerts->alerts.size(), 2);
    EXPECT_EQ(alerts->alerts.at(1).message, QStringLiteral("Kestrane could not save the file information."));
    EXPECT_TRUE(alerts->alerts.at(1).informativeText.contains(QStringLiteral("/gone/first.avi.info.txt")));
}

} // namespace
