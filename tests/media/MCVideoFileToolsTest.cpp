#include "MCVideoFile.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/stat.h>

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

    static void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(dir->path() + QLatin1Char('/') + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

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

TEST_F(MCVideoFileInspection, LoadsAGeneratedFileAndFindsHeaderRemovalThroughMkvinfo)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    EXPECT_EQ(file.trackList.size(), 2);
    EXPECT_EQ(file.theVideoCodec, QStringLiteral("mpeg4"));
    EXPECT_EQ(file.theWidth, QStringLiteral("320"));
    EXPECT_EQ(file.theFPS, QStringLiteral("25.000"));
    EXPECT_EQ(file.theFileShortName, QStringLiteral("clip"));
    EXPECT_EQ(file.pathToFileFolder, dir->path() + QLatin1Char('/'));
    EXPECT_EQ(file.quickInitializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    for (const auto &[name, squeezed] : {std::pair{QStringLiteral("clip.avi"), false}, std::pair{QStringLiteral("plain.mkv"), false},
                                         std::pair{QStringLiteral("squeezed.mkv"), true}}) {
        MCVideoFile mkv;
        ASSERT_EQ(mkv.initializeForURL(url(name)), QStringLiteral("OK"));
        EXPECT_EQ(mkv.headerRemovalFlag, squeezed) << name.toStdString();
    }
}

TEST_F(MCVideoFileInspection, SecondFilesAreAddedOrReplaceTheFirst)
{
    MCVideoFile file;
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("clip.avi"))), QStringLiteral("replace file"));
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    testsupport::ffmpeg(dir->path(), QStringLiteral("extra.mp3"), QStringLiteral("-f lavfi -i sine=sample_rate=44100 -t 1"));
    write(QStringLiteral("extra.srt"), "1\n00:00:00,000 --> 00:00:01,000\nHi\n");
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("plain.mkv"))), QStringLiteral("replace file"));
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("extra.mp3"))), QStringLiteral("add file"));
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("extra.srt"))), QStringLiteral("add file"));

    testsupport::ffmpeg(dir->path(), QStringLiteral("picture.mp4"), QStringLiteral("-f lavfi -i testsrc=size=160x120 -t 1"));
    EXPECT_EQ(file.whatToDoWithFile(url(QStringLiteral("picture.mp4"))), QStringLiteral("replace file"));
    EXPECT_EQ(file.addTrack(url(QStringLiteral("picture.mp4"))), QStringLiteral("adding video track"));
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
    QByteArray noise;
    for (int i = 0; i < 4096; ++i)
        noise.append(static_cast<char>((i * 7919) % 251));
    write(QStringLiteral("empty.avi"), {});
    write(QStringLiteral("noise.avi"), noise);
    write(QStringLiteral("readme.txt"), "This is not a video.\n");
    QDir(dir->path()).mkdir(QStringLiteral("folder.avi"));
    QFile::copy(avi, dir->path() + QStringLiteral("/folder.avi/inside.avi"));
    // mediainfo would wait for ever on a pipe that nobody writes.
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir->path() + QStringLiteral("/pipe.avi")).constData(), 0644), 0);
    QStringList names{QStringLiteral("missing.avi"), QStringLiteral("missing.srt"), QStringLiteral("folder.avi"),
                      QStringLiteral("empty.avi"), QStringLiteral("noise.avi"), QStringLiteral("readme.txt"), QStringLiteral("pipe.avi")};
    const QString locked = copyOfClipNamed(QStringLiteral("locked.avi"));
    ASSERT_TRUE(QFile::setPermissions(locked, {}));
    if (!QFileInfo(locked).isReadable())
        names << QStringLiteral("locked.avi");
    else if (!qEnvironmentVariableIsSet("KESTRANE_TEST_WITHOUT_DAC") && !QStandardPaths::findExecutable(QStringLiteral("setpriv")).isEmpty()) {
        // Root reads any file: run this test again without that capability.
        QProcess child;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KESTRANE_TEST_WITHOUT_DAC"), QStringLiteral("1"));
        child.setProcessEnvironment(environment);
        const QString caps = QStringLiteral("-dac_override,-dac_read_search");
        child.start(QStringLiteral("setpriv"), {QStringLiteral("--inh-caps=") + caps, QStringLiteral("--bounding-set=") + caps,
                                                QCoreApplication::applicationFilePath(),
                                                QStringLiteral("--gtest_filter=MCVideoFileInspection.BadInputAnswersAWordAndKeepsTheLoadedFile")});
        ASSERT_TRUE(child.waitForFinished(120000));
        const QString output = QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
        // A setpriv that cannot drop the capability runs no test at all.
        if (output.contains(QStringLiteral("[==========]"))) {
            EXPECT_TRUE(child.exitCode() == 0 && output.contains(QStringLiteral("[  PASSED  ] 1 test"))) << output.toStdString();
        }
    }
    for (const QString &name : names) {
        EXPECT_EQ(file.initializeForURL(url(name)), QStringLiteral("not a video")) << name.toStdString();
        EXPECT_EQ(file.quickInitializeForURL(url(name)), QStringLiteral("error")) << name.toStdString();
        EXPECT_EQ(file.whatToDoWithFile(url(name)), QStringLiteral("not a video file")) << name.toStdString();
        EXPECT_EQ(file.addTrack(url(name)), QStringLiteral("not a video")) << name.toStdString();
    }
    EXPECT_EQ(file.theFileName, QStringLiteral("clip.avi"));
    EXPECT_EQ(file.trackList.size(), 2);
}

