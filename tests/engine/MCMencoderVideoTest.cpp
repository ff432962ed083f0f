#include "EngineTestSupport.h"
#include "MCMencoderVideo.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace Qt::StringLiterals;

const QString kVideoPath = u"/videos/clip.mkv"_s;

class MencoderOptions : public ::testing::Test
{
protected:
    void SetUp() override { reset(kVideoPath); }

    void reset(const QString &path)
    {
        selection = selectionFor(path);
        selection->videoTrackWidth = u"640"_s;
        selection->userWidth = u"640"_s;
        selection->userVideoBitRate = u"900"_s;
        selection->userPassNumber = u"1"_s;
        selection->subCount = u"0"_s;
        video = makeTrack(u"Video"_s, u"h264"_s, path);
        audio = makeTrack(u"Audio"_s, u"ac3"_s, path);
        audio->trackMencoderID = u"1"_s;
        audio->trackNumberOfChannels = u"6"_s;
        audio->userCodec = u"mp3"_s;
        audio->userBitRate = u"160"_s;
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

TEST_F(MencoderOptions, OneAndTwoPassLines)
{
    const QString out = prefs.saveFolder + u"/clip.mkv"_s;
    EXPECT_EQ(command(), u"\"/videos/clip.mkv\" -vf harddup -ovc lavc -ffourcc xvid -lavcopts "
                         "threads=8:vcodec=mpeg4:autoaspect:vbitrate=900 -oac mp3lame -srate 48000 -lameopts preset=160 "
                         "-aid 1 -noautoexpand -o \"%1.avi\" &> \"%1.log\" & echo $!"_s.arg(out));
    EXPECT_TRUE(step.optionArray2.isEmpty());
    EXPECT_EQ(step.currentPass, 0);
    EXPECT_EQ(step.mencoderVersion, u"mencoder"_s);

    // Two passes share everything but the pass options.
    selection->userPassNumber = u"2"_s;
    // The statistics live in the job's own folder, never in a shared place.
    step.stagingFolder = u"/save/.kestrane-job-1 a"_s;
    const QString first = command(1);
    const QString second = command(2);
    EXPECT_EQ(step.currentPass, 1);
    EXPECT_TRUE(first.contains(u"vbitrate=900:vpass=1:turbo -passlogfile \"/save/.kestrane-job-1 a/passLogFile.log\" -oac mp3lame"_s));
    QString firstWithoutPass = first;
    EXPECT_EQ(firstWithoutPass.replace(u"vpass=1:turbo"_s, u"vpass=2"_s), second);
}

TEST_F(MencoderOptions, EachChoiceGivesItsOptions)
{
    const struct
    {
        const char *what;
        std::function<void()> choose;
        QString expected;
        QString absent;
    } cases[] = {
        {"wider", [&] { selection->userWidth = u"1280"_s; }, u"\" -vf harddup -ovc lavc"_s, u"scale"_s},
        // A source of unknown bit rate: "vbitrate=0" made MEncoder refuse the
        // copy; a selection left at two passes copies in one.
        {"copy", [&] {
             video->userCodec = audio->userCodec = u"passthru"_s;
             audio->trackNumberOfChannels = u"2"_s;
             selection->userVideoBitRate = u"0"_s;
             selection->userPassNumber = u"2"_s;
         }, u"\"/videos/clip.mkv\" -ovc copy -oac copy -aid 1 -noautoexpand -o"_s, u"lavcopts"_s},
        // Stereo always becomes MP3; an added file comes in with -audiofile; Vorbis through tremor.
        {"added stereo Vorbis", [&] {
             audio->trackNumberOfChannels = u"2"_s;
             audio->userCodec = u"ac3"_s;
             audio->trackCodec = u"ogg"_s;
             audio->trackFilePath = u"/music/extra.ogg"_s;
             audio->trackFileURL = QUrl::fromLocalFile(audio->trackFilePath);
         }, u"-lameopts preset=160 -afm tremor -audiofile \"/music/extra.ogg\" -noautoexpand"_s, u"lavc -lavcopts acodec"_s},
        {"no audio", [&] { selection->trackList = {video}; }, u"-nosound -noautoexpand"_s, u"-aid"_s},
    };
    for (const auto &c : cases) {
        reset(kVideoPath);
        c.choose();
        const QString line = command();
        EXPECT_TRUE(line.contains(c.expected)) << c.what << ": " << line.toStdString();
        EXPECT_TRUE(c.absent.isEmpty() || !line.contains(c.absent)) << c.what << ": " << line.toStdString();
    }
    // VC-1 and transport streams need the newer encoder.
    video->trackCodec = u"VC-1"_s;
    command();
    EXPECT_EQ(step.mencoderVersion, u"mencodernew"_s);
    reset(kVideoPath);
    selection->videoTrackFileExtension = u"MTS"_s;
    command();
    EXPECT_EQ(step.mencoderVersion, u"mencodernew"_s);
}

TEST_F(MencoderOptions, ReaderAndAudioIdFollowContainerAndCopy)
{
    // The audio's own id for MEncoder's readers; its place among the audio
    // tracks (from 0) for FFmpeg's.
    const struct
    {
        QString file;
        QString videoCodec;
        bool copy;
        QString expected;
    } cases[] = {
        // An AVI is read by FFmpeg only to be decoded.
        {u"/videos/a.avi"_s, u"mpeg4"_s, false, u"-demuxer lavf -vf harddup"_s},
        {u"/videos/a.avi"_s, u"mpeg4"_s, true, u"\" -ovc copy"_s},
        // MPEG transport and program streams always.
        {u"/videos/a.TS"_s, u"mpeg2"_s, false, u"-demuxer lavf -vf harddup"_s},
        {u"/videos/a.m2ts"_s, u"h264"_s, true, u"-demuxer lavf -ovc copy"_s},
        {u"/videos/a.vob"_s, u"mpeg2"_s, true, u"-demuxer lavf -ovc copy"_s},
        // MPlayer picks FFmpeg for Matroska itself, with the same numbers.
        {u"/videos/a.mkv"_s, u"h264"_s, false, u"\" -vf harddup"_s},
    };
    for (const auto &c : cases) {
        reset(c.file);
        audio->trackIndex = u"2"_s;
        audio->trackMencoderID = u"257"_s;
        video->trackCodec = c.videoCodec;
        video->userCodec = c.copy ? u"passthru"_s : u"mpeg4"_s;
        const QString line = command();
        EXPECT_TRUE(line.contains(c.expected)) << line.toStdString();
        const bool lavf = line.contains(u"-demuxer lavf"_s);
        EXPECT_TRUE(line.contains(lavf ? u"-aid 1 "_s : u"-aid 257 "_s)) << line.toStdString();
    }
}
