#include "CliTestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>

namespace {

class CliPresets : public CliTest
{
protected:
    CliResult presets(const QStringList &arguments) const
    {
        return runCli(QStringList{u"--settings"_s, settings, u"presets"_s} + arguments);
    }
    // What the window would read from the settings file.
    QVariantMap storedPreset(bool settingsKind, const QString &name) const
    {
        const MCPreferences preferences(settings);
        for (const QVariant &record : settingsKind ? preferences.userPresetSettingsList : preferences.userPresetSelectionsList) {
            if (record.toMap().value(u"pName"_s) == name)
                return record.toMap();
        }
        return {};
    }
};

} // namespace

TEST_F(CliPresets, ExtractTracksPresetExtractsInsteadOfConverting)
{
    const QString avi = xvidAvi(u"preset-extract.avi"_s);
    const CliResult result = run({u"convert"_s, u"--settings-preset"_s, u"Extract Tracks"_s, avi});
    ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
    // First Track's video and audio, each a file of its own; no new AVI of the movie.
    EXPECT_EQ(written().size(), 2) << written().join(u' ').toStdString();
    EXPECT_EQ(written().filter(QRegularExpression(u"\\.mp3$"_s)).size(), 1) << written().join(u' ').toStdString();
}

TEST_F(CliPresets, PresetsMadeWithoutAWindowAreTheWindowsOwn)
{
    EXPECT_TRUE(presets({u"list"_s}).out.contains(u"settings\tExtract Tracks\tbuilt-in\n"_s));
    CliResult result = presets(words(u"add-settings Small --video mpeg4 --bitrate 300 --audio mp3 --audio-bitrate 128 --subtitles extract"_s));
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QVariantMap small = storedPreset(true, u"Small"_s);
    EXPECT_EQ(small.value(u"pVideoBitRate"_s).toString(), u"300"_s);
    EXPECT_EQ(small.value(u"pStereoBitRate"_s).toString(), u"128"_s);

    result = presets(words(u"add-selection French --audio-filter lang=French,channels=stereo --audio-filter 1 --subtitle-filter none"_s));
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QVariantList audio = storedPreset(false, u"French"_s).value(u"pAudioFilterArray"_s).toList();
    ASSERT_EQ(audio.size(), 2);
    EXPECT_EQ(audio.at(0).toMap().value(u"currentChannels"_s).toString(), u"Stereo Only"_s);
    EXPECT_EQ(audio.at(1).toMap().value(u"currentTrackNumber"_s).toString(), u"1"_s);
    EXPECT_EQ(QJsonDocument::fromJson(presets({u"show"_s, u"Small"_s}).out.toUtf8())[u"kind"_s].toString(), u"settings"_s);

    // The conversion takes the preset as one the window saved.
    const CliResult dry = run(words(u"--dry-run convert --settings-preset Small"_s) + QStringList{threeTrackMkv()});
    EXPECT_EQ(dry.status, 0) << dry.err.toStdString();
    EXPECT_TRUE(dry.out.contains(u"-> mpeg4, 300 kbit/s"_s)) << dry.out.toStdString();

    // A name stands for one preset; built-ins stay.
    const std::pair<QStringList, QString> refused[] = {
        {{u"add-settings"_s, u"Small"_s}, u"exists already"_s}, {{u"add-selection"_s, u"Small"_s}, u"exists already"_s},
        {{u"remove"_s, u"First Track"_s}, u"built in"_s},       {{u"remove"_s, u"Nope"_s}, u"unknown preset 'Nope'"_s},
        {{u"show"_s, u"Nope"_s}, u"unknown preset 'Nope'"_s}};
    for (const auto &[arguments, error] : refused) {
        result = presets(arguments);
        EXPECT_EQ(result.status, 1) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.err.contains(error)) << result.err.toStdString();
    }

    ASSERT_EQ(presets({u"remove"_s, u"Small"_s}).status, 0);
    EXPECT_TRUE(storedPreset(true, u"Small"_s).isEmpty());
    EXPECT_FALSE(storedPreset(false, u"French"_s).isEmpty());

    // Usage mistakes change nothing.
    QList<QStringList> mistakes{QStringList()};
    for (const char *line : {"rename A", "show", "list A", "add-selection A --audio-filter lang", "add-selection A --video mpeg4",
                             "add-settings A --subtitle-filter all"})
        mistakes << words(QString::fromLatin1(line));
    expectUsageMistakes(mistakes, {u"--settings"_s, settings, u"presets"_s});
    EXPECT_EQ(MCPreferences(settings).userPresetSelectionsList.size(), 1);
}

TEST_F(CliPresets, SubtitleExtractionNoToolCanMakeIsRefusedBeforeAnythingRuns)
{
    const QString srt = writeSrt(settingsDir.filePath(u"line.srt"_s));
    const QString mp4 = testsupport::ffmpeg(settingsDir.path(), u"subtitled.mp4"_s,
                                            testInputs(1) + u"-i '%1' -map 0 -map 1 -map 2 -ac 2 -c:v mpeg4 -c:a libmp3lame -c:s mov_text"_s.arg(srt));
    QTemporaryDir resources;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"KESTRANE_RESOURCES"_s, testsupport::resourcesWithout(resources.path(), u"mp4boxUpdated"_s));
    QProcess cli;
    cli.setProcessEnvironment(environment);
    cli.start(cliPath(), common() + words(u"convert --tracks 1,2,3 --subtitles extract"_s) + QStringList{mp4});
    ASSERT_TRUE(cli.waitForFinished(120000));
    const QString err = QString::fromUtf8(cli.readAllStandardError());
    // Refused as what it is, not a written AVI reported as failed.
    EXPECT_EQ(cli.exitCode(), 2) << err.toStdString();
    EXPECT_TRUE(err.contains(u"subtitled.mp4: Extracting the subtitle of an MP4 file needs MP4Box"_s)) << err.toStdString();
    EXPECT_FALSE(QString::fromUtf8(cli.readAllStandardOutput()).contains(u"Failed"_s));
    EXPECT_TRUE(written().isEmpty()) << written().join(u' ').toStdString();
}
