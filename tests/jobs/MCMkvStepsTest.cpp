#include "MCMediaSummary.h"
#include "MCMkvEditor.h"
#include "MCMkvMuxer.h"
#include "MCReMuxMkvJob.h"
#include "MkvTestSupport.h"

namespace {

class MkvStepsTest : public EditingTest
{
protected:
    // Runs one step in a job of its own.
    void runStep(const MCConverterPtr &step, const MCSelectionPtr &selection)
    {
        StepsJob job;
        job.steps = {step};
        completes(job, selection);
    }

    void split(const QString &file, const QString &type, const QString &first, const QString &second = {})
    {
        MCSelectionPtr selection = selectionFor(file, u"AVI Splitting"_s);
        selection->splitType = type;
        selection->splitStartTimeText = selection->splitSize = selection->splitDurationSeconds = first;
        selection->splitEndTimeText = second;
        runStep(std::make_shared<MCMkvEditor>(), selection);
    }

    // Ten seconds of H.264 (a key frame every second), AAC and an SRT subtitle.
    const QString srt = writeFile(editingMedia(u"movie.srt"_s), "1\n00:00:00,300 --> 00:00:02,800\nHello\n\n");
    const QString source = clip(u"movie.mkv"_s, testInputs(u"160x120"_s, 10)
                                                    + u"-i '%1' -map 0 -map 1 -map 2 -c:v libx264 -preset ultrafast -g 25 "
                                                      "-c:a aac -c:s srt"_s.arg(srt));
};

} // namespace

TEST_F(MkvStepsTest, MuxerKeepsChosenTracksOfEachFileWithTheirNamesAndLanguages)
{
    MCTrackList keep{makeTrack(u"Video"_s, u"h264"_s, source), makeTrack(u"External Subtitle"_s, u"srt"_s, srt),
                     makeTrack(u"Audio"_s, u"aac"_s, source)};
    keep[0]->trackLanguage = u"German"_s;
    keep[1]->trackForcedFlag = true;
    keep[2]->trackMkvmergeID = u"1"_s;
    keep[2]->trackTitle = u"Director's \"cut\" $HOME"_s;
    MCSelectionPtr selection = selectionFor(source, u"AVI Track Removal"_s);
    selection->trackList = selection->keepTracksList = keep;
    runStep(std::make_shared<MCMkvMuxer>(), selection);

    QString json;
    testsupport::run(u"mkvmerge -J '%1'"_s.arg(savedPath(u"movie.mkv.removed.mkv"_s)), &json);
    const QJsonArray tracks = QJsonDocument::fromJson(json.toUtf8())["tracks"_L1].toArray();
    const auto property = [&](int i, const char *key) { return tracks[i]["properties"_L1][QLatin1String(key)].toVariant(); };
    // The movie's own subtitle stays out; the SRT comes last, from its own file.
    ASSERT_EQ(tracks.size(), 3);
    EXPECT_EQ(property(0, "language").toString(), u"ger"_s);
    EXPECT_EQ(property(1, "track_name").toString(), keep[2]->trackTitle);
    EXPECT_EQ(property(2, "codec_id").toString(), u"S_TEXT/UTF8"_s);
    EXPECT_TRUE(property(2, "forced_track").toBool());
}

TEST_F(MkvStepsTest, SplitsBySizeAndWritesNothingWithoutAKeyFrameInTheRange)
{
    // Two seconds of lossless noise, about 6 MB.
    split(clip(u"noise.mkv"_s, u"-f lavfi -i 'nullsrc=s=320x240:r=25:d=2,geq=random(1)*255:128:128' "
                               "-c:v libx264 -preset ultrafast -qp 0 -g 5"_s),
          u"size"_s, u"2"_s);
    const QStringList parts = saved(u"noise.mkv.split-*.mkv"_s);
    EXPECT_GE(parts.size(), 2);
    EXPECT_LT(QFileInfo(savedPath(parts.value(0))).size(), 3000000);

    // No key frame inside the range: mkvmerge writes nothing.
    const QString still = clip(u"still.mkv"_s, u"-f lavfi -i testsrc2=s=160x120:r=25:d=10 -c:v libx264 -g 250"_s);
    const QByteArray sum = testsupport::checksum(still);
    split(still, u"time"_s, u"00:00:02"_s, u"00:00:06"_s);
    EXPECT_EQ(saved(u"*.mkv"_s).size(), parts.size());
    EXPECT_EQ(testsupport::checksum(still), sum);
}

TEST_F(MkvStepsTest, JoinAppendsEveryFileAndNeverWritesOverAnInput)
{
    const auto alerts = testsupport::recordAlerts();
    const QString second = editingMedia(u"it's second.mkv"_s);
    QFile::copy(source, second);
    MCSelectionPtr selection = selectionFor(source, u"AVI Joining"_s);
    selection->editFilesURLsList = {QUrl::fromLocalFile(source), QUrl::fromLocalFile(second), QUrl::fromLocalFile(source)};
    runStep(std::make_shared<MCMkvEditor>(), selection);
    EXPECT_NEAR(durationSeconds(savedPath(u"movie.mkv.joined.mkv"_s)), 30.0, 1.0);
    EXPECT_TRUE(alerts->alerts.isEmpty());

    // An earlier result joined again beside its sources has the new result's
    // name: it is read, never written, and the new join takes a free name.
    prefs.preferences->saveDirectoryURL = QUrl();
    const QString earlier = second + u".joined.mkv"_s;
    QFile::copy(source, earlier);
    selection->editFilesURLsList = {QUrl::fromLocalFile(second), QUrl::fromLocalFile(earlier)};
    runStep(std::make_shared<MCMkvEditor>(), selection);
    EXPECT_EQ(testsupport::checksum(earlier), testsupport::checksum(source));
    EXPECT_NEAR(MCMediaSummary::of(second + u".joined (2).mkv"_s).durationSeconds, 20.0, 1.0);
}

TEST_F(MkvStepsTest, RemuxJobSwitchesHeaderRemovalOff)
{
    ASSERT_TRUE(usesHeaderRemoval(headerRemovalMkv()));
    MCReMuxMkvJob job;
    ASSERT_TRUE(completes(job, selectionFor(headerRemovalMkv(), u"MKV Remux"_s))) << job.failureReason().toStdString();
    EXPECT_FALSE(usesHeaderRemoval(savedPath(u"hr.mkv.remux.mkv"_s)));
    EXPECT_TRUE(saved(u"*.log"_s).isEmpty());
    EXPECT_EQ(ticks.value(ticks.size() - 1), u"Re-Muxing MKV=Complete"_s);
}