TEST_F(MCVideoFileInspection, AwkwardNamesAreInspectedAndNeverRun)
{
    // Tools run in their own working folder, so the canary has an absolute
    // path, handed over in the environment (a name cannot hold "/").
    const QString canary = dir->path() + QStringLiteral("/canary");
    qputenv("KESTRANE_CANARY", QFile::encodeName(canary));
    const QStringList names{QStringLiteral("with blanks.avi"), QStringLiteral("it's \"quoted\".avi"),
                            QStringLiteral("dollar $(touch $KESTRANE_CANARY) `touch $KESTRANE_CANARY`.avi"),
                            QStringLiteral("semi\"; touch \"$KESTRANE_CANARY.avi"),
                            QStringLiteral("new\nline.avi"), QStringLiteral("Ünïcødé 映画.avi"),
                            QStringLiteral("back\\slash $HOME.avi")};
    for (const QString &name : names) {
        const QString path = copyOfClipNamed(name);
        MCVideoFile file;
        EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(path)), QStringLiteral("OK")) << name.toStdString();
        EXPECT_EQ(file.theFileName, name);
        EXPECT_EQ(file.trackList.size(), 2) << name.toStdString();
        EXPECT_EQ(file.quickInitializeForURL(QUrl::fromLocalFile(path)), QStringLiteral("OK")) << name.toStdString();
    }
    const QString squeezedName = copyOfClipNamed(QStringLiteral("`touch $KESTRANE_CANARY`.mkv"));
    QFile::remove(squeezedName);
    QFile::copy(dir->path() + QStringLiteral("/squeezed.mkv"), squeezedName);
    MCVideoFile mkv;
    EXPECT_EQ(mkv.initializeForURL(QUrl::fromLocalFile(squeezedName)), QStringLiteral("OK"));
    EXPECT_TRUE(mkv.headerRemovalFlag);
    qunsetenv("KESTRANE_CANARY");
    EXPECT_FALSE(QFileInfo::exists(canary));
}

TEST_F(MCVideoFileInspection, AToolThatHangsMakesTheFileNotAVideoInTime)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(QStringLiteral("clip.avi"))), QStringLiteral("OK"));
    // A mediainfo that never answers (a stalled network share does this).
    const QString hanging = dir->path() + QStringLiteral("/hanging-mediainfo");
    write(QStringLiteral("hanging-mediainfo"), "#!/bin/sh\nsleep 60\n");
    QFile::setPermissions(hanging, QFile::permissions(hanging) | QFileDevice::ExeOwner);
    file.mediainfoURL = QUrl::fromLocalFile(hanging);
    file.toolTimeLimitMs = 500;

    QElapsedTimer clock;
    clock.start();
    const QString other = copyOfClipNamed(QStringLiteral("unanswered.avi"));
    EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(other)), QStringLiteral("not a video"));
    EXPECT_LT(clock.elapsed(), 30000);
    QString left;
    testsupport::run(QStringLiteral("pgrep -f '%1'").arg(hanging), &left);
    EXPECT_TRUE(left.trimmed().isEmpty()) << "still running: " << left.toStdString();
}
