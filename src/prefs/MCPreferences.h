#pragma once

#include "MCHelpers.h"

#include <QObject>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

#include <memory>

// The user's lasting choices (folders, subtitle font and placement, log
// keeping, encoder switch, tooltips, the user's presets, window state) kept
// in a per-user settings file, and the tooltip texts of every control.
class MCPreferences : public QObject, public MCHelpers
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap toolTips READ toolTips NOTIFY toolTipsChanged)
    Q_PROPERTY(bool showToolTipsFlag READ showToolTips WRITE setShowToolTipsFlag NOTIFY toolTipsChanged)

public:
    // Shipped with Debian's fonts-dejavu-core; covers most scripts.
    static constexpr char defaultSubtitleFontPath[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
    // Where the font chooser of the preferences panel starts.
    static constexpr char fontChooserStartFolder[] = "/usr/share/fonts";
    static constexpr char defaultSubtitlePosition[] = "6";
    static constexpr char defaultSubtitleSize[] = "3";

    // The user's own store (organisation and application "Kestrane", where
    // Qt keeps settings on Linux), loaded at once.
    explicit MCPreferences(QObject *parent = nullptr);
    // A store on the given settings file (INI), for tests and --settings FILE.
    explicit MCPreferences(const QString &settingsFilePath, QObject *parent = nullptr);
    ~MCPreferences() override;

    // The application's one preferences object, once the application set
    // it; null before. Nothing opens the user's settings behind its back.
    static MCPreferences *applicationPreferences();
    static void setApplicationPreferences(MCPreferences *preferences);

    QUrl saveDirectoryURL;      // empty: jobs write beside the source file
    QUrl watchFolderURL;        // empty: none chosen
    QUrl subtitleFontURL;       // empty: no subtitles are rendered
    QString subtitlePosition;   // percent of picture height from the bottom
    QString subtitleSize;       // percent of picture height
    bool showToolTipsFlag = true;
    bool keepLogsFlag = true;
    bool useLegacyEncoderFlag = false;
    QVariantList userPresetSelectionsList; // QVariantMap per preset
    QVariantList userPresetSettingsList;   // QVariantMap per preset
    QVariantMap guiSettingsDictionary;
    int selectionIndex = 0;
    int settingIndex = 0;

    QSettings &preferenceDefaults() const { return *m_settings; }

    // Reads every key; a missing key or a value of the wrong kind takes its default.
    void loadPreferencesFromDefaults();
    // Writes every field back and flushes the file; false if it cannot be written.
    bool savePreferencesToDefaults();
    void saveUserPresetSelectionsListFor(const QVariantList &list);
    void saveUserPresetSettingsListFor(const QVariantList &list);

    void setShowToolTipsFlag(bool flag);
    bool showToolTips() const { return showToolTipsFlag; }
    // Sets every tooltip to its text, or to "" when tooltips are off.
    void modifyToolTips();

    QVariantMap toolTips() const { return m_toolTips; }
    QString toolTip(const QString &name) const;

    // Every tooltip name in window order, and its fixed text.
    static const QStringList &toolTipNames();
    static QString fixedToolTipText(const QString &name);

signals:
    void toolTipsChanged();

private:
    void applyDefaults();
    bool syncStore(const QString &what);

    std::unique_ptr<QSettings> m_settings;
    QVariantMap m_toolTips;
};
