#include "EngineTestSupport.h"
#include "MCMencoderAudio.h"

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

const QString kVideoPath = u"/videos/clip.mkv"_s;
const QString kIdentity = u"-af pan=6:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1"_s;

class MencoderAudioOptions : public ::testing::Test
{
protected:
    MencoderAudioOptions()
    {
        audio = makeTrack(u"Audio"_s, u"ac3"_s, kVideoPath);
        audio->trackMencoderID = u"1"_s;
        audio->trackNumberOfChannels = u"6"_s;
        audio->userCodec = u"aac"_s;
        audio->userNumberOfChannels = u"2"_s;
        audio->userBitRate = u"160"_s;
        selection->trackList = {makeTrack(u"Video"_s, u"h264"_s, kVideoPath), audio};
        step.inititializeForTrack(1, u"Converting Audio"_s, false);
    }

    // The command line the step would run, behind the tool's path.
    QString command()
    {
        EXPECT_EQ(step.prepareFor(selection), QString());
        return MCHelpers::commandFromOptions(QString(), step.optionArray).trimmed();
    }
    QString saved(const QString &name) const { return prefs.saveFolder + u'/' + name; }

    PrivatePreferences prefs;
    MCSelectionPtr selection = selectionFor(kVideoPath);
    MCVideoTrackPtr audio;
    MCMencoderAudio step;
};

} // namespace

TEST_F(MencoderAudioOptions, ChannelsCodecAndNamesFollowTheSourceAndTheWish)
{
    const QString out = saved(u"clip.mkv.temp.Audio.t1"_s);
    EXPECT_EQ(command(), u"\"/videos/clip.mkv\" -aid 1 -ovc copy -oac faac -faacopts br=160:mpeg=4:object=2 -channels 2 "
                         "-srate 48000 -of rawaudio -o \"%1.aac\" &> \"%1.aac.temp.Audio.t1.log\" & echo $!"_s.arg(out));
    // The encoded stream only feeds the muxing, whatever the job said.
    EXPECT_EQ(step.tempFileToDeleteURL, step.outputFileURL);

    // DTS arrives in the standard channel order: the same options, and the
    // stereo mix is the encoder's own down-mix of all six channels.
    audio->trackCodec = audio->trackExtension = u"dts"_s;
    EXPECT_TRUE(command().contains(u"object=2 -channels 2 -srate 48000 -of rawaudio -o"_s)) << command().toStdString();
    audio->userCodec = u"ac3"_s;
    audio->userNumberOfChannels = u"6"_s;
    EXPECT_TRUE(command().contains(u"acodec=ac3:abitrate=160 -channels 6 %1 "_s.arg(kIdentity))) << command().toStdString();
    EXPECT_EQ(step.outputFileURL.toLocalFile(), out + u".ac3"_s);

    // A stereo copy of an added audio file is named after the file.
    audio->isStereoCopyFlag = audio->externalTrackFlag = true;
    audio->trackFileURL = QUrl::fromLocalFile(u"/music/dub.dts"_s);
    audio->userCodec = u"aac"_s;
    command();
    EXPECT_EQ(step.outputFileURL.toLocalFile(), saved(u"dub.dts.ext.added.aac"_s));
    EXPECT_EQ(step.logFileURL.toLocalFile(), saved(u"dub.dts.ext.added.log"_s));
    EXPECT_TRUE(step.optionArray.contains(QUrl::fromLocalFile(u"/music/dub.dts"_s)));

    // A step given a track that is not audio starts nothing and says why.
    step.inititializeForTrack(0, u"Converting Audio"_s, false);
    EXPECT_EQ(step.startConversionFor(selection), u"error"_s);
    EXPECT_TRUE(step.failureReason().contains(u"no audio track"_s));
}
