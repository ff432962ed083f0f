#include "MCPresetSelectionsPanel.h"

#include "MCFilterButton.h"
#include "MCFilterPanel.h"
#include "MCPresetListColumn.h"
#include "MCPresetsController.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QStringListModel>
#include <QVBoxLayout>

namespace {

const QString kFirstTrack = QStringLiteral("First Track");

} // namespace

MCPresetSelectionsPanel::MCPresetSelectionsPanel(MCPresetsController *presets, QWidget *window)
    : QDialog(window)
    , m_presets(presets)
{
    setObjectName(QStringLiteral("presetSelectionsPanel"));
    setWindowTitle(QStringLiteral("Track Selection Presets"));
    setWindowModality(Qt::WindowModal);

    // The presets, with add and remove below.
    auto *listColumn = new MCPresetListColumn(this);
    selectionsTableController = listColumn->list;
    namesModel = listColumn->names;
    addPresetButton = listColumn->addButton;
    removePresetButton = listColumn->removeButton;

    // The selected preset.
    nameField = new QLineEdit(this);
    firstVideoCheckBox = new QCheckBox(QStringLiteral("Select the first video track"), this);
    auto *form = new QFormLayout;
    form->addRow(QStringLiteral("Name:"), nameField);
    form->addRow(QString(), firstVideoCheckBox);
    audioFilterPanel = new MCFilterPanel(presets, true, this);
    subtitleFilterPanel = new MCFilterPanel(presets, false, this);
    m_audioBox = buildFilterRows(true);
    m_subtitleBox = buildFilterRows(false);
    auto *hint = new QLabel(QStringLiteral("Rest the pointer on a filter to see it; click Edit to change it. "
                                           "The first filter that finds a track decides."),
                            this);
    hint->setWordWrap(true);
    auto *filters = new QHBoxLayout;
    filters->addWidget(m_audioBox);
    filters->addWidget(m_subtitleBox);
    auto *detailColumn = new QVBoxLayout;
    detailColumn->addLayout(form);
    detailColumn->addLayout(filters);
    detailColumn->addWidget(hint);
    detailColumn->addStretch();

    auto *columns = new QHBoxLayout;
    columns->addWidget(listColumn);
    columns->addSpacing(8);
    columns->addLayout(detailColumn, 1);

    okButton = new QPushButton(QStringLiteral("OK"), this);
    okButton->setDefault(true);
    auto *bottom = new QHBoxLayout;
    bottom->addStretch();
    bottom->addWidget(okButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addLayout(bottom);
    setMinimumSize(700, 420);

    connect(selectionsTableController->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) {
                if (!m_refreshing && current.row() != m_presets->selectionsTableIndex())
                    m_presets->selectionListTableClicked(current.row());
            });
    connect(addPresetButton, &QPushButton::clicked, m_presets, &MCPresetsController::addPresetSelection);
    connect(removePresetButton, &QPushButton::clicked, m_presets, &MCPresetsController::removePresetSelection);
    connect(nameField, &QLineEdit::editingFinished, this, [this] {
        if (m_refreshing || m_presets->renameSelectedPresetSelections(nameField->text()))
            return;
        // A refused name gives way to the preset's own.
        const auto preset = m_presets->selectedPresetSelections();
        nameField->setText(preset ? preset->pName : QString());
    });
    connect(firstVideoCheckBox, &QCheckBox::clicked, this, [this](bool ticked) {
        if (const MCPresetSelectionsPtr preset = m_presets->selectedPresetSelections(); preset && preset->isEditable)
            preset->pSelectedVideoTrack = ticked ? kFirstTrack : QStringLiteral("0");
    });
    connect(okButton, &QPushButton::clicked, this, &MCPresetSelectionsPanel::okPresetSelectionPanel);
    connect(m_presets, &MCPresetsController::editorChanged, this, &MCPresetSelectionsPanel::refresh);
    connect(m_presets, &MCPresetsController::presetsChanged, this, &MCPresetSelectionsPanel::refresh);
    connect(m_presets, &MCPresetsController::endEditingRequested, this, [this] {
        if (nameField->hasFocus())
            emit nameField->editingFinished();
    });
    refresh();
}

