#include "MCPresetsController.h"

#include "MCPreferences.h"
#include "MCSelectionController.h"

namespace {

const QString kManual = QStringLiteral("Manual");

QStringList numbersOneToNine()
{
    QStringList numbers;
    for (int n = 1; n <= 9; ++n)
        numbers.append(QString::number(n));
    return numbers;
}

template<typename Preset>
QVariantList editableRecordsOf(const QList<std::shared_ptr<Preset>> &list)
{
    QVariantList records;
    for (const auto &preset : list) {
        if (preset->isEditable)
            records.append(preset->makeRecord());
    }
    return records;
}

// After a preset left the list, the index in force keeps pointing at the
// same preset, or at "Manual" when it was the one removed.
int indexAfterRemoving(int methodIndex, int removed)
{
    if (methodIndex == removed)
        return 0;
    return methodIndex > removed ? methodIndex - 1 : methodIndex;
}

} // namespace

MCPresetsController::MCPresetsController(MCPreferences *preferences, MCSelectionController *controller,
                                         QObject *parent)
    : QObject(parent)
    , appPreferences(preferences)
    , selectionController(controller)
{
    if (selectionController)
        m_currentVideoFile = selectionController->currentVideoFile();
}

void MCPresetsController::initialize()
{
    initializeSelectionsList();
    initializeSettingsList();
    pTypeOfProcessList = MCPresetSettings::typeOfProcessList();
    pVideoActionList = MCPresetSettings::videoActionList();
    pVideoGenericList = MCPresetSettings::genericList();
    pStereoActionList = MCPresetSettings::stereoActionList();
    pStereoBitRateList = MCPresetSettings::stereoBitRateList();
    pSurroundActionList = MCPresetSettings::surroundActionList();
    pSurroundBitRateList = MCPresetSettings::surroundBitRateList();
    pSubActionList = MCPresetSettings::subActionList();

    using P = MCPresetSelections;
    afTrackChoiceList = {P::choiceNone, P::choiceAudioNumber, P::choiceProperties};
    sfTrackChoiceList = {P::choiceNone, P::choiceSubtitleNumber, P::choiceProperties};
    afTrackNumberList = sfTrackNumberList = numbersOneToNine();
    setLanguageNames({});
    afCodecList = {P::anyCodec,          QStringLiteral("ogg"), QStringLiteral("mp3"),  QStringLiteral("mp2"),
                   QStringLiteral("aac"), QStringLiteral("ac3"), QStringLiteral("wav"), QStringLiteral("dts"),
                   QStringLiteral("wma"), QStringLiteral("flac"), QStringLiteral("wv")};
    sfCodecList = {P::anyCodec,           QStringLiteral("ssa"), QStringLiteral("ass"),  QStringLiteral("srt"),
                   QStringLiteral("vobsub"), QStringLiteral("sub"), QStringLiteral("pgs"), QStringLiteral("ttxt"),
                   QStringLiteral("txt")};
    afChannelsList = {P::anyType, P::stereoOnly, P::surroundOnly};
    emit editorChanged();
    if (appPreferences)
        restoreMethodIndexes(appPreferences->selectionIndex, appPreferences->settingIndex);
}

void MCPresetsController::setLanguageNames(const QStringList &names)
{
    afLanguageList = QStringList{MCPresetSelections::anyLanguage} + names;
    sfLanguageList = afLanguageList;
    emit editorChanged();
}

void MCPresetsController::setCurrentVideoFile(const std::shared_ptr<MCVideoFile> &file)
{
    m_currentVideoFile = file;
    for (const MCPresetSelectionsPtr &preset : std::as_const(presetSelectionsList))
        preset->currentVideoFile = file;
    for (const MCPresetSettingsPtr &preset : std::as_const(presetSettingsList))
        preset->currentVideoFile = file;
}

// ---------------------------------------------------------------------------
// The lists

void MCPresetsController::initializeSelectionsList()
{
    presetSelectionsList.clear();
    const auto make = [this] { return std::make_shared<MCPresetSelections>(m_currentVideoFile, selectionController); };
    presetSelectionsList.append(make());
    presetSelectionsList.last()->initializeAsByID();
    presetSelectionsList.append(make());
    presetSelectionsList.last()->initializeAsFirst();
    if (appPreferences) {
        for (const QVariant &record : std::as_const(appPreferences->userPresetSelectionsList)) {
            presetSelectionsList.append(make());
            presetSelectionsList.last()->initFromRecord(record.toMap());
        }
    }
    creatSelectionsNamesList();
}

