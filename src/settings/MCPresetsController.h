#pragma once

#include "MCFilterRows.h"
#include "MCPresetSelections.h"
#include "MCPresetSettings.h"

#include <QList>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QStringList>
#include <QVariantList>

class MCPreferences;
class MCSelectionController;

// The preset store: the track-selection and settings presets (built-ins
// first, then the user's in saved order), which of each is in force, applying
// them, saving the user's through the preferences, and the state of the two
// editor panels with the small filter editor. The window binds to the
// properties and calls the operations; it owns no rules of its own.
//
// The editors' list views leave out "Manual"; their positions (the
// ...TableIndex properties, -1 for none) count presets of the view.
// Filter buttons are addressed by their tags: edit buttons 101-103 (audio)
// and 201-203 (subtitles), add/remove buttons 192, 193 and 292, 293.
class MCPresetsController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList presetSelectionsNamesList MEMBER presetSelectionsNamesList NOTIFY presetsChanged)
    Q_PROPERTY(QStringList presetSettingsNamesList MEMBER presetSettingsNamesList NOTIFY presetsChanged)
    Q_PROPERTY(int selectionMethodIndex READ selectionMethodIndex WRITE setSelectionMethodIndex NOTIFY methodIndexesChanged)
    Q_PROPERTY(int settingMethodIndex READ settingMethodIndex WRITE setSettingMethodIndex NOTIFY methodIndexesChanged)
    Q_PROPERTY(bool changingPresetSetting READ changingPresetSetting NOTIFY methodIndexesChanged)
    Q_PROPERTY(int selectionsTableIndex READ selectionsTableIndex WRITE selectionListTableClicked NOTIFY editorChanged)
    Q_PROPERTY(int settingsTableIndex READ settingsTableIndex WRITE settingsListTableClicked NOTIFY editorChanged)
    Q_PROPERTY(bool presetSelectionsPanelOpen MEMBER presetSelectionsPanelOpen NOTIFY editorChanged)
    Q_PROPERTY(bool presetSettingsPanelOpen MEMBER presetSettingsPanelOpen NOTIFY editorChanged)
    Q_PROPERTY(QString afUserTrackChoice READ afUserTrackChoice WRITE setAfUserTrackChoice NOTIFY editorChanged)
    Q_PROPERTY(QString afUserTrackNumber MEMBER afUserTrackNumber NOTIFY editorChanged)
    Q_PROPERTY(QString afUserLanguage MEMBER afUserLanguage NOTIFY editorChanged)
    Q_PROPERTY(QString afUserCodec MEMBER afUserCodec NOTIFY editorChanged)
    Q_PROPERTY(QString afUserChannels MEMBER afUserChannels NOTIFY editorChanged)
    Q_PROPERTY(QString sfUserTrackChoice READ sfUserTrackChoice WRITE setSfUserTrackChoice NOTIFY editorChanged)
    Q_PROPERTY(QString sfUserTrackNumber MEMBER sfUserTrackNumber NOTIFY editorChanged)
    Q_PROPERTY(QString sfUserLanguage MEMBER sfUserLanguage NOTIFY editorChanged)
    Q_PROPERTY(QString sfUserCodec MEMBER sfUserCodec NOTIFY editorChanged)
    Q_PROPERTY(bool afIsByTrackNumber READ afIsByTrackNumber NOTIFY editorChanged)
    Q_PROPERTY(bool afIsByProperties READ afIsByProperties NOTIFY editorChanged)
    Q_PROPERTY(bool sfIsByTrackNumber READ sfIsByTrackNumber NOTIFY editorChanged)
    Q_PROPERTY(bool sfIsByProperties READ sfIsByProperties NOTIFY editorChanged)
    Q_PROPERTY(int afPanelHeight READ afPanelHeight NOTIFY editorChanged)
    Q_PROPERTY(int sfPanelHeight READ sfPanelHeight NOTIFY editorChanged)
    Q_PROPERTY(bool isEditingAudioFilter READ isEditingAudioFilter NOTIFY editorChanged)
    Q_PROPERTY(bool isEditingSubtitleFilter READ isEditingSubtitleFilter NOTIFY editorChanged)
    Q_PROPERTY(QVariantList currentAudioFilterArray MEMBER currentAudioFilterArray NOTIFY editorChanged)
    Q_PROPERTY(QVariantList currentSubtitleFilterArray MEMBER currentSubtitleFilterArray NOTIFY editorChanged)
    Q_PROPERTY(QVariantList audioFilterRows READ audioFilterRows NOTIFY editorChanged)
    Q_PROPERTY(QVariantList subtitleFilterRows READ subtitleFilterRows NOTIFY editorChanged)

