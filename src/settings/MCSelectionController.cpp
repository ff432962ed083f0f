#include "MCSelectionController.h"

#include "MCAviRefusal.h"
#include "MCEditTabRules.h"
#include "MCMkvEditRules.h"
#include "MCMkvTabRules.h"
#include "MCMp4TabRules.h"
#include "MCNotificationCenter.h"
#include "MCPresetsController.h"
#include "MCTextNumbers.h"

#include <QTimer>

#include <algorithm>

using MCTextNumbers::integerValue;

namespace {

const QString &kVideo = MCWords::trackVideo;
const QString &kAudio = MCWords::trackAudio;
const QString &kSubtitle = MCWords::trackSubtitle;
const QString kExternalSubtitle = QStringLiteral("External Subtitle");
const QString kPassthru = QStringLiteral("passthru");

const QString kExtractLabelShort = QStringLiteral("Kestrane will extract the tracks selected above into separate files.");
const QString kExtractLabel = QStringLiteral(
    "Kestrane will extract the tracks selected above into separate files.  You can not extract tracks that are "
    "added to the above table using the Add Tracks button.");
const QString kAddLabel = QStringLiteral(
    "Kestrane will create a copy of the video file with the selected external audio tracks added.  You can only "
    "add external tracks, that is, tracks that are added to the above table using the Add Tracks button.");

bool isSubtitleType(const QString &type)
{
    return type == kSubtitle || type == kExternalSubtitle;
}

} // namespace

MCSelectionController::MCSelectionController(QObject *parent)
    : QObject(parent)
    , m_mkvTab(new MCMkvTabRules(this))
    , m_mp4Tab(new MCMp4TabRules(this))
{
    m_currentVideoFile = std::make_shared<MCVideoFile>();
    m_currentSelection = std::make_shared<MCSelection>();
    m_currentSelection->initialize();
}

void MCSelectionController::initialize()
{
    hideTrackTogglesFlag = false;
    hideTrackTable = false;
    hideFileTable = true;
    hideAudioTrackPopupFlag = true;
    subtitleSelected = canMuxSubtitles = false;
    setCanBurnSubtitles(false);
    mustConvertVideoTrack = mustConvertAudioTrack = canAddStereoTrack = false;
    canEditTracks = canSplit = canEditPAR = canJoin = false;
    audioBitRateContent = {QStringLiteral("128"), QStringLiteral("160"), QStringLiteral("192"),
                           QStringLiteral("224"), QStringLiteral("256"), QStringLiteral("320"),
                           QStringLiteral("384"), QStringLiteral("448"), QStringLiteral("512"),
                           QStringLiteral("640")};
    fpsList = {QStringLiteral("23.976"), QStringLiteral("25"), QStringLiteral("29.97")};
    deviceList = {QStringLiteral("General"), QStringLiteral("DivX DVD"), QStringLiteral("PS3"), QStringLiteral("Xbox")};
    m_mp4Device = deviceList.first();
    enteredSplitStartTime = enteredSplitEndTime = enteredSplitDuration = QStringLiteral("00:00:00");
    m_enteredSplitSize = QStringLiteral("10");
    m_enteredSplitNumber = QStringLiteral("1");
    m_enteredParWidth = m_enteredParHeight = QStringLiteral("1");
    setEnteredUserVideoBitRate(QStringLiteral("0"));
    setEnteredUserFPS(QStringLiteral("23.976"));
    setEnteredUserWidth(QStringLiteral("0"));
    m_addStereoTrackButton = 0;
    m_videoMatrixIndex = m_audioMatrixIndex = m_subtitleMatrixIndex = m_editTrackMatrixIndex = 0;
    splitTypeMatrixIndex = 0;
    m_audioTrackPopupIndex = 0;
    m_audioTrackLabels = {QStringLiteral("tempLabel")};
    editTrackLabel = kExtractLabelShort;
    if (!m_observingTimeFields) {
        m_observingTimeFields = true;
        for (const QString &name : {MCNotificationName::timeTextFieldExited, MCNotificationName::timeTextFieldChanged})
            MCNotificationCenter::defaultCenter().addObserver(this, name,
                                                              [this](const MCNotification &n) { notificationHub(n); });
    }
    emit stateChanged();
}

