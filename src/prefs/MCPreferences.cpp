#include "MCPreferences.h"

#include "MCLog.h"
#include "MCSettingsKeys.h"
#include "MCToolTipTexts.h"

#include <QCoreApplication>
#include <QMetaType>
#include <QPointer>

namespace {

QPointer<MCPreferences> &installedPreferences()
{
    static QPointer<MCPreferences> preferences;
    return preferences;
}

bool isText(const QVariant &value)
{
    return value.metaType().id() == QMetaType::QString;
}

// A stored path; anything but a text (a list, a map) counts as missing.
QUrl locationFor(const QVariant &value, const QUrl &fallback)
{
    if (!value.isValid() || !isText(value))
        return fallback;
    const QString path = value.toString();
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

// A percentage such as "6" or "2.5"; garbage would end up on a tool's
// command line, so it falls back to the default.
QString numberTextFor(const QVariant &value, const QString &fallback)
{
    if (!isText(value) && value.metaType().id() != QMetaType::Int
        && value.metaType().id() != QMetaType::Double)
        return fallback;
    const QString text = value.toString().trimmed();
    bool ok = false;
    const double number = text.toDouble(&ok);
    return ok && number >= 0 ? text : fallback;
}

// Booleans are written as booleans but read back as texts by the INI store.
bool flagFor(const QVariant &value, bool fallback)
{
    if (value.metaType().id() == QMetaType::Bool)
        return value.toBool();
    if (!isText(value))
        return fallback;
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("yes") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("no") || text == QLatin1String("0"))
        return false;
    return fallback;
}

int indexFor(const QVariant &value)
{
    if (value.metaType().id() == QMetaType::Int)
        return qMax(0, value.toInt());
    if (!isText(value))
        return 0;
    bool ok = false;
    const int index = value.toString().trimmed().toInt(&ok);
    return ok && index >= 0 ? index : 0;
}

// A preset list keeps every preset that is a map; stray entries are dropped
// so one damaged entry does not cost the user the others.
QVariantList presetListFor(const QVariant &value)
{
    if (value.metaType().id() != QMetaType::QVariantList)
        return {};
    QVariantList presets;
    const QVariantList stored = value.toList();
    for (const QVariant &entry : stored) {
        if (entry.metaType().id() == QMetaType::QVariantMap)
            presets.append(entry);
    }
    return presets;
}

QVariantMap dictionaryFor(const QVariant &value)
{
    if (value.metaType().id() != QMetaType::QVariantMap)
        return {};
    return value.toMap();
}

QString pathOf(const QUrl &url)
{
    return url.isEmpty() ? QString(QLatin1String("")) : url.toLocalFile();
}

} // namespace

MCPreferences::MCPreferences(QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(QStringLiteral("Kestrane"), QStringLiteral("Kestrane")))
{
    loadPreferencesFromDefaults();
}

MCPreferences::MCPreferences(const QString &settingsFilePath, QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(settingsFilePath, QSettings::IniFormat))
{
    loadPreferencesFromDefaults();
}

MCPreferences::~MCPreferences() = default;

MCPreferences *MCPreferences::applicationPreferences()
{
    return installedPreferences();
}

void MCPreferences::setApplicationPreferences(MCPreferences *preferences)
{
    installedPreferences() = preferences;
}

void MCPreferences::applyDefaults()
{
    saveDirectoryURL = QUrl();
    watchFolderURL = QUrl();
    subtitleFontURL = QUrl::fromLocalFile(QString::fromLatin1(defaultSubtitleFontPath));
    subtitlePosition = QString::fromLatin1(defaultSubtitlePosition);
    subtitleSize = QString::fromLatin1(defaultSubtitleSize);
    showToolTipsFlag = true;
    keepLogsFlag = true;
    useLegacyEncoderFlag = false;
    userPresetSelectionsList.clear();
    userPresetSettingsList.clear();
    guiSettingsDictionary.clear();
    selectionIndex = 0;
    settingIndex = 0;
}

