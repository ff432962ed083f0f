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

#include <memory>

#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class MCVideoFileInspection : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        dir = std::make_unique<QTemporaryDir>();
        avi = testsupport::ffmpeg(dir->path(), u"clip.avi"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=sample_rate=44100 "
                                                             "-t 2 -c:v mpeg4 -vtag XVID -c:a libmp3lame"_s);
        testsupport::run(u"cd '%1' && mkvmerge -q -o plain.mkv clip.avi && mkvmerge -q -o squeezed.mkv --compression 0:mpeg4_p2 clip.avi"_s
                             .arg(dir->path()));
    }
    static void TearDownTestSuite() { dir.reset(); }

    static QUrl url(const QString &name) { return QUrl::fromLocalFile(dir->path() + QLatin1Char('/') + name); }

    static void write(const QString &name, const QByteArray &bytes)
    {
        QFile file(dir->path() + QLatin1Char('/') + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    static QString copyOf(const QString &name, const QString &original = avi)
    {
        const QString path = dir->path() + QLatin1Char('/') + name;
        QFile::remove(path);
        QFile::copy(original, path);
        return path;
    }

    static inline std::unique_ptr<QTemporaryDir> dir;
    static inline QString avi;
};

} // namespace

TEST_F(MCVideoFileInspection, LoadsAGeneratedFileAndFindsHeaderRemovalThroughMkvinfo)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(u"clip.avi"_s)), u"OK"_s);
    EXPECT_EQ(file.trackList.size(), 2);
    EXPECT_EQ(file.theVideoCodec, u"mpeg4"_s);
    EXPECT_EQ(file.theFPS, u"25.000"_s);
    for (const auto &[name, squeezed] : {std::pair{u"clip.avi"_s, false}, std::pair{u"plain.mkv"_s, false},
                                         std::pair{u"squeezed.mkv"_s, true}}) {
        MCVideoFile mkv;
        ASSERT_EQ(mkv.initializeForURL(url(name)), u"OK"_s);
        EXPECT_EQ(mkv.headerRemovalFlag, squeezed) << name.toStdString();
    }
}

TEST_F(MCVideoFileInspection, SecondFilesAreAddedOrReplaceTheFirst)
{
    MCVideoFile file;
    EXPECT_EQ(file.whatToDoWithFile(url(u"clip.avi"_s)), u"replace file"_s);
    ASSERT_EQ(file.initializeForURL(url(u"clip.avi"_s)), u"OK"_s);
    testsupport::ffmpeg(dir->path(), u"extra.mp3"_s, u"-f lavfi -i sine=sample_rate=44100 -t 1"_s);
    EXPECT_EQ(file.whatToDoWithFile(url(u"plain.mkv"_s)), u"replace file"_s);
    EXPECT_EQ(file.whatToDoWithFile(url(u"extra.mp3"_s)), u"add file"_s);

    testsupport::ffmpeg(dir->path(), u"picture.mp4"_s, u"-f lavfi -i testsrc=size=160x120 -t 1"_s);
    EXPECT_EQ(file.whatToDoWithFile(url(u"picture.mp4"_s)), u"replace file"_s);
    EXPECT_EQ(file.addTrack(url(u"picture.mp4"_s)), u"adding video track"_s);
    EXPECT_EQ(file.addTrack(url(u"clip.avi"_s)), u"too many tracks"_s);
    ASSERT_EQ(file.addTrack(url(u"extra.mp3"_s)), u"OK"_s);
    ASSERT_EQ(file.trackList.size(), 3);
    EXPECT_TRUE(file.trackList[2]->externalTrackFlag);
    EXPECT_EQ(file.trackList[2]->trackIndex, u"2"_s);
    EXPECT_EQ(file.theNumberOfAudioTracks, u"2"_s);
}

