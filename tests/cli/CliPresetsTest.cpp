#include "CliTestSupport.h"

#include "MCPreferences.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcessEnvironment>
#include <QRegularExpression>

namespace {

class CliPresets : public CliTest
{
protected:
    CliResult presets(const QStringList &arguments) const
    {
        return runCli(QStringList{QStringLiteral("--settings"), settings, QStringLiteral("presets")} + arguments);
    }
    // What the window would read from the settings file.
    QVariantMap storedPreset(bool settingsKind, const QString &name) const
    {
        const MCPreferences preferences(settings);
        for (const QVariant &record : settingsKind ? preferences.userPresetSettingsList : preferences.userPresetSelectionsList) {
            if (record.toMap().value(QStringLiteral("pName")) == name)
                return record.toMap();
        }
        return {};
    }
};

} // namespace

TEST_F(CliPresets, ExtractTracksPresetExtractsInsteadOfConverting)
{
    const QString avi = xvidAvi(QStringLiteral("preset-extract.avi"));
    const QStringList extract{QStringLiteral("convert"), QStringLiteral("--settings-preset"), QStringLiteral("Extract Tracks"), avi};
    const CliResult dry = runCli(common() + QStringList{QStringLiteral("--dry-run")} + extract);
    EXPECT_EQ(dry.status, 0) << dry.err.toStdString();
    EXPECT_TRUE(dry.out.contains(QStringLiteral("job: AVI Track Extraction\n"))) << dry.out.toStdString();

    const CliResult result = runCli(common() + extract);
    ASSERT_EQ(result.status, 0) << result.err.toStdString() << result.out.toStdString();
    // First Track's video and audio, each a file of its own; no new AVI of the movie.
    const QStringList written = filesIn(saveDir.path());
    EXPECT_EQ(written.size(), 2) << written.join(' ').toStdString();
    EXPECT_EQ(written.filter(QRegularExpression(QStringLiteral("\\.mp3$"))).size(), 1) << written.join(' ').toStdString();
    EXPECT_FALSE(written.contains(QStringLiteral("preset-extract.avi.avi")));
}

