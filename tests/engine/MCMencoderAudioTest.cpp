#include "EngineTestSupport.h"
#include "MCMencoderAudio.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

const QString kVideoPath = QStringLiteral("/videos/clip.mkv");

class MencoderAudioOptions : public ::testing::Test
{
protected:
    MencoderAudioOptions()
    {
        selection = selectionFor(kVideoPath);
        audio = makeTrack(QStringLiteral("Audio"), QStringLiteral("ac3"), kVideoPath);
        audio->trackMencoderID = QStringLiteral("1");
        audio->trackNumberOfChannels = QStringLiteral("6");
        audio->userCodec = QStringLiteral("aac");
        audio->userNumberOfChannels = QStringLiteral("2");
        audio->userBitRate = QStringLiteral("160");
        selection->trackList = {makeTrack(QStringLiteral("Video"), QStringLiteral("h264"), kVideoPath), audio};
        step.inititializeForTrack(1, QStringLiteral("Converting Audio"), false);
    }

    // The command line the step would run, behind the tool's path.
    QString command()
    {
        EXPECT_EQ(step.prepareFor(selection), QString());
        return MCHelpers::commandFromOptions(QString(), step.optionArray).trimmed();
    }

    QString saved(const QString &name) const { return prefs.saveFolder + QLatin1Char('/') + name; }

    PrivatePreferences prefs;
    MCSelectionPtr selection;
    MCVideoTrackPtr audio;
    MCMencoderAudio step;
};

const QString kIdentity = QStringLiteral("-af pan=6:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1");

} // namespace

TEST_F(MencoderAudioOptions, SurroundSourcesAreMixedDownOrKeptAsAsked)
{
    const QString out = saved(QStringLiteral("clip.mkv.temp.Audio.t1"));
    EXPECT_EQ(command(), QStringLiteral("\"/videos/clip.mkv\" -aid 1 -ovc copy -oac faac -faacopts br=160:mpeg=4:object=2 "
                                        "-channels 2 -srate 48000 -of rawaudio -o \"%1.aac\" &> \"%1.aac.temp.Audio.t1.log\" "
                                        "& echo $!")
                             .arg(out));
    // The encoded stream only feeds the muxing, whatever the job said.
    EXPECT_EQ(step.tempFileToDeleteURL, step.outputFileURL);

    audio->userNumberOfChannels = QStringLiteral("6");
    EXPECT_TRUE(command().contains(QStringLiteral("-faacopts br=160:mpeg=4:object=2 -channels 6 %1 -srate 48000 -of rawaudio")
                                       .arg(kIdentity)));

    audio->userCodec = QStringLiteral("ac3");
    audio->userBitRate = QStringLiteral("384");
    EXPECT_TRUE(command().contains(
        QStringLiteral("-ovc copy -oac lavc -lavcopts acodec=ac3:abitrate=384 -channels 6 %1 -srate 48000 -of rawaudio")
            .arg(kIdentity)));
    EXPECT_EQ(step.outputFileURL.toLocalFile(), out + QStringLiteral(".ac3"));

    // DTS arrives in the standard channel order: the same options, and the
    // stereo mix is the encoder's own down-mix of all six channels.
    audio->trackExtension = QStringLiteral("dts");
    EXPECT_TRUE(command().contains(QStringLiteral("acodec=ac3:abitrate=384 -channels 6 %1 ").arg(kIdentity)));
    audio->userCodec = QStringLiteral("aac");
    audio->userNumberOfChannels = QStringLiteral("2");
    EXPECT_TRUE(command().contains(QStringLiteral("object=2 -channels 2 -srate 48000 -of rawaudio")));
    EXPECT_FALSE(command().contains(QStringLiteral("pan=")));
}

TEST_F(MencoderAudioOptions, StereoSourcesAlwaysGiveStereoAacButTheNameFollowsTheWish)
{
    audio->trackNumberOfChannels = QStringLiteral("2");
    audio->userCodec = QStringLiteral("ac3");
    audio->userNumberOfChannels = QStringLiteral("6");
    const QString line = command();
    EXPECT_TRUE(line.contains(QStringLiteral("-oac faac -faacopts br=160:mpeg=4:object=2 -channels 2 ")));
    EXPECT_FALSE(line.contains(QStringLiteral("lavc")));
    EXPECT_EQ(step.outputFileURL.toLocalFile(), saved(QStringLiteral("clip.mkv.temp.Audio.t1.ac3")));

    audio->trackCodec = QStringLiteral("ogg");
    EXPECT_TRUE(command().contains(QStringLiteral("-of rawaudio -afm tremor -o ")));
}

