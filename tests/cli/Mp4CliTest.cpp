#include "CliTestSupport.h"

#include <QCryptographicHash>

#include <gtest/gtest.h>

namespace {

// H.264 and AAC stereo in an MP4, four seconds, a key frame every second.
QString plainMp4(const QString &name)
{
    const QString path = cliMediaDir() + QLatin1Char('/') + name;
    if (QFile::exists(path))
        return path;
    return testsupport::ffmpeg(cliMediaDir(), name,
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=4 -f lavfi -i sine=d=4:r=48000 -ac 2 "
                                              "-c:v libx264 -preset ultrafast -g 25 -c:a aac"));
}

QByteArray checksum(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

class Mp4Cli : public CliTest
{
protected:
    CliResult run(const QStringList &arguments) { return runCli(common() + arguments); }
    QString saved(const QString &name) const { return saveDir.path() + QLatin1Char('/') + name; }

    void clearResults()
    {
        for (const QString &name : filesIn(saveDir.path()))
            QFile::remove(saved(name));
    }
};

} // namespace

TEST(KestraneCliMp4, DevicesAreTheTargetsOwnAndTheMp4CommandsCheckTheirArguments)
{
    const CliResult unknown = runCli({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--device"),
                                      QStringLiteral("DivX DVD"), QStringLiteral("a.mkv")});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("(valid: General, Apple TV 3,"))) << unknown.err.toStdString();
    EXPECT_TRUE(unknown.err.contains(QStringLiteral("iPhone/iPod Touch (3G and Earlier)")));
    // An MP4 device is not an AVI one, whichever order the options come in.
    const CliResult avi = runCli({QStringLiteral("convert"), QStringLiteral("--device"), QStringLiteral("iPod"), QStringLiteral("a.mkv")});
    EXPECT_EQ(avi.status, 2);
    EXPECT_TRUE(avi.err.contains(QStringLiteral("(valid: General, DivX DVD, PS3, Xbox)"))) << avi.err.toStdString();

    const QList<QStringList> mistakes{
        {QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--subtitles"), QStringLiteral("burn"), QStringLiteral("a.mkv")},
        {QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--audio-bitrate"), QStringLiteral("160"), QStringLiteral("a.mkv")},
        {QStringLiteral("par"), QStringLiteral("a.mp4")},
        {QStringLiteral("par"), QStringLiteral("--par"), QStringLiteral("40/33"), QStringLiteral("a.mp4")},
        {QStringLiteral("par"), QStringLiteral("--par"), QStringLiteral("0:1"), QStringLiteral("a.mp4")},
        {QStringLiteral("add-tracks"), QStringLiteral("a.mp4")},
        {QStringLiteral("convert"), QStringLiteral("--par"), QStringLiteral("1:1"), QStringLiteral("a.mp4")},
    };
    for (const QStringList &arguments : mistakes) {
        const CliResult result = runCli(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.startsWith(QStringLiteral("kestrane-cli: "))) << result.err.toStdString();
    }
}

TEST_F(Mp4Cli, ConvertsIntoMp4ForTheDeviceAndRefusesWhatItCannotCopy)
{
    const QString source = surroundMkv();
    const QByteArray before = checksum(source);
    // Device names are taken in any case; the AC-3 track makes it an M4V.
    CliResult copied = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--tracks"),
                            QStringLiteral("1,2,3"), QStringLiteral("--device"), QStringLiteral("ipad 3/iphone 4s"), source});
    ASSERT_EQ(copied.status, 0) << copied.err.toStdString() << copied.out.toStdString();
    const QString m4v = saved(QStringLiteral("surround.mkv.m4v"));
    EXPECT_EQ(described(m4v, QStringLiteral("Video;%Format%")), QStringList{QStringLiteral("AVC")});
    EXPECT_EQ(described(m4v, QStringLiteral("Audio;%Format%/%Channel(s)%/%Language%")), QStringList{QStringLiteral("AC-3/6/de")});
    EXPECT_EQ(described(m4v, QStringLiteral("Text;%Format%")).size(), 1);
    EXPECT_EQ(filesIn(saveDir.path()), QStringList{QStringLiteral("surround.mkv.m4v")});

    clearResults();
    CliResult encoded = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--tracks"),
                             QStringLiteral("1,2,3"), QStringLiteral("--audio"), QStringLiteral("aac"), QStringLiteral("--subtitles"),
                             QStringLiteral("drop"), source});
    ASSERT_EQ(encoded.status, 0) << encoded.err.toStdString();
    const QString mp4 = saved(QStringLiteral("surround.mkv.mp4"));
    EXPECT_EQ(described(mp4, QStringLiteral("Audio;%Format%/%Channel(s)%")), QStringList{QStringLiteral("AAC/2")});
    EXPECT_TRUE(described(mp4, QStringLiteral("Text;%Format%")).isEmpty());
    EXPECT_EQ(checksum(source), before);

    clearResults();
    // MP3 sound is no MP4's as it is: refused before anything runs.
    const CliResult refused = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mp4"), QStringLiteral("--video"),
                                   QStringLiteral("passthru"), xvidAvi(QStringLiteral("mp4-refused.avi"))});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("choose AAC or AC-3"))) << refused.err.toStdString();
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty());
}

