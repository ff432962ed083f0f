#include "MCConvertToAviJob.h"
#include "MCQueueController.h"
#include "MkvTestSupport.h"

#include <QRegularExpression>

namespace {

QString writeSrt(const QString &name, const QByteArray &line)
{
    return writeFile(editingMedia(name), "1\n00:00:00,300 --> 00:00:02,800\n" + line + "\n\n");
}

// H.264, AC-3 5.1 and two SRT tracks in a Matroska file.
QString mkvMovie()
{
    return clip(u"movie.mkv"_s, testInputs(u"320x240"_s, 3)
                                    + u"-i '%1' -i '%2' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[a]' "
                                      "-map 0:v -map '[a]' -map 2 -map 3 -c:v libx264 -preset ultrafast -c:a ac3 -b:a 384k -c:s srt"_s
                                          .arg(writeSrt(u"one.srt"_s, "Hello there"), writeSrt(u"two.srt"_s, "Second track")));
}

QString aviClip()
{
    return xvidAvi(u"clip.avi"_s, u"320x240"_s, 3);
}

QString longClip()
{
    return xvidAvi(u"long.avi"_s, u"1280x720"_s, 60);
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
        MCNotificationCenter::defaultCenter().addObserver(&receiver, MCNotificationName::progressUpdate, [this](const auto &n) {
            for (const QVariant &row : n.object.toList())
                rows << row.toMap().value(u"Step"_s).toString() + u'=' + row.toMap().value(u"Progress"_s).toString();
        });
    }

    // Queues the file as inspected, every track selected: MPEG-4 video at
    // 600 kbit/s and MP3 audio, subtitles as `subtitles` says or left alone.
    MCJob *queueJob(const QString &path, const QStringList &subtitles = {}, const MCTrackList &added = {})
    {
        MCSelectionPtr selection = inspectedSelection(path, u"AVI Conversion"_s);
        selection->userVideoBitRate = u"600"_s;
        selection->userPassNumber = u"1"_s;
        selection->trackList << added;
        qsizetype subtitle = 0;
        for (const MCVideoTrackPtr &track : selection->trackList) {
            const bool audio = track->trackType == u"Audio"_s, video = track->trackType == u"Video"_s;
            track->userCodec = video ? u"mpeg4"_s : audio ? u"mp3"_s : subtitles.value(subtitle++, u"none"_s);
            if (audio)
                track->userBitRate = u"128"_s;
        }
        selection->subCount = QString::number(subtitle);
        if (configure)
            configure(*selection);
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

    // XviD and stereo MP3 at the given width, as long as the source.
    void expectXvid(const QString &source, const QString &width) const
    {
        using testsupport::mediaInfo;
        const QString output = outputFor(source);
        EXPECT_EQ(mediaInfo(output, u"Video"_s, u"CodecID"_s).toLower(), u"xvid"_s);
        EXPECT_EQ(mediaInfo(output, u"Video"_s, u"Width"_s), width);
        EXPECT_EQ(described(output, u"Audio"_s).value(0).left(12), u"MPEG Audio/2"_s);
        EXPECT_NEAR(durationSeconds(output), durationSeconds(source), 0.5);
    }

    // The index of the first progress row ("Step=Progress") starting so (-1: none).
    qsizetype firstRow(const QString &prefix) const
    {
        return rows.indexOf(QRegularExpression(QRegularExpression::escape(prefix) + u".*"_s));
    }

    std::function<void(MCSelection &)> configure;
    MCQueueController queue;
    QObject receiver;
    QStringList rows;
};

} // namespace

TEST_F(AviConversionTest, MkvOnePassScaledWithBurnedAndExtractedSubtitles)
{
    configure = [](MCSelection &selection) { selection.userWidth = u"240"_s; };
    MCJob *job = queueJob(mkvMovie(), {u"burn"_s, u"extract"_s});
    ASSERT_TRUE(waitForCompletion(job));
    expectXvid(mkvMovie(), u"240"_s);
    EXPECT_GT(bottomBrightness(outputFor(mkvMovie())), 100);
    const QStringList subtitles = saved(u"movie.mkv.s*.srt"_s);
    ASSERT_EQ(subtitles.size(), 1);
    EXPECT_TRUE(readFile(savedPath(subtitles.at(0))).contains("Second track"));
    EXPECT_GE(firstRow(u"Extracting Subtitle="_s), 0);
    // Logs go unless the preferences keep them.
    EXPECT_TRUE(saved(u"*.log"_s).isEmpty());
}

TEST_F(AviConversionTest, AviTwoPassesWithAnAddedSubtitleBurnedIn)
{
    prefs.preferences->keepLogsFlag = true;
    configure = [](MCSelection &selection) {
        selection.userPassNumber = u"2"_s;
        selection.userWidth = u"640"_s;
    };
    MCJob *job = queueJob(longClip(), {u"burn"_s},
                          {makeTrack(u"External Subtitle"_s, u"srt"_s, writeSrt(u"added.srt"_s, "Added subtitle"))});
    ASSERT_TRUE(waitForCompletion(job));
    expectXvid(longClip(), u"640"_s);
    EXPECT_GT(bottomBrightness(outputFor(longClip())), 100);
    const qsizetype firstPass = firstRow(u"Video Conversion=Pass #1: "_s);
    EXPECT_GE(firstPass, 0);
    EXPECT_GT(firstRow(u"Video Conversion=Pass #2: "_s), firstPass);
    EXPECT_TRUE(QFile::exists(savedPath(u"long.avi.log"_s)));
}

TEST_F(AviConversionTest, PauseResumeAndStopThroughTheQueue)
{
    const auto alerts = testsupport::recordAlerts();
    // The same picture under a second name, so the two jobs write different files.
    const QString second = editingMedia(u"long-stop.avi"_s);
    QFile::link(longClip(), second);
    MCJob *paused = queueJob(longClip());
    MCJob *stopped = queueJob(second);
    MCJob *last = queueJob(aviClip());

    ASSERT_TRUE(testsupport::waitUntil([&] { return firstRow(u"Video Conversion="_s) >= 0; }, 30000));
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
    expectXvid(longClip(), u"1280"_s);

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
    MCJob *gone = queueJob(vanishing);
    QFile::remove(vanishing);
    MCJob *next = queueJob(aviClip());
    ASSERT_TRUE(waitForEnd(gone));
    EXPECT_EQ(gone->jobStatus(), u"Failed"_s);
    EXPECT_TRUE(gone->failureReason().contains(u"mencoder"_s)) << gone->failureReason().toStdString();
    ASSERT_TRUE(waitForCompletion(next));
    EXPECT_FALSE(QFile::exists(outputFor(vanishing)));
    expectXvid(aviClip(), u"320"_s);
}