TEST_F(MencoderAudioOptions, StereoCopiesAndAddedFilesNeverShareANameWithTheOriginal)
{
    audio->isStereoCopyFlag = true;
    command();
    EXPECT_EQ(step.outputFileURL.toLocalFile(), saved(QStringLiteral("clip.mkv.temp.Audio.t1.added.aac")));
    EXPECT_EQ(step.logFileURL.toLocalFile(),
              saved(QStringLiteral("clip.mkv.temp.Audio.t1.added.aac.temp.Audio.t1.added.log")));

    // An added audio file is named after itself.
    audio->externalTrackFlag = true;
    audio->trackFileURL = QUrl::fromLocalFile(QStringLiteral("/music/dub.dts"));
    command();
    EXPECT_EQ(step.outputFileURL.toLocalFile(), saved(QStringLiteral("dub.dts.ext.added.aac")));
    EXPECT_EQ(step.logFileURL.toLocalFile(), saved(QStringLiteral("dub.dts.ext.added.log")));
    EXPECT_TRUE(step.optionArray.contains(QUrl::fromLocalFile(QStringLiteral("/music/dub.dts"))));

    // A step given a track that is not audio starts nothing and says why.
    step.inititializeForTrack(0, QStringLiteral("Converting Audio"), false);
    EXPECT_EQ(step.startConversionFor(selection), QStringLiteral("error"));
    EXPECT_TRUE(step.failureReason().contains(QStringLiteral("no audio track")));
}

TEST(MencoderAudioRun, EveryChoiceWritesAStreamThatPlays)
{
    PrivatePreferences prefs;
    const QString mkv = testsupport::ffmpeg(prefs.dir.path(), QStringLiteral("surround.mkv"),
                                            QStringLiteral("-f lavfi -i sine=d=2:r=48000 -ac 6 -c:a ac3"));
    MCSelectionPtr selection = selectionFor(mkv);
    const MCVideoTrackPtr audio = makeTrack(QStringLiteral("Audio"), QStringLiteral("ac3"), mkv);
    audio->trackNumberOfChannels = QStringLiteral("6");
    audio->userBitRate = QStringLiteral("192");
    selection->trackList = {audio};

    struct Choice { QString codec; QString channels; QString format; QString outChannels; };
    for (const Choice &choice : {Choice{QStringLiteral("aac"), QStringLiteral("2"), QStringLiteral("AAC"), QStringLiteral("2")},
                                 Choice{QStringLiteral("aac"), QStringLiteral("6"), QStringLiteral("AAC"), QStringLiteral("6")},
                                 Choice{QStringLiteral("ac3"), QStringLiteral("6"), QStringLiteral("AC-3"), QStringLiteral("6")}}) {
        audio->userCodec = choice.codec;
        audio->userNumberOfChannels = choice.channels;
        MCMencoderAudio step;
        step.inititializeForTrack(0, QStringLiteral("Converting Audio"), false);
        ASSERT_NE(step.startConversionFor(selection), QStringLiteral("error")) << step.failureReason().toStdString();
        QStringList words;
        ASSERT_TRUE(testsupport::waitUntil([&] {
            words << step.monitorConversion();
            return words.constLast() == QStringLiteral("Complete");
        }, 30000));
        // While it runs: nothing yet, or the percentage of its last "Pos" line.
        for (const QString &word : words.mid(0, words.size() - 1))
            EXPECT_TRUE(word.isEmpty() || word.endsWith(QLatin1Char('%'))) << word.toStdString();
        const QString output = step.outputFileURL.toLocalFile();
        EXPECT_EQ(step.failureReason(), QString());
        EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Format")), choice.format);
        EXPECT_EQ(testsupport::mediaInfo(output, QStringLiteral("Audio"), QStringLiteral("Channel(s)")), choice.outChannels);
        QString decoded;
        EXPECT_EQ(testsupport::run(QStringLiteral("ffmpeg -nostdin -v error -i '%1' -f null - 2>&1").arg(output), &decoded), 0);
        EXPECT_EQ(decoded.trimmed(), QString()) << output.toStdString();
    }
}
