#include "MCPreferences.h"
#include "MCSettingsKeys.h"
#include "TestSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class MCPreferencesTest : public ::testing::Test
{
protected:
    QString settingsPath() const { return dir.filePath(QStringLiteral("kestrane.conf")); }

    void writeSettingsFile(const QByteArray &contents) const
    {
        QFile file(settingsPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir dir;
};

TEST_F(MCPreferencesTest, EveryFieldSurvivesARoundTrip)
{
    const QVariantMap preset{{QStringLiteral("pName"), QStringLiteral("My PS3")},
                             {QStringLiteral("isEditable"), true},
                             {QStringLiteral("pAudioFilterArray"),
                              QVariantList{QStringList{QStringLiteral("All"), QStringLiteral("1")}}}};
    {
        MCPreferences prefs(settingsPath());
        prefs.saveDirectoryURL = QUrl::fromLocalFile(QStringLiteral("/tmp/out dir"));
        prefs.watchFolderURL = QUrl::fromLocalFile(QStringLiteral("/tmp/watch, here"));
        prefs.subtitleFontURL = QUrl();
        prefs.subtitlePosition = QStringLiteral("2.5");
        prefs.subtitleSize = QStringLiteral("10");
        prefs.showToolTipsFlag = false;
        prefs.keepLogsFlag = false;
        prefs.useLegacyEncoderFlag = true;
        prefs.userPresetSelectionsList = {preset};
        prefs.userPresetSettingsList = {preset, preset};
        prefs.guiSettingsDictionary = {{QStringLiteral("windowFrame"), QStringLiteral("10 10 800 600")}};
        prefs.selectionIndex = 3;
        prefs.settingIndex = 12;
        ASSERT_TRUE(prefs.savePreferencesToDefaults());
    }
    const MCPreferences loaded(settingsPath());
    EXPECT_EQ(loaded.saveDirectoryURL.toLocalFile(), QStringLiteral("/tmp/out dir"));
    EXPECT_EQ(loaded.watchFolderURL.toLocalFile(), QStringLiteral("/tmp/watch, here"));
    EXPECT_TRUE(loaded.subtitleFontURL.isEmpty());
    EXPECT_EQ(loaded.subtitlePosition, QStringLiteral("2.5"));
    EXPECT_EQ(loaded.subtitleSize, QStringLiteral("10"));
    EXPECT_FALSE(loaded.showToolTipsFlag);
    EXPECT_FALSE(loaded.keepLogsFlag);
    EXPECT_TRUE(loaded.useLegacyEncoderFlag);
    EXPECT_EQ(loaded.userPresetSelectionsList, QVariantList{preset});
    EXPECT_EQ(loaded.userPresetSettingsList, (QVariantList{preset, preset}));
    EXPECT_EQ(loaded.guiSettingsDictionary.value(QStringLiteral("windowFrame")).toString(),
              QStringLiteral("10 10 800 600"));
    EXPECT_EQ(loaded.selectionIndex, 3);
    EXPECT_EQ(loaded.settingIndex, 12);
    // Tooltips follow the stored switch as soon as the store is loaded.
    EXPECT_EQ(loaded.toolTip(QStringLiteral("ttConvertButton")), QString());

    // Indexes are kept as decimal text, paths as paths.
    QSettings raw(settingsPath(), QSettings::IniFormat);
    EXPECT_EQ(raw.value(MCSettingsKeys::settingIndex).toString(), QStringLiteral("12"));
    EXPECT_EQ(raw.value(MCSettingsKeys::saveDirectory).toString(), QStringLiteral("/tmp/out dir"));
}

TEST_F(MCPreferencesTest, PresetListsAreWrittenAtOnce)
{
    const QVariantList selections{QVariantMap{{QStringLiteral("pName"), QStringLiteral("English")}}};
    MCPreferences prefs(settingsPath());
    prefs.saveUserPresetSelectionsListFor(selections);
    prefs.saveUserPresetSettingsListFor({});

    const MCPreferences other(settingsPath());
    EXPECT_EQ(other.userPresetSelectionsList, selections);
    EXPECT_TRUE(other.userPresetSettingsList.isEmpty());
}

TEST_F(MCPreferencesTest, ValuesOfTheWrongKindLoadAsDefaults)
{
    writeSettingsFile("[General]\n"
                      "saveDirectory=/a, /b\n"
                      "watchFolder=/srv/watch\n"
                      "subPosition=abc\n"
                      "subSize=12\n"
                      "showToolTips=maybe\n"
                      "keepLogs=false\n"
                      "presetSelectionsArray=just text\n"
                      "presetSettingsArray=1, 2, 3\n"
                      "guiSettingsDictionary=@Variant(garbage\n"
                      "selectionIndex=abc\n"
                      "settingIndex=-4\n");
    const MCPreferences prefs(settingsPath());
    EXPECT_TRUE(prefs.saveDirectoryURL.isEmpty());
    EXPECT_EQ(prefs.watchFolderURL.toLocalFile(), QStringLiteral("/srv/watch"));
    EXPECT_EQ(prefs.subtitlePosition, QStringLiteral("6"));
    EXPECT_EQ(prefs.subtitleSize, QStringLiteral("12"));
    EXPECT_TRUE(prefs.showToolTipsFlag);
    EXPECT_FALSE(prefs.keepLogsFlag);
    EXPECT_TRUE(prefs.userPresetSelectionsList.isEmpty());
    EXPECT_TRUE(prefs.userPresetSettingsList.isEmpty());
    EXPECT_TRUE(prefs.guiSettingsDictionary.isEmpty());
    EXPECT_EQ(prefs.selectionIndex, 0);
    EXPECT_EQ(prefs.settingIndex, 0);

    QByteArray garbage;
    for (int i = 0; i < 4096; ++i)
        garbage.append(char((i * 7919) % 256));
    writeSettingsFile(garbage);
    const MCPreferences binary(settingsPath());
    EXPECT_EQ(binary.subtitleSize, QStringLiteral("3"));
    EXPECT_TRUE(binary.userPresetSettingsList.isEmpty());
}

TEST_F(MCPreferencesTest, SavingWhereNothingCanBeWrittenReportsFailure)
{
    MCPreferences prefs(QStringLiteral("/proc/kestrane-settings/kestrane.conf"));
    prefs.keepLogsFlag = false;
    EXPECT_FALSE(prefs.savePreferencesToDefaults());
}

TEST_F(MCPreferencesTest, ToolTipsSwitchOffAndBackOn)
{
    MCPreferences prefs(settingsPath());
    const QStringList names = MCPreferences::toolTipNames();
    ASSERT_FALSE(names.isEmpty());
    int changes = 0;
    QObject::connect(&prefs, &MCPreferences::toolTipsChanged, [&changes] { ++changes; });
    prefs.setShowToolTipsFlag(false);
    EXPECT_EQ(changes, 1);
    for (const QString &name : names)
        EXPECT_TRUE(prefs.toolTip(name).isEmpty()) << name.toStdString();
    EXPECT_EQ(prefs.toolTips().size(), names.size());

    prefs.setShowToolTipsFlag(true);
    EXPECT_EQ(changes, 2);
    for (const QString &name : names)
        EXPECT_FALSE(prefs.toolTip(name).isEmpty()) << name.toStdString();
}

} // namespace
