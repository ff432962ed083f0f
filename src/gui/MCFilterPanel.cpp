#include "MCFilterPanel.h"

#include "MCPresetsController.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <functional>

namespace {

constexpr int kPanelWidth = 300;

void fillPopUp(QComboBox *popUp, const QStringList &items, const QString &current)
{
    QStringList present;
    for (int i = 0; i < popUp->count(); ++i)
        present << popUp->itemText(i);
    if (present != items) {
        popUp->clear();
        popUp->addItems(items);
    }
    popUp->setCurrentIndex(popUp->findText(current));
}

} // namespace

MCFilterPanel::MCFilterPanel(MCPresetsController *presets, bool audio, QWidget *editor)
    : QFrame(editor, Qt::Tool | Qt::FramelessWindowHint)
    , m_presets(presets)
    , m_audio(audio)
{
    setObjectName(audio ? QStringLiteral("audioFilterPanel") : QStringLiteral("subtitleFilterPanel"));
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setLineWidth(2);
    // Showing under the pointer must not take the keyboard from the editor.
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto *outer = new QVBoxLayout(this);
    m_form = new QFormLayout;
    m_form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    outer->addLayout(m_form);
    m_explanation = new QLabel(audio ? QStringLiteral("Picks the first audio track that has all of these properties.")
                                     : QStringLiteral("Picks the first subtitle track that has all of these properties."),
                               this);
    m_explanation->setWordWrap(true);
    outer->addWidget(m_explanation);
    outer->addStretch();

    m_choice = addPopUp(QStringLiteral("Tracks:"));
    m_number = addPopUp(QStringLiteral("Number:"));
    m_language = addPopUp(QStringLiteral("Language:"));
    m_codec = addPopUp(QStringLiteral("Codec:"));
    m_language->setMaxVisibleItems(16);
    if (audio)
        m_channels = addPopUp(QStringLiteral("Channels:"));

    connect(m_choice, &QComboBox::textActivated, this, [this](const QString &choice) {
        if (m_audio)
            m_presets->setAfUserTrackChoice(choice);
        else
            m_presets->setSfUserTrackChoice(choice);
    });
    bindPopUp(m_number, audio ? &MCPresetsController::afUserTrackNumber : &MCPresetsController::sfUserTrackNumber);
    bindPopUp(m_language, audio ? &MCPresetsController::afUserLanguage : &MCPresetsController::sfUserLanguage);
    bindPopUp(m_codec, audio ? &MCPresetsController::afUserCodec : &MCPresetsController::sfUserCodec);
    if (m_channels)
        bindPopUp(m_channels, &MCPresetsController::afUserChannels);
    connect(m_presets, &MCPresetsController::editorChanged, this, &MCFilterPanel::refresh);
    refresh();
}

QComboBox *MCFilterPanel::addPopUp(const QString &label)
{
    auto *popUp = new QComboBox(this);
    m_form->addRow(label, popUp);
    return popUp;
}

void MCFilterPanel::bindPopUp(QComboBox *popUp, QString MCPresetsController::*field)
{
    connect(popUp, &QComboBox::textActivated, this, [this, field](const QString &text) {
        if (!m_refreshing)
            std::invoke(field, m_presets) = text;
    });
}

int MCFilterPanel::panelHeight() const
{
    return m_audio ? m_presets->afPanelHeight() : m_presets->sfPanelHeight();
}

void MCFilterPanel::refresh()
{
    m_refreshing = true;
    const MCPresetsController &p = *m_presets;
    const bool editing = m_audio ? p.isEditingAudioFilter() : p.isEditingSubtitleFilter();
    fillPopUp(m_choice, m_audio ? p.afTrackChoiceList : p.sfTrackChoiceList,
              m_audio ? p.afUserTrackChoice() : p.sfUserTrackChoice());
    // A filter may leave a field empty; while it is edited the field takes
    // the first entry of its list, which is what the panel shows.
    const auto show = [this, editing](QComboBox *popUp, const QStringList &items, QString MCPresetsController::*field) {
        QString &value = std::invoke(field, m_presets);
        if (editing && !items.contains(value) && !items.isEmpty())
            value = items.first();
        fillPopUp(popUp, items, value);
        if (popUp->currentIndex() < 0 && popUp->count() > 0)
            popUp->setCurrentIndex(0);
    };
    if (m_audio) {
        show(m_number, p.afTrackNumberList, &MCPresetsController::afUserTrackNumber);
        show(m_language, p.afLanguageList, &MCPresetsController::afUserLanguage);
        show(m_codec, p.afCodecList, &MCPresetsController::afUserCodec);
        show(m_channels, p.afChannelsList, &MCPresetsController::afUserChannels);
    } else {
        show(m_number, p.sfTrackNumberList, &MCPresetsController::sfUserTrackNumber);
        show(m_language, p.sfLanguageList, &MCPresetsController::sfUserLanguage);
        show(m_codec, p.sfCodecList, &MCPresetsController::sfUserCodec);
    }
    const bool byNumber = m_audio ? p.afIsByTrackNumber() : p.sfIsByTrackNumber();
    const bool byProperties = m_audio ? p.afIsByProperties() : p.sfIsByProperties();
    m_form->setRowVisible(m_number, byNumber);
    m_form->setRowVisible(m_language, byProperties);
    m_form->setRowVisible(m_codec, byProperties);
    if (m_channels)
        m_form->setRowVisible(m_channels, byProperties);
    m_explanation->setVisible(byProperties);
    for (QComboBox *popUp : findChildren<QComboBox *>())
        popUp->setEnabled(editing);
    setFixedSize(kPanelWidth, panelHeight());
    m_refreshing = false;
}