void MCPresetsController::initializeSettingsList()
{
    presetSettingsList.clear();
    const auto make = [this] { return std::make_shared<MCPresetSettings>(m_currentVideoFile, selectionController); };
    presetSettingsList.append(make());
    presetSettingsList.last()->initializeAsByID();
    presetSettingsList.append(make());
    presetSettingsList.last()->initializeAsExtract();
    if (appPreferences) {
        for (const QVariant &record : std::as_const(appPreferences->userPresetSettingsList)) {
            presetSettingsList.append(make());
            presetSettingsList.last()->initFromRecord(record.toMap());
        }
    }
    creatSettingsNamesList();
}

void MCPresetsController::creatSelectionsNamesList()
{
    presetSelectionsNamesList.clear();
    for (const MCPresetSelectionsPtr &preset : std::as_const(presetSelectionsList))
        presetSelectionsNamesList.append(preset->pName);
    emit presetsChanged();
}

void MCPresetsController::creatSettingsNamesList()
{
    presetSettingsNamesList.clear();
    for (const MCPresetSettingsPtr &preset : std::as_const(presetSettingsList))
        presetSettingsNamesList.append(preset->pName);
    emit presetsChanged();
}

void MCPresetsController::savePresetSelectionsListToUserDefaults()
{
    if (appPreferences)
        appPreferences->saveUserPresetSelectionsListFor(editableRecordsOf(presetSelectionsList));
}

void MCPresetsController::savePresetSettingsListToUserDefaults()
{
    if (appPreferences)
        appPreferences->saveUserPresetSettingsListFor(editableRecordsOf(presetSettingsList));
}

// ---------------------------------------------------------------------------
// The presets in force

void MCPresetsController::restoreMethodIndexes(int selectionIndex, int settingIndex)
{
    m_selectionMethodIndex = (selectionIndex >= 0 && selectionIndex < presetSelectionsList.size()) ? selectionIndex : 0;
    m_settingMethodIndex = (settingIndex >= 0 && settingIndex < presetSettingsList.size()) ? settingIndex : 0;
    rememberMethodIndexes();
    emit methodIndexesChanged();
}

void MCPresetsController::rememberMethodIndexes()
{
    // Saved with the other preferences at quit.
    if (!appPreferences)
        return;
    appPreferences->selectionIndex = m_selectionMethodIndex;
    appPreferences->settingIndex = m_settingMethodIndex;
}

void MCPresetsController::setSelectionMethodIndex(int index)
{
    m_selectionMethodIndex = (index >= 0 && index < presetSelectionsList.size()) ? index : 0;
    rememberMethodIndexes();
    emit methodIndexesChanged();
    if (m_selectionMethodIndex != 0)
        presetSelectionsList.at(m_selectionMethodIndex)->makeSelections();
}

void MCPresetsController::applyCurrentPresetSelections()
{
    if (m_selectionMethodIndex < presetSelectionsList.size())
        presetSelectionsList.at(m_selectionMethodIndex)->makeSelections();
}

void MCPresetsController::setSettingMethodIndex(int index)
{
    m_settingMethodIndex = (index >= 0 && index < presetSettingsList.size()) ? index : 0;
    rememberMethodIndexes();
    emit methodIndexesChanged();
    if (m_settingMethodIndex == 0)
        return;
    m_changingPresetSetting = true;
    applyCurrentPresetSettings();
    m_changingPresetSetting = false;
    emit methodIndexesChanged();
}

void MCPresetsController::applyCurrentPresetSettings()
{
    // Applying a preset may switch tabs; that must not cancel the preset.
    const bool wasChanging = m_changingPresetSetting;
    m_changingPresetSetting = true;
    if (m_settingMethodIndex < presetSettingsList.size())
        presetSettingsList.at(m_settingMethodIndex)->makeSettings();
    m_changingPresetSetting = wasChanging;
    if (selectionController)
        selectionController->updateTabs();
}

// ---------------------------------------------------------------------------
// The editors' lists

