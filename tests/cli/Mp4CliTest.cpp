#include "CliTestSupport.h"

namespace {

using Mp4Cli = CliTest;

// H.264 and AAC stereo in an MP4, four seconds, a key frame every second.
QString plainMp4(const QString &name)
{
    return cliClip(name, testInputs(4) + u"-ac 2 -c:v libx264 -preset ultrafast -g 25 -c:a aac"_s);
}

} // namespace

TEST_F(Mp4Cli, ConvertsIntoMp4ForTheDeviceAndRefusesWhatItCannotCopy)
{
    const QString source = surroundMkv();
    const QByteArray before = testsupport::checksum(source);
    // Device names are taken in any case; the AC-3 track makes it an M4V.
    CliResult result = run(words(u"convert --to mp4 --tracks 1,2,3 --device"_s) + QStringList{u"ipad 3/iphone 4s"_s, source});
    ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
    const QString m4v = saved(u"surround.mkv.m4v"_s);
    EXPECT_EQ(described(m4v, u"Audio;%Format%/%Channel(s)%/%Language%"_s), QStringList{u"AC-3/6/de"_s});
    EXPECT_EQ(described(m4v, u"Text;%Format%"_s).size(), 1);
    EXPECT_EQ(written(), QStringList{u"surround.mkv.m4v"_s});

    clearResults();
    result = run(words(u"convert --to mp4 --tracks 1,2,3 --audio aac --subtitles drop"_s) + QStringList{source});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString mp4 = saved(u"surround.mkv.mp4"_s);
    EXPECT_EQ(described(mp4, u"Audio;%Format%/%Channel(s)%"_s), QStringList{u"AAC/2"_s});
    EXPECT_TRUE(described(mp4, u"Text;%Format%"_s).isEmpty());
    EXPECT_EQ(testsupport::checksum(source), before);

    clearResults();
    // MP3 sound is no MP4's as it is: refused before anything runs.
    result = run(words(u"convert --to mp4 --video passthru"_s) + QStringList{xvidAvi(u"mp4-refused.avi"_s)});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.contains(u"choose AAC or AC-3"_s)) << result.err.toStdString();
    EXPECT_TRUE(written().isEmpty());
}

TEST_F(Mp4Cli, EditsMp4FilesChoosingTheMp4JobByTheContainer)
{
    const QString first = plainMp4(u"edit-a.mp4"_s);
    const QByteArray before = testsupport::checksum(first);
    const auto expectRun = [&](const QStringList &arguments) {
        clearResults();
        const CliResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << arguments.join(u' ').toStdString() << ": " << result.err.toStdString();
    };

    expectRun({u"join"_s, first, plainMp4(u"edit-b.mp4"_s)});
    EXPECT_NEAR(playingMs(saved(u"edit-a.mp4.joined.mp4"_s)), 8000.0, 400.0);
    expectRun({u"split"_s, first, u"--time"_s, u"00:00:01-00:00:03"_s});
    EXPECT_TRUE(written().value(0).startsWith(u"edit-a.mp4.split"_s)) << written().join(u' ').toStdString();
    expectRun({u"par"_s, first, u"--par"_s, u"40:33"_s});
    EXPECT_EQ(described(saved(u"edit-a.mp4.newpar.mp4"_s), u"Video;%PixelAspectRatio%"_s).value(0).left(4), u"1.21"_s);
    expectRun({u"remove-tracks"_s, first, u"--tracks"_s, u"2"_s});
    EXPECT_TRUE(described(saved(u"edit-a.mp4.deletedtrack.mp4"_s), u"Audio;%Format%"_s).isEmpty());
    expectRun({u"extract"_s, first, u"--tracks"_s, u"2"_s});
    EXPECT_EQ(written().size(), 1) << written().join(u' ').toStdString();
    const QString srt = writeSrt(cliMediaDir() + u"/added.srt"_s);
    expectRun({u"add-tracks"_s, first, srt});
    EXPECT_EQ(described(saved(u"edit-a.mp4.mp4"_s), u"Text;%Format%"_s).size(), 1);

    // The PAR and the added tracks are MP4 edits only.
    const QString avi = xvidAvi(u"mp4-edit.avi"_s);
    const struct { QStringList arguments; QString reason; } refused[] = {
        {{u"par"_s, avi, u"--par"_s, u"1:1"_s}, u"par takes MP4 and M4V files"_s},
        {{u"add-tracks"_s, avi, srt}, u"add-tracks takes an MP4"_s},
        {{u"join"_s, first, avi}, u"cannot join"_s},
    };
    for (const auto &r : refused) {
        const CliResult result = run(r.arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.err.contains(r.reason)) << result.err.toStdString();
    }
    EXPECT_EQ(testsupport::checksum(first), before);
}
