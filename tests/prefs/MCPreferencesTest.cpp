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
    QString path() const { return dir.filePath(QStringLiteral("kestrane.conf")); }

    void writeSettingsFile(const QByteArray &contents) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    QTemporaryDir dir;
};

TEST_F(MCPreferencesTest, EveryFieldSurvivesARoundTrip)
{
    const QVariantMap preset{{"pName", "My PS3"}, {"isEditable", true}, {"pAudioFilterArray", QVariantList{QStringList{"All", "1"}}}};
    {
        MCPreferences prefs(path());
        prefs.saveDirectoryURL = QUrl::fromLocalFile(QStringLiteral("/tmp/out dir"));
        prefs.watchFolderURL = QUrl::fromLocalFile(QStringLiteral("/tmp/watch, here"));
        prefs.showToolTipsFlag = false;
        prefs.userPresetSettingsList = {preset, preset};
        prefs.guiSettingsDictionary = {{QStringLiteral("windowFrame"), QStringLiteral("10 10 800 600")}};
        prefs.settingIndex = 12;
        ASSERT_TRUE(prefs.savePreferencesToDefaults());
        // The preset lists are also written on their own, at once.
        prefs.saveUserPresetSelectionsListFor({preset});
    }
    const MCPreferences loaded(path());
    EXPECT_EQ(loaded.saveDirectoryURL.toLocalFile(), QStringLiteral("/tmp/out dir"));
    EXPECT_EQ(loaded.watchFolderURL.toLocalFile(), QStringLiteral("/tmp/watch, here"));
    EXPECT_EQ(loaded.userPresetSelectionsList, QVariantList{preset});
    EXPECT_EQ(loaded.userPresetSettingsList, (QVariantList{preset, preset}));
    EXPECT_EQ(loaded.guiSettingsDictionary.value(QStringLiteral("windowFrame")).toString(), QStringLiteral("10 10 800 600"));
    EXPECT_EQ(loaded.settingIndex, 12);
    // Tooltips follow the stored switch as soon as the store is loaded.
    EXPECT_EQ(loaded.toolTip(QStringLiteral("ttConvertButton")), QString());
    // Indexes are kept as decimal text, paths as paths.
    QSettings raw(path(), QSettings::IniFormat);
    EXPECT_EQ(raw.value(MCSettingsKeys::settingIndex).toString(), QStringLiteral("12"));
    EXPECT_EQ(raw.value(MCSettingsKeys::saveDirectory).toString(), QStringLiteral("/tmp/out dir"));
}

TEST_F(MCPreferencesTest, ValuesOfTheWrongKindLoadAsDefaults)
{
    writeSettingsFile("[General]\nsaveDirectory=/a, /b\nwatchFolder=/srv/watch\nsubPosition=abc\nsubSize=12\n"
                      "showToolTips=maybe\nkeepLogs=false\npresetSelectionsArray=just text\npresetSettingsArray=1, 2, 3\n"
                      "guiSettingsDictionary=@Variant(garbage\nselectionIndex=abc\nsettingIndex=-4\n");
    const MCPreferences prefs(path());
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
}

TEST_F(MCPreferencesTest, SavingWhereNothingCanBeWrittenReportsFailure)
{
    MCPreferences prefs(QStringLiteral("/proc/kestrane-settings/kestrane.conf"));
    EXPECT_FALSE(prefs.savePreferencesToDefaults());
}

TEST_F(MCPreferencesTest, ToolTipsSwitchOffAndBackOn)
{
    MCPreferences prefs(path());
    ASSERT_FALSE(MCPreferences::toolTipNames().isEmpty());
    int changes = 0;
    QObject::connect(&prefs, &MCPreferences::toolTipsChanged, [&changes] { ++changes; });
    for (const bool on : {false, true}) {
        prefs.setShowToolTipsFlag(on);
        for (const QString &name : MCPreferences::toolTipNames())
            EXPECT_EQ(prefs.toolTip(name).isEmpty(), !on) << name.toStdString();
    }
    EXPECT_EQ(changes, 2);
}

} // namespace
