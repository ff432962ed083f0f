#include "MkvTestSupport.h"
#include "MCConvertToAviJob.h"
#include "MCQueueController.h"
#include "MCVideoFile.h"

#include <QRegularExpression>

namespace {

QByteArray srt(const char *line)
{
    return QByteArray("1\n00:00:00,300 --> 00:00:02,800\n") + line + "\n\n";
}

QString writeSrt(const QString &name, const char *line)
{
    QFile file(editingMedia(name));
    file.open(QIODevice::WriteOnly);
    file.write(srt(line));
    return file.fileName();
}

// Test pictures with a black bottom quarter, so burned text is easy to see.
QString picture(const QString &size, int seconds)
{
    return u"-f lavfi -i testsrc2=s=%1:r=25:d=%2,drawbox=y=ih*0.7:h=ih*0.3:color=black:t=fill -f lavfi -i sine=d=%2:r=48000"_s
        .arg(size)
        .arg(seconds);
}

// H.264, AC-3 5.1 and two SRT tracks in a Matroska file.
const QString &mkvMovie()
{
    static const QString path = [] {
        const QString one = writeSrt(u"one.srt"_s, "Hello there"), two = writeSrt(u"two.srt"_s, "Second track");
        return testsupport::ffmpeg(QFileInfo(one).path(), u"movie.mkv"_s,
                                   picture(u"320x240"_s, 3)
                                       + u" -i '%1' -i '%2' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[a]'"
                                         " -map 0:v -map '[a]' -map 2 -map 3 -c:v libx264 -preset ultrafast -c:a ac3 -b:a 384k -c:s srt"_s
                                             .arg(one, two));
    }();
    return path;
}

// An XviD/MP3 AVI as MEncoder writes them (ffmpeg's MP3-in-AVI trips
// MEncoder's AVI reader, which then repeats the first picture).
QString blackBottomAvi(const QString &name, const QString &size, int seconds)
{
    const QString path = editingMedia(name);
    if (QFile::exists(path))
        return path;
    const QString pcm = testsupport::ffmpeg(QFileInfo(path).path(), name + u".pcm.avi"_s,
                                            picture(size, seconds) + u" -ac 2 -c:v mpeg4 -vtag XVID -q:v 5 -c:a pcm_s16le"_s);
    testsupport::run(u"mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'"_s.arg(pcm, path));
    QFile::remove(pcm);
    return path;
}

QString aviClip()
{
    return blackBottomAvi(u"clip.avi"_s, u"320x240"_s, 3);
}

QString longClip()
{
    return blackBottomAvi(u"long.avi"_s, u"1280x720"_s, 60);
}

// The brightest luma in the bottom quarter at 1.5 s.
int bottomBrightness(const QString &video)
{
    QString out;
    testsupport::run(u"ffmpeg -nostdin -hide_banner -ss 1.5 -i '%1' -frames:v 1 -vf "
                     "'crop=iw:ih*0.25:0:ih*0.75,signalstats,metadata=print:key=lavfi.signalstats.YMAX:file=-'"
                     " -f null - 2>/dev/null"_s.arg(video),
                     &out);
    return QRegularExpression(u"YMAX=(\\d+)"_s).match(out).captured(1).toInt();
}

class AviConversionTest : public EditingTest
{
protected:
    AviConversionTest()
    {
        MCConvertToAviJob::registerJobType();
        prefs.preferences->subtitleFontURL = QUrl::fromLocalFile(u"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"_s);
        MCNotificationCenter::defaultCenter().addObserver(&receiver, MCNotificationName::progressUpdate,
                                                          [this](const MCNotification &n) {
                                                              for (const QVariant &row : n.object.toList())
                                                                  rows << row.toMap();
                                                          });
    }

    // The file as inspected, every track selected: MPEG-4 video at 600 kbit/s
    // and MP3 audio, subtitles left alone.
    static MCSelectionPtr inspect(const QString &path)
    {
        MCSelectionPtr selection = inspectedSelection(path, u"AVI Conversion"_s);
        selection->userVideoBitRate = u"600"_s;
        selection->userPassNumber = u"1"_s;
        int subtitles = 0;
        for (const MCVideoTrackPtr &track : selection->trackList) {
            const bool audio = track->trackType == u"Audio"_s, video = track->trackType == u"Video"_s;
            track->userCodec = video ? u"mpeg4"_s : audio ? u"mp3"_s : u"none"_s;
            if (audio)
                track->userBitRate = u"128"_s;
            subtitles += !audio && !video;
        }
        selection->subCount = QString::number(subtitles);
        return selection;
    }

