#include "EngineTestSupport.h"
#include "MCMencoderVideo.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

namespace {

const QString kVideoPath = QStringLiteral("/videos/clip.mkv");

class MencoderOptions : public ::testing::Test
{
protected:
    void SetUp() override
    {
        selection = selectionFor(kVideoPath);
        selection->videoTrackWidth = QStringLiteral("640");
        selection->userWidth = QStringLiteral("640");
        selection->userVideoBitRate = QStringLiteral("900");
        selection->userPassNumber = QStringLiteral("1");
        selection->subCount = QStringLiteral("0");
        video = makeTrack(QStringLiteral("Video"), QStringLiteral("h264"), kVideoPath);
        audio = makeTrack(QStringLiteral("Audio"), QStringLiteral("ac3"), kVideoPath);
        audio->trackMencoderID = QStringLiteral("1");
        audio->trackNumberOfChannels = QStringLiteral("6");
        audio->userCodec = QStringLiteral("mp3");
        audio->userBitRate = QStringLiteral("160");
        selection->trackList = {video, audio};
    }

    // The command line the step would run, behind the tool's path.
    QString command(int pass = 1)
    {
        step.prepareFor(selection);
        return MCHelpers::commandFromOptions(QString(), pass == 1 ? step.optionArray1 : step.optionArray2).trimmed();
    }

    PrivatePreferences prefs;
    MCSelectionPtr selection;
    MCVideoTrackPtr video;
    MCVideoTrackPtr audio;
    MCMencoderVideo step;
};

} // namespace

TEST_F(MencoderOptions, OnePassEncodesMpeg4AndMixesSixChannelsDown)
{
    const QString out = prefs.saveFolder + QStringLiteral("/clip.mkv");
    EXPECT_EQ(command(),
              QStringLiteral("\"/videos/clip.mkv\" -vf harddup -ovc lavc -ffourcc xvid -lavcopts "
                             "threads=8:vcodec=mpeg4:autoaspect:vbitrate=900 "
                             "-oac mp3lame -srate 48000 -lameopts preset=160 -aid 1 -noautoexpand "
                             "-o \"%1.avi\" &> \"%1.log\" & echo $!").arg(out));
    EXPECT_TRUE(step.optionArray2.isEmpty());
    EXPECT_EQ(step.currentPass, 0);
    EXPECT_EQ(step.mencoderVersion, QStringLiteral("mencoder"));
}

TEST_F(MencoderOptions, ScalesOnlyToASmallerWidth)
{
    selection->userWidth = QStringLiteral("320");
    EXPECT_TRUE(command().contains(QStringLiteral("-vf scale=320:-10,harddup -ovc lavc")));
    for (const QString &width : {QStringLiteral("640"), QStringLiteral("1280"), QString()}) {
        selection->userWidth = width;
        EXPECT_TRUE(command().contains(QStringLiteral("-vf harddup -ovc lavc"))) << width.toStdString();
    }
}

TEST_F(MencoderOptions, CopiedVideoTakesNoEncoderOptions)
{
    video->userCodec = QStringLiteral("passthru");
    audio->userCodec = QStringLiteral("passthru");
    audio->trackNumberOfChannels = QStringLiteral("2");
    // A source of unknown bit rate: "vbitrate=0" made MEncoder refuse the copy.
    selection->userVideoBitRate = QStringLiteral("0");
    EXPECT_TRUE(command().startsWith(QStringLiteral("\"/videos/clip.mkv\" -ovc copy -oac copy -aid 1 -noautoexpand -o")))
        << command().toStdString();
    EXPECT_FALSE(command().contains(QStringLiteral("lavcopts")));
    // Even a selection left at two passes copies in one.
    selection->userPassNumber = QStringLiteral("2");
    EXPECT_FALSE(command().contains(QStringLiteral("vpass")));
    EXPECT_TRUE(step.optionArray2.isEmpty());
    EXPECT_EQ(step.currentPass, 0);
}