void MCSelectionController::setCurrentSelection(MCSelectionPtr selection)
{
    if (!selection) {
        selection = std::make_shared<MCSelection>();
        selection->initialize();
    }
    m_currentSelection = std::move(selection);
}

void MCSelectionController::setCurrentVideoFile(std::shared_ptr<MCVideoFile> file)
{
    m_currentVideoFile = file ? std::move(file) : std::make_shared<MCVideoFile>();
    if (m_presetsController)
        m_presetsController->setCurrentVideoFile(m_currentVideoFile);
}

MCTrackList MCSelectionController::fileTracks() const
{
    return m_currentVideoFile->trackList;
}

void MCSelectionController::setStatus(const QString &text, const QString &color)
{
    statusText = text;
    statusColor = color;
}

void MCSelectionController::setCanBurnSubtitles(bool can)
{
    canBurnSubtitles = can;
    m_canBurnSubtitlesGiven = true;
}

// ---------------------------------------------------------------------------
// The decision procedure

void MCSelectionController::updateTabs()
{
    appIsUpdatingTabs = true;
    canAddTrack = !fileTracks().isEmpty();
    if (m_currentTab == tabAvi)
        updateAviTab();
    else if (MCMkvTabRules *tab = conversionTab(m_currentTab))
        updateConversionTab(*tab);
    else if (m_currentTab == tabEditFiles)
        MCEditTabRules(*this).updateEditFilesTab();
    else if (m_currentTab == tabEditTracks)
        MCEditTabRules(*this).updateEditTracksTab();
    appIsUpdatingTabs = false;
    emit stateChanged();
}

void MCSelectionController::updateAviTab()
{
    // Announced once per decision, not cleared and set again.
    setConvertRefusalText(decideAviTab());
}

QString MCSelectionController::decideAviTab()
{
    MCSelection &selection = *m_currentSelection;
    trackTableEnabled = true;
    if (fileTracks().isEmpty()) {
        setStatus(QStringLiteral("Drop Video File(s) in the Table Below"), colorBlack);
        return {};
    }
    setStatus(m_currentVideoFile->theFilePath, colorBlack);
    const long long subCount = integerValue(selection.subCount);
    // An AVI takes exactly one video and one audio track and at most one subtitle.
    canConvert = integerValue(selection.vidCount) == 1 && integerValue(selection.audCount) == 1 && subCount < 2;

    aviVideoPassThruColor = aviAudioPassThruColor = colorBlack;
    const MCTrackList tracks = fileTracks();
    const bool anyMpeg4 = std::any_of(tracks.cbegin(), tracks.cend(), [](const MCVideoTrackPtr &t) {
        return t->trackCodec == QLatin1String("mpeg4");
    });
    if (!anyMpeg4 && canConvert)
        aviVideoPassThruColor = colorRed;

    if (subCount < 1) {
        subtitleSelected = false;
    } else {
        subtitleSelected = canMuxSubtitles = true;
        setCanBurnSubtitles(subCount < 2);
        // Burning needs the video re-encoded.
        if (m_subtitleMatrixIndex == 0 && canConvert)
            aviVideoPassThruColor = colorRed;
    }
    selection.userWidth = m_enteredUserWidth;
    selection.userVideoBitRate = m_enteredUserVideoBitRate;
    if (!canConvert) {
        popupAudioIsSurround = false;
        return QStringLiteral("An AVI takes one video track, one audio track and at most one subtitle "
                              "(selected: %1 video, %2 audio, %3 subtitle).")
            .arg(selection.vidCount, selection.audCount, selection.subCount);
    }
    selection.jobType = MCWords::jobAviConversion;
    const MCTrackList selected = selection.trackList;
    for (const MCVideoTrackPtr &track : selected)
        applyAviRowsTo(*track);
    // On top of the rules above: a choice they allow but the tools cannot
    // turn into a playable AVI is refused, with the reason.
    const QString reason = MCAviRefusal::reasonFor(selection, userBitRateOK);
    if (!reason.isEmpty())
        canConvert = false;
    return reason;
}

