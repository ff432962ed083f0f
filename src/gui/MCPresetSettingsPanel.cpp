#include "MCPresetSettingsPanel.h"

#include "MCNumberField.h"
#include "MCMp4TabRules.h"
#include "MCPresetListColumn.h"
#include "MCPresetsController.h"
#include "MCSelectionController.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

namespace {

// A value missing from the list (an older or hand-made preset) is still
// shown, at the end.
void fillPopUp(QComboBox *popUp, QStringList items, const QString &current)
{
    if (!current.isEmpty() && !items.contains(current))
        items.append(current);
    QStringList present;
    for (int i = 0; i < popUp->count(); ++i)
        present << popUp->itemText(i);
    if (present != items) {
        popUp->clear();
        popUp->addItems(items);
    }
    popUp->setCurrentIndex(popUp->findText(current));
}

void showRow(QComboBox *popUp, const QStringList &items, int row)
{
    fillPopUp(popUp, items, QString());
    popUp->setCurrentIndex(row >= 0 && row < popUp->count() ? row : -1);
}

void showText(QLineEdit *field, const QString &text)
{
    if (!field->hasFocus() && field->text() != text)
        field->setText(text);
}

QLineEdit *numberField(QWidget *parent)
{
    auto *field = new QLineEdit(parent);
    field->setFixedWidth(70);
    field->setAlignment(Qt::AlignRight);
    return field;
}

// A choice pop-up, a field and a unit on one line.
QWidget *line(QWidget *parent, std::initializer_list<QWidget *> widgets, const QString &unit = QString())
{
    auto *box = new QWidget(parent);
    auto *layout = new QHBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *widget : widgets)
        layout->addWidget(widget);
    if (!unit.isEmpty())
        layout->addWidget(new QLabel(unit, box));
    layout->addStretch();
    return box;
}

} // namespace

MCPresetSettingsPanel::MCPresetSettingsPanel(MCPresetsController *presets, QWidget *window)
    : QDialog(window)
    , m_presets(presets)
{
    setObjectName(QStringLiteral("presetSettingsPanel"));
    setWindowTitle(QStringLiteral("Settings Presets"));
    setWindowModality(Qt::WindowModal);

    auto *listColumn = new MCPresetListColumn(this);
    settingsTableController = listColumn->list;
    namesModel = listColumn->names;
    addPresetButton = listColumn->addButton;
    removePresetButton = listColumn->removeButton;

    auto *columns = new QHBoxLayout;
    columns->addWidget(listColumn);
    columns->addSpacing(8);
    columns->addWidget(buildDetails(), 1);

    okButton = new QPushButton(QStringLiteral("OK"), this);
    okButton->setDefault(true);
    auto *bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(okButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addLayout(bottom);

    connect(settingsTableController->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (!m_refreshing && current.row() != m_presets->settingsTableIndex())
                    m_presets->settingsListTableClicked(current.row());
            });
    connect(addPresetButton, &QPushButton::clicked, m_presets, &MCPresetsController::addPresetSettings);
    connect(removePresetButton, &QPushButton::clicked, m_presets, &MCPresetsController::removePresetSettings);
    connect(okButton, &QPushButton::clicked, this, &MCPresetSettingsPanel::okPresetSettingsPanel);
    connect(m_presets, &MCPresetsController::editorChanged, this, &MCPresetSettingsPanel::refresh);
    connect(m_presets, &MCPresetsController::presetsChanged, this, &MCPresetSettingsPanel::refresh);
    connect(m_presets, &MCPresetsController::endEditingRequested, this, [this] {
        if (auto *field = qobject_cast<QLineEdit *>(focusWidget()))
            emit field->editingFinished();
    });
    bindDetails();
    refresh();
}

