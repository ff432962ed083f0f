#include "CliTestSupport.h"

#include "MCPreferences.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>

#include <csignal>

namespace {

using testsupport::mediaInfo;

const QString kManualBatchAlert = QStringLiteral(
    "You must use a preset other than \"Manual\" for both the settings pop up and the track selections pop up to convert "
    "the batch of files you dragged to the application.");

// A settings preset as the preset editor saves it: MPEG-4 at 300 kbit/s,
// stereo to MP3 at 128, subtitles extracted.
QVariantMap quickPreset()
{
    return {{QStringLiteral("pName"), QStringLiteral("Quick MPEG-4")}, {QStringLiteral("pDevice"), QStringLiteral("General")},
            {QStringLiteral("pTypeOfProcessIndex"), 0},                {QStringLiteral("pVideoActionIndex"), 1},
            {QStringLiteral("pVideoBitRate"), QStringLiteral("300")},  {QStringLiteral("pVideoBitRateIndex"), 1},
            {QStringLiteral("pWidth"), QString()},                     {QStringLiteral("pWidthIndex"), 0},
            {QStringLiteral("pFPS"), QString()},                       {QStringLiteral("pFPSIndex"), 0},
            {QStringLiteral("pStereoActionIndex"), 1},                 {QStringLiteral("pStereoBitRate"), QStringLiteral("128")},
            {QStringLiteral("pSurroundActionIndex"), 1},               {QStringLiteral("pSurroundBitRate"), QStringLiteral("384")},
            {QStringLiteral("pAudioAddStereo"), false},                {QStringLiteral("pSubAction"), QStringLiteral("Extract")},
            {QStringLiteral("isEditable"), true}};
}

class CliJobs : public CliTest
{
protected:
    void SetUp() override
    {
        CliTest::SetUp();
        MCPreferences(settings).saveUserPresetSettingsListFor({quickPreset()});
    }

    QStringList outputsEndingWith(const QString &suffix) const
    {
        return filesIn(saveDir.path()).filter(QRegularExpression(QRegularExpression::escape(suffix) + QLatin1Char('$')));
    }
};

} // namespace

TEST(KestraneCli, InspectJsonGivesOneObjectPerFileAndTrack)
{
    const QString mkv = threeTrackMkv();
    const CliResult result = runCli({QStringLiteral("inspect"), QStringLiteral("--json"), mkv});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QJsonArray files = QJsonDocument::fromJson(result.out.toUtf8()).array();
    ASSERT_EQ(files.size(), 1);
    const QJsonObject file = files.first().toObject();
    EXPECT_EQ(file.value(QStringLiteral("theFilePath")).toString(), mkv);
    EXPECT_EQ(file.value(QStringLiteral("theWidth")).toString(), QStringLiteral("160"));
    const QJsonArray tracks = file.value(QStringLiteral("tracks")).toArray();
    ASSERT_EQ(tracks.size(), 3);
    QStringList types;
    for (const QJsonValue &track : tracks)
        types << track.toObject().value(QStringLiteral("trackType")).toString();
    EXPECT_EQ(types, (QStringList{QStringLiteral("Video"), QStringLiteral("Audio"), QStringLiteral("Subtitle")}));
    const QJsonObject audio = tracks.at(1).toObject();
    EXPECT_EQ(audio.value(QStringLiteral("trackCodec")).toString(), QStringLiteral("aac"));
    EXPECT_EQ(audio.value(QStringLiteral("trackNumberOfChannels")).toString(), QStringLiteral("2"));
    EXPECT_EQ(audio.value(QStringLiteral("trackMkvmergeID")).toString(), QStringLiteral("1"));
    EXPECT_TRUE(audio.value(QStringLiteral("trackSelected")).isBool());
    EXPECT_TRUE(audio.contains(QStringLiteral("muxingTrackFileExtension")));

    // The text report is the one the log has.
    const CliResult text = runCli({QStringLiteral("inspect"), mkv});
    EXPECT_TRUE(text.out.contains(QStringLiteral("theNumberOfAudioTracks = 1")));
    EXPECT_TRUE(text.out.contains(QStringLiteral("Track #3")));
}

