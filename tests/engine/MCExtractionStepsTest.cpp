#include "EngineTestSupport.h"
#include "MCMkvExtractor.h"
#include "MCMp4Extractor.h"
#include "MCTrackDumper.h"
#include "TestSupport.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

// Polls a started step the way a job does, collecting what it answers.
QStringList runToCompletion(MCConverter &step)
{
    QStringList words;
    testsupport::waitUntil([&] {
        words << step.monitorConversion();
        return words.constLast() == QStringLiteral("Complete");
    }, 30000);
    return words;
}

MCVideoTrackPtr trackOf(const QString &path, const QString &type, const QString &extension, const QString &mencoderID)
{
    auto track = makeTrack(type, extension, path);
    track->trackMencoderID = mencoderID;
    track->trackMkvmergeID = mencoderID;
    return track;
}

} // namespace

TEST(MCExtractionStepsTest, MkvExtractorNamesItsOutputAfterTheTrack)
{
    PrivatePreferences prefs;
    const QString mkv = testsupport::ffmpeg(prefs.dir.path(), QStringLiteral("in.mkv"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:d=2 -f lavfi -i sine=d=2:r=48000 "
                                                           "-c:v libx264 -preset ultrafast -c:a ac3"));
    MCSelectionPtr selection = selectionFor(mkv);
    selection->trackList = {trackOf(mkv, QStringLiteral("Video"), QStringLiteral("h264"), QStringLiteral("0")),
                            trackOf(mkv, QStringLiteral("Audio"), QStringLiteral("ac3"), QStringLiteral("1")),
                            trackOf(mkv, QStringLiteral("External Subtitle"), QStringLiteral("srt"), QStringLiteral("0"))};
    MCMkvExtractor audio;
    audio.inititializeForTrack(1, QStringLiteral("Extracting Audio"), false);
    EXPECT_NE(audio.startConversionFor(selection), QStringLiteral("error"));
    const QString output = prefs.saveFolder + QStringLiteral("/in.mkv.temp.a2.ac3");
    EXPECT_EQ(audio.outputFileURL.toLocalFile(), output);
    EXPECT_EQ(audio.tempFileToDeleteURL, audio.outputFileURL);
    runToCompletion(audio);
    EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), QStringLiteral("AC-3"));

    MCMkvExtractor other;
    other.inititializeForTrack(2, QStringLiteral("Extracting"), true);
    EXPECT_EQ(other.startConversionFor(selection), QStringLiteral("error"));
    EXPECT_TRUE(other.doShell_ID.isEmpty());
}

TEST(MCExtractionStepsTest, TrackDumperCopiesVideoAndAudioOutOfAnAvi)
{
    PrivatePreferences prefs;
    const QString avi = testsupport::ffmpeg(prefs.dir.path(), QStringLiteral("in.avi"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:d=2 -f lavfi -i sine=d=2:r=48000 "
                                                           "-c:v mpeg4 -vtag XVID -c:a libmp3lame"));
    MCSelectionPtr selection = selectionFor(avi);
    selection->trackList = {trackOf(avi, QStringLiteral("Video"), QStringLiteral("avi"), QStringLiteral("0")),
                            trackOf(avi, QStringLiteral("Audio"), QStringLiteral("mp3"), QStringLiteral("1"))};
    MCTrackDumper video;
    video.inititializeForTrack(0, QStringLiteral("Dumping Video"), true);
    MCTrackDumper audio;
    audio.inititializeForTrack(1, QStringLiteral("Dumping Audio"), true);
    EXPECT_NE(video.startConversionFor(selection), QStringLiteral("error"));
    EXPECT_NE(audio.startConversionFor(selection), QStringLiteral("error"));
    const QStringList audioWords = runToCompletion(audio);
    runToCompletion(video);
    for (const QString &word : audioWords.mid(0, audioWords.size() - 1))
        EXPECT_EQ(word, QStringLiteral("Extracting"));
    // A dump only feeds a later step: always an intermediate.
    EXPECT_EQ(audio.tempFileToDeleteURL.toLocalFile(), prefs.saveFolder + QStringLiteral("/in.avi.dumped.a1.mp3"));
    EXPECT_EQ(testsupport::mediaInfo(prefs.saveFolder + QStringLiteral("/in.avi.dumped.a1.mp3"), QStringLiteral("Audio"),
                                     QStringLiteral("Format")),
              QStringLiteral("MPEG Audio"));
    EXPECT_EQ(testsupport::mediaInfo(prefs.saveFolder + QStringLiteral("/in.avi.dumped.video.avi"), QStringLiteral("Video"),
                                     QStringLiteral("Width")),
              QStringLiteral("160"));
}

TEST(MCExtractionStepsTest, Mp4ExtractorPredictsMp4BoxNamesAndNeedsMp4Box)
{
    PrivatePreferences prefs;
    MCSelectionPtr selection = selectionFor(QStringLiteral("/videos/trip.mp4"));
    selection->videoTrackFileShortName = QStringLiteral("trip");
    auto subtitle = trackOf(QStringLiteral("/videos/trip.mp4"), QStringLiteral("Subtitle"), QStringLiteral("ttxt"), QStringLiteral("2"));
    subtitle->trackMp4boxID = QStringLiteral("3");
    selection->trackList = {subtitle};
    MCMp4Extractor step;
    step.inititializeForTrack(0, QStringLiteral("Extracting Subtitle"), true);
    MCOptionList options;
    ASSERT_TRUE(step.prepareFor(selection, &options));
    EXPECT_EQ(step.outputFileURL.toLocalFile(), QStringLiteral("/videos/trip_3_text.srt"));
    EXPECT_EQ(options.at(1).toString(), QStringLiteral("-srt"));
    if (!MCHelpers::fileExistsAtURL(MCHelpers::urlOfApp(QStringLiteral("mp4box")))) {
        EXPECT_EQ(step.startConversionFor(selection), QStringLiteral("error"));
    }
}
