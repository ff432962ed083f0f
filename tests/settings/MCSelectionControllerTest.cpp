#include "MCNotificationCenter.h"
#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace rulestest;

namespace {

const QString kRed = MCSelectionController::colorRed;
const QString kBlack = MCSelectionController::colorBlack;

TEST(MCSelectionControllerTest, AviTabDecidesWhatMayBeConverted)
{
    struct Case
    {
        const char *what;
        QList<TrackShape> tracks;
        bool canConvert;
        bool canBurn;
        QString videoColor;
        QString audioColor;
        QString jobType;
    };
    const Case cases[] = {
        {"one video and two audios", {{"Video", "h264"}, {"Audio", "ac3", "6"}, {"Audio", "mp3", "2"}},
         false, false, kBlack, kBlack, "none"},
        // The rules let it through, with both colours red; it is refused
        // on top, as neither passing AAC into an AVI nor burning into a
        // copied picture can work.
        {"non-MPEG-4 video, AAC and one subtitle to burn",
         {{"Video", "h264"}, {"Audio", "aac", "2"}, {"Subtitle", "srt"}}, false, true, kRed, kRed,
         "AVI Conversion"},
        {"two subtitles", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}, {"Subtitle", "ass"}},
         false, false, kBlack, kBlack, "none"},
        {"MPEG-4 with MP3 and nothing to burn", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}, true, false, kBlack,
         kBlack, "AVI Conversion"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Rules r;
        r.load(makeFile(c.tracks));
        EXPECT_EQ(r.rules.canConvert, c.canConvert);
        EXPECT_EQ(r.rules.canBurnSubtitles, c.canBurn);
        EXPECT_EQ(r.rules.aviVideoPassThruColor, c.videoColor);
        EXPECT_EQ(r.rules.aviAudioPassThruColor, c.audioColor);
        EXPECT_EQ(r.record().jobType, c.jobType);
        EXPECT_EQ(r.rules.statusText, QStringLiteral("/videos/clip.avi"));
        if (!c.canConvert) {
            EXPECT_FALSE(r.rules.popupAudioIsSurround);
        }
    }
}

