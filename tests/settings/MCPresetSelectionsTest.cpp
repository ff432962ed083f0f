#include "RulesTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace rulestest;
using P = MCPresetSelections;

namespace {

QStringList selectedSummary(const MCVideoFile &file)
{
    QStringList selected;
    for (const MCVideoTrackPtr &track : file.trackList) {
        if (track->trackSelected)
            selected.append(track->trackCodec + u'/' + track->trackLanguage);
    }
    return selected;
}

QVariantMap properties(const char *language, const char *codec, const char *channels)
{
    return P::audioFilter(P::choiceProperties, QStringLiteral("1"), QString::fromLatin1(language), QString::fromLatin1(codec),
                          QString::fromLatin1(channels));
}

QVariantMap number(const char *n)
{
    return P::audioFilter(P::choiceAudioNumber, QString::fromLatin1(n), P::anyLanguage, P::anyCodec, P::anyType);
}

TEST(MCPresetSelectionsTest, AudioFilterWalks)
{
    const QString video = QStringLiteral("h264/English"), english6 = QStringLiteral("ac3/English");
    const QString french2 = QStringLiteral("mp3/French"), german10 = QStringLiteral("dts/German");
    const QVariantMap all = P::audioFilter(P::choiceAll, {}, {}, {}, {});
    const struct
    {
        const char *what;
        QVariantList filters;
        QString mode;
        QStringList selected;
    } cases[] = {
        {"a number beyond the audio tracks", {number("4"), number("0")}, P::modeApplyAll, {video}},
        {"all does not end the walk", {all, number("1")}, P::modePrioritized, {video, english6, french2, german10}},
        {"first match of a prioritized filter", {number("2"), number("1")}, P::modeApplyAll, {video, french2}},
        {"no English stereo: the next filter decides", {properties("English", "Any Codec", "Stereo Only"), number("2")},
         P::modePrioritized, {video, french2}},
        // Channel counts compare as texts: "10" sorts before "2".
        {"ten channels count as stereo", {properties("German", "dts", "Stereo Only")}, P::modePrioritized, {video, german10}},
        {"surround by codec", {properties("Any Language", "ac3", "Surround Only")}, P::modePrioritized, {video, english6}},
        {"all Any takes the first", {properties("Any Language", "Any Codec", "Any Type"), number("3")},
         P::modePrioritized, {video, english6}},
        {"Apply All mode is overridden when applied", {properties("French", "Any Codec", "Any Type")}, P::modeApplyAll,
         {video, french2}},
        {"none selects nothing", {P::audioFilter(P::choiceNone, QStringLiteral("1"), {}, {}, {})}, P::modePrioritized, {video}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        Rules r;
        const auto file = makeFile({{"Video", "h264"}, {"Audio", "ac3", "6", "English", false},
                                    {"Audio", "mp3", "2", "French", false}, {"Audio", "dts", "10", "German", false}});
        r.load(file);
        MCPresetSelections preset(file, &r.rules);
        preset.initializeAsNewUserPreset();
        preset.pAudioFilterArray = c.filters;
        preset.pAudioFilterMode = c.mode;
        preset.makeSelections();
        EXPECT_EQ(selectedSummary(*file), c.selected);
        EXPECT_EQ(preset.pAudioFilterMode, P::modePrioritized);
        // The rules have re-read the selection.
        EXPECT_EQ(r.record().audCount, QString::number(c.selected.size() - 1));
    }
}

TEST(MCPresetSelectionsTest, SubtitleWalk)
{
    const auto file = makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2"}, {"Subtitle", "srt", "0", "French", false},
                                {"External Subtitle", "ass", "0", "English", false}});
    Rules r;
    r.load(file);
    MCPresetSelections preset(file, &r.rules);
    preset.initializeAsFirst();
    preset.pSubtitleFilterArray = {P::subtitleFilter(P::choiceProperties, QStringLiteral("1"), QStringLiteral("English"), P::anyCodec)};
    preset.makeSelections();
    EXPECT_EQ(selectedSummary(*file), (QStringList{"mpeg4/English", "mp3/English", "ass/English"}));
    EXPECT_EQ(r.record().subCount, QStringLiteral("1"));

    // A properties filter with all Any on a file without subtitles is skipped.
    const auto noSubtitles = makeFile({{"Video", "mpeg4"}, {"Audio", "mp3", "2", "English", false}});
    MCPresetSelections all(noSubtitles, nullptr);
    all.initializeAsAll();
    all.pSubtitleFilterArray = {P::subtitleFilter(P::choiceProperties, {}, P::anyLanguage, P::anyCodec)};
    all.makeSelections();
    EXPECT_EQ(selectedSummary(*noSubtitles), (QStringList{"mpeg4/English", "mp3/English"}));
}

TEST(MCPresetSelectionsTest, OldRecordsBecomeFilters)
{
    const QString one = QStringLiteral("1"), german = QStringLiteral("German");
    const struct
    {
        const char *audioChoice, *subtitleChoice;
        QVariantMap audio, subtitles;
    } cases[] = {
        {"All Tracks", "None", P::audioFilter(P::choiceAll, one, P::anyLanguage, P::anyCodec, P::anyType),
         P::subtitleFilter(P::choiceNone, one, P::anyLanguage, P::anyCodec)},
        // The converted subtitle filter takes the audio language.
        {"By Language", "By Language", P::audioFilter(P::choiceProperties, one, german, P::anyCodec, P::anyType),
         P::subtitleFilter(P::choiceProperties, one, german, P::anyCodec)},
        {"First Track", "All Tracks", number("1"), P::subtitleFilter(P::choiceAll, one, P::anyLanguage, P::anyCodec)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.audioChoice);
        MCPresetSelections old;
        old.initFromRecord({{"pName", "Old"}, {"pSelectedAudioTrack", c.audioChoice}, {"pSelectedAudioLanguage", german},
                            {"pSelectedSubtitleTrack", c.subtitleChoice}, {"pSelectedSubtitleLanguage", "Italian"}, {"isEditable", "1"}});
        EXPECT_EQ(old.pAudioFilterMode, P::modeApplyAll);
        EXPECT_EQ(old.pAudioFilterArray, QVariantList{c.audio});
        EXPECT_EQ(old.pSubtitleFilterArray, QVariantList{c.subtitles});
        EXPECT_TRUE(old.isEditable);
    }
}

} // namespace
