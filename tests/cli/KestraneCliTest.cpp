#include "CliTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

#include <unistd.h>

namespace {

using testsupport::mediaInfo;

class CliJobs : public CliTest
{
protected:
    void SetUp() override
    {
        CliTest::SetUp();
        // As the preset editor saves it: MPEG-4 at 300 kbit/s, stereo to MP3 at 128, subtitles extracted.
        const QVariantMap quick{{"pName", "Quick MPEG-4"},  {"pDevice", "General"},     {"pTypeOfProcessIndex", 0},
                                {"pVideoActionIndex", 1},   {"pVideoBitRate", "300"},   {"pVideoBitRateIndex", 1},
                                {"pStereoActionIndex", 1},  {"pStereoBitRate", "128"},  {"pSurroundActionIndex", 1},
                                {"pSubAction", "Extract"},  {"isEditable", true}};
        MCPreferences(settings).saveUserPresetSettingsListFor({quick});
    }

    QStringList writtenEndingWith(const QString &suffix) const { return written().filter(QRegularExpression(suffix + u'$')); }

    QString notesFile(const QString &name) const
    {
        QFile text(settingsDir.filePath(name));
        text.open(QIODevice::WriteOnly);
        text.write("not a video at all\n");
        return text.fileName();
    }
};

} // namespace

TEST(KestraneCli, InspectJsonGivesOneObjectPerFileAndTrack)
{
    const QString mkv = threeTrackMkv();
    const CliResult result = runCli({u"inspect"_s, u"--json"_s, mkv});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QJsonValue file = QJsonDocument::fromJson(result.out.toUtf8()).array().first();
    EXPECT_EQ(file[u"theFilePath"_s].toString(), mkv);
    ASSERT_EQ(file[u"tracks"_s].toArray().size(), 3);
    EXPECT_EQ(file[u"tracks"_s][2][u"trackType"_s].toString(), u"Subtitle"_s);
    EXPECT_EQ(file[u"tracks"_s][1][u"trackMkvmergeID"_s].toString(), u"1"_s);
}

TEST(KestraneCli, UsageMistakesAnswerTwoWithOneLine)
{
    EXPECT_TRUE(runCli({u"--help"_s}).out.startsWith(u"Usage: kestrane-cli"_s));
    EXPECT_TRUE(runCli({u"--version"_s}).out.startsWith(u"kestrane-cli (Kestrane) "_s));
    // An MP4 device is not an AVI one, whichever order the options come in.
    const CliResult mp4Device = runCli(words(u"convert --to mp4 --device"_s) + QStringList{u"DivX DVD"_s, u"a.mkv"_s});
    EXPECT_EQ(mp4Device.status, 2);
    EXPECT_TRUE(mp4Device.err.contains(u"(valid: General, Apple TV 3,"_s)) << mp4Device.err.toStdString();
    const CliResult aviDevice = runCli(words(u"convert --device iPod a.mkv"_s));
    EXPECT_EQ(aviDevice.status, 2);
    EXPECT_TRUE(aviDevice.err.contains(u"(valid: General, DivX DVD, PS3, Xbox)"_s)) << aviDevice.err.toStdString();

    QList<QStringList> mistakes;
    for (const char *line : {"convert --frobnicate a.avi", "transmogrify a.avi", "convert --video h265 a.avi", "split a.avi",
                             "inspect --time 00:00:01-00:00:02 a.avi", "convert", "watch a b", "watch --dry-run a",
                             "--resume convert x.avi", "convert --to mp4 --subtitles burn a.mkv",
                             "convert --to mp4 --audio-bitrate 160 a.mkv", "par a.mp4", "par --par 40/33 a.mp4",
                             "par --par 0:1 a.mp4", "add-tracks a.mp4", "convert --par 1:1 a.mp4",
                             "convert --to mkv --audio mp3 a.mkv", "convert --audio aac a.mkv",
                             "convert --to mkv --subtitles burn a.mkv", "convert --to mkv --device PS3 a.mkv",
                             "remove-tracks a.mkv", "split a.mkv --duration 0", "split a.mkv --duration 5 --size 5"})
        mistakes << words(QString::fromLatin1(line));
    expectUsageMistakes(mistakes);
}