QGroupBox *MCPresetSelectionsPanel::buildFilterRows(bool audio)
{
    auto *box = new QGroupBox(audio ? QStringLiteral("Audio filters") : QStringLiteral("Subtitle filters"), this);
    auto *grid = new QGridLayout(box);
    MCFilterPanel *panel = audio ? audioFilterPanel : subtitleFilterPanel;
    const int base = audio ? 100 : 200;
    MCFilterButton *edit[3];
    for (int row = 1; row <= 3; ++row) {
        edit[row - 1] = new MCFilterButton(base + row, panel, m_presets, box);
        edit[row - 1]->setMinimumWidth(edit[row - 1]->fontMetrics().horizontalAdvance(QStringLiteral("Filter #0")) + 32);
        grid->addWidget(edit[row - 1], row - 1, 1);
    }
    QPushButton *add2 = MCPresetListColumn::smallButton(QStringLiteral("+"), box);
    QPushButton *add3 = MCPresetListColumn::smallButton(QStringLiteral("+"), box);
    // Row 1 has no add button; keep its column as wide as the others'.
    grid->setColumnMinimumWidth(0, add2->width());
    grid->addWidget(add2, 1, 0);
    grid->addWidget(add3, 2, 0);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(3, 1);
    for (auto [button, tag] : {std::pair{add2, base + 92}, std::pair{add3, base + 93}}) {
        button->setObjectName(QStringLiteral("addFilterButton%1").arg(tag));
        connect(button, &QPushButton::clicked, m_presets, [this, tag = tag] { m_presets->addFilterButtonClicked(tag); });
    }
    if (audio) {
        af1EditButton = edit[0];
        af2EditButton = edit[1];
        af3EditButton = edit[2];
        af2AddButton = add2;
        af3AddButton = add3;
    } else {
        sf1EditButton = edit[0];
        sf2EditButton = edit[1];
        sf3EditButton = edit[2];
        sf2AddButton = add2;
        sf3AddButton = add3;
    }
    return box;
}

void MCPresetSelectionsPanel::openPresetSelectionPanel()
{
    m_presets->openPresetSelectionPanel();
    refresh();
    open();
}

void MCPresetSelectionsPanel::okPresetSelectionPanel()
{
    m_presets->okPresetSelectionPanel();
    audioFilterPanel->hide();
    subtitleFilterPanel->hide();
    QDialog::accept();
    emit presetChosen();
}

void MCPresetSelectionsPanel::reject()
{
    // Changes are made in place; closing the sheet keeps them, as OK does.
    okPresetSelectionPanel();
}

void MCPresetSelectionsPanel::refresh()
{
    m_refreshing = true;
    const QStringList names = m_presets->selectionsViewNames();
    if (namesModel->stringList() != names)
        namesModel->setStringList(names);
    const int position = m_presets->selectionsTableIndex();
    selectionsTableController->setCurrentIndex(namesModel->index(position, 0));
    const MCPresetSelectionsPtr preset = m_presets->selectedPresetSelections();
    const bool editable = preset && preset->isEditable;
    removePresetButton->setEnabled(editable);
    if (!nameField->hasFocus())
        nameField->setText(preset ? preset->pName : QString());
    firstVideoCheckBox->setChecked(preset && preset->pSelectedVideoTrack == kFirstTrack);
    for (QWidget *detail : {static_cast<QWidget *>(nameField), static_cast<QWidget *>(firstVideoCheckBox),
                            static_cast<QWidget *>(m_audioBox), static_cast<QWidget *>(m_subtitleBox)})
        detail->setEnabled(editable);
    refreshRows(true);
    refreshRows(false);
    m_refreshing = false;
}

void MCPresetSelectionsPanel::refreshRows(bool audio)
{
    const int base = audio ? 100 : 200;
    MCFilterButton *edits[] = {audio ? af1EditButton : sf1EditButton, audio ? af2EditButton : sf2EditButton,
                               audio ? af3EditButton : sf3EditButton};
    QPushButton *adds[] = {audio ? af2AddButton : sf2AddButton, audio ? af3AddButton : sf3AddButton};
    for (int row = 1; row <= 3; ++row)
        edits[row - 1]->setVisible(m_presets->filterRowForTag(base + row).visible);
    for (int row = 2; row <= 3; ++row) {
        const MCFilterRow &state = m_presets->filterRowForTag(base + 90 + row);
        QPushButton *add = adds[row - 2];
        add->setText(state.addTitle);
        add->setVisible(state.addVisible);
        add->setEnabled(state.addEnabled);
    }
}