TEST(MCSelectionControllerTest, ChoicesTheToolsCannotDoAreRefusedWithAReason)
{
    struct Case
    {
        const char *what;
        QList<TrackShape> tracks;
        int videoRow;
        int audioRow;
        const char *typedBitRate;
        const char *refusal; // part of the reason; nullptr: may convert
        const char *extension = "avi";
        int subtitleRow = 0; // burn
    };
    const QList<TrackShape> withSubtitle{{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}};
    const Case cases[] = {
        {"AAC passed through", {{"Video", "mpeg4"}, {"Audio", "aac", "2"}}, 0, 0, "1000", "cannot hold AAC audio as it is: choose MP3."},
        {"AAC made MP3", {{"Video", "mpeg4"}, {"Audio", "aac", "2"}}, 0, 1, "1000", nullptr},
        {"surround Opus passed through", {{"Video", "mpeg4"}, {"Audio", "opus", "6"}}, 0, 0, "1000", "choose MP3 or AC-3 5.1."},
        {"DTS, MP2 and WMA pass", {{"Video", "mpeg4"}, {"Audio", "dts", "6"}}, 0, 0, "1000", nullptr},
        {"AC-3 5.1 from stereo", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}, 0, 2, "1000", "this one has 2: choose MP3."},
        {"AC-3 5.1 from surround", {{"Video", "mpeg4"}, {"Audio", "dts", "6"}}, 0, 2, "1000", nullptr},
        {"MPEG-4 of a video without a declared bit rate", {{"Video", "h264"}, {"Audio", "mp3", "2"}}, 1, 0, "0",
         "does not declare its bit rate"},
        {"MPEG-4 at 3 kbit/s", {{"Video", "h264"}, {"Audio", "mp3", "2"}}, 2, 0, "3", "at least 4 kbit/s"},
        {"MPEG-4 at letters", {{"Video", "h264"}, {"Audio", "mp3", "2"}}, 1, 0, "fast", "whole number of kbit/s"},
        {"copied video ignores the bit rate", {{"Video", "h264"}, {"Audio", "mp3", "2"}}, 0, 0, "fast", nullptr},
        {"burning into a copied picture", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}}, 0, 0, "1000",
         "Burning a subtitle needs the video re-encoded"},
        {"burning into MPEG-4", {{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt"}}, 1, 0, "1000", nullptr},
        {"VP9 passed through", {{"Video", "vp9"}, {"Audio", "mp3", "2"}}, 0, 0, "1000", "cannot hold VP9 video"},
        {"MPEG-2 passed through from a TS", {{"Video", "mpeg2"}, {"Audio", "mp2", "2"}}, 0, 0, "1000",
         "out of a transport stream", "m2ts"},
        {"MPEG-2 passed through from a VOB", {{"Video", "mpeg2"}, {"Audio", "ac3", "6"}}, 0, 0, "1000", nullptr, "vob"},
        {"two audio tracks", {{"Video", "h264"}, {"Audio", "mp3", "2"}, {"Audio", "ac3", "6"}}, 0, 0, "1000",
         "(selected: 1 video, 2 audio, 0 subtitle)"},
        // No tool takes a subtitle out of these: the AVI would be written and
        // the job still fail on the subtitle.
        {"extracting a subtitle of an AVI", withSubtitle, 0, 0, "1000", "cannot extract a subtitle from a .avi file", "avi", 1},
        {"extracting a subtitle of a TS", withSubtitle, 0, 0, "1000", "from a .ts file: burn it in", "ts", 1},
        {"extracting a subtitle of an OGM", withSubtitle, 0, 0, "1000", "from a .ogm file", "ogm", 1},
        {"extracting a subtitle of an MKV", withSubtitle, 0, 0, "1000", nullptr, "mkv", 1},
        {"burning a subtitle of a TS", withSubtitle, 1, 0, "1000", nullptr, "ts", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Rules r;
        auto file = makeFile(c.tracks, QString::fromLatin1(c.extension));
        file->theVideoBitRate = QString::fromLatin1(c.typedBitRate) == QLatin1String("0") ? QStringLiteral("0")
                                                                                          : QStringLiteral("1000");
        r.load(file);
        r.rules.setVideoMatrixIndex(c.videoRow);
        r.rules.setAudioMatrixIndex(c.audioRow);
        r.rules.setSubtitleMatrixIndex(c.subtitleRow);
        r.rules.setEnteredUserVideoBitRate(QString::fromLatin1(c.typedBitRate));
        EXPECT_EQ(r.rules.canConvert, c.refusal == nullptr);
        if (c.refusal)
            EXPECT_TRUE(r.rules.convertRefusalText().contains(QString::fromLatin1(c.refusal)))
                << r.rules.convertRefusalText().toStdString();
        else
            EXPECT_EQ(r.rules.convertRefusalText(), QString());
    }
}

TEST(MCSelectionControllerTest, Mp4SubtitleExtractionNeedsMp4Box)
{
    QTemporaryDir noTools;
    const QByteArray resources = qgetenv("KESTRANE_RESOURCES");
    const auto decide = [] {
        Rules r;
        r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "tx3g"}}, QStringLiteral("mp4")));
        r.rules.setSubtitleMatrixIndex(1);
        r.rules.updateTabs();
        return r.rules.convertRefusalText();
    };
    qputenv("KESTRANE_RESOURCES", noTools.path().toUtf8());
    const QString without = decide();
    QDir(noTools.path()).mkpath(QStringLiteral("mp4boxUpdated"));
    QFile tool(noTools.path() + QStringLiteral("/mp4boxUpdated/MP4box"));
    ASSERT_TRUE(tool.open(QIODevice::WriteOnly));
    tool.close();
    const QString with = decide();
    if (resources.isNull())
        qunsetenv("KESTRANE_RESOURCES");
    else
        qputenv("KESTRANE_RESOURCES", resources);
    EXPECT_TRUE(without.contains(QStringLiteral("needs MP4Box"))) << without.toStdString();
    EXPECT_EQ(with, QString());
}