MCMkvTabRules *MCSelectionController::conversionTab(const QString &tab) const
{
    if (tab == tabMkv)
        return m_mkvTab;
    return tab == tabMp4 ? m_mp4Tab : nullptr;
}

void MCSelectionController::updateConversionTab(MCMkvTabRules &tab)
{
    trackTableEnabled = true;
    if (fileTracks().isEmpty()) {
        setStatus(QStringLiteral("Drop Video File(s) in the Table Below"), colorBlack);
        return;
    }
    setStatus(m_currentVideoFile->theFilePath, colorBlack);
    // The record may be new since the device was chosen.
    if (&tab == m_mp4Tab)
        m_currentSelection->theDevice = m_mp4Device;
    tab.decide(*m_currentSelection, m_audioTrackPopupIndex,
               {m_enteredUserVideoBitRate, m_enteredUserWidth, userBitRateOK, userWidthOK});
    canConvert = tab.canConvert;
    setConvertRefusalText(tab.convertRefusalText);
}

void MCSelectionController::setConvertRefusalText(const QString &text)
{
    if (text == m_convertRefusalText)
        return;
    m_convertRefusalText = text;
    emit convertRefusalTextChanged(text);
}

void MCSelectionController::applyAviRowsTo(MCVideoTrack &track)
{
    MCSelection &selection = *m_currentSelection;
    if (track.trackType == kVideo) {
        if (m_videoMatrixIndex < 0 || m_videoMatrixIndex > 2)
            return;
        track.userCodec = m_videoMatrixIndex == 0 ? kPassthru : QStringLiteral("mpeg4");
        selection.userPassNumber = m_videoMatrixIndex == 2 ? QStringLiteral("2") : QStringLiteral("1");
        mustConvertVideoTrack = m_videoMatrixIndex != 0;
    } else if (isSubtitleType(track.trackType)) {
        if (m_subtitleMatrixIndex == 0)
            track.userCodec = QStringLiteral("burn");
        else if (m_subtitleMatrixIndex == 1)
            track.userCodec = QStringLiteral("extract");
    } else if (track.trackType == kAudio
               && track.selectedAudioTrackIndex == QString::number(m_audioTrackPopupIndex)) {
        applyAudioRowTo(track);
    }
}

void MCSelectionController::applyAudioRowTo(MCVideoTrack &track)
{
    MCSelection &selection = *m_currentSelection;
    popupAudioIsSurround = integerValue(track.trackNumberOfChannels) >= 6;
    if (track.trackCodec != QLatin1String("mp3") && track.trackCodec != QLatin1String("ac3"))
        aviAudioPassThruColor = colorRed;
    switch (m_audioMatrixIndex) {
    case 0:
        track.userCodec = kPassthru;
        track.userNumberOfChannels = track.trackNumberOfChannels;
        mustConvertAudioTrack = false;
        canAddStereoTrack = true;
        break;
    case 1:
        track.userCodec = QStringLiteral("mp3");
        track.userNumberOfChannels = QStringLiteral("2");
        track.userBitRate = selection.userAudioBitRate;
        track.createStereoCopyFlag = false;
        mustConvertAudioTrack = true;
        canAddStereoTrack = false;
        setAddStereoTrackButton(0);
        break;
    case 2:
        track.userCodec = QStringLiteral("ac3");
        track.userNumberOfChannels = QStringLiteral("6");
        track.userBitRate = selection.userAudioBitRate;
        mustConvertAudioTrack = true;
        canAddStereoTrack = true;
        break;
    default: // the 448 kbit/s row only sets the bit rate
        break;
    }
}

// ---------------------------------------------------------------------------
// Track selection

void MCSelectionController::trackTableSelectionChanged(const QString &sender)
{
    m_currentSelection->takeSelectedTracks(fileTracks());
    upddateAudioTrackPopupFor(sender);
    if (!m_presetsController) {
        updateTabs();
        return;
    }
    if (sender == senderTrackTable)
        m_presetsController->setSelectionMethodIndex(0);
    m_presetsController->applyCurrentPresetSettings();
}

