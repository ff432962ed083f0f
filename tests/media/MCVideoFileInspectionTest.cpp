#include "MCVideoFile.h"

#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class MCVideoFileInspection : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        dir = new QTemporaryDir;
        avi = testsupport::ffmpeg(dir->path(), QStringLiteral("clip.avi"),
                                  QStringLiteral("-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=sample_rate=44100 "
                                                 "-t 2 -c:v mpeg4 -vtag XVID -c:a libmp3lame"));
        testsupport::run(QStringLiteral("cd '%1' && mkvmerge -q -o plain.mkv clip.avi && "
                                        "mkvmerge -q -o squeezed.mkv --compression 0:mpeg4_p2 clip.avi")
                             .arg(dir->path()));
    }
    static void TearDownTestSuite()
    {
        delete dir;
        dir = nullptr;
    }

    static QUrl url(const QString &name) { return QUrl::fromLocalFile(dir->path() + QLatin1Char('/') + name); }

    static QString copyOfClipNamed(const QString &name)
    {
        const QString path = dir->path() + QLatin1Char('/') + name;
        QFile::remove(path);
        QFile::copy(avi, path);
        return path;
    }

    static inline QTemporaryDir *dir = nullptr;
    static inline QString avi;
};

} // namespace

TEST_F(MCVideoFileInspection, LoadsAGeneratedAviWithTheRealTools)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    EXPECT_EQ(file.trackList.size(), 2);
    EXPECT_EQ(file.theVideoCodec, QStringLiteral("mpeg4"));
    EXPECT_EQ(file.theWidth, QStringLiteral("320"));
    EXPECT_EQ(file.theFPS, QStringLiteral("25.000"));
    EXPECT_EQ(file.theFileShortName, QStringLiteral("clip"));
    EXPECT_EQ(file.pathToFileFolder, dir->path() + QLatin1Char('/'));
    EXPECT_FALSE(file.headerRemovalFlag);
    EXPECT_EQ(file.quickInitializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
}

TEST_F(MCVideoFileInspection, HeaderRemovalCompressionIsFoundThroughMkvinfo)
{
    MCVideoFile plain;
    ASSERT_EQ(plain.initializeForURL(url(QStringLiteral("plain.mkv"))), QStringLiteral("OK"));
    EXPECT_FALSE(plain.headerRemovalFlag);
    MCVideoFile squeezed;
    ASSERT_EQ(squeezed.initializeForURL(url(QStringLiteral("squeezed.mkv"))), QStringLiteral("OK"));
    EXPECT_TRUE(squeezed.headerRemovalFlag);
}

TEST_F(MCVideoFileInspection, SecondFilesAreAddedOrReplaceTheFirst)
{
    MCVideoFile file;
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("clip.avi"))), QStringLiteral("replace file"));
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    testsupport::ffmpeg(dir->path(), QStringLiteral("extra.mp3"), QStringLiteral("-f lavfi -i sine=sample_rate=44100 -t 1"));
    QFile srt(dir->path() + QStringLiteral("/extra.srt"));
    ASSERT_TRUE(srt.open(QIODevice::WriteOnly));
    srt.write("1\n00:00:00,000 --> 00:00:01,000\nHi\n");
    srt.close();
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("plain.mkv"))), QStringLiteral("replace file"));
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("extra.mp3"))), QStringLiteral("add file"));
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("extra.srt"))), QStringLiteral("add file"));

    EXPECT_EQ(file.addTrack(url(QStringLiteral("clip.avi"))), QStringLiteral("too many tracks"));
    ASSERT_EQ(file.addTrack(url(QStringLiteral("extra.mp3"))), QStringLiteral("OK"));
    ASSERT_EQ(file.addTrack(url(QStringLiteral("extra.srt"))), QStringLiteral("OK"));
    ASSERT_EQ(file.trackList.size(), 4);
    EXPECT_TRUE(file.trackList[2]->externalTrackFlag);
    EXPECT_EQ(file.trackList[2]->trackIndex, QStringLiteral("2"));
    EXPECT_EQ(file.trackList[3]->trackType, QStringLiteral("External Subtitle"));
    EXPECT_EQ(file.theNumberOfAudioTracks, QStringLiteral("2"));
    EXPECT_EQ(file.theNumberOfSubTracks, QStringLiteral("1"));
}

TEST_F(MCVideoFileInspection, BadInputAnswersAWordAndKeepsTheLoadedFile)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));

    QFile empty(dir->path() + QStringLiteral("/empty.avi"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    QFile noise(dir->path() + QStringLiteral("/noise.avi"));
    ASSERT_TRUE(noise.open(QIODevice::WriteOnly));
    for (int i = 0; i < 4096; ++i)
        noise.putChar(static_cast<char>((i * 7919) % 251));
    noise.close();
    QFile text(dir->path() + QStringLiteral("/readme.txt"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("This is not a video.\n");
    text.close();
    QDir(dir->path()).mkdir(QStringLiteral("folder.avi"));
    QFile::copy(avi, dir->path() + QStringLiteral("/folder.avi/inside.avi"));

    for (const char *name : {"missing.avi", "folder.avi", "empty.avi", "noise.avi", "readme.txt"}) {
        EXPECT_EQ(file.initializeForURL(url(QString::fromLatin1(name))), QStringLiteral("not a video")) << name;
        EXPECT_EQ(file.quickInitializeForURL(url(QString::fromLatin1(name))), QStringLiteral("error")) << name;
        EXPECT_EQ(file.whatToDoWithFile(url(QString::fromLatin1(name))), QStringLiteral("not a video file")) << name;
    }
    EXPECT_EQ(file.theFileName, QStringLiteral("clip.avi"));
    EXPECT_EQ(file.trackList.size(), 2);
}

TEST_F(MCVideoFileInspection, AwkwardNamesAreInspectedAndNeverRun)
{
    const QString previous = QDir::currentPath();
    QDir::setCurrent(dir->path());
    const QStringList names{QStringLiteral("with blanks.avi"), QStringLiteral("it's \"quoted\".avi"),
                            QStringLiteral("dollar $(touch canary) `touch canary`.avi"),
                            QStringLiteral("new\nline.avi"), QStringLiteral("Ünïcødé 映画.avi"),
                            QStringLiteral("back\\slash $HOME.avi")};
    for (const QString &name : names) {
        const QString path = copyOfClipNamed(name);
        MCVideoFile file;
        EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(path)), QStringLiteral("OK")) << name.toStdString();
        EXPECT_EQ(file.theFileName, name);
        EXPECT_EQ(file.trackList.size(), 2) << name.toStdString();
    }
    const QString squeezedName = copyOfClipNamed(QStringLiteral("$(touch canary).mkv"));
    QFile::remove(squeezedName);
    QFile::copy(dir->path() + QStringLiteral("/squeezed.mkv"), squeezedName);
    MCVideoFile mkv;
    EXPECT_EQ(mkv.initializeForURL(QUrl::fromLocalFile(squeezedName)), QStringLiteral("OK"));
    EXPECT_TRUE(mkv.headerRemovalFlag);
    QDir::setCurrent(previous);
    EXPECT_FALSE(QFileInfo::exists(dir->path() + QStringLiteral("/canary")));
}