TEST(KestraneCli, UsageMistakesAnswerTwoWithOneLine)
{
    const CliResult help = runCli({QStringLiteral("--help")});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.out.startsWith(QStringLiteral("Usage: kestrane-cli")));
    const CliResult version = runCli({QStringLiteral("--version")});
    EXPECT_EQ(version.status, 0);
    EXPECT_TRUE(version.out.startsWith(QStringLiteral("kestrane-cli (Kestrane) ")));

    const QList<QStringList> mistakes{
        {QStringLiteral("convert"), QStringLiteral("--frobnicate"), QStringLiteral("a.avi")},
        {QStringLiteral("transmogrify"), QStringLiteral("a.avi")},
        {QStringLiteral("convert"), QStringLiteral("--video"), QStringLiteral("h265"), QStringLiteral("a.avi")},
        {QStringLiteral("split"), QStringLiteral("a.avi")},
        {QStringLiteral("inspect"), QStringLiteral("--time"), QStringLiteral("00:00:01-00:00:02"), QStringLiteral("a.avi")},
        {QStringLiteral("convert")},
        {QStringLiteral("watch"), QStringLiteral("a"), QStringLiteral("b")},
        {QStringLiteral("watch"), QStringLiteral("--dry-run"), QStringLiteral("a")},
    };
    for (const QStringList &arguments : mistakes) {
        const CliResult result = runCli(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.startsWith(QStringLiteral("kestrane-cli: "))) << result.err.toStdString();
        EXPECT_TRUE(result.out.isEmpty());
    }
}

TEST_F(CliJobs, BadInputIsNamedAndNothingIsQueuedForIt)
{
    const QString avi = xvidAvi(QStringLiteral("bad-input.avi"));
    const QString notes = saveDir.path() + QStringLiteral("/notes.txt");
    QFile text(notes);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not a video at all\n");
    text.close();

    CliResult result = runCli({QStringLiteral("inspect"), notes});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, QStringLiteral("Error Opening: notes.txt: Kestrane could not identify this file as a video!!!!!!!!!.\n"));

    result = runCli(common() + QStringList{QStringLiteral("convert"), saveDir.path() + QStringLiteral("/missing.avi")});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("missing.avi: No such file or directory")));

    result = runCli(common() + QStringList{QStringLiteral("convert"), notes});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(
        QStringLiteral("Error Opening: notes.txt: Kestrane could not identify this file as a video!!!!!!!!!.")))
        << result.err.toStdString();

    result = runCli(common() + QStringList{QStringLiteral("convert"), QStringLiteral("--settings-preset"), QStringLiteral("Nope"), avi});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.contains(QStringLiteral("unknown settings preset 'Nope'")));

    result = runCli({QStringLiteral("--settings"), settings, QStringLiteral("convert"), QStringLiteral("--save-dir"),
                     saveDir.path() + QStringLiteral("/no/such/folder"), avi});
    EXPECT_EQ(result.status, 1);
    // A folder that is not there is not a permission problem.
    EXPECT_TRUE(result.err.contains(QStringLiteral("The save folder for this job does not exist.: Create the folder or change "
                                                   "the save location: ")))
        << result.err.toStdString();
    EXPECT_FALSE(result.err.contains(QStringLiteral("permision"))) << result.err.toStdString();

    // A batch needs presets other than "Manual" for both pop ups.
    result = runCli(common() + QStringList{QStringLiteral("convert"), QStringLiteral("--tracks"), QStringLiteral("1,2"), avi, avi});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(kManualBatchAlert)) << result.err.toStdString();
    EXPECT_EQ(filesIn(saveDir.path()), QStringList{QStringLiteral("notes.txt")});
}

TEST_F(CliJobs, ConvertsWithAPresetPair)
{
    const QString mkv = threeTrackMkv();
    const CliResult result = runCli(common() + QStringList{QStringLiteral("convert"), QStringLiteral("--selection-preset"),
                                                           QStringLiteral("First Track"), QStringLiteral("--settings-preset"),
                                                           QStringLiteral("Quick MPEG-4"), mkv});
    ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
    const QStringList avis = outputsEndingWith(QStringLiteral(".avi"));
    ASSERT_EQ(avis.size(), 1);
    const QString avi = saveDir.path() + QLatin1Char('/') + avis.first();
    EXPECT_EQ(mediaInfo(avi, QStringLiteral("Video"), QStringLiteral("CodecID")).toLower(), QStringLiteral("xvid"));
    EXPECT_EQ(mediaInfo(avi, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("MPEG Audio"));
    // The subtitle is extracted beside it; no log is left behind.
    EXPECT_EQ(outputsEndingWith(QStringLiteral(".srt")).size(), 1);
    EXPECT_TRUE(outputsEndingWith(QStringLiteral(".log")).isEmpty());
    EXPECT_TRUE(result.out.contains(QStringLiteral("Completed: ")));
}

TEST_F(CliJobs, BatchConvertsEveryGoodFileAndNamesTheBadOne)
{
    const QString first = xvidAvi(QStringLiteral("batch-one.avi"));
    const QString second = xvidAvi(QStringLiteral("batch-two.avi"));
    const QString notes = settingsDir.path() + QStringLiteral("/batch-notes.txt");
    QFile text(notes);
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("plain text\n");
    text.close();
    const CliResult result = runCli(common() + QStringList{QStringLiteral("--quiet"), QStringLiteral("convert"),
                                                           QStringLiteral("--settings-preset"), QStringLiteral("Quick MPEG-4"),
                                                           first, notes, second});
    EXPECT_EQ(result.status, 1) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains(QStringLiteral("batch-notes.txt"))) << result.err.toStdString();
    EXPECT_EQ(outputsEndingWith(QStringLiteral(".avi")).size(), 2) << filesIn(saveDir.path()).join(' ').toStdString();
    EXPECT_EQ(result.out.count(QStringLiteral("Completed: ")), 2) << result.out.toStdString();
}