void MCSelectionController::chooseTracks(const QList<int> &positions)
{
    const MCTrackList tracks = fileTracks();
    for (qsizetype i = 0; i < tracks.size(); ++i)
        tracks.at(i)->trackSelected = positions.contains(static_cast<int>(i + 1));
    trackTableSelectionChanged(senderTrackTable);
}

void MCSelectionController::toggleAll(const QStringList &lowerTypes, const QString &selectedCount,
                                      const QString &fileCount)
{
    // Some unselected: select all; all selected: clear all.
    const bool select = integerValue(selectedCount) < integerValue(fileCount);
    const MCTrackList tracks = fileTracks();
    for (const MCVideoTrackPtr &track : tracks) {
        if (lowerTypes.contains(track->trackType.toLower()))
            track->trackSelected = select;
    }
    if (m_presetsController)
        m_presetsController->setSelectionMethodIndex(0);
    trackTableSelectionChanged();
}

void MCSelectionController::toggleAllVideo()
{
    toggleAll({QStringLiteral("video")}, m_currentSelection->vidCount, m_currentVideoFile->theNumberOfVideoTracks);
}

void MCSelectionController::toggleAllAudio()
{
    toggleAll({QStringLiteral("audio")}, m_currentSelection->audCount, m_currentVideoFile->theNumberOfAudioTracks);
}

void MCSelectionController::toggleAllSubtitle()
{
    toggleAll({QStringLiteral("subtitle"), QStringLiteral("external subtitle")}, m_currentSelection->subCount,
              m_currentVideoFile->theNumberOfSubTracks);
}

// ---------------------------------------------------------------------------
// Option rows

void MCSelectionController::setVideoMatrixIndex(int index)
{
    if (index == m_videoMatrixIndex)
        return;
    mustConvertVideoTrack = index != 0;
    m_videoMatrixIndex = index;
    emit stateChanged();
}

void MCSelectionController::setAudioMatrixIndex(int index)
{
    if (index == m_audioMatrixIndex)
        return;
    static const QStringList bitRates{QStringLiteral("160"), QStringLiteral("384"), QStringLiteral("448")};
    if (index == 0) {
        mustConvertAudioTrack = false;
    } else if (index >= 1 && index <= 3) {
        mustConvertAudioTrack = true;
        m_currentSelection->userAudioBitRate = bitRates.at(index - 1);
    }
    m_audioMatrixIndex = index;
    emit stateChanged();
}

void MCSelectionController::setSubtitleMatrixIndex(int index)
{
    if (index == m_subtitleMatrixIndex)
        return;
    // Until the burn flag has been given any value, only extracting is offered.
    m_subtitleMatrixIndex = m_canBurnSubtitlesGiven ? index : 1;
    emit stateChanged();
}

void MCSelectionController::setEditTrackMatrixIndex(int index)
{
    if (index == m_editTrackMatrixIndex)
        return;
    m_editTrackMatrixIndex = index;
    if (index == 0)
        editTrackLabel = kExtractLabel;
    else if (index == 1)
        editTrackLabel = kAddLabel;
    else if (index == MCMkvEditRules::removeTracksRow)
        editTrackLabel = MCMkvEditRules::removalLabel();
    emit stateChanged();
}

void MCSelectionController::setAddStereoTrackButton(int state)
{
    if (state == m_addStereoTrackButton)
        return;
    m_addStereoTrackButton = state;
    if (const MCVideoTrackPtr chosen = chosenAudioTrack(m_audioTrackPopupIndex))
        chosen->createStereoCopyFlag = state != 0;
    // The copies are rebuilt once the check box has settled.
    QTimer::singleShot(0, this, [this] { trackTableSelectionChanged(QStringLiteral("from setAddStereoTrackButton")); });
    emit stateChanged();
}

void MCSelectionController::chooseStereoCopy(bool wanted)
{
    setAddStereoTrackButton(wanted ? 1 : 0);
    trackTableSelectionChanged(QStringLiteral("from setAddStereoTrackButton"));
}

