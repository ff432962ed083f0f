#include "CliTestSupport.h"

namespace {

using MkvCli = CliTest;

} // namespace

TEST_F(MkvCli, ConvertsIntoMkvWithEachTrackAsAsked)
{
    const QString source = surroundMkv();
    const QString result = saved(u"surround.mkv.muxed.mkv"_s);
    // The surround track copied, a stereo copy beside it, the subtitle muxed.
    const CliResult converted = run(words(u"convert --to mkv --tracks 1,2,3 --stereo-copy"_s) + QStringList{source});
    ASSERT_EQ(converted.status, 0) << converted.err.toStdString();
    EXPECT_EQ(described(result, u"Audio;%Format%/%Channel(s)%/%Language%"_s), (QStringList{u"AC-3/6/de"_s, u"AAC/2/de"_s}));
    EXPECT_EQ(described(result, u"Text;%Format%"_s), QStringList{u"UTF-8"_s});
    EXPECT_EQ(written(), QStringList{u"surround.mkv.muxed.mkv"_s}); // no intermediate left

    // 5.1 from a stereo track is refused before anything runs.
    const CliResult refused = run(words(u"convert --to mkv --tracks 1,2 --audio aac-5.1"_s) + QStringList{threeTrackMkv()});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(u"AAC 5.1 needs a surround track"_s)) << refused.err.toStdString();
}

// The tab's own refusal (a copy mkvmerge cannot make) reaches the user with
// its reason; it once ended as "nothing to queue".
TEST_F(MkvCli, ACopyTheTargetCannotTakeIsRefusedWithTheTabsReason)
{
    const QString wmv = cliClip(u"copy-refused.wmv"_s, testInputs(1) + u"-c:v wmv2 -c:a wmav2"_s);
    const CliResult refused = run(words(u"convert --to mkv --tracks 1,2 --audio aac"_s) + QStringList{wmv});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(u"cannot copy tracks out of a WMV file"_s)) << refused.err.toStdString();
    EXPECT_TRUE(written().isEmpty());
}

TEST_F(MkvCli, EditsMkvFilesChoosingTheMkvJobByTheContainer)
{
    const QString source = surroundMkv();
    CliResult result = run({u"split"_s, source, u"--duration"_s, u"1"_s});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_GE(written().size(), 2) << written().join(u' ').toStdString();

    clearResults();
    result = run({u"remove-tracks"_s, source, u"--tracks"_s, u"3"_s});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(described(saved(u"surround.mkv.removed.mkv"_s), u"Audio;%Format%"_s), QStringList{u"AC-3"_s});
    EXPECT_TRUE(described(saved(u"surround.mkv.removed.mkv"_s), u"Text;%Format%"_s).isEmpty());
    result = run({u"remove-tracks"_s, source, u"--tracks"_s, u"1,2,3"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(u"at least one of its tracks must stay"_s)) << result.err.toStdString();

    clearResults();
    const QString copy = settingsDir.filePath(u"second.mkv"_s);
    ASSERT_TRUE(QFile::copy(source, copy));
    result = run({u"join"_s, source, copy});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_NEAR(playingMs(saved(u"surround.mkv.joined.mkv"_s)), 6000.0, 300.0);
    // Another audio codec: mkvmerge refuses, and says why.
    result = run({u"join"_s, source, threeTrackMkv()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE((result.out + result.err).contains(u"Failed: "_s)) << result.err.toStdString();
    result = run({u"join"_s, source, xvidAvi(u"mixed.avi"_s)});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(u"cannot join"_s)) << result.err.toStdString();
}

TEST_F(MkvCli, DryRunPrintsEveryStepOfAnMkvConversion)
{
    const CliResult result
        = run(words(u"--dry-run convert --to mkv --tracks 1,2 --video mpeg4 --bitrate 400 --audio ac3"_s) + QStringList{surroundMkv()});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.out.contains(u"job: MKV Conversion\n"_s)) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(u"-> ac3, 448 kbit/s, 6 channels"_s)) << result.out.toStdString();
    const QStringList commands = result.out.split(u'\n').filter(u"  command: "_s);
    // The picture, the sound, then the mux.
    ASSERT_EQ(commands.size(), 3) << result.out.toStdString();
    EXPECT_TRUE(commands.last().contains(u"mkvmerge"_s)) << commands.last().toStdString();
    EXPECT_TRUE(written().isEmpty());
}