    static MCVideoTrackPtr subtitle(const MCSelectionPtr &selection, int nth)
    {
        for (const MCVideoTrackPtr &candidate : selection->trackList) {
            if (candidate->trackType == u"Subtitle"_s && nth-- == 0)
                return candidate;
        }
        ADD_FAILURE() << "no such track";
        return std::make_shared<MCVideoTrack>();
    }

    MCJob *queueJob(const MCSelectionPtr &selection)
    {
        queue.addToQueue(selection);
        return queue.qJobList().last();
    }

    static bool waitForEnd(MCJob *job, int seconds = 120)
    {
        return testsupport::waitUntil([job] { return job->jobStatus() == u"Completed"_s || job->jobStatus() == u"Failed"_s; },
                                      seconds * 1000);
    }

    static bool waitForCompletion(MCJob *job) { return waitForEnd(job) && job->jobStatus() == u"Completed"_s; }

    QString outputFor(const QString &source) const { return savedPath(QFileInfo(source).fileName() + u".avi"_s); }

    // Converts; answers the output's path.
    QString convert(const MCSelectionPtr &selection)
    {
        EXPECT_TRUE(waitForCompletion(queueJob(selection)));
        return outputFor(selection->videoTrackFilePath);
    }

    // XviD and stereo MP3 at the given width, as long as the source.
    static void expectXvid(const QString &output, const QString &source, const QString &width)
    {
        using testsupport::mediaInfo;
        EXPECT_EQ(mediaInfo(output, u"Video"_s, u"CodecID"_s).toLower(), u"xvid"_s);
        EXPECT_EQ(mediaInfo(output, u"Video"_s, u"Width"_s), width);
        EXPECT_EQ(mediaInfo(output, u"Audio"_s, u"Format"_s), u"MPEG Audio"_s);
        EXPECT_EQ(mediaInfo(output, u"Audio"_s, u"Channel(s)"_s), u"2"_s);
        EXPECT_NEAR(durationSeconds(output), durationSeconds(source), 0.5);
    }

    // The index of the first progress row of that step starting so (-1: none).
    qsizetype firstRow(const QString &step, const QString &prefix) const
    {
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const QVariantMap &row) {
            return row.value(u"Step"_s) == step && row.value(u"Progress"_s).toString().startsWith(prefix);
        });
        return row == rows.end() ? -1 : row - rows.begin();
    }

    MCQueueController queue;
    QObject receiver;
    QList<QVariantMap> rows;
};

} // namespace

TEST_F(AviConversionTest, MkvOnePassScaledWithBurnedAndExtractedSubtitles)
{
    MCSelectionPtr selection = inspect(mkvMovie());
    selection->userWidth = u"240"_s;
    subtitle(selection, 0)->userCodec = u"burn"_s;
    const MCVideoTrackPtr extracted = subtitle(selection, 1);
    extracted->userCodec = u"extract"_s;

    const QString output = convert(selection);
    expectXvid(output, mkvMovie(), u"240"_s);
    EXPECT_GT(bottomBrightness(output), 100);
    EXPECT_FALSE(extracted->convertSubFlag);

    const QStringList subtitles = saved(u"movie.mkv.s*.srt"_s);
    ASSERT_EQ(subtitles.size(), 1);
    QFile file(savedPath(subtitles.at(0)));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("Second track"));
    EXPECT_GE(firstRow(u"Extracting Subtitle"_s, {}), 0);
    // Logs go unless the preferences keep them.
    EXPECT_TRUE(saved(u"*.log"_s).isEmpty());
}

TEST_F(AviConversionTest, AviTwoPassesWithAnAddedSubtitleBurnedIn)
{
    prefs.preferences->keepLogsFlag = true;
    MCSelectionPtr selection = inspect(longClip());
    selection->userPassNumber = u"2"_s;
    selection->userWidth = u"640"_s;
    const MCVideoTrackPtr external = makeTrack(u"External Subtitle"_s, u"srt"_s, writeSrt(u"added.srt"_s, "Added subtitle"));
    external->userCodec = u"burn"_s;
    selection->trackList << external;
    selection->subCount = u"1"_s;

    const QString output = convert(selection);
    expectXvid(output, longClip(), u"640"_s);
    EXPECT_GT(bottomBrightness(output), 100);
    const qsizetype firstPass = firstRow(u"Video Conversion"_s, u"Pass #1: "_s);
    EXPECT_GE(firstPass, 0);
    EXPECT_GT(firstRow(u"Video Conversion"_s, u"Pass #2: "_s), firstPass);
    EXPECT_TRUE(QFile::exists(savedPath(u"long.avi.log"_s)));
}