TEST(MCSelectionControllerTest, RefusalIsAnnouncedAndLiftedWithTheChoice)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    QStringList announced;
    QObject::connect(&r.rules, &MCSelectionController::convertRefusalTextChanged,
                     [&announced](const QString &text) { announced << text; });
    // MP3 goes up to 320 kbit/s: LAME refuses "preset=448".
    r.rules.setAudioMatrixIndex(1);
    r.record().userAudioBitRate = QStringLiteral("448");
    r.rules.updateTabs();
    EXPECT_FALSE(r.rules.canConvert);
    r.rules.updateTabs();
    r.record().userAudioBitRate = QStringLiteral("320");
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canConvert);
    EXPECT_EQ(announced, (QStringList{QStringLiteral("MP3 goes up to 320 kbit/s: choose a lower audio bit rate."), QString()}));
    // No file, no reason.
    r.load(makeFile({}));
    EXPECT_EQ(r.rules.convertRefusalText(), QString());
}

TEST(MCSelectionControllerTest, OptionRowsWriteEachTracksWantedOutput)
{
    Rules r;
    r.load(makeFile({{"Video", "h264"}, {"Audio", "dts", "6"}, {"Subtitle", "srt"}}));
    const MCTrackList &tracks = r.rules.currentVideoFile()->trackList;
    EXPECT_TRUE(r.rules.popupAudioIsSurround);
    EXPECT_EQ(tracks[0]->userCodec, QStringLiteral("passthru"));
    EXPECT_EQ(tracks[1]->userNumberOfChannels, QStringLiteral("6"));
    EXPECT_EQ(tracks[2]->userCodec, QStringLiteral("burn"));

    r.rules.setVideoMatrixIndex(2);
    r.rules.setAudioMatrixIndex(1);
    r.rules.setSubtitleMatrixIndex(1);
    r.rules.updateTabs();
    EXPECT_EQ(tracks[0]->userCodec, QStringLiteral("mpeg4"));
    EXPECT_EQ(r.record().userPassNumber, QStringLiteral("2"));
    EXPECT_TRUE(r.rules.mustConvertVideoTrack);
    EXPECT_EQ(tracks[1]->userCodec, QStringLiteral("mp3"));
    EXPECT_EQ(tracks[1]->userNumberOfChannels, QStringLiteral("2"));
    EXPECT_EQ(tracks[1]->userBitRate, QStringLiteral("160"));
    EXPECT_FALSE(r.rules.canAddStereoTrack);
    EXPECT_EQ(tracks[2]->userCodec, QStringLiteral("extract"));

    // The 448 row only changes the bit rate the AC3 row then writes.
    r.rules.setAudioMatrixIndex(3);
    EXPECT_EQ(r.record().userAudioBitRate, QStringLiteral("448"));
    r.rules.setAudioMatrixIndex(2);
    r.rules.updateTabs();
    EXPECT_EQ(tracks[1]->userCodec, QStringLiteral("ac3"));
    EXPECT_EQ(tracks[1]->userBitRate, QStringLiteral("384"));
}

TEST(MCSelectionControllerTest, StereoCopyIsRebuiltOnTheNextTurn)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}}));
    r.rules.setAddStereoTrackButton(1);
    EXPECT_TRUE(r.record().addedAudioTrackList.isEmpty());
    QCoreApplication::processEvents();
    ASSERT_EQ(r.record().addedAudioTrackList.size(), 1);
    EXPECT_EQ(r.record().addedAudioTrackList[0]->userNumberOfChannels, QStringLiteral("2"));

    // Converting to MP3 stereo clears the box and the copy goes.
    r.rules.setAudioMatrixIndex(1);
    r.rules.updateTabs();
    EXPECT_EQ(r.rules.addStereoTrackButton(), 0);
    QCoreApplication::processEvents();
    EXPECT_TRUE(r.record().addedAudioTrackList.isEmpty());
}