TEST_F(CliJobs, BadInputIsNamedAndNothingIsQueuedForIt)
{
    const QString avi = xvidAvi(u"bad-input.avi"_s);
    const QString notes = notesFile(u"notes.txt"_s);
    const QString unidentified = u"Error Opening: notes.txt: Kestrane could not identify this file as a video!!!!!!!!!."_s;
    EXPECT_EQ(runCli({u"inspect"_s, notes}).err, unidentified + u'\n');
    const struct
    {
        QStringList arguments;
        int status;
        QString error;
    } cases[] = {
        {{u"convert"_s, notes}, 1, unidentified},
        {{u"convert"_s, saved(u"missing.avi"_s)}, 1, u"missing.avi: No such file or directory"_s},
        {{u"convert"_s, u"--settings-preset"_s, u"Nope"_s, avi}, 2, u"unknown settings preset 'Nope'"_s},
        {{u"convert"_s, u"--tracks"_s, u"1,2"_s, avi, avi}, 1, u"You must use a preset other than \"Manual\""_s},
    };
    for (const auto &c : cases) {
        const CliResult result = run(c.arguments);
        EXPECT_EQ(result.status, c.status) << c.arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.err.contains(c.error)) << result.err.toStdString();
    }
    // A folder that is not there is not a permission problem.
    const CliResult result = runCli({u"--settings"_s, settings, u"convert"_s, u"--save-dir"_s, saved(u"no/such/folder"_s), avi});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(u"The save folder for this job does not exist.: Create the folder or change the save location: "_s))
        << result.err.toStdString();
    EXPECT_TRUE(written().isEmpty());
}

// A folder that refuses writing is a permission problem. Root is refused
// nothing, so as root the run drops to the unprivileged "nobody".
TEST_F(CliJobs, AFolderThatRefusesWritingIsCalledAPermissionProblem)
{
    QTemporaryDir place;
    const QString film = place.filePath(u"film.avi"_s);
    const QString locked = place.filePath(u"locked"_s);
    const QString state = place.filePath(u"state"_s);
    ASSERT_TRUE(QFile::copy(xvidAvi(u"locked-out.avi"_s), film));
    ASSERT_TRUE(QFile::copy(settings, place.filePath(u"settings.ini"_s)));
    ASSERT_TRUE(QDir().mkpath(locked) && QDir().mkpath(state));
    using P = QFileDevice;
    const auto open = P::ReadOwner | P::ReadGroup | P::ReadOther | P::ExeOwner | P::ExeGroup | P::ExeOther;
    for (const QString &path : {place.path(), locked})
        QFile::setPermissions(path, open);
    QFile::setPermissions(state, open | P::WriteOwner | P::WriteGroup | P::WriteOther);
    for (const QString &path : {film, place.filePath(u"settings.ini"_s)})
        QFile::setPermissions(path, P::ReadOwner | P::WriteOwner | P::ReadGroup | P::ReadOther);

    QStringList command{cliPath(), u"--settings"_s, place.filePath(u"settings.ini"_s), u"convert"_s, u"--save-dir"_s, locked, film};
    if (geteuid() == 0)
        command = QStringList{u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s, u"--"_s} + command;
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_STATE_HOME"_s, state);
    environment.insert(u"HOME"_s, state);
    process.setProcessEnvironment(environment);
    process.start(geteuid() == 0 ? u"setpriv"_s : command.takeFirst(), command);
    ASSERT_TRUE(process.waitForFinished(60000));
    const QString err = QString::fromUtf8(process.readAllStandardError());
    if (err.startsWith(u"setpriv:"_s) || process.exitCode() == 127)
        GTEST_SKIP() << "nobody cannot run this build's kestrane-cli here: " << err.toStdString();
    EXPECT_EQ(process.exitCode(), 1);
    EXPECT_TRUE(err.contains(u"Kestrane does not have permision to write to the save folder for this job.: Either move the file, "
                             "change the save location, or edit the permissions for the output folder."_s))
        << err.toStdString();
    EXPECT_TRUE(QDir(locked).isEmpty());
}