QWidget *MCPresetSettingsPanel::buildDetails()
{
    m_details = new QWidget(this);
    const auto popUp = [this] { return new QComboBox(m_details); };
    nameField = new QLineEdit(m_details);
    typeOfProcessPopUp = popUp();
    targetPopUp = popUp();
    devicePopUp = popUp();
    videoActionPopUp = popUp();
    videoBitRatePopUp = popUp();
    widthPopUp = popUp();
    fpsPopUp = popUp();
    videoBitRateField = numberField(m_details);
    widthField = numberField(m_details);
    fpsField = numberField(m_details);
    new MCNumberField(videoBitRateField, MCNumberField::Kind::Whole);
    new MCNumberField(widthField, MCNumberField::Kind::Whole);
    new MCNumberField(fpsField, MCNumberField::Kind::Decimal);
    stereoActionPopUp = popUp();
    stereoBitRatePopUp = popUp();
    surroundActionPopUp = popUp();
    surroundBitRatePopUp = popUp();
    addStereoCheckBox = new QCheckBox(QStringLiteral("Add a stereo copy of surround tracks"), m_details);
    subActionPopUp = popUp();

    auto *general = new QGroupBox(QStringLiteral("Preset"), m_details);
    auto *generalForm = new QFormLayout(general);
    generalForm->addRow(QStringLiteral("Name:"), nameField);
    generalForm->addRow(QStringLiteral("Process:"), typeOfProcessPopUp);
    generalForm->addRow(QStringLiteral("Convert into:"), targetPopUp);
    generalForm->addRow(QStringLiteral("Device:"), devicePopUp);

    auto *video = new QGroupBox(QStringLiteral("Video"), m_details);
    auto *videoForm = new QFormLayout(video);
    videoForm->addRow(QStringLiteral("Action:"), videoActionPopUp);
    videoForm->addRow(QStringLiteral("Bit rate:"), line(video, {videoBitRatePopUp, videoBitRateField}, QStringLiteral("kb/s")));
    videoForm->addRow(QStringLiteral("Width:"), line(video, {widthPopUp, widthField}, QStringLiteral("pixels")));
    videoForm->addRow(QStringLiteral("Frame rate:"), line(video, {fpsPopUp, fpsField}, QStringLiteral("fps")));

    auto *audio = new QGroupBox(QStringLiteral("Audio"), m_details);
    auto *audioForm = new QFormLayout(audio);
    audioForm->addRow(QStringLiteral("Stereo:"), stereoActionPopUp);
    audioForm->addRow(QStringLiteral("Bit rate:"), line(audio, {stereoBitRatePopUp}, QStringLiteral("kb/s")));
    audioForm->addRow(QStringLiteral("Surround:"), surroundActionPopUp);
    audioForm->addRow(QStringLiteral("Bit rate:"), line(audio, {surroundBitRatePopUp}, QStringLiteral("kb/s")));
    audioForm->addRow(QString(), addStereoCheckBox);

    auto *subtitles = new QGroupBox(QStringLiteral("Subtitles"), m_details);
    auto *subtitleForm = new QFormLayout(subtitles);
    subtitleForm->addRow(QStringLiteral("Action:"), subActionPopUp);

    auto *left = new QVBoxLayout;
    left->addWidget(general);
    left->addWidget(video);
    left->addStretch();
    auto *right = new QVBoxLayout;
    right->addWidget(audio);
    right->addWidget(subtitles);
    right->addStretch();
    auto *columns = new QHBoxLayout(m_details);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->addLayout(left, 1);
    columns->addLayout(right, 1);
    return m_details;
}

void MCPresetSettingsPanel::bindDetails()
{
    // Each control writes its field of the selected preset; built-in
    // presets are shown but not changed.
    const auto change = [this](auto &&write) {
        return [this, write](auto value) {
            if (m_refreshing)
                return;
            if (const MCPresetSettingsPtr preset = m_presets->selectedPresetSettings(); preset && preset->isEditable)
                write(*preset, value);
            refresh();
        };
    };
    const auto rowOf = [this](QComboBox *popUp, auto &&write) {
        connect(popUp, &QComboBox::activated, this, [this, write](int row) {
            if (m_refreshing)
                return;
            if (const MCPresetSettingsPtr preset = m_presets->selectedPresetSettings(); preset && preset->isEditable)
                write(*preset, row);
            refresh();
        });
    };
    const auto textOf = [this, change](QComboBox *popUp, QString MCPresetSettings::*field) {
        connect(popUp, &QComboBox::textActivated, this,
                change([field](MCPresetSettings &p, const QString &text) { std::invoke(field, p) = text; }));
    };
    const auto typed = [this, change](QLineEdit *edit, QString MCPresetSettings::*field) {
        connect(edit, &QLineEdit::editingFinished, this, [edit, field, apply = change([field](MCPresetSettings &p, const QString &text) {
                                                                     std::invoke(field, p) = text;
                                                                 })] { apply(edit->text().trimmed()); });
    };
    connect(nameField, &QLineEdit::editingFinished, this, [this] {
        if (m_refreshing || m_presets->renameSelectedPresetSettings(nameField->text()))
            return;
        // A refused name gives way to the preset's own.
        const auto preset = m_presets->selectedPresetSettings();
        nameField->setText(preset ? preset->pName : QString());
    });
    rowOf(typeOfProcessPopUp, [](MCPresetSettings &p, int row) { p.pTypeOfProcessIndex = row; });
    textOf(targetPopUp, &MCPresetSettings::pTarget);
    textOf(devicePopUp, &MCPresetSettings::pDevice);
    rowOf(videoActionPopUp, [](MCPresetSettings &p, int row) { p.setPVideoActionIndex(row); });
    rowOf(videoBitRatePopUp, [](MCPresetSettings &p, int row) { p.pVideoBitRateIndex = row; });
    rowOf(widthPopUp, [](MCPresetSettings &p, int row) { p.pWidthIndex = row; });
    rowOf(fpsPopUp, [](MCPresetSettings &p, int row) { p.pFPSIndex = row; });
    typed(videoBitRateField, &MCPresetSettings::pVideoBitRate);
    typed(widthField, &MCPresetSettings::pWidth);
    typed(fpsField, &MCPresetSettings::pFPS);
    rowOf(stereoActionPopUp, [](MCPresetSettings &p, int row) { p.pStereoActionIndex = row; });
    textOf(stereoBitRatePopUp, &MCPresetSettings::pStereoBitRate);
    rowOf(surroundActionPopUp, [](MCPresetSettings &p, int row) { p.pSurroundActionIndex = row; });
    textOf(surroundBitRatePopUp, &MCPresetSettings::pSurroundBitRate);
    textOf(subActionPopUp, &MCPresetSettings::pSubAction);
    connect(addStereoCheckBox, &QCheckBox::clicked, this,
            change([](MCPresetSettings &p, bool ticked) { p.pAudioAddStereo = ticked; }));
}