TEST_F(MCVideoFileInspection, BadInputAnswersAWordAndKeepsTheLoadedFile)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(u"clip.avi"_s)), u"OK"_s);
    QByteArray noise;
    for (int i = 0; i < 4096; ++i)
        noise.append(static_cast<char>((i * 7919) % 251));
    write(u"empty.avi"_s, {});
    write(u"noise.avi"_s, noise);
    write(u"readme.txt"_s, "This is not a video.\n");
    QDir(dir->path()).mkdir(u"folder.avi"_s);
    QFile::copy(avi, dir->path() + u"/folder.avi/inside.avi"_s);
    // mediainfo would wait for ever on a pipe that nobody writes.
    ASSERT_EQ(::mkfifo(QFile::encodeName(dir->path() + u"/pipe.avi"_s).constData(), 0644), 0);
    QStringList names{u"missing.avi"_s, u"missing.srt"_s, u"folder.avi"_s,
                      u"empty.avi"_s, u"noise.avi"_s, u"readme.txt"_s, u"pipe.avi"_s};
    const QString locked = copyOf(u"locked.avi"_s);
    ASSERT_TRUE(QFile::setPermissions(locked, {}));
    if (!QFileInfo(locked).isReadable())
        names << u"locked.avi"_s;
    else if (!qEnvironmentVariableIsSet("KESTRANE_TEST_WITHOUT_DAC") && !QStandardPaths::findExecutable(u"setpriv"_s).isEmpty()) {
        // Root reads any file: run this test again without that capability.
        QProcess child;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"KESTRANE_TEST_WITHOUT_DAC"_s, u"1"_s);
        child.setProcessEnvironment(environment);
        const QString caps = u"-dac_override,-dac_read_search"_s;
        child.start(u"setpriv"_s, {u"--inh-caps="_s + caps, u"--bounding-set="_s + caps,
                                                QCoreApplication::applicationFilePath(),
                                                u"--gtest_filter=MCVideoFileInspection.BadInputAnswersAWordAndKeepsTheLoadedFile"_s});
        ASSERT_TRUE(child.waitForFinished(120000));
        const QString output = QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
        // A setpriv that cannot drop the capability runs no test at all.
        if (output.contains(u"[==========]"_s)) {
            EXPECT_TRUE(child.exitCode() == 0 && output.contains(u"[  PASSED  ] 1 test"_s)) << output.toStdString();
        }
    }
    for (const QString &name : names) {
        EXPECT_EQ(file.initializeForURL(url(name)), u"not a video"_s) << name.toStdString();
        EXPECT_EQ(file.quickInitializeForURL(url(name)), u"error"_s) << name.toStdString();
        EXPECT_EQ(file.whatToDoWithFile(url(name)), u"not a video file"_s) << name.toStdString();
        EXPECT_EQ(file.addTrack(url(name)), u"not a video"_s) << name.toStdString();
    }
    EXPECT_EQ(file.theFileName, u"clip.avi"_s);
    EXPECT_EQ(file.trackList.size(), 2);
}

TEST_F(MCVideoFileInspection, AwkwardNamesAreInspectedAndNeverRun)
{
    // Tools run in their own working folder, so the canary has an absolute
    // path, handed over in the environment (a name cannot hold "/").
    const QString canary = dir->path() + u"/canary"_s;
    qputenv("KESTRANE_CANARY", QFile::encodeName(canary));
    const QStringList names{u"with blanks.avi"_s, u"it's \"quoted\".avi"_s, u"dollar $(touch $KESTRANE_CANARY) `touch $KESTRANE_CANARY`.avi"_s,
                            u"semi\"; touch \"$KESTRANE_CANARY.avi"_s, u"new\nline.avi"_s, u"Ünïcødé 映画.avi"_s, u"back\\slash $HOME.avi"_s};
    for (const QString &name : names) {
        const QString path = copyOf(name);
        MCVideoFile file;
        EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(path)), u"OK"_s) << name.toStdString();
        EXPECT_EQ(file.theFileName, name);
        EXPECT_EQ(file.trackList.size(), 2) << name.toStdString();
        EXPECT_EQ(file.quickInitializeForURL(QUrl::fromLocalFile(path)), u"OK"_s) << name.toStdString();
    }
    MCVideoFile mkv;
    EXPECT_EQ(mkv.initializeForURL(QUrl::fromLocalFile(copyOf(u"`touch $KESTRANE_CANARY`.mkv"_s, dir->path() + u"/squeezed.mkv"_s))), u"OK"_s);
    EXPECT_TRUE(mkv.headerRemovalFlag);
    qunsetenv("KESTRANE_CANARY");
    EXPECT_FALSE(QFileInfo::exists(canary));
}

TEST_F(MCVideoFileInspection, AToolThatHangsMakesTheFileNotAVideoInTime)
{
    MCVideoFile file;
    ASSERT_EQ(file.initializeForURL(url(u"clip.avi"_s)), u"OK"_s);
    // A mediainfo that never answers (a stalled network share does this).
    const QString hanging = dir->path() + u"/hanging-mediainfo"_s;
    write(u"hanging-mediainfo"_s, "#!/bin/sh\nsleep 60\n");
    QFile::setPermissions(hanging, QFile::permissions(hanging) | QFileDevice::ExeOwner);
    file.mediainfoURL = QUrl::fromLocalFile(hanging);
    file.toolTimeLimitMs = 500;

    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(copyOf(u"unanswered.avi"_s))), u"not a video"_s);
    EXPECT_LT(clock.elapsed(), 30000);
    QString left;
    testsupport::run(u"pgrep -f '%1'"_s.arg(hanging), &left);
    EXPECT_TRUE(left.trimmed().isEmpty()) << "still running: " << left.toStdString();
}