public:
    MCPresetsController(MCPreferences *preferences, MCSelectionController *selectionController,
                        QObject *parent = nullptr);

    // Builds both preset lists (built-ins, then the stored user presets)
    // and the editors' option lists.
    void initialize();
    // The language names offered by the filter editor, after "Any Language".
    void setLanguageNames(const QStringList &names);
    // The loaded file, handed to every preset.
    void setCurrentVideoFile(const std::shared_ptr<MCVideoFile> &file);

    void initializeSelectionsList();
    void initializeSettingsList();
    void creatSelectionsNamesList();
    void creatSettingsNamesList();
    // Only editable presets are saved, in list order.
    void savePresetSelectionsListToUserDefaults();
    void savePresetSettingsListToUserDefaults();

    // The presets in force at the last run (the preferences' selectionIndex
    // and settingIndex), put back without applying them: no file is loaded.
    void restoreMethodIndexes(int selectionIndex, int settingIndex);
    int selectionMethodIndex() const { return m_selectionMethodIndex; }
    void setSelectionMethodIndex(int index);
    Q_INVOKABLE void applyCurrentPresetSelections();
    int settingMethodIndex() const { return m_settingMethodIndex; }
    void setSettingMethodIndex(int index);
    Q_INVOKABLE void applyCurrentPresetSettings();
    bool changingPresetSetting() const { return m_changingPresetSetting; }

    Q_INVOKABLE void addPresetSelection();
    Q_INVOKABLE void addPresetSettings();
    // Built-in presets are never removed.
    Q_INVOKABLE void removePresetSelection();
    Q_INVOKABLE void removePresetSettings();
    Q_INVOKABLE void openPresetSelectionPanel();
    Q_INVOKABLE void openPresetSettingsPanel();
    Q_INVOKABLE void okPresetSelectionPanel();
    Q_INVOKABLE void okPresetSettingsPanel();
    int selectionsTableIndex() const { return m_selectionsTableIndex; }
    void selectionListTableClicked(int position);
    int settingsTableIndex() const { return m_settingsTableIndex; }
    void settingsListTableClicked(int position);
    // The presets selected in the editors' list views (null for none).
    MCPresetSelectionsPtr selectedPresetSelections() const;
    MCPresetSettingsPtr selectedPresetSettings() const;
    // The names the editors' list views show, in list order.
    QStringList selectionsViewNames() const;
    QStringList settingsViewNames() const;
    // Renames the preset selected in an editor. Built-in presets keep their
    // names, and an empty name or "Manual" (which the views leave out) is
    // refused; answers whether the name was taken.
    bool renameSelectedPresetSelections(const QString &name);
    bool renameSelectedPresetSettings(const QString &name);
    Q_INVOKABLE void guiClickedTrap();

    // Filter editor.
    Q_INVOKABLE void editFilterPanel(int tag);
    Q_INVOKABLE void startEditingFiltersForButton(int tag);
    Q_INVOKABLE void stopEditingFiltersForButton(int tag);
    Q_INVOKABLE void addFilterButtonClicked(int tag);
    Q_INVOKABLE void openFilterPanelForButton(int tag);
    Q_INVOKABLE void adjustFilterButtonsCount();
    // The pointer entering and leaving an edit button.
    Q_INVOKABLE void filterButtonEntered(int tag);
    Q_INVOKABLE void filterButtonExited(int tag);
    const MCFilterRow &filterRowForTag(int tag) const;
    QVariantList audioFilterRows() const { return m_audioRows.toVariantList(); }
    QVariantList subtitleFilterRows() const { return m_subtitleRows.toVariantList(); }
    bool af1Visibility() const { return m_audioRows.row(1).visible; }
    bool af2Visibility() const { return m_audioRows.row(2).visible; }
    bool af3Visibility() const { return m_audioRows.row(3).visible; }
    bool sf1Visibility() const { return m_subtitleRows.row(1).visible; }
    bool sf2Visibility() const { return m_subtitleRows.row(2).visible; }
    bool sf3Visibility() const { return m_subtitleRows.row(3).visible; }
    // Where a filter panel opens for a button (screen coordinates, y down):
    // centred on the button, its top 35 points below the button's top edge.
    static QPoint filterPanelOrigin(const QRect &buttonOnScreen, const QSize &panelSize);

    QString afUserTrackChoice() const { return m_afUserTrackChoice; }
    void setAfUserTrackChoice(const QString &choice);
    QString sfUserTrackChoice() const { return m_sfUserTrackChoice; }
    void setSfUserTrackChoice(const QString &choice);
    bool afIsByTrackNumber() const { return m_afIsByTrackNumber; }
    bool afIsByProperties() const { return m_afIsByProperties; }
    bool sfIsByTrackNumber() const { return m_sfIsByTrackNumber; }
    bool sfIsByProperties() const { return m_sfIsByProperties; }
    int afPanelHeight() const { return m_afPanelHeight; }
    int sfPanelHeight() const { return m_sfPanelHeight; }
    bool isEditingAudioFilter() const { return m_audioRows.isEditing(); }
    bool isEditingSubtitleFilter() const { return m_subtitleRows.isEditing(); }

    MCPreferences *appPreferences = nullptr;
    MCSelectionController *selectionController = nullptr;
    QList<MCPresetSelectionsPtr> presetSelectionsList;
    QStringList presetSelectionsNamesList;
    QList<MCPresetSettingsPtr> presetSettingsList;
    QStringList presetSettingsNamesList;
    bool presetSelectionsPanelOpen = false;
    bool presetSettingsPanelOpen = false;

    QStringList pTypeOfProcessList, pVideoActionList, pVideoGenericList, pStereoActionList, pStereoBitRateList,
        pSurroundActionList, pSurroundBitRateList, pSubActionList;
    QStringList afTrackChoiceList, afTrackNumberList, afLanguageList, afCodecList, afChannelsList;
    QStringList sfTrackChoiceList, sfTrackNumberList, sfLanguageList, sfCodecList;
    QString afUserTrackNumber, afUserLanguage, afUserCodec, afUserChannels;
    QString sfUserTrackNumber, sfUserLanguage, sfUserCodec;
    QVariantList currentAudioFilterArray;
    QVariantList currentSubtitleFilterArray;