void MCSelectionController::setMp4Device(const QString &device)
{
    if (device == m_mp4Device)
        return;
    m_mp4Device = device;
    m_currentSelection->theDevice = device;
    emit stateChanged();
}

void MCSelectionController::useNewEncoderCheckBox(bool ticked)
{
    m_currentSelection->currentEncoder = ticked ? QStringLiteral("ffmpeg") : QStringLiteral("mencoder");
}

// ---------------------------------------------------------------------------
// Audio-track chooser

MCVideoTrackPtr MCSelectionController::chosenAudioTrack(int index) const
{
    const QString wanted = QString::number(index);
    for (const MCVideoTrackPtr &track : std::as_const(m_currentSelection->trackList)) {
        if (track->trackType == kAudio && track->selectedAudioTrackIndex == wanted)
            return track;
    }
    return nullptr;
}

void MCSelectionController::setAudioTrackPopupIndex(int index)
{
    if (const MCVideoTrackPtr track = chosenAudioTrack(index)) {
        const long long channels = integerValue(track->userNumberOfChannels);
        int row = 0;
        if (track->userCodec == QLatin1String("mp3") && channels == 2)
            row = 1;
        else if (track->userCodec == QLatin1String("ac3") && channels == 6)
            row = 2;
        setAudioMatrixIndex(row);
        m_currentSelection->userAudioBitRate = track->userBitRate.isEmpty() ? QStringLiteral("160") : track->userBitRate;
        popupAudioIsSurround = integerValue(track->trackNumberOfChannels) >= 6;
    }
    m_audioTrackPopupIndex = (index > 100 || index < 0) ? 0 : index;
    updateTabs();
}

void MCSelectionController::setAudioTrackLabels(const QStringList &labels)
{
    if (labels.size() < m_audioTrackLabels.size())
        m_audioTrackPopupIndex = 0;
    m_audioTrackLabels = labels;
    emit stateChanged();
}

void MCSelectionController::upddateAudioTrackPopupFor(const QString &sender)
{
    Q_UNUSED(sender)
    QStringList labels;
    for (const MCVideoTrackPtr &track : std::as_const(m_currentSelection->trackList)) {
        if (track->trackType == kAudio)
            labels.append(QStringLiteral("%1 Ch. %2 - %3")
                              .arg(track->trackNumberOfChannels, track->trackCodec.toUpper(), track->trackLanguage));
    }
    if (labels == m_audioTrackLabels)
        return;
    // A grown list keeps the chosen track chosen.
    if (labels.size() > m_audioTrackLabels.size() && m_audioTrackPopupIndex >= 0
        && m_audioTrackPopupIndex < m_audioTrackLabels.size()) {
        const qsizetype moved = labels.indexOf(m_audioTrackLabels.at(m_audioTrackPopupIndex));
        if (moved >= 0)
            m_audioTrackPopupIndex = int(moved);
    }
    setAudioTrackLabels(labels);
    hideAudioTrackPopupFlag = labels.size() <= 1;
    emit stateChanged();
}

// ---------------------------------------------------------------------------
// Typed numbers

void MCSelectionController::typedFieldChanged()
{
    if (!appIsUpdatingTabs)
        updateTabs();
    emit stateChanged();
}

void MCSelectionController::setEnteredUserVideoBitRate(const QString &text)
{
    const std::optional<QString> number = MCTextNumbers::normalisedDecimal(text, 0);
    userBitRateOK = number.has_value();
    m_enteredUserVideoBitRate = number.value_or(QStringLiteral("0"));
    m_currentSelection->userVideoBitRate = m_enteredUserVideoBitRate;
    typedFieldChanged();
}

void MCSelectionController::setEnteredUserWidth(const QString &text)
{
    const std::optional<QString> number = MCTextNumbers::normalisedDecimal(text, 0);
    userWidthOK = number.has_value();
    m_enteredUserWidth = number.value_or(QStringLiteral("0"));
    m_currentSelection->userWidth = m_enteredUserWidth;
    emit redrawRequested();
    typedFieldChanged();
}