TEST_F(CliJobs, EditingCommandsWriteTheirResults)
{
    const QString one = xvidAvi(QStringLiteral("edit-one.avi"), 2);
    const QString two = xvidAvi(QStringLiteral("edit-two.avi"), 2);

    CliResult result = runCli(common() + QStringList{QStringLiteral("join"), one, two});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    QStringList written = filesIn(saveDir.path());
    ASSERT_EQ(written.size(), 1) << written.join(' ').toStdString();
    const double joined = mediaInfo(saveDir.path() + QLatin1Char('/') + written.first(), QStringLiteral("General"),
                                    QStringLiteral("Duration")).toDouble();
    EXPECT_NEAR(joined, 4000.0, 300.0);

    const auto freshResults = [this] {
        for (const QString &name : filesIn(saveDir.path()))
            QFile::remove(saveDir.path() + QLatin1Char('/') + name);
    };
    freshResults();
    result = runCli(common() + QStringList{QStringLiteral("split"), one, QStringLiteral("--time"), QStringLiteral("00:00:00-00:00:01")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_FALSE(filesIn(saveDir.path()).isEmpty());

    freshResults();
    result = runCli(common() + QStringList{QStringLiteral("extract"), one, QStringLiteral("--tracks"), QStringLiteral("1,2")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(filesIn(saveDir.path()).size(), 2) << filesIn(saveDir.path()).join(' ').toStdString();
    // Again: the earlier results stay and the new ones take free names; with
    // --overwrite they take the names themselves.
    const QStringList firstRun = filesIn(saveDir.path());
    result = runCli(common() + QStringList{QStringLiteral("extract"), one, QStringLiteral("--tracks"), QStringLiteral("1,2")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(filesIn(saveDir.path()).size(), 4) << filesIn(saveDir.path()).join(' ').toStdString();
    freshResults();
    runCli(common() + QStringList{QStringLiteral("extract"), one, QStringLiteral("--tracks"), QStringLiteral("1,2")});
    result = runCli(common() + QStringList{QStringLiteral("extract"), QStringLiteral("--overwrite"), one, QStringLiteral("--tracks"),
                                           QStringLiteral("1,2")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(filesIn(saveDir.path()), firstRun);

    freshResults();
    const QString mp3 = testsupport::ffmpeg(settingsDir.path(), QStringLiteral("voice.mp3"),
                                            QStringLiteral("-f lavfi -i sine=d=2:r=48000 -ac 2 -c:a libmp3lame -b:a 64k"));
    result = runCli(common() + QStringList{QStringLiteral("add-audio"), one, mp3});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    written = filesIn(saveDir.path());
    ASSERT_EQ(written.size(), 1) << written.join(' ').toStdString();
    // The second audio track is the added file (64 kbit/s), not a copy of the first (128).
    QString rates;
    testsupport::run(QStringLiteral("mediainfo --Inform='Audio;%BitRate%\\n' '%1'").arg(saveDir.path() + QLatin1Char('/') + written.first()),
                     &rates);
    EXPECT_EQ(rates.split(QLatin1Char('\n'), Qt::SkipEmptyParts), (QStringList{QStringLiteral("128000"), QStringLiteral("64000")}))
        << rates.toStdString();

    freshResults();
    result = runCli(common() + QStringList{QStringLiteral("remux"), threeTrackMkv()});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_EQ(outputsEndingWith(QStringLiteral(".mkv")).size(), 1) << filesIn(saveDir.path()).join(' ').toStdString();

    result = runCli(common() + QStringList{QStringLiteral("remux"), one});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("remux takes a Matroska")));
}

TEST_F(CliJobs, ChoicesTheWindowRefusesExitTwoWithTheReason)
{
    // H.264 of no declared bit rate with stereo AAC: what the rules refuse
    // is refused here too, before anything runs, in the rules' words.
    const QString mkv = threeTrackMkv();
    const QString name = QFileInfo(mkv).fileName();
    const struct
    {
        QStringList options;
        QString reason;
    } cases[] = {
        {{QStringLiteral("--tracks"), QStringLiteral("1,2")},
         QStringLiteral("An AVI cannot hold AAC audio as it is: choose MP3.")},
        {{QStringLiteral("--tracks"), QStringLiteral("1,2"), QStringLiteral("--audio"), QStringLiteral("ac3")},
         QStringLiteral("AC-3 5.1 needs a surround track of 6 channels; this one has 2: choose MP3.")},
        {{QStringLiteral("--tracks"), QStringLiteral("1,2"), QStringLiteral("--video"), QStringLiteral("mpeg4"),
          QStringLiteral("--audio"), QStringLiteral("mp3")},
         QStringLiteral("This video does not declare its bit rate: enter the MPEG-4 video bit rate in kbit/s.")},
        {{QStringLiteral("--audio"), QStringLiteral("mp3"), QStringLiteral("--audio-bitrate"), QStringLiteral("448"),
          QStringLiteral("--video"), QStringLiteral("mpeg4"), QStringLiteral("--bitrate"), QStringLiteral("300")},
         QStringLiteral("MP3 goes up to 320 kbit/s: choose a lower audio bit rate.")},
    };
    for (const auto &c : cases) {
        for (const QStringList &dryRun : {QStringList(), QStringList{QStringLiteral("--dry-run")}}) {
            const CliResult result = runCli(common() + QStringList{QStringLiteral("convert")} + dryRun + c.options + QStringList{mkv});
            EXPECT_EQ(result.status, 2) << c.options.join(' ').toStdString();
            EXPECT_EQ(result.err, QStringLiteral("kestrane-cli: %1: %2\n").arg(name, c.reason));
            EXPECT_TRUE(result.out.isEmpty()) << result.out.toStdString();
        }
    }
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty()) << filesIn(saveDir.path()).join(' ').toStdString();
}

TEST_F(CliJobs, DryRunPrintsTheCommandsAndWritesNothing)
{
    const QString mkv = threeTrackMkv();
    const CliResult result = runCli(common() + QStringList{QStringLiteral("convert"), QStringLiteral("--dry-run"),
                                                           QStringLiteral("--video"), QStringLiteral("mpeg4-2pass"),
                                                           QStringLiteral("--bitrate"), QStringLiteral("250"),
                                                           QStringLiteral("--audio"), QStringLiteral("mp3"), mkv});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("job: AVI Conversion"))) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("track 1: Video h264 -> mpeg4, 250 kbit/s, 2 passes")))
        << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("track 2: Audio aac 2 channels -> mp3, 160 kbit/s, 2 channels")));
    // Both passes of the encoder, with the file and the chosen bit rate.
    EXPECT_EQ(result.out.count(QStringLiteral("vbitrate=250")), 2) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("vpass=1")));
    EXPECT_TRUE(result.out.contains(QStringLiteral("\"%1\"").arg(mkv)));
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty()) << filesIn(saveDir.path()).join(' ').toStdString();

    // The remux offer for header-removal compression, answered from the command line.
    const QString mkv4 = testsupport::ffmpeg(settingsDir.path(), QStringLiteral("plain.avi"),
                                             QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=1 -f lavfi -i sine=d=1 "
                                                            "-ac 2 -c:v mpeg4 -c:a ac3"));
    const QString stripped = settingsDir.path() + QStringLiteral("/stripped.mkv");
    ASSERT_EQ(testsupport::run(QStringLiteral("mkvmerge -q -o '%1' --compression 0:mpeg4_p2 '%2'").arg(stripped, mkv4)), 0);
    const CliResult offer = runCli(common() + QStringList{QStringLiteral("convert"), QStringLiteral("--dry-run"),
                                                          QStringLiteral("--remux-header-removal"), QStringLiteral("yes"), stripped});
    EXPECT_EQ(offer.status, 0) << offer.err.toStdString();
    EXPECT_TRUE(offer.err.startsWith(QStringLiteral("This video appears to have header removal compression.")));
    EXPECT_TRUE(offer.out.contains(QStringLiteral("job: MKV Remux\n")));
    EXPECT_TRUE(offer.out.contains(QStringLiteral("job: AVI Conversion\n")));
    EXPECT_TRUE(offer.out.contains(QStringLiteral("--compression -1:none")));

    const CliResult join = runCli(common() + QStringList{QStringLiteral("--dry-run"), QStringLiteral("join"),
                                                         xvidAvi(QStringLiteral("dry-one.avi")), xvidAvi(QStringLiteral("dry-two.avi"))});
    EXPECT_EQ(join.status, 0) << join.err.toStdString();
    EXPECT_TRUE(join.out.contains(QStringLiteral("job: AVI Joining")));
    EXPECT_TRUE(join.out.contains(QStringLiteral("command: ")));
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty());
}