TEST_F(CliJobs, ConvertsABatchWithAPresetPairAndNamesTheBadFile)
{
    const QString notes = notesFile(u"batch-notes.txt"_s);
    const CliResult result = run({u"convert"_s, u"--selection-preset"_s, u"First Track"_s, u"--settings-preset"_s, u"Quick MPEG-4"_s,
                                  threeTrackMkv(), notes, xvidAvi(u"batch-two.avi"_s)});
    EXPECT_EQ(result.status, 1) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains(u"batch-notes.txt"_s)) << result.err.toStdString();
    EXPECT_EQ(result.out.count(u"Completed: "_s), 2) << result.out.toStdString();
    const QString avi = saved(u"three-2.mkv.avi"_s);
    EXPECT_EQ(mediaInfo(avi, u"Video"_s, u"CodecID"_s).toLower(), u"xvid"_s);
    EXPECT_EQ(mediaInfo(avi, u"Audio"_s, u"Format"_s), u"MPEG Audio"_s);
    EXPECT_EQ(writtenEndingWith(u".avi"_s).size(), 2) << written().join(u' ').toStdString();
    // The subtitle is extracted beside it; no log is left behind.
    EXPECT_EQ(writtenEndingWith(u".srt"_s).size(), 1);
    EXPECT_TRUE(writtenEndingWith(u".log"_s).isEmpty());
}

TEST_F(CliJobs, EditingCommandsWriteTheirResultsUnderFreeNamesUnlessOverwriting)
{
    const QString one = xvidAvi(u"edit-one.avi"_s);
    const QStringList extract{u"extract"_s, one, u"--tracks"_s, u"1,2"_s};
    EXPECT_EQ(run(extract).status, 0);
    const QStringList firstRun = written();
    EXPECT_EQ(firstRun.size(), 2) << firstRun.join(u' ').toStdString();
    EXPECT_EQ(run(extract).status, 0);
    EXPECT_EQ(written().size(), 4) << written().join(u' ').toStdString();
    clearResults();
    run(extract);
    EXPECT_EQ(run(QStringList{u"--overwrite"_s} + extract).status, 0);
    EXPECT_EQ(written(), firstRun);

    clearResults();
    const QString mp3 = cliClip(u"voice.mp3"_s, u"-f lavfi -i sine=d=2:r=48000 -ac 2 -c:a libmp3lame -b:a 64k"_s);
    CliResult result = run({u"add-audio"_s, one, mp3});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    ASSERT_EQ(written().size(), 1) << written().join(u' ').toStdString();
    // The second audio track is the added file (64 kbit/s), not a copy of the first (128).
    EXPECT_EQ(described(saved(written().first()), u"Audio;%BitRate%"_s), (QStringList{u"128000"_s, u"64000"_s}));

    result = run({u"remux"_s, one});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(u"remux takes a Matroska"_s));
}

// What the rules refuse is refused here too, before anything runs, in the
// rules' words; a refusal of the MKV tab once ended as "nothing to queue".
TEST_F(CliJobs, ChoicesTheWindowRefusesExitTwoWithTheReason)
{
    const QString mkv = threeTrackMkv(); // H.264 of no declared bit rate, stereo AAC
    const struct
    {
        QString source;
        const char *options;
        QString reason;
    } cases[] = {
        {mkv, "--dry-run --tracks 1,2", u"An AVI cannot hold AAC audio as it is: choose MP3."_s},
        {mkv, "--tracks 1,2 --audio ac3", u"AC-3 5.1 needs a surround track of 6 channels; this one has 2: choose MP3."_s},
        {mkv, "--tracks 1,2 --video mpeg4 --audio mp3", u"This video does not declare its bit rate: enter the MPEG-4 video bit rate in kbit/s."_s},
        {mkv, "--audio mp3 --audio-bitrate 448 --video mpeg4 --bitrate 300", u"MP3 goes up to 320 kbit/s: choose a lower audio bit rate."_s},
        {mkv, "--to mkv --tracks 1,2 --audio aac-5.1", u"AAC 5.1 needs a surround track"_s},
        {cliClip(u"copy-refused.wmv"_s, testInputs(1) + u"-c:v wmv2 -c:a wmav2"_s), "--to mkv --tracks 1,2 --audio aac",
         u"cannot copy tracks out of a WMV file"_s},
        {xvidAvi(u"mp4-refused.avi"_s), "--to mp4 --video passthru", u"choose AAC or AC-3"_s},
    };
    for (const auto &c : cases) {
        const CliResult result = run(QStringList{u"convert"_s} + words(QString::fromLatin1(c.options)) + QStringList{c.source});
        EXPECT_EQ(result.status, 2) << c.options;
        EXPECT_TRUE(result.err.startsWith(u"kestrane-cli: %1: "_s.arg(QFileInfo(c.source).fileName())));
        EXPECT_TRUE(result.err.contains(c.reason)) << result.err.toStdString();
        EXPECT_TRUE(result.out.isEmpty()) << result.out.toStdString();
    }
    EXPECT_TRUE(written().isEmpty()) << written().join(u' ').toStdString();
}