void MCSelectionController::setEnteredUserFPS(const QString &text)
{
    const std::optional<QString> number = MCTextNumbers::normalisedDecimal(text, 3);
    userFPSOK = number.has_value();
    m_enteredUserFPS = number.value_or(QStringLiteral("0"));
    m_currentSelection->userFPS = m_enteredUserFPS;
    typedFieldChanged();
}

void MCSelectionController::setEnteredSplitSize(const QString &text)
{
    m_enteredSplitSize = text.isNull() ? QStringLiteral("0") : text;
    m_currentSelection->splitSize = m_enteredSplitSize;
    typedFieldChanged();
}

void MCSelectionController::setEnteredSplitNumber(const QString &text)
{
    m_enteredSplitNumber = text.isNull() ? QStringLiteral("0") : text;
    m_currentSelection->splitNumber = m_enteredSplitNumber;
    typedFieldChanged();
}

void MCSelectionController::setEnteredParWidth(const QString &text)
{
    m_enteredParWidth = text.isNull() ? QStringLiteral("1") : text;
    m_currentSelection->userParWidth = m_enteredParWidth;
    typedFieldChanged();
}

void MCSelectionController::setEnteredParHeight(const QString &text)
{
    m_enteredParHeight = text.isNull() ? QStringLiteral("1") : text;
    m_currentSelection->userParHeight = m_enteredParHeight;
    typedFieldChanged();
}

// ---------------------------------------------------------------------------
// Time fields, tabs and clicks

void MCSelectionController::notificationHub(const MCNotification &notification)
{
    if (notification.name != MCNotificationName::timeTextFieldChanged)
        return;
    const QString text = notification.object.toString();
    const QString field = notification.userInfo.value(QStringLiteral("textFieldID")).toString();
    if (field == QLatin1String("startTimeTextField"))
        setSplitStartTime(text);
    else if (field == QLatin1String("endTimeTextField"))
        setSplitEndTime(text);
    else if (field == QLatin1String("durationTimeTextField"))
        setSplitDuration(text);
}

void MCSelectionController::setSplitStartTime(const QString &text)
{
    enteredSplitStartTime = text;
    m_currentSelection->initializeSplitForStartTime(text, std::nullopt);
    updateTabs();
}

void MCSelectionController::setSplitEndTime(const QString &text)
{
    enteredSplitEndTime = text;
    m_currentSelection->initializeSplitForStartTime(std::nullopt, text);
    updateTabs();
}

void MCSelectionController::setSplitDuration(const QString &text)
{
    enteredSplitDuration = text;
    m_currentSelection->initializeSplitDurationForTimeText(text);
    updateTabs();
}

void MCSelectionController::setCurrentTab(const QString &tab)
{
    if (tab == m_currentTab)
        return;
    const QString oldTab = m_currentTab;
    m_currentTab = tab;
    // A settings preset may switch tabs without cancelling itself.
    if (m_presetsController && !m_presetsController->changingPresetSetting())
        m_presetsController->setSettingMethodIndex(0);
    MCSelection &selection = *m_currentSelection;
    selection.userVideoBitRate = selection.videoTrackBitRate;
    selection.userWidth = selection.videoTrackWidth;
    selection.userFPS = selection.videoTrackFPS;
    setEnteredUserVideoBitRate(selection.videoTrackBitRate);
    setEnteredUserWidth(selection.videoTrackWidth);
    setEnteredUserFPS(selection.videoTrackFPS);
    if (tab == tabEditFiles) {
        hideTrackTable = true;
        hideFileTable = false;
        hideTrackTogglesFlag = true;
    } else if (oldTab == tabEditFiles) {
        hideTrackTable = false;
        hideFileTable = true;
        hideTrackTogglesFlag = false;
    }
    if (tab == tabEditTracks)
        emit clearTrackHighlight();
    if (!appIsUpdatingTabs)
        updateTabs();
    emit stateChanged();
}

void MCSelectionController::guiClickedTrap()
{
    emit endEditingRequested();
    emit clearTrackHighlight();
    if (m_presetsController && m_presetsController->settingMethodIndex() != 0)
        m_presetsController->setSettingMethodIndex(0);
    updateTabs();
}
