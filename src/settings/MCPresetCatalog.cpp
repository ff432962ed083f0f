#include "MCPresetCatalog.h"

#include "MCPresetsController.h"

#include <functional>
#include <optional>

namespace {

template<typename Preset>
std::shared_ptr<Preset> presetNamed(const QList<std::shared_ptr<Preset>> &list, const QString &name)
{
    for (const auto &preset : list) {
        if (preset->pName == name)
            return preset;
    }
    return {};
}

} // namespace

MCPresetCatalog::MCPresetCatalog(MCPresetsController &store)
    : m_store(store)
{
}

bool MCPresetCatalog::choose(Kind kind, const QString &name)
{
    const int index = static_cast<int>(names(kind).indexOf(name));
    if (index < 0)
        return false;
    if (kind == Kind::Selection)
        m_store.setSelectionMethodIndex(index);
    else
        m_store.setSettingMethodIndex(index);
    return true;
}

QString MCPresetCatalog::tabOfChosenSettings() const
{
    const int index = m_store.settingMethodIndex();
    return index < m_store.presetSettingsList.size() ? m_store.presetSettingsList.at(index)->tabName() : QString();
}

QStringList MCPresetCatalog::names(Kind kind) const
{
    return kind == Kind::Selection ? m_store.presetSelectionsNamesList : m_store.presetSettingsNamesList;
}

QVariantMap MCPresetCatalog::record(Kind kind, const QString &name) const
{
    if (kind == Kind::Selection) {
        const MCPresetSelectionsPtr preset = presetNamed(m_store.presetSelectionsList, name);
        return preset ? preset->makeRecord() : QVariantMap();
    }
    const MCPresetSettingsPtr preset = presetNamed(m_store.presetSettingsList, name);
    return preset ? preset->makeRecord() : QVariantMap();
}

QString MCPresetCatalog::add(Kind kind, const QVariantMap &record)
{
    const QString name = record.value(QStringLiteral("pName")).toString().trimmed();
    if (name.isEmpty())
        return QStringLiteral("a preset needs a name");
    // One name stands for one preset of either kind, so a name on the
    // command line is never ambiguous.
    if (names(Kind::Selection).contains(name) || names(Kind::Settings).contains(name))
        return QStringLiteral("a preset named '%1' exists already").arg(name);
    QVariantMap stored = record;
    stored.insert(QStringLiteral("pName"), name);
    stored.insert(QStringLiteral("isEditable"), true);
    if (kind == Kind::Selection) {
        auto preset = std::make_shared<MCPresetSelections>(m_store.presetSelectionsList.first()->currentVideoFile,
                                                           m_store.selectionController);
        preset->initializeAsNewUserPreset();
        preset->initFromRecord(stored);
        m_store.presetSelectionsList.append(preset);
        m_store.creatSelectionsNamesList();
        m_store.savePresetSelectionsListToUserDefaults();
    } else {
        auto preset = std::make_shared<MCPresetSettings>(m_store.presetSettingsList.first()->currentVideoFile,
                                                         m_store.selectionController);
        preset->initializeAsNewUserPreset();
        preset->initFromRecord(stored);
        m_store.presetSettingsList.append(preset);
        m_store.creatSettingsNamesList();
        m_store.savePresetSettingsListToUserDefaults();
    }
    return {};
}

QString MCPresetCatalog::remove(const QString &name)
{
    const auto removeFrom = [&name](auto &list, const std::function<void()> &listChanged) -> std::optional<QString> {
        const auto preset = presetNamed(list, name);
        if (!preset)
            return std::nullopt;
        if (!preset->isEditable)
            return QStringLiteral("'%1' is built in and cannot be removed").arg(name);
        list.removeOne(preset);
        listChanged();
        return QString();
    };
    if (const auto why = removeFrom(m_store.presetSelectionsList, [this] {
            m_store.creatSelectionsNamesList();
            m_store.savePresetSelectionsListToUserDefaults();
        }))
        return *why;
    if (const auto why = removeFrom(m_store.presetSettingsList, [this] {
            m_store.creatSettingsNamesList();
            m_store.savePresetSettingsListToUserDefaults();
        }))
        return *why;
    return QStringLiteral("unknown preset '%1'").arg(name);
}