TEST_F(CliJobs, InterruptStopsTheConversionAndLeavesOnlyTheSource)
{
    // Long enough to be caught in the middle of its first pass.
    QTemporaryDir work;
    const QString source = testsupport::ffmpeg(work.path(), QStringLiteral("long.mkv"),
                                               QStringLiteral("-f lavfi -i testsrc2=s=640x480:r=25:d=60 -f lavfi -i sine=d=60:r=48000 "
                                                              "-ac 2 -c:v libx264 -preset ultrafast -c:a aac"));
    QProcess cli;
    cli.start(cliPath(), {QStringLiteral("--settings"), settings, QStringLiteral("convert"), QStringLiteral("--video"),
                          QStringLiteral("mpeg4-2pass"), QStringLiteral("--bitrate"), QStringLiteral("800"), QStringLiteral("--audio"),
                          QStringLiteral("mp3"), source});
    ASSERT_TRUE(cli.waitForStarted());
    const bool running = testsupport::waitUntil([&] { return entriesIn(work.path()).size() > 1; }, 60000);
    ASSERT_TRUE(running) << QString::fromUtf8(cli.readAllStandardError()).toStdString() << cli.arguments().join(' ').toStdString()
                         << testsupport::mediaInfo(source, QStringLiteral("Video"), QStringLiteral("BitRate")).toStdString();
    QThread::msleep(1500);
    ::kill(static_cast<pid_t>(cli.processId()), SIGINT);
    ASSERT_TRUE(cli.waitForFinished(60000));
    EXPECT_EQ(cli.exitCode(), 128 + SIGINT);
    EXPECT_EQ(entriesIn(work.path()), QStringList{QStringLiteral("long.mkv")});
    QString processes;
    testsupport::run(QStringLiteral("pgrep -af mencoder | grep -F '%1' | grep -v grep").arg(source), &processes);
    EXPECT_TRUE(processes.trimmed().isEmpty()) << processes.toStdString();
}

