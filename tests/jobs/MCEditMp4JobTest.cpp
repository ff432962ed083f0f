#include "MCEditMp4Job.h"
#include "MCMp4FileEditor.h"
#include "MCWords.h"
#include "MkvTestSupport.h"

namespace {

// MP4 files made once, with their checksums: "tracks.mp4" (3 s of H.264
// with AAC "eng", AC-3 5.1 "ger" and a text subtitle "fre"), two halves of
// one recording, a file of another picture size, one with a timecode
// track, and a 6-second clip at 2 Mbit/s with a key frame every second.
const QHash<QString, QByteArray> &mp4Sources()
{
    static const QHash<QString, QByteArray> sums = [] {
        const QString x264 = u" -c:v libx264 -preset ultrafast -g 25 -c:a aac"_s;
        const QString srt = writeFile(editingMedia(u"subs.srt"_s), "1\n00:00:00,500 --> 00:00:01,500\nHello\n");
        QDir(editingMedia(u"mp4"_s)).mkpath(u"."_s);
        const QString d = editingMedia(u"mp4"_s);
        testsupport::ffmpeg(d, u"tracks.mp4"_s,
                            u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=r=48000 -f lavfi -i sine=f=660:r=48000 "
                            "-i '%1' -map 0 -map 1 -map 2 -map 3 -t 3 -c:v libx264 -preset ultrafast -c:a:0 aac "
                            "-ac:a:1 6 -c:a:1 ac3 -c:s mov_text -metadata:s:a:0 language=eng "
                            "-metadata:s:a:1 language=ger -metadata:s:s:0 language=fre"_s.arg(srt));
        testsupport::ffmpeg(d, u"part1.mp4"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=r=48000 -t 3"_s + x264);
        testsupport::ffmpeg(d, u"part2.mp4"_s, u"-f lavfi -i testsrc=size=320x240:rate=25 -f lavfi -i sine=r=48000 -ss 3 -t 2"_s + x264);
        testsupport::ffmpeg(d, u"small.mp4"_s, u"-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine=r=48000 -t 2"_s + x264);
        testsupport::ffmpeg(d, u"timecoded.mp4"_s, u"-i '%1/part2.mp4' -c copy -timecode 01:00:00:00 -write_tmcd 1"_s.arg(d));
        testsupport::ffmpeg(d, u"six.mp4"_s,
                            u"-f lavfi -i testsrc2=size=640x360:rate=25 -f lavfi -i sine=r=48000 -t 6 -c:v libx264 -g 25 "
                            "-b:v 2M -minrate 2M -maxrate 2M -bufsize 1M -c:a aac"_s);
        QHash<QString, QByteArray> sums;
        for (const QString &name : QDir(d).entryList(QDir::Files))
            sums.insert(name, testsupport::checksum(d + u'/' + name));
        return sums;
    }();
    return sums;
}

QString media(const QString &name)
{
    mp4Sources();
    return editingMedia(u"mp4/"_s + name);
}

class Mp4EditingTest : public EditingTest
{
protected:
    // Every source is as it was made, and nothing was written beside them.
    void TearDown() override
    {
        QStringList names = mp4Sources().keys();
        names.sort();
        EXPECT_EQ(QDir(media({})).entryList(QDir::Files, QDir::Name), names);
        for (auto it = mp4Sources().cbegin(); it != mp4Sources().cend(); ++it)
            EXPECT_EQ(testsupport::checksum(media(it.key())), it.value()) << it.key().toStdString() << " was changed";
    }

    MCSelectionPtr joining(const QStringList &names)
    {
        MCSelectionPtr selection = inspectedSelection(media(names.first()), MCWords::jobMp4Joining);
        selection->editFilesURLsList.clear();
        for (const QString &name : names)
            selection->editFilesURLsList << QUrl::fromLocalFile(media(name));
        return selection;
    }

    MCEditMp4Job job;
};

} // namespace

TEST_F(Mp4EditingTest, ExtractsEveryTrackIntoTheSaveFolder)
{
    ASSERT_TRUE(completes(job, inspectedSelection(media(u"tracks.mp4"_s), MCWords::jobMp4TrackExtraction)))
        << job.failureReason().toStdString();
    EXPECT_EQ(saved(u"*"_s), (QStringList{u"tracks_4_text.srt"_s, u"tracks_track1.h264"_s, u"tracks_track2.aac"_s,
                                          u"tracks_track3.ac3"_s}));
    EXPECT_EQ(described(savedPath(u"tracks_track3.ac3"_s), u"Audio"_s), QStringList{u"AC-3/6//"_s});
    EXPECT_TRUE(readFile(savedPath(u"tracks_4_text.srt"_s)).contains("Hello"));
    EXPECT_TRUE(sawRow(u"Extracting Subtitle Track="_s));

    // A track of another file is none of MP4Box's to extract: nothing runs.
    MCEditMp4Job foreign;
    MCSelectionPtr selection = inspectedSelection(media(u"tracks.mp4"_s), MCWords::jobMp4TrackExtraction);
    selection->trackList << makeTrack(u"Audio"_s, u"aac"_s, media(u"part1.mp4"_s));
    EXPECT_FALSE(completes(foreign, selection));
    EXPECT_TRUE(foreign.stepPIDList().isEmpty());
    EXPECT_EQ(saved(u"*"_s).size(), 4);
}

// A track MP4Box does not find fails the job; neither the copy nor a
// result is left.
TEST_F(Mp4EditingTest, AFailedTrackRemovalLeavesNeitherCopyNorResult)
{
    MCSelectionPtr selection = inspectedSelection(media(u"tracks.mp4"_s), MCWords::jobMp4TrackRemoval);
    selection->trackList = {selection->trackList.last()};
    selection->trackList.first()->trackMp4boxID = u"9"_s;
    EXPECT_FALSE(completes(job, selection));
    EXPECT_EQ(ticks.value(0), u"Removing Tracks=Copying Original"_s);
    EXPECT_TRUE(job.failureReason().startsWith(u"Removing Tracks: "_s)) << job.failureReason().toStdString();
    EXPECT_TRUE(saved(u"*.mp4"_s).isEmpty());
}

TEST_F(Mp4EditingTest, RetriesARefusedJoinOnCleanedCopiesAndFailsWhenRefusedAgainOrCancelled)
{
    const auto alerts = testsupport::recordAlerts();
    MCEditMp4Job retried;
    ASSERT_TRUE(completes(retried, joining({u"part1.mp4"_s, u"timecoded.mp4"_s}))) << retried.failureReason().toStdString();
    ASSERT_FALSE(alerts->alerts.isEmpty());
    EXPECT_EQ(alerts->alerts.last().message, u"Bad Parameter Error"_s);
    EXPECT_EQ(alerts->alerts.last().buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
    EXPECT_TRUE(alerts->alerts.last().informativeText.contains(u"temporary, modified copies"_s));
    EXPECT_EQ(retried.joinErrorCount(), 1);
    EXPECT_TRUE(sawRow(u"Editing for Joining="_s));
    EXPECT_TRUE(sawRow(u"Retrying Join Step #1="_s));
    // The cleaned copies were the job's own and are gone.
    EXPECT_EQ(saved(u"*"_s), QStringList{u"part1.mp4.tmp.mp4.joined.mp4"_s});
    EXPECT_NEAR(durationSeconds(savedPath(u"part1.mp4.tmp.mp4.joined.mp4"_s)), 5.0, 0.2);
    EXPECT_TRUE(decodesCleanly(savedPath(u"part1.mp4.tmp.mp4.joined.mp4"_s)));

    MCEditMp4Job refused;
    EXPECT_FALSE(completes(refused, joining({u"part1.mp4"_s, u"small.mp4"_s})));
    EXPECT_EQ(refused.joinErrorCount(), 2);
    EXPECT_EQ(alerts->alerts.last().informativeText, u"Retrying the join seems to have failed."_s);
    EXPECT_EQ(alerts->alerts.last().buttons, QStringList{u"OK"_s});
    EXPECT_TRUE(refused.failureReason().contains(u"Bad Parameter"_s)) << refused.failureReason().toStdString();

    MCEditMp4Job cancelled;
    alerts->answer = MCAlertSecondButtonReturn;
    EXPECT_FALSE(completes(cancelled, joining({u"part1.mp4"_s, u"small.mp4"_s})));
    EXPECT_EQ(cancelled.joinErrorCount(), 1);
    EXPECT_FALSE(sawRow(u"Editing for Joining"_s));
    EXPECT_EQ(saved(u"*.mp4"_s).size(), 1);
}

TEST_F(Mp4EditingTest, SplitsBySizeIntoTheSaveFolderAndRefusesBackwardTimes)
{
    MCSelectionPtr selection = inspectedSelection(media(u"six.mp4"_s), MCWords::jobMp4Splitting);
    selection->splitType = u"size"_s;
    selection->splitSize = u"1"_s;
    ASSERT_TRUE(completes(job, selection)) << job.failureReason().toStdString();
    EXPECT_TRUE(sawRow(u"Splitting Videos Step #1="_s));
    const QStringList pieces = saved(u"six.mp4.split_0*.mp4"_s);
    ASSERT_EQ(pieces.size(), 2) << saved(u"*"_s).join(u' ').toStdString();
    double total = 0.0;
    for (const QString &piece : pieces) {
        EXPECT_LE(QFileInfo(savedPath(piece)).size(), 1000 * 1000) << piece.toStdString();
        total += durationSeconds(savedPath(piece));
    }
    EXPECT_NEAR(total, 6.0, 0.3);

    // Values MP4Box would misread start nothing.
    MCEditMp4Job backwards;
    selection->splitType = u"time"_s;
    selection->initializeSplitForStartTime(u"00:00:04"_s, u"00:00:01"_s);
    EXPECT_FALSE(completes(backwards, selection));
    EXPECT_TRUE(backwards.failureReason().contains(u"cannot split"_s)) << backwards.failureReason().toStdString();
    EXPECT_EQ(saved(u"*"_s).size(), 2);
}

TEST_F(Mp4EditingTest, RefusesANoughtAspectRatioAndMovesTheIndexOfKestranesOwnFilesOnly)
{
    MCSelectionPtr selection = inspectedSelection(media(u"part1.mp4"_s), MCWords::jobParEditing);
    selection->userParWidth = u"40"_s;
    selection->userParHeight = u"0"_s;
    EXPECT_FALSE(completes(job, selection));
    EXPECT_TRUE(saved(u"*"_s).isEmpty());

    const QString copy = savedPath(u"late.mp4"_s);
    ASSERT_TRUE(QFile::copy(media(u"part1.mp4"_s), copy));
    ASSERT_EQ(testsupport::mediaInfo(copy, u"General"_s, u"IsStreamable"_s), u"No"_s);
    MCMp4FileEditor rewrite;
    ASSERT_NE(rewrite.moveMetadataToFrontForURL(QUrl::fromLocalFile(copy), selection), u"error"_s);
    ASSERT_TRUE(testsupport::waitUntil([&rewrite] { return !rewrite.toolIsRunning(); }));
    EXPECT_TRUE(rewrite.failureReason().isEmpty()) << rewrite.failureReason().toStdString();
    EXPECT_EQ(testsupport::mediaInfo(copy, u"General"_s, u"IsStreamable"_s), u"Yes"_s);
    EXPECT_NEAR(durationSeconds(copy), 3.0, 0.1);
    MCMp4FileEditor source;
    EXPECT_EQ(source.moveMetadataToFrontForURL(QUrl::fromLocalFile(media(u"part1.mp4"_s)), selection), u"error"_s);
}

TEST_F(Mp4EditingTest, AddsAudioAndSubtitleFilesToANewFile)
{
    QTemporaryDir added;
    MCVideoTrackPtr dub = makeTrack(u"Audio"_s, u"ac3"_s,
                                    testsupport::ffmpeg(added.path(), u"dub.ac3"_s, u"-f lavfi -i sine=f=300:r=48000:d=3 -ac 6 -c:a ac3"_s));
    MCVideoTrackPtr subtitle = makeTrack(u"External Subtitle"_s, u"srt"_s,
                                         writeFile(added.filePath(u"fr.srt"_s), "1\n00:00:00,500 --> 00:00:01,500\nBonjour\n"));
    dub->externalTrackFlag = subtitle->externalTrackFlag = true;
    dub->trackLanguage = u"German"_s;
    subtitle->trackLanguage = u"French"_s;
    MCSelectionPtr selection = inspectedSelection(media(u"part1.mp4"_s), MCWords::jobMp4TrackAddition);
    selection->trackList << dub << subtitle;
    ASSERT_TRUE(completes(job, selection)) << job.failureReason().toStdString();

    // AC-3 makes it an M4V; the source's AAC stays the track that plays.
    const QString result = savedPath(u"part1.mp4.m4v"_s);
    EXPECT_EQ(saved(u"*"_s), QStringList{u"part1.mp4.m4v"_s});
    const QStringList audio = described(result, u"Audio"_s, true);
    ASSERT_EQ(audio.size(), 2);
    EXPECT_TRUE(audio.at(0).startsWith(u"AAC/"_s) && audio.at(0).endsWith(u"/Yes"_s)) << audio.at(0).toStdString();
    EXPECT_TRUE(audio.at(1).startsWith(u"AC-3/6/de"_s) && audio.at(1).endsWith(u"/No"_s)) << audio.at(1).toStdString();
    EXPECT_EQ(mediaTracks(result, u"Text"_s).value(0).value(u"Language"_s).toString(), u"fr"_s);
    EXPECT_TRUE(sawRow(u"Muxing Step #1="_s));

    // A track the muxing would drop stops the job before it runs.
    MCEditMp4Job mp3;
    dub->trackCodec = u"mp3"_s;
    EXPECT_FALSE(completes(mp3, selection));
    EXPECT_TRUE(mp3.failureReason().contains(u"AAC and AC-3 audio only"_s)) << mp3.failureReason().toStdString();
    EXPECT_TRUE(mp3.stepPIDList().isEmpty());
}