TEST_F(AviConversionTest, PauseResumeAndStopThroughTheQueue)
{
    const auto alerts = testsupport::recordAlerts();
    // The same picture under a second name, so the two jobs write different files.
    const QString second = editingMedia(u"long-stop.avi"_s);
    QFile::link(longClip(), second);
    MCJob *paused = queueJob(inspect(longClip()));
    MCJob *stopped = queueJob(inspect(second));
    MCJob *last = queueJob(inspect(aviClip()));

    ASSERT_TRUE(testsupport::waitUntil([&] { return firstRow(u"Video Conversion"_s, {}) >= 0; }, 30000));
    const QString pid = paused->stepPIDList().value(0);
    const QString log = savedPath(u"long.avi.log"_s);
    queue.pauseQueueButton();
    EXPECT_TRUE(reachesState(pid, u"T"_s));
    const qint64 sizeWhilePaused = QFileInfo(log).size();
    testsupport::waitUntil([] { return false; }, 700);
    EXPECT_EQ(QFileInfo(log).size(), sizeWhilePaused);
    queue.pauseQueueButton();
    EXPECT_TRUE(testsupport::waitUntil([&] { return processState(pid) != u"T"_s; }, 2000));
    ASSERT_TRUE(waitForCompletion(paused));
    expectXvid(outputFor(longClip()), longClip(), u"1280"_s);

    ASSERT_TRUE(testsupport::waitUntil([&] { return stopped->jobStatus() == u"Running"_s && !stopped->stepPIDList().isEmpty(); }, 10000));
    const QString stoppedPid = stopped->stepPIDList().value(0);
    queue.deleteJobRow(1, 0);
    EXPECT_EQ(processState(stoppedPid), QString());
    EXPECT_FALSE(QFile::exists(savedPath(u"long-stop.avi.log"_s)));
    ASSERT_EQ(queue.qJobList().size(), 2);
    EXPECT_TRUE(waitForCompletion(last));
}

TEST_F(AviConversionTest, FaultsEndTheJobAndTheQueueMovesOn)
{
    // A source that is gone by the time its job starts: the tool dies at once.
    const QString vanishing = editingMedia(u"vanishing.mkv"_s);
    QFile::copy(mkvMovie(), vanishing);
    MCJob *gone = queueJob(inspect(vanishing));
    QFile::remove(vanishing);
    MCJob *next = queueJob(inspect(aviClip()));
    ASSERT_TRUE(waitForEnd(gone));
    EXPECT_EQ(gone->jobStatus(), u"Failed"_s);
    EXPECT_TRUE(gone->failureReason().contains(u"mencoder"_s)) << gone->failureReason().toStdString();
    ASSERT_TRUE(waitForCompletion(next));
    EXPECT_FALSE(QFile::exists(vanishing));
    EXPECT_FALSE(QFile::exists(outputFor(vanishing)));
    expectXvid(outputFor(aviClip()), aviClip(), u"320"_s);
}

TEST_F(AviConversionTest, FullSaveFolderFailsTheJobAndLeavesNoTruncatedResult)
{
    if (testsupport::run(u"mount -t tmpfs -o size=120k tmpfs '%1'"_s.arg(prefs.saveFolder)) != 0)
        GTEST_SKIP() << "cannot mount a small file system here";
    const auto alerts = testsupport::recordAlerts();
    const QByteArray sourceSum = md5Of(mkvMovie());
    MCSelectionPtr selection = inspect(mkvMovie());
    selection->userVideoBitRate = u"8000"_s;
    MCJob *first = queueJob(selection);
    const bool finished = waitForEnd(first);
    const QStringList left = QDir(prefs.saveFolder).entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    testsupport::run(u"umount '%1'"_s.arg(prefs.saveFolder));
    ASSERT_TRUE(finished);
    EXPECT_EQ(first->jobStatus(), u"Failed"_s);
    // Known before any tool runs: the folder has less room than the source takes.
    EXPECT_TRUE(first->failureReason().startsWith(u"It appears that your save volume is almost out of free space."_s))
        << first->failureReason().toStdString();
    EXPECT_EQ(md5Of(mkvMovie()), sourceSum);
    // At most the log that tells why; no AVI that looks like a result.
    for (const QString &name : left)
        EXPECT_TRUE(name.endsWith(u".log"_s)) << name.toStdString();
}