TEST_F(CliJobs, WatchConvertsWhatIsDroppedInUntilInterrupted)
{
    QTemporaryDir folder;
    const CliResult missing = runCli(common() + QStringList{QStringLiteral("watch"), folder.path() + QStringLiteral("/gone")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(QStringLiteral("must select a valid directory to start watch mode")));

    const QString avi = xvidAvi(QStringLiteral("watched.avi"));
    ASSERT_TRUE(QFile::copy(avi, folder.path() + QStringLiteral("/already.avi")));
    QProcess cli;
    cli.start(cliPath(), {QStringLiteral("--settings"), settings, QStringLiteral("watch"), QStringLiteral("--selection-preset"),
                          QStringLiteral("First Track"), folder.path()});
    ASSERT_TRUE(cli.waitForStarted());
    ASSERT_TRUE(testsupport::waitUntil([&] { return cli.canReadLine(); }, 20000));
    ASSERT_TRUE(QFile::copy(avi, folder.path() + QStringLiteral("/dropped.avi")));
    const QString result = folder.path() + QStringLiteral("/dropped.avi.avi");
    QByteArray out;
    ASSERT_TRUE(testsupport::waitUntil([&] { return (out += cli.readAllStandardOutput()).contains("Completed: dropped.avi"); }, 90000));
    // A movie the presets' choices cannot make is refused as convert does, and left alone.
    ASSERT_TRUE(QFile::copy(threeTrackMkv(), folder.path() + QStringLiteral("/refused.mkv")));
    QByteArray err;
    ASSERT_TRUE(testsupport::waitUntil([&] { return (err += cli.readAllStandardError()).contains("kestrane-cli: refused.mkv: "); },
                                       90000));
    ::kill(static_cast<pid_t>(cli.processId()), SIGINT);
    ASSERT_TRUE(cli.waitForFinished(30000));
    EXPECT_EQ(cli.exitCode(), 1) << err.toStdString();
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/refused.mkv.avi")));
    EXPECT_EQ(testsupport::mediaInfo(result, QStringLiteral("Video"), QStringLiteral("Format")), QStringLiteral("MPEG-4 Visual"));
    EXPECT_FALSE(QFile::exists(folder.path() + QStringLiteral("/already.avi.avi")));
}