QStringList MCPresetSettingsPanel::devicesFor(const QString &target) const
{
    // Each target has its own devices: an MP4 is made for a player.
    if (target == MCPresetSettings::targetMp4())
        return MCMp4TabRules::deviceList();
    return m_presets->selectionController ? m_presets->selectionController->deviceList : QStringList();
}

void MCPresetSettingsPanel::openPresetSettingsPanel()
{
    m_presets->openPresetSettingsPanel();
    refresh();
    open();
}

void MCPresetSettingsPanel::okPresetSettingsPanel()
{
    m_presets->okPresetSettingsPanel();
    QDialog::accept();
    emit presetChosen();
}

void MCPresetSettingsPanel::reject()
{
    // Changes are made in place; closing the sheet keeps them, as OK does.
    okPresetSettingsPanel();
}

void MCPresetSettingsPanel::refresh()
{
    m_refreshing = true;
    const MCPresetsController &c = *m_presets;
    const QStringList names = c.settingsViewNames();
    if (namesModel->stringList() != names)
        namesModel->setStringList(names);
    settingsTableController->setCurrentIndex(namesModel->index(c.settingsTableIndex(), 0));

    const MCPresetSettingsPtr preset = c.selectedPresetSettings();
    const MCPresetSettings shown = preset ? *preset : MCPresetSettings();
    const bool editable = preset && preset->isEditable;
    removePresetButton->setEnabled(editable);
    m_details->setEnabled(editable);

    showText(nameField, shown.pName);
    showRow(typeOfProcessPopUp, c.pTypeOfProcessList, shown.pTypeOfProcessIndex);
    fillPopUp(targetPopUp, MCPresetSettings::targetList(), shown.pTarget);
    fillPopUp(devicePopUp, devicesFor(shown.pTarget), shown.pDevice);
    showRow(videoActionPopUp, c.pVideoActionList, shown.pVideoActionIndex());
    showRow(videoBitRatePopUp, c.pVideoGenericList, shown.pVideoBitRateIndex);
    showRow(widthPopUp, c.pVideoGenericList, shown.pWidthIndex);
    showRow(fpsPopUp, c.pVideoGenericList, shown.pFPSIndex);
    showText(videoBitRateField, shown.pVideoBitRate);
    showText(widthField, shown.pWidth);
    showText(fpsField, shown.pFPS);
    // A typed value only counts with "Custom".
    videoBitRateField->setEnabled(shown.pVideoBitRateIndex == 1);
    widthField->setEnabled(shown.pWidthIndex == 1);
    fpsField->setEnabled(shown.pFPSIndex == 1);
    showRow(stereoActionPopUp, c.pStereoActionList, shown.pStereoActionIndex);
    fillPopUp(stereoBitRatePopUp, c.pStereoBitRateList, shown.pStereoBitRate);
    showRow(surroundActionPopUp, c.pSurroundActionList, shown.pSurroundActionIndex);
    fillPopUp(surroundBitRatePopUp, c.pSurroundBitRateList, shown.pSurroundBitRate);
    addStereoCheckBox->setChecked(shown.pAudioAddStereo);
    fillPopUp(subActionPopUp, c.pSubActionList, shown.pSubAction);
    m_refreshing = false;
}