TEST_F(MencoderOptions, TwoPassesShareEverythingButThePassOptions)
{
    selection->userPassNumber = QStringLiteral("2");
    // The statistics live in the job's own folder, never in a shared place.
    step.stagingFolder = QStringLiteral("/save/.kestrane-job-1 a");
    const QString first = command(1);
    const QString second = command(2);
    EXPECT_EQ(step.currentPass, 1);
    EXPECT_TRUE(first.contains(QStringLiteral("vbitrate=900:vpass=1:turbo -passlogfile \"/save/.kestrane-job-1 a/passLogFile.log\" -oac mp3lame")));
    EXPECT_TRUE(second.contains(QStringLiteral("vbitrate=900:vpass=2 -passlogfile \"/save/.kestrane-job-1 a/passLogFile.log\" -oac mp3lame")));
    QString firstWithoutPass = first;
    EXPECT_EQ(firstWithoutPass.replace(QStringLiteral("vpass=1:turbo"), QStringLiteral("vpass=2")), second);
}

TEST_F(MencoderOptions, AudioOptionsByChannelsCodecAndSource)
{
    audio->userCodec = QStringLiteral("ac3");
    audio->userBitRate = QStringLiteral("448");
    const QString ac3 = QStringLiteral("-oac lavc -lavcopts acodec=ac3:abitrate=448 -channels 6 -af pan=6:1:0:0:0:0:0:"
                                       "0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1:0:0:0:0:0:0:1 -srate 48000 -aid 1");
    EXPECT_TRUE(command().contains(ac3));
    // DTS is decoded in the standard channel order: no remapping of its own.
    audio->trackExtension = QStringLiteral("dts");
    EXPECT_TRUE(command().contains(ac3));
    audio->userCodec = QStringLiteral("mp3");
    EXPECT_TRUE(command().contains(QStringLiteral("-oac mp3lame -srate 48000 -lameopts preset=448 -aid 1")));

    // Stereo always becomes MP3; an added file comes in with -audiofile; Vorbis through tremor.
    audio->trackNumberOfChannels = QStringLiteral("2");
    audio->userCodec = QStringLiteral("ac3");
    audio->trackCodec = QStringLiteral("ogg");
    audio->trackFilePath = QStringLiteral("/music/extra.ogg");
    audio->trackFileURL = QUrl::fromLocalFile(audio->trackFilePath);
    EXPECT_TRUE(command().contains(QStringLiteral("-lameopts preset=448 -afm tremor -audiofile \"/music/extra.ogg\" -noautoexpand")));

    selection->trackList = {video};
    EXPECT_TRUE(command().contains(QStringLiteral("-nosound -noautoexpand")));
}

TEST_F(MencoderOptions, BurnedSubtitlesFromTheFileOrBeside)
{
    prefs.preferences->subtitleFontURL = QUrl::fromLocalFile(QStringLiteral("/fonts/Sans.ttf"));
    prefs.preferences->subtitlePosition = QStringLiteral("90");
    prefs.preferences->subtitleSize = QStringLiteral("4");
    const auto subtitle = makeTrack(QStringLiteral("Subtitle"), QStringLiteral("srt"), kVideoPath);
    subtitle->trackMencoderID = QStringLiteral("2");
    subtitle->userCodec = QStringLiteral("burn");
    selection->trackList << subtitle;
    selection->subCount = QStringLiteral("1");
    EXPECT_TRUE(command().contains(QStringLiteral("-aid 1 -sid 2 -font \"/fonts/Sans.ttf\" -utf8 -subpos 10 "
                                                  "-subfont-text-scale 4 -o")));

    const auto external = makeTrack(QStringLiteral("External Subtitle"), QStringLiteral("ass"), QStringLiteral("/subs/a.ass"));
    external->userCodec = QStringLiteral("burn");
    selection->trackList = {video, audio, external};
    EXPECT_TRUE(command().contains(QStringLiteral("-aid 1 -sid 99 -sub \"/subs/a.ass\" -font \"/fonts/Sans.ttf\" -subpos 10")));

    // A subtitle kept for later adds nothing, not even -noautoexpand.
    external->userCodec = QStringLiteral("extract");
    EXPECT_TRUE(command().contains(QStringLiteral("-aid 1 -o")));
}