TEST(MCSelectionControllerTest, AudioChooserLabelsAndIndex)
{
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "ac3", "6"}, {"Audio", "mp3", "2", "French", false}}));
    EXPECT_EQ(r.rules.audioTrackLabels(), QStringList{QStringLiteral("6 Ch. AC3 - English")});
    EXPECT_TRUE(r.rules.hideAudioTrackPopupFlag);

    // Selecting a track ahead of the chosen one keeps the chosen one chosen.
    MCTrackList &tracks = r.rules.currentVideoFile()->trackList;
    tracks.move(2, 1);
    tracks[1]->trackSelected = true;
    r.rules.trackTableSelectionChanged();
    EXPECT_EQ(r.rules.audioTrackLabels(),
              (QStringList{QStringLiteral("2 Ch. MP3 - French"), QStringLiteral("6 Ch. AC3 - English")}));
    EXPECT_EQ(r.rules.audioTrackPopupIndex(), 1);
    EXPECT_FALSE(r.rules.hideAudioTrackPopupFlag);

    // Choosing a track takes its row from what it already asks for.
    tracks[1]->userCodec = QStringLiteral("mp3");
    tracks[1]->userNumberOfChannels = QStringLiteral("2");
    tracks[1]->userBitRate = QStringLiteral("224");
    r.rules.setAudioTrackPopupIndex(0);
    EXPECT_EQ(r.rules.audioMatrixIndex(), 1);
    EXPECT_EQ(r.record().userAudioBitRate, QStringLiteral("224"));
    EXPECT_FALSE(r.rules.canConvert);

    r.rules.setAudioTrackPopupIndex(150);
    EXPECT_EQ(r.rules.audioTrackPopupIndex(), 0);
}

TEST(MCSelectionControllerTest, TypedNumbersAreNormalised)
{
    struct Case
    {
        const char *typed;
        const char *bitRate;
        bool bitRateOK;
        const char *fps;
        bool fpsOK;
    };
    const Case cases[] = {
        {"abc", "0", false, "0", false},
        {"1500.6", "1501", true, "1500.6", true},
        {"23.9764", "24", true, "23.976", true},
        {"1,000", "0", false, "0", false},
        {"", "0", false, "0", false},
        {"25.0", "25", true, "25", true},
    };
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}));
    for (const Case &c : cases) {
        SCOPED_TRACE(c.typed);
        r.rules.setEnteredUserVideoBitRate(QString::fromLatin1(c.typed));
        r.rules.setEnteredUserFPS(QString::fromLatin1(c.typed));
        EXPECT_EQ(r.rules.userBitRateOK, c.bitRateOK);
        EXPECT_EQ(r.record().userVideoBitRate, QString::fromLatin1(c.bitRate));
        EXPECT_EQ(r.rules.userFPSOK, c.fpsOK);
        EXPECT_EQ(r.record().userFPS, QString::fromLatin1(c.fps));
    }
}

TEST(MCSelectionControllerTest, SplitRulesInEditFiles)
{
    struct Case
    {
        const char *what;
        int row;
        const char *start;
        const char *end;
        const char *size;
        const char *number;
        bool canSplit;
    };
    const Case cases[] = {
        {"start after end", 0, "00:10:00", "00:05:00", "10", "1", false},
        {"equal times", 0, "00:05:00", "00:05:00", "10", "1", false},
        {"start before end", 0, "00:05:00", "00:10:00", "10", "1", true},
        {"size with no pieces", 1, "00:00:00", "00:00:00", "10", "0", false},
        {"size that is no number", 1, "00:00:00", "00:00:00", "ten", "2", false},
        {"size and pieces", 1, "00:00:00", "00:00:00", "10", "2", true},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.what);
        Rules r;
        r.load(makeFile({{"Video", "mpeg4"}}));
        r.rules.setCurrentTab(MCSelectionController::tabEditFiles);
        EXPECT_TRUE(r.rules.hideTrackTable);
        EXPECT_FALSE(r.rules.canSplit); // no files yet
        r.record().editFilesURLsList = {QUrl::fromLocalFile(QStringLiteral("/videos/a.avi"))};
        r.rules.splitTypeMatrixIndex = c.row;
        r.rules.setEnteredSplitSize(QString::fromLatin1(c.size));
        r.rules.setEnteredSplitNumber(QString::fromLatin1(c.number));
        // The time fields announce their texts; the rules store them.
        auto &center = MCNotificationCenter::defaultCenter();
        const QString changed = MCNotificationName::timeTextFieldChanged;
        center.post(changed, QString::fromLatin1(c.start), {{QStringLiteral("textFieldID"), "startTimeTextField"}});
        center.post(changed, QString::fromLatin1(c.end), {{QStringLiteral("textFieldID"), "endTimeTextField"}});
        EXPECT_EQ(r.rules.canSplit, c.canSplit);
        EXPECT_EQ(r.record().splitType, QString::fromLatin1(c.row == 0 ? "time" : "size"));
        EXPECT_FALSE(r.rules.canJoin);
        EXPECT_EQ(r.rules.enteredSplitEndTime, QString::fromLatin1(c.end));
    }
}

