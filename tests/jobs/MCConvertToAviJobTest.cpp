#include "EngineTestSupport.h"
#include "MCConvertToAviJob.h"
#include "MCNotificationCenter.h"
#include "MCQueueController.h"
#include "MCVideoFile.h"
#include "TestSupport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

const QString kFont = QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");

// Media made once per test program, on first use.
QTemporaryDir &mediaDir()
{
    static QTemporaryDir dir;
    return dir;
}

void writeText(const QString &path, const QByteArray &text)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(text);
}

QByteArray srt(const char *line)
{
    return QByteArray("1\n00:00:00,300 --> 00:00:02,800\n") + line + "\n\n";
}

// Test pictures with a black bottom quarter, so burned text is easy to see.
QString picture(int width, int height, int seconds)
{
    return QStringLiteral("-f lavfi -i testsrc2=s=%1x%2:r=25:d=%3,drawbox=y=ih*0.7:h=ih*0.3:color=black:t=fill "
                          "-f lavfi -i sine=d=%3:r=48000")
        .arg(width).arg(height).arg(seconds);
}

// H.264, AC-3 5.1 and two SRT tracks in a Matroska file.
const QString &mkvMovie()
{
    static const QString path = [] {
        const QString dir = mediaDir().path();
        writeText(dir + QStringLiteral("/one.srt"), srt("Hello there"));
        writeText(dir + QStringLiteral("/two.srt"), srt("Second track"));
        return testsupport::ffmpeg(dir, QStringLiteral("movie.mkv"),
                                   picture(320, 240, 3) + QStringLiteral(
                                       " -i '%1/one.srt' -i '%1/two.srt' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[a]'"
                                       " -map 0:v -map '[a]' -map 2 -map 3 -c:v libx264 -preset ultrafast -c:a ac3 -b:a 384k -c:s srt")
                                       .arg(dir));
    }();
    return path;
}

// An XviD/MP3 AVI as MEncoder writes them (ffmpeg's MP3-in-AVI trips
// MEncoder's AVI reader, which then repeats the first picture).
QString xvidAvi(const QString &name, int width, int height, int seconds)
{
    const QString dir = mediaDir().path();
    const QString pcm = testsupport::ffmpeg(dir, name + QStringLiteral(".pcm.avi"),
                                            picture(width, height, seconds)
                                                + QStringLiteral(" -ac 2 -c:v mpeg4 -vtag XVID -q:v 5 -c:a pcm_s16le"));
    const QString path = dir + QLatin1Char('/') + name;
    testsupport::run(QStringLiteral("mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'").arg(pcm, path));
    QFile::remove(pcm);
    return path;
}

const QString &aviClip()
{
    static const QString path = xvidAvi(QStringLiteral("clip.avi"), 320, 240, 3);
    return path;
}

const QString &longClip()
{
    static const QString path = xvidAvi(QStringLiteral("long.avi"), 1280, 720, 60);
    return path;
}

double durationOf(const QString &path)
{
    return testsupport::mediaInfo(path, QStringLiteral("General"), QStringLiteral("Duration")).toDouble();
}

// The brightest luma in the bottom quarter at 1.5 s.
int bottomBrightness(const QString &video)
{
    QString out;
    testsupport::run(QStringLiteral("ffmpeg -nostdin -hide_banner -ss 1.5 -i '%1' -frames:v 1 -vf "
                                    "'crop=iw:ih*0.25:0:ih*0.75,signalstats,metadata=print:key=lavfi.signalstats.YMAX:file=-'"
                                    " -f null - 2>/dev/null").arg(video),
                     &out);
    return QRegularExpression(QStringLiteral("YMAX=(\\d+)")).match(out).captured(1).toInt();
}

QByteArray md5Of(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5);
}

class AviConversionTest : public ::testing::Test
{
protected:
    AviConversionTest()
    {
        MCConvertToAviJob::registerJobType();
        prefs.preferences->subtitleFontURL = QUrl::fromLocalFile(kFont);
        MCNotificationCenter::defaultCenter().addObserver(&receiver, MCNotificationName::progressUpdate,
                                                          [this](const MCNotification &n) {
                                                              for (const QVariant &row : n.object.toList())
                                                                  rows << row.toMap();
                                                          });
    }
    ~AviConversionTest() override { MCAlertCenter::instance().setPresenter(nullptr); }