void MCPreferences::loadPreferencesFromDefaults()
{
    namespace K = MCSettingsKeys;
    applyDefaults();
    QSettings &store = *m_settings;
    store.sync();
    if (store.status() == QSettings::FormatError)
        MCLog::line(QStringLiteral("Preferences: %1 could not be read; using the defaults")
                        .arg(store.fileName()));

    saveDirectoryURL = locationFor(store.value(K::saveDirectory), saveDirectoryURL);
    watchFolderURL = locationFor(store.value(K::watchFolder), watchFolderURL);
    subtitleFontURL = locationFor(store.value(K::fontPath), subtitleFontURL);
    subtitlePosition = numberTextFor(store.value(K::subPosition), subtitlePosition);
    subtitleSize = numberTextFor(store.value(K::subSize), subtitleSize);
    showToolTipsFlag = flagFor(store.value(K::showToolTips), showToolTipsFlag);
    keepLogsFlag = flagFor(store.value(K::keepLogs), keepLogsFlag);
    useLegacyEncoderFlag = flagFor(store.value(K::useLegacyEncoder), useLegacyEncoderFlag);
    userPresetSelectionsList = presetListFor(store.value(K::presetSelectionsArray));
    userPresetSettingsList = presetListFor(store.value(K::presetSettingsArray));
    guiSettingsDictionary = dictionaryFor(store.value(K::guiSettingsDictionary));
    selectionIndex = indexFor(store.value(K::selectionIndex));
    settingIndex = indexFor(store.value(K::settingIndex));

    modifyToolTips();
}

bool MCPreferences::syncStore(const QString &what)
{
    m_settings->sync();
    if (m_settings->status() == QSettings::NoError)
        return true;
    MCLog::line(QStringLiteral("Preferences: could not write %1 to %2").arg(what, m_settings->fileName()));
    return false;
}

bool MCPreferences::savePreferencesToDefaults()
{
    namespace K = MCSettingsKeys;
    QSettings &store = *m_settings;
    store.setValue(K::saveDirectory, pathOf(saveDirectoryURL));
    store.setValue(K::watchFolder, pathOf(watchFolderURL));
    store.setValue(K::fontPath, pathOf(subtitleFontURL));
    store.setValue(K::subPosition, subtitlePosition);
    store.setValue(K::subSize, subtitleSize);
    store.setValue(K::showToolTips, showToolTipsFlag);
    store.setValue(K::keepLogs, keepLogsFlag);
    store.setValue(K::useLegacyEncoder, useLegacyEncoderFlag);
    store.setValue(K::presetSelectionsArray, userPresetSelectionsList);
    store.setValue(K::presetSettingsArray, userPresetSettingsList);
    store.setValue(K::guiSettingsDictionary, guiSettingsDictionary);
    store.setValue(K::selectionIndex, QString::number(selectionIndex));
    store.setValue(K::settingIndex, QString::number(settingIndex));
    return syncStore(QStringLiteral("the preferences"));
}

void MCPreferences::saveUserPresetSelectionsListFor(const QVariantList &list)
{
    userPresetSelectionsList = list;
    m_settings->setValue(MCSettingsKeys::presetSelectionsArray, userPresetSelectionsList);
    syncStore(QStringLiteral("the track-selection presets"));
}

void MCPreferences::saveUserPresetSettingsListFor(const QVariantList &list)
{
    userPresetSettingsList = list;
    m_settings->setValue(MCSettingsKeys::presetSettingsArray, userPresetSettingsList);
    syncStore(QStringLiteral("the settings presets"));
}

void MCPreferences::setShowToolTipsFlag(bool flag)
{
    showToolTipsFlag = flag;
    modifyToolTips();
}

void MCPreferences::modifyToolTips()
{
    QVariantMap texts;
    for (const QString &name : toolTipNames())
        texts.insert(name, showToolTipsFlag ? fixedToolTipText(name) : QString(QLatin1String("")));
    if (texts == m_toolTips)
        return;
    m_toolTips = texts;
    emit toolTipsChanged();
}

QString MCPreferences::toolTip(const QString &name) const
{
    return m_toolTips.value(name).toString();
}

const QStringList &MCPreferences::toolTipNames()
{
    static const QStringList names = [] {
        QStringList all;
        for (const MCToolTipText &entry : MCToolTipTexts::all())
            all.append(QString::fromLatin1(entry.name));
        return all;
    }();
    return names;
}

QString MCPreferences::fixedToolTipText(const QString &name)
{
    for (const MCToolTipText &entry : MCToolTipTexts::all()) {
        if (name == QLatin1String(entry.name))
            return QString::fromUtf8(entry.text);
    }
    return {};
}
