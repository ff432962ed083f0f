#include "MCMkvTabBinding.h"

#include "MCFormParts.h"
#include "MCMainWindow.h"
#include "MCMkvTabPage.h"
#include "MCMkvTabRules.h"
#include "MCMp4TabRules.h"
#include "MCSelectionController.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using MCFormParts::checkRow;
using MCFormParts::fillCombo;
using MCFormParts::showText;

namespace {

QString okColor(bool ok)
{
    return ok ? MCSelectionController::colorBlack : MCSelectionController::colorRed;
}

} // namespace

MCMkvTabBinding::MCMkvTabBinding(MCMkvTabPage *page, MCSelectionController *rules, std::function<void()> userChanged,
                                 QObject *parent)
    : QObject(parent)
    , m_page(page)
    , m_rules(rules)
    , m_tab(rules->conversionTab(page->tabName))
    , m_userChanged(std::move(userChanged))
{
    Q_ASSERT(m_tab);
    MCMainWindow::setColorName(page->convertRefusalLabel, MCSelectionController::colorRed);
    bindRows();
    bindField(page->vidBitRateField, &MCSelectionController::setEnteredUserVideoBitRate);
    bindField(page->resWidthField, &MCSelectionController::setEnteredUserWidth);
    connect(m_tab, &MCMkvTabRules::stateChanged, this, &MCMkvTabBinding::refresh);
}

void MCMkvTabBinding::changed()
{
    if (!m_refreshing)
        m_userChanged();
}

void MCMkvTabBinding::bindRows()
{
    MCMkvTabRules *tab = m_tab;
    connect(m_page->videoMatrix, &QButtonGroup::idClicked, tab, [this, tab](int id) {
        tab->setVideoMatrixIndex(id);
        changed();
    });
    connect(m_page->audioMatrix, &QButtonGroup::idClicked, tab, [this, tab](int id) {
        tab->setAudioMatrixIndex(id);
        changed();
    });
    connect(m_page->subtitleMatrix, &QButtonGroup::idClicked, tab, [this, tab](int id) {
        tab->setSubtitleMatrixIndex(id);
        changed();
    });
    connect(m_page->addStereoCheckBox, &QCheckBox::clicked, tab, [this, tab](bool ticked) {
        tab->setAddStereoTrack(ticked);
        changed();
    });
    connect(m_page->audioTrackPopUp, &QComboBox::activated, this, [this](int index) {
        if (!m_refreshing)
            m_rules->setAudioTrackPopupIndex(index);
    });
    if (m_page->devicePopUp) {
        connect(m_page->devicePopUp, &QComboBox::textActivated, this, [this](const QString &device) {
            if (m_refreshing)
                return;
            m_rules->setMp4Device(device);
            changed();
        });
    }
}

void MCMkvTabBinding::bindField(QLineEdit *field, void (MCSelectionController::*setter)(const QString &))
{
    connect(field, &QLineEdit::editingFinished, this, [this, field, setter] {
        if (m_refreshing)
            return;
        const QString text = field->text().trimmed();
        std::invoke(setter, m_rules, text.isEmpty() ? QString() : text);
        changed();
    });
}

void MCMkvTabBinding::refresh()
{
    if (m_refreshing)
        return;
    m_refreshing = true;
    const MCMkvTabRules &tab = *m_tab;
    const MCSelectionController &r = *m_rules;
    MCMkvTabPage *p = m_page;
    checkRow(p->videoMatrix, tab.videoMatrixIndex());
    checkRow(p->audioMatrix, tab.audioMatrixIndex());
    checkRow(p->subtitleMatrix, tab.subtitleMatrixIndex());
    MCMainWindow::setColorName(p->videoMatrix->button(0), tab.videoPassThruColor);
    for (int row : {MCMkvTabRules::AudioAac51, MCMkvTabRules::AudioAc351})
        MCMainWindow::setColorName(p->audioMatrix->button(row), tab.surroundColor);

    showText(p->vidBitRateField, r.enteredUserVideoBitRate());
    showText(p->resWidthField, r.enteredUserWidth());
    p->vidBitRateField->setEnabled(tab.mustConvertVideoTrack);
    p->resWidthField->setEnabled(tab.mustConvertVideoTrack);
    MCMainWindow::setColorName(p->vidBitRateField, okColor(r.userBitRateOK));
    MCMainWindow::setColorName(p->resWidthField, okColor(r.userWidthOK));

    fillCombo(p->audioTrackPopUp, r.audioTrackLabels(), QString());
    p->audioTrackPopUp->setCurrentIndex(r.audioTrackPopupIndex());
    p->audioTrackPopUp->setVisible(!r.hideAudioTrackPopupFlag);
    p->audioTrackLabel->setVisible(!r.hideAudioTrackPopupFlag);
    for (QAbstractButton *button : p->audioMatrix->buttons())
        button->setEnabled(tab.audioSelected);
    p->addStereoCheckBox->setEnabled(tab.canAddStereoTrack);
    p->addStereoCheckBox->setChecked(tab.addStereoTrack());

    for (QAbstractButton *button : p->subtitleMatrix->buttons())
        button->setEnabled(tab.subtitleSelected);
    refreshDevice();
    // The refusal is the current tab's: another tab's reason is not this one's.
    const bool current = r.currentTab() == p->tabName;
    const QString refusal = current ? r.convertRefusalText() : QString();
    p->convertButton->setEnabled(current && r.canConvert);
    p->convertButton->setToolTip(refusal);
    p->convertRefusalLabel->setText(refusal);
    p->convertRefusalLabel->setVisible(!refusal.isEmpty());
    m_refreshing = false;
}

void MCMkvTabBinding::refreshDevice()
{
    QComboBox *popUp = m_page->devicePopUp;
    if (!popUp)
        return;
    fillCombo(popUp, MCMp4TabRules::deviceList(), m_rules->mp4Device());
    // A device of another target (chosen on the "AVI" tab) is none of these:
    // nothing is shown as chosen, and the refusal says so.
    if (popUp->findText(m_rules->mp4Device()) < 0)
        popUp->setCurrentIndex(-1);
}