    // The file as inspected, every track selected: MPEG-4 video at 600 kbit/s
    // and MP3 audio, subtitles left alone.
    MCSelectionPtr inspect(const QString &path)
    {
        MCVideoFile file;
        EXPECT_EQ(file.initializeForURL(QUrl::fromLocalFile(path)), QStringLiteral("OK")) << path.toStdString();
        auto selection = std::make_shared<MCSelection>();
        selection->initialize();
        selection->initializeFrom(file);
        selection->trackList = file.trackList;
        selection->jobType = QStringLiteral("AVI Conversion");
        selection->userVideoBitRate = QStringLiteral("600");
        selection->userPassNumber = QStringLiteral("1");
        int subtitles = 0;
        for (const MCVideoTrackPtr &track : selection->trackList) {
            track->trackSelected = true;
            if (track->trackType == QStringLiteral("Video")) {
                track->userCodec = QStringLiteral("mpeg4");
            } else if (track->trackType == QStringLiteral("Audio")) {
                track->userCodec = QStringLiteral("mp3");
                track->userBitRate = QStringLiteral("128");
            } else {
                track->userCodec = QStringLiteral("none");
                ++subtitles;
            }
        }
        selection->subCount = QString::number(subtitles);
        return selection;
    }

    MCVideoTrackPtr track(const MCSelectionPtr &selection, const QString &type, int nth = 0)
    {
        for (const MCVideoTrackPtr &candidate : selection->trackList) {
            if (candidate->trackType == type && nth-- == 0)
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

    bool waitForCompletion(MCJob *job, int seconds = 120)
    {
        return waitForEnd(job, seconds) && job->jobStatus() == QStringLiteral("Completed");
    }

    static bool waitForEnd(MCJob *job, int seconds = 120)
    {
        return testsupport::waitUntil(
            [job] { return job->jobStatus() == QStringLiteral("Completed") || job->jobStatus() == QStringLiteral("Failed"); },
            seconds * 1000);
    }

    QString outputFor(const QString &source) const
    {
        return prefs.saveFolder + QLatin1Char('/') + QFileInfo(source).fileName() + QStringLiteral(".avi");
    }

    // Converts and answers the output's path.
    QString convert(const MCSelectionPtr &selection)
    {
        EXPECT_TRUE(waitForCompletion(queueJob(selection)));
        return outputFor(selection->videoTrackFilePath);
    }

    void expectMedia(const QString &output, const QString &source, const QString &videoCodecId, const QString &width,
                     const QString &audioFormat, const QString &channels)
    {
        using testsupport::mediaInfo;
        EXPECT_EQ(mediaInfo(output, QStringLiteral("Video"), QStringLiteral("CodecID")).toLower(), videoCodecId);
        EXPECT_EQ(mediaInfo(output, QStringLiteral("Video"), QStringLiteral("Width")), width);
        EXPECT_EQ(mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), audioFormat);
        EXPECT_EQ(mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Channel(s)")), channels);
        EXPECT_NEAR(durationOf(output), durationOf(source), 500.0);
    }

    bool sawProgress(const QString &step, const QString &prefix) const
    {
        return std::any_of(rows.begin(), rows.end(), [&](const QVariantMap &row) {
            return row.value(QStringLiteral("Step")) == step && row.value(QStringLiteral("Progress")).toString().startsWith(prefix);
        });
    }

    PrivatePreferences prefs;
    MCQueueController queue;
    QObject receiver;
    QList<QVariantMap> rows;
};

} // namespace

TEST_F(AviConversionTest, MkvOnePassScaledWithBurnedAndExtractedSubtitles)
{
    MCSelectionPtr selection = inspect(mkvMovie());
    selection->userWidth = QStringLiteral("240");
    track(selection, QStringLiteral("Subtitle"), 0)->userCodec = QStringLiteral("burn");
    const MCVideoTrackPtr extracted = track(selection, QStringLiteral("Subtitle"), 1);
    extracted->userCodec = QStringLiteral("extract");

    const QString output = convert(selection);
    expectMedia(output, mkvMovie(), QStringLiteral("xvid"), QStringLiteral("240"), QStringLiteral("MPEG Audio"), QStringLiteral("2"));
    EXPECT_GT(bottomBrightness(output), 100);
    EXPECT_FALSE(extracted->convertSubFlag);

    const QStringList subtitles = QDir(prefs.saveFolder).entryList({QStringLiteral("movie.mkv.s*.srt")});
    ASSERT_EQ(subtitles.size(), 1);
    QFile subtitle(prefs.saveFolder + QLatin1Char('/') + subtitles.at(0));
    ASSERT_TRUE(subtitle.open(QIODevice::ReadOnly));
    EXPECT_TRUE(subtitle.readAll().contains("Second track"));
    EXPECT_TRUE(sawProgress(QStringLiteral("Extracting Subtitle"), QString()));
    EXPECT_TRUE(sawProgress(QStringLiteral("Video Conversion"), QString()));
    // Logs go unless the preferences keep them.
    EXPECT_TRUE(QDir(prefs.saveFolder).entryList({QStringLiteral("*.log")}).isEmpty());
}

TEST_F(AviConversionTest, AviTwoPassesWithAnAddedSubtitleBurnedIn)
{
    prefs.preferences->keepLogsFlag = true;
    const QString added = mediaDir().filePath(QStringLiteral("added.srt"));
    writeText(added, srt("Added subtitle"));
    MCSelectionPtr selection = inspect(longClip());
    selection->userPassNumber = QStringLiteral("2");
    selection->userWidth = QStringLiteral("640");
    const MCVideoTrackPtr external = makeTrack(QStringLiteral("External Subtitle"), QStringLiteral("srt"), added);
    external->userCodec = QStringLiteral("burn");
    selection->trackList << external;
    selection->subCount = QStringLiteral("1");

    const QString output = convert(selection);
    expectMedia(output, longClip(), QStringLiteral("xvid"), QStringLiteral("640"), QStringLiteral("MPEG Audio"), QStringLiteral("2"));
    EXPECT_GT(bottomBrightness(output), 100);
    const auto firstWith = [this](const QString &prefix) {
        return std::find_if(rows.begin(), rows.end(), [&](const QVariantMap &row) {
                   return row.value(QStringLiteral("Progress")).toString().startsWith(prefix);
               }) - rows.begin();
    };
    EXPECT_TRUE(sawProgress(QStringLiteral("Video Conversion"), QStringLiteral("Pass #1: ")));
    EXPECT_TRUE(sawProgress(QStringLiteral("Video Conversion"), QStringLiteral("Pass #2: ")));
    EXPECT_LT(firstWith(QStringLiteral("Pass #1: ")), firstWith(QStringLiteral("Pass #2: ")));
    EXPECT_TRUE(QFile::exists(prefs.saveFolder + QStringLiteral("/long.avi.log")));
}

TEST_F(AviConversionTest, PassthroughCopiesVideoAndAudio)
{
    MCSelectionPtr selection = inspect(mkvMovie());
    track(selection, QStringLiteral("Video"))->userCodec = QStringLiteral("passthru");
    track(selection, QStringLiteral("Audio"))->userCodec = QStringLiteral("passthru");
    expectMedia(convert(selection), mkvMovie(), QStringLiteral("h264"), QStringLiteral("320"), QStringLiteral("AC-3"), QStringLiteral("6"));
}

TEST_F(AviConversionTest, SurroundAudioAsAc3)
{
    const QFileInfo encoder(MCHelpers::resourceFolderPath() + QStringLiteral("/mencoder"));
    if (encoder.isSymLink() && encoder.symLinkTarget() == QStringLiteral("/usr/bin/mencoder"))
        GTEST_SKIP() << "the resource mencoder is Debian's own, which cannot encode AC-3; needs Kestrane's mencoder front";
    MCSelectionPtr surround = inspect(mkvMovie());
    const MCVideoTrackPtr audio = track(surround, QStringLiteral("Audio"));
    audio->userCodec = QStringLiteral("ac3");
    audio->userBitRate = QStringLiteral("384");
    surround->trackList = {track(surround, QStringLiteral("Video")), audio};
    expectMedia(convert(surround), mkvMovie(), QStringLiteral("xvid"), QStringLiteral("320"), QStringLiteral("AC-3"), QStringLiteral("6"));
}

TEST_F(AviConversionTest, PauseResumeAndStopThroughTheQueue)
{
    const auto alerts = testsupport::recordAlerts();
    // The same picture under a second name, so the two jobs write different files.
    const QString second = mediaDir().filePath(QStringLiteral("long-stop.avi"));
    QFile::link(longClip(), second);
    MCJob *paused = queueJob(inspect(longClip()));
    MCJob *stopped = queueJob(inspect(second));
    MCJob *last = queueJob(inspect(aviClip()));

    ASSERT_TRUE(testsupport::waitUntil([&] { return sawProgress(QStringLiteral("Video Conversion"), QString()); }, 30000));
    const QString pid = paused->stepPIDList().value(0);
    const QString log = prefs.saveFolder + QStringLiteral("/long.avi.log");
    queue.pauseQueueButton();
    EXPECT_TRUE(reachesState(pid, QStringLiteral("T")));
    const qint64 sizeWhilePaused = QFileInfo(log).size();
    testsupport::waitUntil([] { return false; }, 700);
    EXPECT_EQ(QFileInfo(log).size(), sizeWhilePaused);
    queue.pauseQueueButton();
    EXPECT_TRUE(testsupport::waitUntil([&] { return processState(pid) != QStringLiteral("T"); }, 2000));
    ASSERT_TRUE(waitForCompletion(paused));
    expectMedia(outputFor(longClip()), longClip(), QStringLiteral("xvid"), QStringLiteral("1280"), QStringLiteral("MPEG Audio"), QStringLiteral("2"));

    ASSERT_TRUE(testsupport::waitUntil([&] { return stopped->jobStatus() == QStringLiteral("Running") && !stopped->stepPIDList().isEmpty(); }, 10000));
    const QString stoppedPid = stopped->stepPIDList().value(0);
    queue.deleteJobRow(1, 0);
    EXPECT_EQ(processState(stoppedPid), QString());
    EXPECT_FALSE(QFile::exists(prefs.saveFolder + QStringLiteral("/long-stop.avi.log")));
    ASSERT_EQ(queue.qJobList().size(), 2);
    EXPECT_TRUE(waitForCompletion(last));
}

TEST_F(AviConversionTest, FaultsEndTheJobAndTheQueueMovesOn)
{
    // A source that is gone by the time its job starts: the tool dies at once.
    const QString vanishing = mediaDir().filePath(QStringLiteral("vanishing.mkv"));
    QFile::copy(mkvMovie(), vanishing);
    MCJob *gone = queueJob(inspect(vanishing));
    QFile::remove(vanishing);
    MCJob *next = queueJob(inspect(aviClip()));
    ASSERT_TRUE(waitForEnd(gone));
    EXPECT_EQ(gone->jobStatus(), QStringLiteral("Failed"));
    EXPECT_TRUE(gone->failureReason().contains(QStringLiteral("mencoder"))) << gone->failureReason().toStdString();
    ASSERT_TRUE(waitForCompletion(next));
    EXPECT_FALSE(QFile::exists(vanishing));
    EXPECT_FALSE(QFile::exists(outputFor(vanishing)));
    expectMedia(outputFor(aviClip()), aviClip(), QStringLiteral("xvid"), QStringLiteral("320"), QStringLiteral("MPEG Audio"), QStringLiteral("2"));
}

TEST_F(AviConversionTest, FullSaveFolderFailsTheJobAndLeavesNoTruncatedResult)
{
    if (testsupport::run(QStringLiteral("mount -t tmpfs -o size=120k tmpfs '%1'").arg(prefs.saveFolder)) != 0)
        GTEST_SKIP() << "cannot mount a small file system here";
    const auto alerts = testsupport::recordAlerts();
    const QByteArray sourceSum = md5Of(mkvMovie());
    MCSelectionPtr selection = inspect(mkvMovie());
    selection->userVideoBitRate = QStringLiteral("8000");
    MCJob *first = queueJob(selection);
    const bool finished = waitForEnd(first);
    const QStringList left = QDir(prefs.saveFolder).entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    testsupport::run(QStringLiteral("umount '%1'").arg(prefs.saveFolder));
    ASSERT_TRUE(finished);
    EXPECT_EQ(first->jobStatus(), QStringLiteral("Failed"));
    // Known before any tool runs: the folder has less room than the source takes.
    EXPECT_TRUE(first->failureReason().startsWith(QStringLiteral("It appears that your save volume is almost out of free space.")))
        << first->failureReason().toStdString();
    EXPECT_EQ(md5Of(mkvMovie()), sourceSum);
    // At most the log that tells why; no AVI that looks like a result.
    for (const QString &name : left)
        EXPECT_TRUE(name.endsWith(QStringLiteral(".log"))) << name.toStdString();
}
