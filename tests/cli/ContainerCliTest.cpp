// Conversions into MKV and MP4, and the edits the command line chooses by
// the files' container.
#include "CliTestSupport.h"

namespace {

using ContainerCli = CliTest;

// H.264 and AAC stereo in an MP4, four seconds, a key frame every second.
QString plainMp4(const QString &name)
{
    return cliClip(name, testInputs(4) + u"-ac 2 -c:v libx264 -preset ultrafast -g 25 -c:a aac"_s);
}

} // namespace

TEST_F(ContainerCli, ConvertsIntoMkvAndMp4WithEachTrackAsAsked)
{
    const QString source = surroundMkv();
    const QByteArray before = testsupport::checksum(source);
    // The surround track copied, a stereo copy beside it, the subtitle muxed.
    CliResult result = run(words(u"convert --to mkv --tracks 1,2,3 --stereo-copy"_s) + QStringList{source});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString mkv = saved(u"surround.mkv.muxed.mkv"_s);
    EXPECT_EQ(described(mkv, u"Audio;%Format%/%Channel(s)%/%Language%"_s), (QStringList{u"AC-3/6/de"_s, u"AAC/2/de"_s}));
    EXPECT_EQ(described(mkv, u"Text;%Format%"_s), QStringList{u"UTF-8"_s});
    EXPECT_EQ(written(), QStringList{u"surround.mkv.muxed.mkv"_s}); // no intermediate left

    clearResults();
    // Device names are taken in any case; the AC-3 track makes it an M4V.
    result = run(words(u"convert --to mp4 --tracks 1,2,3 --device"_s) + QStringList{u"ipad 3/iphone 4s"_s, source});
    ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
    const QString m4v = saved(u"surround.mkv.m4v"_s);
    EXPECT_EQ(described(m4v, u"Audio;%Format%/%Channel(s)%/%Language%"_s), QStringList{u"AC-3/6/de"_s});
    EXPECT_EQ(described(m4v, u"Text;%Format%"_s).size(), 1);
    EXPECT_EQ(written(), QStringList{u"surround.mkv.m4v"_s});
    EXPECT_EQ(testsupport::checksum(source), before);
}

TEST_F(ContainerCli, EditsTakeTheJobOfTheFilesContainer)
{
    const QString mkv = surroundMkv(), mp4 = plainMp4(u"edit-a.mp4"_s), avi = xvidAvi(u"mixed.avi"_s);
    const QByteArray before = testsupport::checksum(mp4);
    const QString secondMkv = settingsDir.filePath(u"second.mkv"_s);
    ASSERT_TRUE(QFile::copy(mkv, secondMkv));
    const QString srt = writeSrt(cliMediaDir() + u"/added.srt"_s);
    const auto edit = [&](const QStringList &arguments) {
        clearResults();
        const CliResult result = run(arguments);
        EXPECT_EQ(result.status, 0) << arguments.join(u' ').toStdString() << ": " << result.err.toStdString();
        return written();
    };
    const auto first = [&](const QString &inform) { return described(saved(written().value(0)), inform).value(0); };

    EXPECT_GE(edit({u"split"_s, mkv, u"--duration"_s, u"1"_s}).size(), 2);
    EXPECT_EQ(edit({u"remove-tracks"_s, mkv, u"--tracks"_s, u"3"_s}), QStringList{u"surround.mkv.removed.mkv"_s});
    EXPECT_EQ(first(u"Audio;%Format%"_s) + first(u"Text;%Format%"_s), u"AC-3"_s);
    EXPECT_EQ(edit({u"join"_s, mkv, secondMkv}), QStringList{u"surround.mkv.joined.mkv"_s});
    EXPECT_NEAR(first(u"General;%Duration%"_s).toDouble(), 6000.0, 300.0);
    EXPECT_EQ(edit({u"remux"_s, threeTrackMkv()}).filter(u".mkv"_s).size(), 1);

    EXPECT_EQ(edit({u"join"_s, mp4, plainMp4(u"edit-b.mp4"_s)}), QStringList{u"edit-a.mp4.joined.mp4"_s});
    EXPECT_NEAR(first(u"General;%Duration%"_s).toDouble(), 8000.0, 400.0);
    EXPECT_TRUE(edit({u"split"_s, mp4, u"--time"_s, u"00:00:01-00:00:03"_s}).value(0).startsWith(u"edit-a.mp4.split"_s));
    EXPECT_EQ(edit({u"par"_s, mp4, u"--par"_s, u"40:33"_s}), QStringList{u"edit-a.mp4.newpar.mp4"_s});
    EXPECT_EQ(first(u"Video;%PixelAspectRatio%"_s).left(4), u"1.21"_s);
    EXPECT_EQ(edit({u"remove-tracks"_s, mp4, u"--tracks"_s, u"2"_s}), QStringList{u"edit-a.mp4.deletedtrack.mp4"_s});
    EXPECT_EQ(first(u"Audio;%Format%"_s), QString());
    EXPECT_EQ(edit({u"extract"_s, mp4, u"--tracks"_s, u"2"_s}).size(), 1);
    EXPECT_EQ(edit({u"add-tracks"_s, mp4, srt}), QStringList{u"edit-a.mp4.mp4"_s});
    EXPECT_FALSE(first(u"Text;%Format%"_s).isEmpty());
    EXPECT_EQ(testsupport::checksum(mp4), before);

    const struct
    {
        QStringList arguments;
        QString reason;
    } refused[] = {
        {{u"remove-tracks"_s, mkv, u"--tracks"_s, u"1,2,3"_s}, u"at least one of its tracks must stay"_s},
        {{u"join"_s, mkv, threeTrackMkv()}, u"Failed: "_s}, // another audio codec: mkvmerge refuses, and says why
        {{u"join"_s, mkv, avi}, u"cannot join"_s},
        {{u"join"_s, mp4, avi}, u"cannot join"_s},
        {{u"par"_s, avi, u"--par"_s, u"1:1"_s}, u"par takes MP4 and M4V files"_s},
        {{u"add-tracks"_s, avi, srt}, u"add-tracks takes an MP4"_s},
        {{u"remux"_s, avi}, u"remux takes a Matroska"_s},
    };
    for (const auto &r : refused) {
        const CliResult result = run(r.arguments);
        EXPECT_EQ(result.status, 1) << r.arguments.join(u' ').toStdString();
        EXPECT_TRUE((result.out + result.err).contains(r.reason)) << result.err.toStdString();
    }
}

TEST_F(ContainerCli, DryRunPrintsEveryStepOfAnMkvConversion)
{
    const CliResult result =
        run(words(u"--dry-run convert --to mkv --tracks 1,2 --video mpeg4 --bitrate 400 --audio ac3"_s) + QStringList{surroundMkv()});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.out.contains(u"job: MKV Conversion\n"_s)) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(u"-> ac3, 448 kbit/s, 6 channels"_s)) << result.out.toStdString();
    // The picture, the sound, then the mux.
    const QStringList commands = result.out.split(u'\n').filter(u"  command: "_s);
    ASSERT_EQ(commands.size(), 3) << result.out.toStdString();
    EXPECT_TRUE(commands.last().contains(u"mkvmerge"_s)) << commands.last().toStdString();
    EXPECT_TRUE(written().isEmpty());
}