template<typename Preset>
QList<std::shared_ptr<Preset>> MCPresetsController::viewOf(const QList<std::shared_ptr<Preset>> &list)
{
    QList<std::shared_ptr<Preset>> view;
    for (const auto &preset : list) {
        if (preset->pName != kManual)
            view.append(preset);
    }
    return view;
}

template<typename Preset>
int MCPresetsController::viewPositionFor(const QList<std::shared_ptr<Preset>> &list, int methodIndex)
{
    const auto view = viewOf(list);
    if (view.isEmpty())
        return -1;
    if (methodIndex <= 0 || methodIndex >= list.size())
        return 0;
    return std::max(0, int(view.indexOf(list.at(methodIndex))));
}

MCPresetSelectionsPtr MCPresetsController::selectedPresetSelections() const
{
    const auto view = viewOf(presetSelectionsList);
    return m_selectionsTableIndex >= 0 && m_selectionsTableIndex < view.size() ? view.at(m_selectionsTableIndex)
                                                                               : nullptr;
}

MCPresetSettingsPtr MCPresetsController::selectedPresetSettings() const
{
    const auto view = viewOf(presetSettingsList);
    return m_settingsTableIndex >= 0 && m_settingsTableIndex < view.size() ? view.at(m_settingsTableIndex) : nullptr;
}

namespace {

template<typename Preset>
QStringList namesOf(const QList<std::shared_ptr<Preset>> &view)
{
    QStringList names;
    for (const auto &preset : view)
        names.append(preset->pName);
    return names;
}

template<typename Preset>
bool rename(const std::shared_ptr<Preset> &preset, const QString &name)
{
    const QString trimmed = name.trimmed();
    if (!preset || !preset->isEditable || trimmed.isEmpty() || trimmed == kManual)
        return false;
    preset->pName = trimmed;
    return true;
}

} // namespace

QStringList MCPresetsController::selectionsViewNames() const
{
    return namesOf(viewOf(presetSelectionsList));
}

QStringList MCPresetsController::settingsViewNames() const
{
    return namesOf(viewOf(presetSettingsList));
}

bool MCPresetsController::renameSelectedPresetSelections(const QString &name)
{
    if (!rename(selectedPresetSelections(), name))
        return false;
    creatSelectionsNamesList();
    return true;
}

bool MCPresetsController::renameSelectedPresetSettings(const QString &name)
{
    if (!rename(selectedPresetSettings(), name))
        return false;
    creatSettingsNamesList();
    return true;
}

void MCPresetsController::selectionListTableClicked(int position)
{
    stopAllFilterEditing();
    m_selectionsTableIndex = position;
    loadFiltersOfSelectedPreset();
}

void MCPresetsController::settingsListTableClicked(int position)
{
    m_settingsTableIndex = position;
    emit editorChanged();
}

void MCPresetsController::addPresetSelection()
{
    auto preset = std::make_shared<MCPresetSelections>(m_currentVideoFile, selectionController);
    preset->initializeAsNewUserPreset();
    presetSelectionsList.append(preset);
    creatSelectionsNamesList();
    selectionListTableClicked(int(viewOf(presetSelectionsList).indexOf(preset)));
}

void MCPresetsController::addPresetSettings()
{
    auto preset = std::make_shared<MCPresetSettings>(m_currentVideoFile, selectionController);
    preset->initializeAsNewUserPreset();
    presetSettingsList.append(preset);
    creatSettingsNamesList();
    settingsListTableClicked(int(viewOf(presetSettingsList).indexOf(preset)));
}

void MCPresetsController::removePresetSelection()
{
    const MCPresetSelectionsPtr preset = selectedPresetSelections();
    if (!preset || !preset->isEditable)
        return;
    const int removed = int(presetSelectionsList.indexOf(preset));
    presetSelectionsList.removeAt(removed);
    m_selectionMethodIndex = indexAfterRemoving(m_selectionMethodIndex, removed);
    rememberMethodIndexes();
    creatSelectionsNamesList();
    emit methodIndexesChanged();
    selectionListTableClicked(m_selectionsTableIndex - 1);
}

