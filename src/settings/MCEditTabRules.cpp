#include "MCEditTabRules.h"

#include "MCMkvEditRules.h"
#include "MCMp4EditRules.h"
#include "MCSelectionController.h"
#include "MCTextNumbers.h"
#include "MCWords.h"

using MCTextNumbers::integerValue;

MCEditTabRules::MCEditTabRules(MCSelectionController &rules)
    : m_rules(rules)
{
}

void MCEditTabRules::setStatus(const QString &text, const QString &color)
{
    m_rules.statusText = text;
    m_rules.statusColor = color;
}

void MCEditTabRules::updateEditFilesTab()
{
    MCSelection &selection = *m_rules.currentSelection();
    setStatus(QStringLiteral("Drop AVI video file(s) in the table below to edit them at the file level."), MCSelectionController::colorBlack);
    m_rules.canJoin = selection.editFilesURLsList.size() >= 2;
    if (selection.editFilesURLsList.isEmpty()) {
        m_rules.canEditPAR = m_rules.canSplit = false;
        return;
    }
    if (MCMkvEditRules::mixesContainers(selection.editFilesURLsList)) {
        setStatus(QStringLiteral("Kestrane joins and splits AVI, MKV and MP4 files separately."), MCSelectionController::colorRed);
        m_rules.canEditPAR = m_rules.canSplit = m_rules.canJoin = false;
        return;
    }
    // Only MP4 files carry a pixel aspect ratio Kestrane can set alone.
    m_rules.canEditPAR = MCMp4EditRules::allMp4(selection.editFilesURLsList);
    m_rules.canSplit = true;
    if (m_rules.splitTypeMatrixIndex == 0) {
        selection.splitType = QStringLiteral("time");
        m_rules.canSplit = integerValue(selection.splitStartTimeSeconds) < integerValue(selection.splitEndTimeSeconds);
    } else if (m_rules.splitTypeMatrixIndex == 1) {
        selection.splitType = QStringLiteral("size");
        m_rules.canSplit = integerValue(m_rules.enteredSplitSize()) != 0 && integerValue(m_rules.enteredSplitNumber()) != 0;
    } else if (m_rules.splitTypeMatrixIndex == MCMkvEditRules::splitByDurationRow) {
        // mkvmerge alone cuts pieces of a duration.
        selection.splitType = QStringLiteral("duration");
        m_rules.canSplit = MCMkvEditRules::allMatroska(selection.editFilesURLsList)
                           && integerValue(selection.splitDurationSeconds) > 0;
    }
}

void MCEditTabRules::updateEditTracksTab()
{
    const MCVideoFile &file = *m_rules.currentVideoFile();
    MCSelection &selection = *m_rules.currentSelection();
    if (file.trackList.isEmpty()) {
        setStatus(QStringLiteral("Drop AVI video file(s) in the table below to edit them at the track level."),
                  MCSelectionController::colorBlack);
        return;
    }
    const bool matroska = MCMkvEditRules::isMatroska(file.theFileExtension);
    const bool mp4 = MCMp4EditRules::isMp4(file.theFileExtension);
    if (file.theFileExtension.toLower() != QLatin1String("avi") && !matroska && !mp4) {
        m_rules.canEditTracks = false;
        m_rules.trackTableEnabled = false;
        setStatus(QStringLiteral("Kestrane can only edit the tracks of AVI, MKV and MP4 videos."), MCSelectionController::colorRed);
        return;
    }
    m_rules.trackTableEnabled = true;
    setStatus(file.theFilePath, MCSelectionController::colorBlack);
    if (matroska || mp4) {
        m_rules.canEditTracks = matroska ? MCMkvEditRules::decideTrackEdit(selection, m_rules.editTrackMatrixIndex())
                                         : MCMp4EditRules::decideTrackEdit(selection, m_rules.editTrackMatrixIndex());
        return;
    }
    if (integerValue(selection.vidCount) != 1 && integerValue(selection.audCount) < 1
        && integerValue(selection.subCount) < 1) {
        m_rules.canEditTracks = false;
        return;
    }
    m_rules.canEditTracks = true;
    const MCTrackList selected = selection.trackList;
    if (m_rules.editTrackMatrixIndex() == 0) {
        selection.jobType = MCWords::jobAviTrackExtraction;
        // Added tracks cannot be extracted.
        for (const MCVideoTrackPtr &track : selected) {
            if (track->externalTrackFlag) {
                m_rules.canEditTracks = false;
                break;
            }
            m_rules.canEditTracks = true;
        }
    } else if (m_rules.editTrackMatrixIndex() == 1) {
        selection.jobType = MCWords::jobAviTrackAddition;
        // The last selected track decides.
        for (const MCVideoTrackPtr &track : selected)
            m_rules.canEditTracks = track->trackType == MCWords::trackAudio && track->externalTrackFlag;
    } else {
        m_rules.canEditTracks = false; // removing tracks is for MKV and MP4 files
    }
}