// The remux offer for header-removal compression, answered from the command
// line; both jobs' commands are printed, with both passes of the encoder.
TEST_F(CliJobs, DryRunPrintsTheCommandsAndWritesNothing)
{
    const QString plain = cliClip(u"plain.avi"_s, testInputs(1) + u"-ac 2 -c:v mpeg4 -c:a ac3"_s);
    const QString stripped = settingsDir.filePath(u"stripped.mkv"_s);
    ASSERT_EQ(testsupport::run(u"mkvmerge -q -o '%1' --compression 0:mpeg4_p2 '%2'"_s.arg(stripped, plain)), 0);
    const CliResult offer = run(words(u"convert --dry-run --remux-header-removal yes --video mpeg4-2pass --bitrate 250"_s) + QStringList{stripped});
    EXPECT_EQ(offer.status, 0) << offer.err.toStdString();
    EXPECT_TRUE(offer.out.contains(u"job: MKV Remux\n"_s) && offer.out.contains(u"job: AVI Conversion\n"_s));
    EXPECT_TRUE(offer.out.contains(u"--compression -1:none"_s));
    EXPECT_TRUE(offer.out.contains(u"-> mpeg4, 250 kbit/s, 2 passes"_s)) << offer.out.toStdString();
    EXPECT_EQ(offer.out.count(u"vbitrate=250"_s), 2) << offer.out.toStdString();
    EXPECT_TRUE(written().isEmpty());
}

TEST_F(CliJobs, WatchConvertsWhatIsDroppedInUntilInterrupted)
{
    QTemporaryDir folder;
    const CliResult missing = run({u"watch"_s, folder.filePath(u"gone"_s)});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.err.contains(u"must select a valid directory to start watch mode"_s));

    const QString avi = xvidAvi(u"watched.avi"_s);
    ASSERT_TRUE(QFile::copy(avi, folder.filePath(u"already.avi"_s)));
    QProcess cli;
    cli.start(cliPath(), {u"--settings"_s, settings, u"watch"_s, u"--selection-preset"_s, u"First Track"_s, folder.path()});
    ASSERT_TRUE(cli.waitForStarted());
    ASSERT_TRUE(testsupport::waitUntil([&] { return cli.canReadLine(); }, 20000));
    ASSERT_TRUE(QFile::copy(avi, folder.filePath(u"dropped.avi"_s)));
    QByteArray out, err;
    ASSERT_TRUE(testsupport::waitUntil([&] { return (out += cli.readAllStandardOutput()).contains("Completed: dropped.avi"); }, 90000));
    // A movie the presets' choices cannot make is refused as convert does, and left alone.
    ASSERT_TRUE(QFile::copy(threeTrackMkv(), folder.filePath(u"refused.mkv"_s)));
    ASSERT_TRUE(testsupport::waitUntil([&] { return (err += cli.readAllStandardError()).contains("kestrane-cli: refused.mkv: "); }, 90000));
    ::kill(static_cast<pid_t>(cli.processId()), SIGINT);
    ASSERT_TRUE(cli.waitForFinished(30000));
    EXPECT_EQ(cli.exitCode(), 1) << err.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath(u"refused.mkv.avi"_s)));
    EXPECT_EQ(mediaInfo(folder.filePath(u"dropped.avi.avi"_s), u"Video"_s, u"Format"_s), u"MPEG-4 Visual"_s);
    EXPECT_FALSE(QFile::exists(folder.filePath(u"already.avi.avi"_s)));
}