signals:
    void presetsChanged();
    void methodIndexesChanged();
    void editorChanged();
    // The window ends text editing in its panels.
    void endEditingRequested();

private:
    struct FilterButton
    {
        bool audio = true;
        int row = 0; // 1 to 3, 0 for a tag that names no button
    };
    static FilterButton filterButtonFor(int tag);
    MCFilterRows &rowsOf(const FilterButton &button) { return button.audio ? m_audioRows : m_subtitleRows; }
    void loadFiltersOfSelectedPreset();
    void writeBackFilter(const FilterButton &button);
    void stopAllFilterEditing();
    void rememberMethodIndexes();

    template<typename Preset>
    static QList<std::shared_ptr<Preset>> viewOf(const QList<std::shared_ptr<Preset>> &list);
    template<typename Preset>
    static int viewPositionFor(const QList<std::shared_ptr<Preset>> &list, int methodIndex);

    MCFilterRows m_audioRows;
    MCFilterRows m_subtitleRows;
    std::shared_ptr<MCVideoFile> m_currentVideoFile;
    int m_selectionMethodIndex = 0;
    int m_settingMethodIndex = 0;
    bool m_changingPresetSetting = false;
    int m_selectionsTableIndex = -1;
    int m_settingsTableIndex = -1;
    QString m_afUserTrackChoice;
    QString m_sfUserTrackChoice;
    bool m_afIsByTrackNumber = false;
    bool m_afIsByProperties = false;
    bool m_sfIsByTrackNumber = false;
    bool m_sfIsByProperties = false;
    int m_afPanelHeight = 100;
    int m_sfPanelHeight = 100;
};