TEST_F(MencoderOptions, NewEncoderForVc1AndTransportStreams)
{
    video->trackCodec = QStringLiteral("VC-1");
    command();
    EXPECT_EQ(step.mencoderVersion, QStringLiteral("mencodernew"));
    video->trackCodec = QStringLiteral("h264");
    selection->videoTrackFileExtension = QStringLiteral("MTS");
    command();
    EXPECT_EQ(step.mencoderVersion, QStringLiteral("mencodernew"));
}

TEST_F(MencoderOptions, BothPassesSeeTheSamePictures)
{
    selection->userPassNumber = QStringLiteral("2");
    for (const int pass : {1, 2})
        EXPECT_TRUE(command(pass).contains(QStringLiteral("\"/videos/clip.mkv\" -mc 0 -noskip -vf harddup -ovc lavc")))
            << pass;
    // One pass keeps MEncoder's own audio sync.
    selection->userPassNumber = QStringLiteral("1");
    EXPECT_FALSE(command().contains(QStringLiteral("-noskip")));
}

TEST_F(MencoderOptions, ReaderAndAudioIdFollowContainerAndCopy)
{
    // The audio's own id for MEncoder's readers; its place among the audio
    // tracks (from 0) for FFmpeg's.
    audio->trackIndex = QStringLiteral("2");
    audio->trackMencoderID = QStringLiteral("257");
    const struct
    {
        QString file;
        QString videoCodec;
        bool copy;
        QString expected;
    } cases[] = {
        // An AVI is read by FFmpeg only to be decoded.
        {QStringLiteral("/videos/a.avi"), QStringLiteral("mpeg4"), false, QStringLiteral("-demuxer lavf -vf harddup")},
        {QStringLiteral("/videos/a.avi"), QStringLiteral("mpeg4"), true, QStringLiteral("\" -ovc copy")},
        // MPEG transport and program streams always.
        {QStringLiteral("/videos/a.TS"), QStringLiteral("mpeg2"), false, QStringLiteral("-demuxer lavf -vf harddup")},
        {QStringLiteral("/videos/a.m2ts"), QStringLiteral("h264"), true, QStringLiteral("-demuxer lavf -ovc copy")},
        {QStringLiteral("/videos/a.vob"), QStringLiteral("mpeg2"), true, QStringLiteral("-demuxer lavf -ovc copy")},
        {QStringLiteral("/videos/a.mpg"), QStringLiteral("mpeg2"), false, QStringLiteral("-demuxer lavf -vf harddup")},
        // MPlayer picks FFmpeg for Matroska itself, with the same numbers.
        {QStringLiteral("/videos/a.mkv"), QStringLiteral("h264"), false, QStringLiteral("\" -vf harddup")},
    };
    for (const auto &c : cases) {
        selection = selectionFor(c.file);
        selection->userVideoBitRate = QStringLiteral("900");
        selection->userPassNumber = QStringLiteral("1");
        selection->subCount = QStringLiteral("0");
        video->trackCodec = c.videoCodec;
        video->userCodec = c.copy ? QStringLiteral("passthru") : QStringLiteral("mpeg4");
        video->trackFilePath = audio->trackFilePath = c.file;
        selection->trackList = {video, audio};
        const QString line = command();
        EXPECT_TRUE(line.contains(c.expected)) << line.toStdString();
        const bool lavf = line.contains(QStringLiteral("-demuxer lavf"));
        EXPECT_TRUE(line.contains(lavf ? QStringLiteral("-aid 1 ") : QStringLiteral("-aid 257 "))) << line.toStdString();
    }
}

TEST_F(MencoderOptions, AsfKeepsItsFrameRate)
{
    video->userCodec = QStringLiteral("passthru");
    audio->userCodec = QStringLiteral("passthru");
    // MEncoder reads an ASF file at 1000 pictures a second.
    selection->videoTrackFileExtension = QStringLiteral("WMV");
    selection->videoTrackFPS = QStringLiteral("29.970");
    EXPECT_TRUE(command().contains(QStringLiteral("\"/videos/clip.mkv\" -ofps 29.970 -ovc copy")));
    selection->videoTrackFPS = QStringLiteral("0");
    EXPECT_FALSE(command().contains(QStringLiteral("-ofps")));
}
