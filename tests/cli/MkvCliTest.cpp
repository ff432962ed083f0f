#include "CliTestSupport.h"

#include "MCPreferences.h"

#include <gtest/gtest.h>

namespace {

class MkvCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        settings = settingsDir.path() + QStringLiteral("/kestrane.ini");
        MCPreferences preferences(settings);
        preferences.keepLogsFlag = false;
        preferences.savePreferencesToDefaults();
    }

    CliResult run(const QStringList &arguments)
    {
        return runCli(QStringList{QStringLiteral("--settings"), settings, QStringLiteral("--save-dir"), saveDir.path()} + arguments);
    }

    QString saved(const QString &name) const { return saveDir.path() + QLatin1Char('/') + name; }

    void clearResults()
    {
        for (const QString &name : filesIn(saveDir.path()))
            QFile::remove(saved(name));
    }

    QTemporaryDir settingsDir;
    QTemporaryDir saveDir;
    QString settings;
};

} // namespace

TEST(KestraneCliMkv, ChoicesTheTargetCannotTakeAreUsageMistakes)
{
    const QList<QStringList> mistakes{
        {QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--audio"), QStringLiteral("mp3"), QStringLiteral("a.mkv")},
        {QStringLiteral("convert"), QStringLiteral("--audio"), QStringLiteral("aac"), QStringLiteral("a.mkv")},
        {QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--subtitles"), QStringLiteral("burn"), QStringLiteral("a.mkv")},
        {QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--device"), QStringLiteral("PS3"), QStringLiteral("a.mkv")},
        {QStringLiteral("remove-tracks"), QStringLiteral("a.mkv")},
        {QStringLiteral("split"), QStringLiteral("a.mkv"), QStringLiteral("--duration"), QStringLiteral("0")},
        {QStringLiteral("split"), QStringLiteral("a.mkv"), QStringLiteral("--duration"), QStringLiteral("5"), QStringLiteral("--size"), QStringLiteral("5")},
    };
    for (const QStringList &arguments : mistakes) {
        const CliResult result = runCli(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.startsWith(QStringLiteral("kestrane-cli: "))) << result.err.toStdString();
    }
}

TEST_F(MkvCli, ConvertsIntoMkvWithEachTrackAsAsked)
{
    const QString source = surroundMkv();
    const QString result = saved(QStringLiteral("surround.mkv.muxed.mkv"));
    CliResult run1 = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--tracks"), QStringLiteral("1,2,3"),
                          QStringLiteral("--audio"), QStringLiteral("aac"), QStringLiteral("--subtitles"), QStringLiteral("drop"), source});
    ASSERT_EQ(run1.status, 0) << run1.err.toStdString();
    EXPECT_EQ(described(result, QStringLiteral("Audio;%Format%/%Channel(s)%/%Language%")), QStringList{QStringLiteral("AAC/2/de")});
    EXPECT_TRUE(described(result, QStringLiteral("Text;%Format%")).isEmpty());

    clearResults();
    // The surround track copied, a stereo copy beside it, the subtitle muxed.
    CliResult run2 = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--tracks"), QStringLiteral("1,2,3"),
                          QStringLiteral("--stereo-copy"), source});
    ASSERT_EQ(run2.status, 0) << run2.err.toStdString();
    EXPECT_EQ(described(result, QStringLiteral("Audio;%Format%/%Channel(s)%")), (QStringList{QStringLiteral("AC-3/6"), QStringLiteral("AAC/2")}));
    EXPECT_EQ(described(result, QStringLiteral("Text;%Format%")), QStringList{QStringLiteral("UTF-8")});
    EXPECT_EQ(filesIn(saveDir.path()), QStringList{QStringLiteral("surround.mkv.muxed.mkv")}); // no intermediate left

    // 5.1 from a stereo track is refused before anything runs.
    CliResult refused = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--tracks"), QStringLiteral("1,2"),
                             QStringLiteral("--audio"), QStringLiteral("aac-5.1"), threeTrackMkv()});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("AAC 5.1 needs a surround track"))) << refused.err.toStdString();
}