void MCPresetsController::removePresetSettings()
{
    const MCPresetSettingsPtr preset = selectedPresetSettings();
    if (!preset || !preset->isEditable)
        return;
    const int removed = int(presetSettingsList.indexOf(preset));
    presetSettingsList.removeAt(removed);
    m_settingMethodIndex = indexAfterRemoving(m_settingMethodIndex, removed);
    rememberMethodIndexes();
    creatSettingsNamesList();
    emit methodIndexesChanged();
    settingsListTableClicked(m_settingsTableIndex - 1);
}

void MCPresetsController::openPresetSelectionPanel()
{
    presetSelectionsPanelOpen = true;
    selectionListTableClicked(viewPositionFor(presetSelectionsList, m_selectionMethodIndex));
}

void MCPresetsController::openPresetSettingsPanel()
{
    presetSettingsPanelOpen = true;
    settingsListTableClicked(viewPositionFor(presetSettingsList, m_settingMethodIndex));
}

void MCPresetsController::okPresetSelectionPanel()
{
    emit endEditingRequested();
    stopAllFilterEditing();
    presetSelectionsPanelOpen = false;
    creatSelectionsNamesList();
    savePresetSelectionsListToUserDefaults();
    emit editorChanged();
    const MCPresetSelectionsPtr chosen = selectedPresetSelections();
    setSelectionMethodIndex(chosen ? int(presetSelectionsList.indexOf(chosen)) : 0);
}

void MCPresetsController::okPresetSettingsPanel()
{
    emit endEditingRequested();
    presetSettingsPanelOpen = false;
    creatSettingsNamesList();
    savePresetSettingsListToUserDefaults();
    emit editorChanged();
    const MCPresetSettingsPtr chosen = selectedPresetSettings();
    setSettingMethodIndex(chosen ? int(presetSettingsList.indexOf(chosen)) : 0);
}

void MCPresetsController::guiClickedTrap()
{
    emit endEditingRequested();
    if (selectionController)
        selectionController->clearTrackTableHighlight();
    if (m_settingMethodIndex != 0)
        setSettingMethodIndex(0);
}

// ---------------------------------------------------------------------------
// The filter editor

MCPresetsController::FilterButton MCPresetsController::filterButtonFor(int tag)
{
    if (tag >= 101 && tag <= 103)
        return {true, tag - 100};
    if (tag >= 201 && tag <= 203)
        return {false, tag - 200};
    if (tag == 192 || tag == 193)
        return {true, tag - 190};
    if (tag == 292 || tag == 293)
        return {false, tag - 290};
    return {true, 0};
}

const MCFilterRow &MCPresetsController::filterRowForTag(int tag) const
{
    const FilterButton button = filterButtonFor(tag);
    return (button.audio ? m_audioRows : m_subtitleRows).row(button.row);
}

void MCPresetsController::loadFiltersOfSelectedPreset()
{
    const MCPresetSelectionsPtr preset = selectedPresetSelections();
    currentAudioFilterArray = preset ? preset->pAudioFilterArray : QVariantList{};
    currentSubtitleFilterArray = preset ? preset->pSubtitleFilterArray : QVariantList{};
    adjustFilterButtonsCount();
}

void MCPresetsController::adjustFilterButtonsCount()
{
    m_audioRows.adjustForCount(currentAudioFilterArray.size());
    m_subtitleRows.adjustForCount(currentSubtitleFilterArray.size());
    emit editorChanged();
}

void MCPresetsController::stopAllFilterEditing()
{
    for (int row = 1; row <= 3; ++row) {
        if (m_audioRows.row(row).inEditMode)
            m_audioRows.stopEditing(row);
        if (m_subtitleRows.row(row).inEditMode)
            m_subtitleRows.stopEditing(row);
    }
}

void MCPresetsController::openFilterPanelForButton(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    const QVariantList &filters = button.audio ? currentAudioFilterArray : currentSubtitleFilterArray;
    if (button.row == 0 || button.row > filters.size())
        return;
    const QVariantMap filter = filters.at(button.row - 1).toMap();
    const auto text = [&filter](const QString &key) { return filter.value(key).toString(); };
    using P = MCPresetSelections;
    if (button.audio) {
        setAfUserTrackChoice(text(P::keyTrackChoice));
        afUserTrackNumber = text(P::keyTrackNumber);
        afUserLanguage = text(P::keyLanguage);
        afUserCodec = text(P::keyCodec);
        afUserChannels = text(P::keyChannels);
    } else {
        setSfUserTrackChoice(text(P::keyTrackChoice));
        sfUserTrackNumber = text(P::keyTrackNumber);
        sfUserLanguage = text(P::keyLanguage);
        sfUserCodec = text(P::keyCodec);
    }
    emit editorChanged();
}

