#include "MCWindowBinding.h"

#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCFormParts.h"
#include "MCIntakeProbe.h"
#include "MCMkvTabBinding.h"
#include "MCMkvTabPage.h"
#include "MCMainWindow.h"
#include "MCPresetSelectionsPanel.h"
#include "MCPresetSettingsPanel.h"
#include "MCPresetsController.h"
#include "MCSelection.h"
#include "MCSelectionController.h"
#include "MCTrackTableModel.h"
#include "MCVideoFile.h"
#include "MCWords.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGuiApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QStringListModel>
#include <QTabWidget>

#include <functional>

namespace {

const QString kDrag = QStringLiteral("drag");

using MCFormParts::checkRow;
using MCFormParts::fillCombo;
using MCFormParts::showText;

// MPEG-4 needs a bit rate: the encoder refuses 0, and an empty or invalid
// entry reads as 0. Passing the video through needs none.
bool videoBitRateMissing(const MCSelectionController &rules)
{
    return rules.mustConvertVideoTrack && (!rules.userBitRateOK || rules.enteredUserVideoBitRate().toLongLong() <= 0);
}

QString okColor(bool ok)
{
    return ok ? MCSelectionController::colorBlack : MCSelectionController::colorRed;
}

} // namespace

MCWindowBinding::MCWindowBinding(MCMainWindow *window, MCAppDelegate *delegate, QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_delegate(delegate)
    , m_rules(delegate->selectionController)
    , m_presets(delegate->presetsController)
{
    bindIntake();
    bindAviTab();
    bindEditTabs();
    bindTracks();
    bindPresets();
    bindStartButtons();
    for (MCMkvTabPage *page : {m_window->mkvTab, m_window->mp4Tab})
        m_conversionTabs << new MCMkvTabBinding(page, m_rules, [this] { userChanged(); }, this);
    connect(m_rules, &MCSelectionController::stateChanged, this, &MCWindowBinding::refresh);
    connect(m_rules, &MCSelectionController::endEditingRequested, this, &MCWindowBinding::endTextEditing);
    connect(m_rules, &MCSelectionController::clearTrackHighlight, m_window->trackTable,
            [this] { m_window->trackTable->clearSelection(); });
    connect(m_rules, &MCSelectionController::redrawRequested, m_window, [this] { m_window->update(); });
    connect(m_presets, &MCPresetsController::presetsChanged, this, &MCWindowBinding::refreshPresets);
    connect(m_presets, &MCPresetsController::methodIndexesChanged, this, &MCWindowBinding::refreshPresets);
    connect(m_delegate, &MCAppDelegate::fileTextFieldChanged, this, &MCWindowBinding::refreshStatus);
    connect(m_delegate, &MCAppDelegate::editFilesPathsArrayChanged, this,
            [this] { m_window->fileModel->setStringList(m_delegate->editFilesPathsArray()); });
    m_delegate->endTextEditing = [this] { endTextEditing(); };
    m_holdControls.setSingleShot(true);
    m_holdControls.setInterval(250);
    connect(&m_holdControls, &QTimer::timeout, this, [this] { m_window->centralWidget()->setEnabled(false); });
    connect(m_delegate->intakeProbe, &MCIntakeProbe::busyChanged, this, &MCWindowBinding::showIntakeBusy);
    m_rules->setCurrentTab(MCMainWindow::tabNames().value(m_window->tabs->currentIndex()));
    m_rules->updateTabs();
    refresh();
}

void MCWindowBinding::openFiles(const QList<QUrl> &urls, const QString &mode)
{
    if (urls.isEmpty())
        return;
    m_delegate->takeInFilesAfterInspection(urls, mode, [this] {
        // A new file's ticked tracks make the record's selection.
        m_rules->trackTableSelectionChanged();
        m_rules->updateTabs();
        refresh();
    });
}

void MCWindowBinding::showIntakeBusy(bool busy)
{
    // The tools look at the files: the window stays drawn and movable, but
    // takes no second file or start until they answered.
    if (busy) {
        QGuiApplication::setOverrideCursor(Qt::BusyCursor);
        m_holdControls.start();
        return;
    }
    m_holdControls.stop();
    m_window->centralWidget()->setEnabled(true);
    QGuiApplication::restoreOverrideCursor();
}

void MCWindowBinding::userChanged()
{
    if (!m_refreshing)
        m_rules->updateTabs();
}

void MCWindowBinding::endTextEditing()
{
    // Leaving the field commits its text through editingFinished.
    if (auto *field = qobject_cast<QLineEdit *>(QApplication::focusWidget()))
        emit field->editingFinished();
}

// ---------------------------------------------------------------- user -> rules

void MCWindowBinding::bindIntake()
{
    auto drop = [this](const QList<QUrl> &urls) { openFiles(urls, kDrag); };
    connect(m_window->trackTable, &MCDropTableView::filesDropped, this, drop);
    connect(m_window->fileTable, &MCDropTableView::filesDropped, this, drop);
    connect(m_window, &MCMainWindow::filesDropped, this, drop);
    connect(m_window->tabs, &QTabWidget::currentChanged, this, [this](int index) {
        if (m_refreshing)
            return;
        m_rules->setCurrentTab(MCMainWindow::tabNames().value(index));
        m_rules->updateTabs();
    });
}

void MCWindowBinding::bindAviTab()
{
    MCMainWindow *w = m_window;
    connect(w->videoMatrix, &QButtonGroup::idClicked, this, [this](int id) {
        m_rules->setVideoMatrixIndex(id);
        userChanged();
    });
    connect(w->audioMatrix, &QButtonGroup::idClicked, this, [this](int id) {
        m_rules->setAudioMatrixIndex(id);
        userChanged();
    });
    connect(w->subtitleMatrix, &QButtonGroup::idClicked, this, [this](int id) {
        m_rules->setSubtitleMatrixIndex(id);
        userChanged();
    });
    connect(w->audioTrackPopUp, &QComboBox::activated, this, [this](int index) {
        m_rules->setAudioTrackPopupIndex(index);
        userChanged();
    });
    connect(w->audioBitRatePopUp, &QComboBox::textActivated, this, [this](const QString &rate) {
        m_rules->currentSelection()->userAudioBitRate = rate;
        userChanged();
    });
    connect(w->devicePopUp, &QComboBox::textActivated, this, [this](const QString &device) {
        m_rules->setMp4Device(device);
        userChanged();
    });
    connect(w->fpsCombo, &QComboBox::textActivated, this, [this](const QString &fps) {
        m_rules->setEnteredUserFPS(fps);
        userChanged();
    });
    if (QLineEdit *fpsText = w->fpsCombo->lineEdit())
        bindField(fpsText, &MCSelectionController::setEnteredUserFPS);
    bindField(w->vidBitRateField, &MCSelectionController::setEnteredUserVideoBitRate);
    bindField(w->resWidthField, &MCSelectionController::setEnteredUserWidth);
    connect(w->addStereoCheckBox, &QCheckBox::clicked, this, [this](bool ticked) {
        m_rules->setAddStereoTrackButton(ticked ? 1 : 0);
        userChanged();
    });
}

void MCWindowBinding::bindEditTabs()
{
    MCMainWindow *w = m_window;
    connect(w->splitTypeMatrix, &QButtonGroup::idClicked, this, [this](int id) {
        m_rules->splitTypeMatrixIndex = id;
        userChanged();
    });
    connect(w->editTrackMatrix, &QButtonGroup::idClicked, this, [this](int id) {
        m_rules->setEditTrackMatrixIndex(id);
        userChanged();
    });
    bindField(w->splitSize, &MCSelectionController::setEnteredSplitSize);
    bindField(w->splitNumber, &MCSelectionController::setEnteredSplitNumber);
    bindField(w->parWidth, &MCSelectionController::setEnteredParWidth);
    bindField(w->parHeight, &MCSelectionController::setEnteredParHeight);
}

void MCWindowBinding::bindField(QLineEdit *field, void (MCSelectionController::*setter)(const QString &))
{
    connect(field, &QLineEdit::editingFinished, this, [this, field, setter] {
        if (m_refreshing)
            return;
        const QString text = field->text().trimmed();
        // std::invoke rather than ->*: GCC 12's vptr sanitizer checks a stack
        // address instead of the object when ->* is applied inside a lambda.
        std::invoke(setter, m_rules, text.isEmpty() ? QString() : text);
        userChanged();
    });
}

void MCWindowBinding::bindTracks()
{
    MCMainWindow *w = m_window;
    w->trackModel->setSelectionChangedHandler([this] {
        m_rules->trackTableSelectionChanged(MCSelectionController::senderTrackTable);
        userChanged();
    });
    connect(w->toggleVideoButton, &QPushButton::clicked, m_rules, &MCSelectionController::toggleAllVideo);
    connect(w->toggleAudioButton, &QPushButton::clicked, m_rules, &MCSelectionController::toggleAllAudio);
    connect(w->toggleSubtitleButton, &QPushButton::clicked, m_rules, &MCSelectionController::toggleAllSubtitle);
}

void MCWindowBinding::bindPresets()
{
    MCMainWindow *w = m_window;
    connect(w->presetSelectionsPopUp, &QComboBox::activated, this, [this](int index) {
        m_presets->setSelectionMethodIndex(index);
        // The preset ticked tracks: the record and the rules follow them.
        m_rules->trackTableSelectionChanged();
        userChanged();
    });
    connect(w->presetSettingsPopUp, &QComboBox::activated, this, [this](int index) {
        m_presets->setSettingMethodIndex(index);
        userChanged();
    });
    bindPresetEditors();
}

void MCWindowBinding::bindPresetEditors()
{
    presetSelectionsPanel = new MCPresetSelectionsPanel(m_presets, m_window);
    presetSettingsPanel = new MCPresetSettingsPanel(m_presets, m_window);
    connect(m_window->editSelectionsButton, &QPushButton::clicked, presetSelectionsPanel,
            &MCPresetSelectionsPanel::openPresetSelectionPanel);
    connect(m_window->editSettingsButton, &QPushButton::clicked, presetSettingsPanel,
            &MCPresetSettingsPanel::openPresetSettingsPanel);
    // The preset chosen in an editor is in force: its tracks make the
    // record's selection, as when it is chosen from the pop-up.
    connect(presetSelectionsPanel, &MCPresetSelectionsPanel::presetChosen, this, [this] {
        m_rules->trackTableSelectionChanged();
        m_rules->updateTabs();
        refresh();
    });
    connect(presetSettingsPanel, &MCPresetSettingsPanel::presetChosen, this, [this] {
        m_rules->updateTabs();
        refresh();
    });
}

void MCWindowBinding::bindStartButtons()
{
    MCMainWindow *w = m_window;
    const std::pair<QPushButton *, QString> starts[] = {
        {w->convertButton, QString()},
        {w->mkvTab->convertButton, QString()},
        {w->mp4Tab->convertButton, QString()},
        {w->startTrackEditButton, QString()},
        {w->joinButton, MCWords::jobAviJoining},
        {w->splitButton, MCWords::jobAviSplitting},
        {w->remuxButton, MCWords::jobMkvRemux},
        {w->parButton, MCWords::jobParEditing},
    };
    for (const auto &[button, jobType] : starts)
        connect(button, &QPushButton::clicked, this, [this, jobType] { m_delegate->startJob(jobType); });
}

// ---------------------------------------------------------------- rules -> window

void MCWindowBinding::refresh()
{
    if (m_refreshing)
        return;
    m_refreshing = true;
    const int tab = MCMainWindow::tabNames().indexOf(m_rules->currentTab());
    if (tab >= 0)
        m_window->tabs->setCurrentIndex(tab);
    refreshStatus();
    refreshTracks();
    refreshAviTab();
    for (MCMkvTabBinding *tab : std::as_const(m_conversionTabs))
        tab->refresh();
    refreshEditTabs();
    refreshPresets();
    m_refreshing = false;
}

void MCWindowBinding::refreshStatus()
{
    const QString text = m_rules->statusText.isEmpty() ? m_delegate->fileTextField() : m_rules->statusText;
    m_window->fileTextField->setText(text);
    MCMainWindow::setColorName(m_window->fileTextField, m_rules->statusColor);
}

void MCWindowBinding::refreshTracks()
{
    MCMainWindow *w = m_window;
    const MCTrackList &tracks = m_delegate->currentVideoFile ? m_delegate->currentVideoFile->trackList : MCTrackList();
    if (w->trackModel->tracks() != tracks)
        w->trackModel->setTracks(tracks);
    else
        w->trackModel->refresh();
    w->trackTable->setEnabled(m_rules->trackTableEnabled);
    w->tableStack->setCurrentWidget(m_rules->hideTrackTable ? static_cast<QWidget *>(w->fileTable)
                                                            : static_cast<QWidget *>(w->trackTable));
    w->trackToggles->setVisible(!m_rules->hideTrackTogglesFlag && !m_rules->hideTrackTable);
    w->addButton->setEnabled(m_rules->currentTab() == MCSelectionController::tabEditFiles || m_rules->canAddTrack);
}

void MCWindowBinding::refreshAviTab()
{
    MCMainWindow *w = m_window;
    const MCSelectionController &r = *m_rules;
    checkRow(w->videoMatrix, r.videoMatrixIndex());
    checkRow(w->audioMatrix, r.audioMatrixIndex());
    checkRow(w->subtitleMatrix, r.subtitleMatrixIndex());
    MCMainWindow::setColorName(w->videoMatrix->button(0), r.aviVideoPassThruColor);
    MCMainWindow::setColorName(w->audioMatrix->button(0), r.aviAudioPassThruColor);

    showText(w->vidBitRateField, r.enteredUserVideoBitRate());
    showText(w->resWidthField, r.enteredUserWidth());
    for (QWidget *field : {static_cast<QWidget *>(w->vidBitRateField), static_cast<QWidget *>(w->resWidthField),
                           static_cast<QWidget *>(w->fpsCombo), static_cast<QWidget *>(w->devicePopUp)})
        field->setEnabled(r.mustConvertVideoTrack);
    MCMainWindow::setColorName(w->vidBitRateField, okColor(r.userBitRateOK && !videoBitRateMissing(r)));
    MCMainWindow::setColorName(w->resWidthField, okColor(r.userWidthOK));
    MCMainWindow::setColorName(w->fpsCombo, okColor(r.userFPSOK));
    if (!w->fpsCombo->hasFocus())
        fillCombo(w->fpsCombo, r.fpsList, r.enteredUserFPS());
    fillCombo(w->devicePopUp, r.deviceList, r.mp4Device());

    fillCombo(w->audioTrackPopUp, r.audioTrackLabels(), QString());
    w->audioTrackPopUp->setCurrentIndex(r.audioTrackPopupIndex());
    w->audioTrackPopUp->setVisible(!r.hideAudioTrackPopupFlag);
    w->audioTrackLabel->setVisible(!r.hideAudioTrackPopupFlag);
    fillCombo(w->audioBitRatePopUp, r.audioBitRateContent, r.currentSelection()->userAudioBitRate);
    w->audioBitRatePopUp->setEnabled(r.mustConvertAudioTrack);
    w->addStereoCheckBox->setEnabled(r.canAddStereoTrack);
    w->addStereoCheckBox->setChecked(r.addStereoTrackButton() != 0);

    w->subtitleMatrix->button(0)->setEnabled(r.subtitleSelected && r.canBurnSubtitles);
    w->subtitleMatrix->button(1)->setEnabled(r.subtitleSelected && r.canMuxSubtitles);
    w->convertButton->setEnabled(r.canConvert && !videoBitRateMissing(r));
    // Said where the user looks for the button, not only in a tooltip.
    const QString refusal = r.convertRefusalText();
    w->convertRefusalLabel->setText(refusal);
    w->convertRefusalLabel->setVisible(!refusal.isEmpty());
}

void MCWindowBinding::refreshEditTabs()
{
    MCMainWindow *w = m_window;
    const MCSelectionController &r = *m_rules;
    checkRow(w->splitTypeMatrix, r.splitTypeMatrixIndex);
    checkRow(w->editTrackMatrix, r.editTrackMatrixIndex());
    showText(w->splitStartTime, r.enteredSplitStartTime);
    showText(w->splitEndTime, r.enteredSplitEndTime);
    showText(w->splitSize, r.enteredSplitSize());
    showText(w->splitNumber, r.enteredSplitNumber());
    showText(w->parWidth, r.enteredParWidth());
    showText(w->parHeight, r.enteredParHeight());
    // The split values can be typed whenever a file is listed: canSplit only
    // says whether the values typed so far make a split.
    const bool fileListed = !r.currentSelection()->editFilesURLsList.isEmpty();
    const bool byTime = r.splitTypeMatrixIndex == 0;
    const bool bySize = r.splitTypeMatrixIndex == 1;
    w->splitStartTime->setEnabled(fileListed && byTime);
    w->splitEndTime->setEnabled(fileListed && byTime);
    w->splitSize->setEnabled(fileListed && bySize);
    w->splitNumber->setEnabled(fileListed && bySize);
    w->splitDuration->setEnabled(fileListed && !byTime && !bySize);
    showText(w->splitDuration, r.enteredSplitDuration);
    w->splitButton->setEnabled(r.canSplit);
    w->joinButton->setEnabled(r.canJoin);
    w->parWidth->setEnabled(r.canEditPAR);
    w->parHeight->setEnabled(r.canEditPAR);
    w->parButton->setEnabled(r.canEditPAR);
    w->remuxButton->setEnabled(fileListed);
    w->editTrackLabel->setText(r.editTrackLabel);
    w->startTrackEditButton->setEnabled(r.canEditTracks);
    w->addTracksButton->setEnabled(r.canAddTrack);
}

void MCWindowBinding::refreshPresets()
{
    const bool wasRefreshing = m_refreshing;
    m_refreshing = true;
    fillCombo(m_window->presetSelectionsPopUp, m_presets->presetSelectionsNamesList, QString());
    m_window->presetSelectionsPopUp->setCurrentIndex(m_presets->selectionMethodIndex());
    fillCombo(m_window->presetSettingsPopUp, m_presets->presetSettingsNamesList, QString());
    m_window->presetSettingsPopUp->setCurrentIndex(m_presets->settingMethodIndex());
    m_refreshing = wasRefreshing;
}