// The tab's own refusal (a copy mkvmerge cannot make) reaches the user with
// its reason; it once ended as "nothing to queue".
TEST_F(MkvCli, ACopyTheTargetCannotTakeIsRefusedWithTheTabsReason)
{
    const QString wmv = testsupport::ffmpeg(cliMediaDir(), QStringLiteral("copy-refused.wmv"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=1 -f lavfi -i sine=d=1 -c:v wmv2 -c:a wmav2"));
    const CliResult refused = run({QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"), QStringLiteral("--tracks"),
                                   QStringLiteral("1,2"), QStringLiteral("--audio"), QStringLiteral("aac"), wmv});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("cannot copy tracks out of a WMV file"))) << refused.err.toStdString();
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty());
}

TEST_F(MkvCli, EditsMkvFilesChoosingTheMkvJobByTheContainer)
{
    const QString source = surroundMkv();
    CliResult result = run({QStringLiteral("split"), source, QStringLiteral("--duration"), QStringLiteral("1")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_GE(filesIn(saveDir.path()).size(), 2) << filesIn(saveDir.path()).join(' ').toStdString();

    clearResults();
    result = run({QStringLiteral("remove-tracks"), source, QStringLiteral("--tracks"), QStringLiteral("3")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QString removed = saved(QStringLiteral("surround.mkv.removed.mkv"));
    EXPECT_EQ(described(removed, QStringLiteral("Audio;%Format%")), QStringList{QStringLiteral("AC-3")});
    EXPECT_TRUE(described(removed, QStringLiteral("Text;%Format%")).isEmpty());

    result = run({QStringLiteral("remove-tracks"), source, QStringLiteral("--tracks"), QStringLiteral("1,2,3")});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("at least one of its tracks must stay"))) << result.err.toStdString();

    clearResults();
    const QString copy = settingsDir.path() + QStringLiteral("/second.mkv");
    ASSERT_TRUE(QFile::copy(source, copy));
    result = run({QStringLiteral("join"), source, copy});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_NEAR(testsupport::mediaInfo(saved(QStringLiteral("surround.mkv.joined.mkv")), QStringLiteral("General"),
                                       QStringLiteral("Duration")).toDouble(), 6000.0, 300.0);
    // Another audio codec: mkvmerge refuses, and says why.
    result = run({QStringLiteral("join"), source, threeTrackMkv()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE((result.out + result.err).contains(QStringLiteral("Failed: "))) << result.err.toStdString();
    result = run({QStringLiteral("join"), source, xvidAvi(QStringLiteral("mixed.avi"))});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("cannot join"))) << result.err.toStdString();
}

TEST_F(MkvCli, DryRunPrintsEveryStepOfAnMkvConversion)
{
    const CliResult result = run({QStringLiteral("--dry-run"), QStringLiteral("convert"), QStringLiteral("--to"), QStringLiteral("mkv"),
                                  QStringLiteral("--tracks"), QStringLiteral("1,2"), QStringLiteral("--video"), QStringLiteral("mpeg4"),
                                  QStringLiteral("--bitrate"), QStringLiteral("400"), QStringLiteral("--audio"), QStringLiteral("ac3"),
                                  surroundMkv()});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("job: MKV Conversion\n"))) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("-> ac3, 448 kbit/s, 6 channels"))) << result.out.toStdString();
    const QStringList commands = result.out.split(QLatin1Char('\n')).filter(QStringLiteral("  command: "));
    // The picture, the sound, then the mux.
    ASSERT_EQ(commands.size(), 3) << result.out.toStdString();
    EXPECT_TRUE(commands.last().contains(QStringLiteral("mkvmerge"))) << commands.last().toStdString();
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty());
}