TEST(MCSelectionControllerTest, EditTracksNeedsAnAviOrMkvAndTheRightTracks)
{
    {
        Rules r;
        r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}}, QStringLiteral("AVI")));
        r.rules.setCurrentTab(MCSelectionController::tabEditTracks);
        EXPECT_TRUE(r.rules.trackTableEnabled);
        EXPECT_TRUE(r.rules.canEditTracks);
        EXPECT_EQ(r.record().jobType, QStringLiteral("AVI Track Extraction"));
    }
    {
        Rules r;
        r.load(makeFile({{"Video", "h264"}}, QStringLiteral("mov")));
        r.rules.setCurrentTab(MCSelectionController::tabEditTracks);
        EXPECT_FALSE(r.rules.trackTableEnabled);
        EXPECT_FALSE(r.rules.canEditTracks);
        EXPECT_EQ(r.rules.statusText, QStringLiteral("Kestrane can only edit the tracks of AVI, MKV and MP4 videos."));
        EXPECT_EQ(r.rules.statusColor, kRed);
    }
    // Added tracks cannot be extracted; adding goes by the last selected track.
    Rules r;
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2", "English", true, true}}));
    r.rules.setCurrentTab(MCSelectionController::tabEditTracks);
    EXPECT_FALSE(r.rules.canEditTracks);
    r.rules.setEditTrackMatrixIndex(1);
    EXPECT_TRUE(r.rules.editTrackLabel.contains(QStringLiteral("added.  You can only add")));
    r.rules.updateTabs();
    EXPECT_TRUE(r.rules.canEditTracks);
    EXPECT_EQ(r.record().jobType, QStringLiteral("AVI Track Addition"));
    r.rules.currentVideoFile()->trackList.append(makeTrack({"Subtitle", "srt"}));
    r.rules.trackTableSelectionChanged();
    EXPECT_FALSE(r.rules.canEditTracks);
}

TEST(MCSelectionControllerTest, SelectAllTogglesAndTabSwitchOverridePresets)
{
    Rules r(nullptr);
    r.load(makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2", "English", false}, {"Audio", "ac3", "6"}}));
    r.rules.toggleAllAudio();
    EXPECT_EQ(r.record().audCount, QStringLiteral("2"));
    r.rules.toggleAllAudio();
    EXPECT_EQ(r.record().audCount, QStringLiteral("0"));

    // A click on the table cancels the track preset; a tab change the settings preset.
    r.presets.setSelectionMethodIndex(1);
    r.presets.setSettingMethodIndex(1);
    r.rules.trackTableSelectionChanged(MCSelectionController::senderTrackTable);
    EXPECT_EQ(r.presets.selectionMethodIndex(), 0);
    EXPECT_EQ(r.presets.settingMethodIndex(), 1); // "Extract Tracks" switched tabs itself
    EXPECT_EQ(r.rules.currentTab(), MCSelectionController::tabEditTracks);
    r.rules.setCurrentTab(MCSelectionController::tabAvi);
    EXPECT_EQ(r.presets.settingMethodIndex(), 0);
    EXPECT_EQ(r.rules.enteredUserWidth(), QStringLiteral("640"));
}

} // namespace