void MCPresetsController::filterButtonEntered(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    if (button.row != 0 && rowsOf(button).pointerEntered(button.row))
        openFilterPanelForButton(tag);
    emit editorChanged();
}

void MCPresetsController::filterButtonExited(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    rowsOf(button).pointerExited(button.row);
    emit editorChanged();
}

QPoint MCPresetsController::filterPanelOrigin(const QRect &buttonOnScreen, const QSize &panelSize)
{
    return {buttonOnScreen.x() + (buttonOnScreen.width() - panelSize.width()) / 2, buttonOnScreen.y() + 35};
}

void MCPresetsController::editFilterPanel(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    if (button.row == 0)
        return;
    const QString title = rowsOf(button).row(button.row).editTitle;
    if (title == QLatin1String("Edit")) {
        startEditingFiltersForButton(tag);
    } else if (title == QLatin1String("Done")) {
        writeBackFilter(button);
        stopEditingFiltersForButton(tag);
    }
}

void MCPresetsController::writeBackFilter(const FilterButton &button)
{
    const MCPresetSelectionsPtr preset = selectedPresetSelections();
    if (!preset)
        return;
    QVariantList &filters = button.audio ? preset->pAudioFilterArray : preset->pSubtitleFilterArray;
    if (button.row > filters.size())
        return;
    const QVariantMap filter = button.audio ? MCPresetSelections::audioFilter(m_afUserTrackChoice, afUserTrackNumber,
                                                                        afUserLanguage, afUserCodec, afUserChannels)
                                      : MCPresetSelections::subtitleFilter(m_sfUserTrackChoice, sfUserTrackNumber,
                                                                           sfUserLanguage, sfUserCodec);
    filters[button.row - 1] = filter;
    loadFiltersOfSelectedPreset();
}

void MCPresetsController::startEditingFiltersForButton(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    rowsOf(button).startEditing(button.row);
    emit editorChanged();
}

void MCPresetsController::stopEditingFiltersForButton(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    rowsOf(button).stopEditing(button.row);
    emit editorChanged();
}

void MCPresetsController::addFilterButtonClicked(int tag)
{
    const FilterButton button = filterButtonFor(tag);
    const MCPresetSelectionsPtr preset = selectedPresetSelections();
    if (button.row < 2 || !preset)
        return;
    const QString title = rowsOf(button).row(button.row).addTitle;
    QVariantList &filters = button.audio ? preset->pAudioFilterArray : preset->pSubtitleFilterArray;
    if (title == QLatin1String("+")) {
        if (button.audio)
            preset->addDictionaryToAudioFilterArray();
        else
            preset->addDictionaryToSubtitleFilterArray();
    } else if (title == QLatin1String("-")) {
        // The second filter goes, whichever row's button was pressed.
        if (filters.size() > 1)
            filters.removeAt(1);
        rowsOf(button).stopEditing(button.row);
    }
    loadFiltersOfSelectedPreset();
}

void MCPresetsController::setAfUserTrackChoice(const QString &choice)
{
    if (choice == m_afUserTrackChoice)
        return;
    m_afUserTrackChoice = choice;
    m_afIsByTrackNumber = choice == MCPresetSelections::choiceAudioNumber;
    m_afIsByProperties = choice == MCPresetSelections::choiceProperties;
    m_afPanelHeight = m_afIsByProperties ? 260 : 100;
    emit editorChanged();
}

void MCPresetsController::setSfUserTrackChoice(const QString &choice)
{
    if (choice == m_sfUserTrackChoice)
        return;
    m_sfUserTrackChoice = choice;
    m_sfIsByTrackNumber = choice == MCPresetSelections::choiceSubtitleNumber;
    m_sfIsByProperties = choice == MCPresetSelections::choiceProperties;
    m_sfPanelHeight = m_sfIsByProperties ? 202 : 100;
    emit editorChanged();
}