TEST_F(Mp4Cli, EditsMp4FilesChoosingTheMp4JobByTheContainer)
{
    const QString first = plainMp4(QStringLiteral("edit-a.mp4"));
    const QString second = plainMp4(QStringLiteral("edit-b.mp4"));
    const QByteArray before = checksum(first);

    CliResult result = run({QStringLiteral("join"), first, second});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_NEAR(testsupport::mediaInfo(saved(QStringLiteral("edit-a.mp4.joined.mp4")), QStringLiteral("General"), QStringLiteral("Duration"))
                    .toDouble(),
                8000.0, 400.0);

    clearResults();
    result = run({QStringLiteral("split"), first, QStringLiteral("--time"), QStringLiteral("00:00:01-00:00:03")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    ASSERT_EQ(filesIn(saveDir.path()).size(), 1);
    EXPECT_TRUE(filesIn(saveDir.path()).first().startsWith(QStringLiteral("edit-a.mp4.split"))) << filesIn(saveDir.path()).first().toStdString();

    clearResults();
    result = run({QStringLiteral("par"), first, QStringLiteral("--par"), QStringLiteral("40:33")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(described(saved(QStringLiteral("edit-a.mp4.newpar.mp4")), QStringLiteral("Video;%PixelAspectRatio%")).value(0).left(4),
              QStringLiteral("1.21"));

    clearResults();
    result = run({QStringLiteral("remove-tracks"), first, QStringLiteral("--tracks"), QStringLiteral("2")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString removed = saved(QStringLiteral("edit-a.mp4.deletedtrack.mp4"));
    EXPECT_EQ(described(removed, QStringLiteral("Video;%Format%")), QStringList{QStringLiteral("AVC")});
    EXPECT_TRUE(described(removed, QStringLiteral("Audio;%Format%")).isEmpty());

    clearResults();
    result = run({QStringLiteral("extract"), first, QStringLiteral("--tracks"), QStringLiteral("2")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(filesIn(saveDir.path()).size(), 1) << filesIn(saveDir.path()).join(' ').toStdString();

    clearResults();
    const QString srt = writeSrt(cliMediaDir() + QStringLiteral("/added.srt"));
    result = run({QStringLiteral("add-tracks"), first, srt});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString added = saved(QStringLiteral("edit-a.mp4.mp4"));
    EXPECT_EQ(described(added, QStringLiteral("Audio;%Format%")), QStringList{QStringLiteral("AAC")});
    EXPECT_EQ(described(added, QStringLiteral("Text;%Format%")).size(), 1);

    // The PAR and the added tracks are MP4 edits only.
    const QString avi = xvidAvi(QStringLiteral("mp4-edit.avi"));
    result = run({QStringLiteral("par"), avi, QStringLiteral("--par"), QStringLiteral("1:1")});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("par takes MP4 and M4V files"))) << result.err.toStdString();
    result = run({QStringLiteral("add-tracks"), avi, srt});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("add-tracks takes an MP4"))) << result.err.toStdString();
    result = run({QStringLiteral("join"), first, avi});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("cannot join"))) << result.err.toStdString();
    EXPECT_EQ(checksum(first), before);
}