TEST_F(CliPresets, PresetsMadeWithoutAWindowAreTheWindowsOwn)
{
    CliResult result = presets({QStringLiteral("list")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("selection\tFirst Track\tbuilt-in\n")));
    EXPECT_TRUE(result.out.contains(QStringLiteral("settings\tExtract Tracks\tbuilt-in\n")));

    result = presets({QStringLiteral("add-settings"), QStringLiteral("Small"), QStringLiteral("--video"), QStringLiteral("mpeg4"),
                      QStringLiteral("--bitrate"), QStringLiteral("300"), QStringLiteral("--audio"), QStringLiteral("mp3"),
                      QStringLiteral("--audio-bitrate"), QStringLiteral("128"), QStringLiteral("--subtitles"), QStringLiteral("extract")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QVariantMap small = storedPreset(true, QStringLiteral("Small"));
    EXPECT_EQ(small.value(QStringLiteral("pVideoActionIndex")).toInt(), 1);
    EXPECT_EQ(small.value(QStringLiteral("pVideoBitRate")).toString(), QStringLiteral("300"));
    EXPECT_EQ(small.value(QStringLiteral("pVideoBitRateIndex")).toInt(), 1);
    EXPECT_EQ(small.value(QStringLiteral("pStereoBitRate")).toString(), QStringLiteral("128"));
    EXPECT_EQ(small.value(QStringLiteral("pSubAction")).toString(), QStringLiteral("Extract"));

    result = presets({QStringLiteral("add-selection"), QStringLiteral("French"), QStringLiteral("--audio-filter"),
                      QStringLiteral("lang=French,channels=stereo"), QStringLiteral("--audio-filter"), QStringLiteral("1"),
                      QStringLiteral("--subtitle-filter"), QStringLiteral("none")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QVariantList audio = storedPreset(false, QStringLiteral("French")).value(QStringLiteral("pAudioFilterArray")).toList();
    ASSERT_EQ(audio.size(), 2);
    EXPECT_EQ(audio.at(0).toMap().value(QStringLiteral("currentLanguage")).toString(), QStringLiteral("French"));
    EXPECT_EQ(audio.at(0).toMap().value(QStringLiteral("currentChannels")).toString(), QStringLiteral("Stereo Only"));
    EXPECT_EQ(audio.at(1).toMap().value(QStringLiteral("currentTrackNumber")).toString(), QStringLiteral("1"));

    result = presets({QStringLiteral("show"), QStringLiteral("Small")});
    ASSERT_EQ(result.status, 0) << result.err.toStdString();
    const QJsonObject shown = QJsonDocument::fromJson(result.out.toUtf8()).object();
    EXPECT_EQ(shown.value(QStringLiteral("kind")).toString(), QStringLiteral("settings"));
    EXPECT_EQ(shown.value(QStringLiteral("pVideoBitRate")).toString(), QStringLiteral("300"));

    // The conversion takes the preset as one the window saved.
    const CliResult dry = runCli(common() + QStringList{QStringLiteral("--dry-run"), QStringLiteral("convert"),
                                                        QStringLiteral("--settings-preset"), QStringLiteral("Small"), threeTrackMkv()});
    EXPECT_EQ(dry.status, 0) << dry.err.toStdString();
    EXPECT_TRUE(dry.out.contains(QStringLiteral("-> mpeg4, 300 kbit/s"))) << dry.out.toStdString();

    // A name stands for one preset; built-ins stay.
    const struct
    {
        QStringList arguments;
        QString error;
    } refused[] = {
        {{QStringLiteral("add-settings"), QStringLiteral("Small")}, QStringLiteral("exists already")},
        {{QStringLiteral("add-selection"), QStringLiteral("Small")}, QStringLiteral("exists already")},
        {{QStringLiteral("remove"), QStringLiteral("First Track")}, QStringLiteral("built in")},
        {{QStringLiteral("remove"), QStringLiteral("Nope")}, QStringLiteral("unknown preset 'Nope'")},
        {{QStringLiteral("show"), QStringLiteral("Nope")}, QStringLiteral("unknown preset 'Nope'")},
    };
    for (const auto &r : refused) {
        result = presets(r.arguments);
        EXPECT_EQ(result.status, 1) << r.arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.contains(r.error)) << result.err.toStdString();
    }

    ASSERT_EQ(presets({QStringLiteral("remove"), QStringLiteral("Small")}).status, 0);
    EXPECT_TRUE(storedPreset(true, QStringLiteral("Small")).isEmpty());
    EXPECT_FALSE(storedPreset(false, QStringLiteral("French")).isEmpty());
}

TEST_F(CliPresets, PresetsUsageMistakesAnswerTwo)
{
    const QList<QStringList> mistakes{
        {},
        {QStringLiteral("rename"), QStringLiteral("A")},
        {QStringLiteral("show")},
        {QStringLiteral("list"), QStringLiteral("A")},
        {QStringLiteral("add-selection"), QStringLiteral("A"), QStringLiteral("--audio-filter"), QStringLiteral("lang")},
        {QStringLiteral("add-selection"), QStringLiteral("A"), QStringLiteral("--video"), QStringLiteral("mpeg4")},
        {QStringLiteral("add-settings"), QStringLiteral("A"), QStringLiteral("--subtitle-filter"), QStringLiteral("all")},
    };
    for (const QStringList &arguments : mistakes) {
        const CliResult result = presets(arguments);
        EXPECT_EQ(result.status, 2) << arguments.join(' ').toStdString();
        EXPECT_TRUE(result.err.startsWith(QStringLiteral("kestrane-cli: "))) << result.err.toStdString();
    }
    EXPECT_TRUE(MCPreferences(settings).userPresetSelectionsList.isEmpty());
}

TEST_F(CliPresets, SubtitleExtractionNoToolCanMakeIsRefusedBeforeAnythingRuns)
{
    const QString srt = writeSrt(settingsDir.path() + QStringLiteral("/line.srt"));
    const QString mp4 = testsupport::ffmpeg(settingsDir.path(), QStringLiteral("subtitled.mp4"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=1 -f lavfi -i sine=d=1 -i '%1' "
                                                           "-map 0 -map 1 -map 2 -ac 2 -c:v mpeg4 -c:a libmp3lame -c:s mov_text")
                                                .arg(srt));
    QTemporaryDir resources;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KESTRANE_RESOURCES"), testsupport::resourcesWithout(resources.path(), QStringLiteral("mp4boxUpdated")));
    QProcess cli;
    cli.setProcessEnvironment(environment);
    cli.start(cliPath(), common() + QStringList{QStringLiteral("convert"), QStringLiteral("--tracks"), QStringLiteral("1,2,3"),
                                                QStringLiteral("--subtitles"), QStringLiteral("extract"), mp4});
    ASSERT_TRUE(cli.waitForFinished(120000));
    const QString err = QString::fromUtf8(cli.readAllStandardError());
    // Refused as what it is, not a written AVI reported as failed.
    EXPECT_EQ(cli.exitCode(), 2) << err.toStdString();
    EXPECT_TRUE(err.contains(QStringLiteral("subtitled.mp4: Extracting the subtitle of an MP4 file needs MP4Box"))) << err.toStdString();
    EXPECT_FALSE(QString::fromUtf8(cli.readAllStandardOutput()).contains(QStringLiteral("Failed")));
    EXPECT_TRUE(filesIn(saveDir.path()).isEmpty()) << filesIn(saveDir.path()).join(' ').toStdString();
}
