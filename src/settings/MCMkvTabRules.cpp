#include "MCMkvTabRules.h"

#include "MCWords.h"

#include "MCAviRefusal.h"
#include "MCContainers.h"
#include "MCTextNumbers.h"

#include <algorithm>
#include <functional>

using MCTextNumbers::integerValue;

namespace {

const QString kVideo = QStringLiteral("Video");
const QString kAudio = QStringLiteral("Audio");
const QString kPassthru = QStringLiteral("passthru");
const QString kBlack = QStringLiteral("black");
const QString kRed = QStringLiteral("red");

// The encoder writes 5.1 from six channels only; fewer become stereo AAC.
constexpr int kSurroundChannels = 6;

bool isSubtitle(const MCVideoTrack &track)
{
    return track.trackType == QStringLiteral("Subtitle") || track.trackType == QStringLiteral("External Subtitle");
}

bool isSurround(const MCVideoTrack &track)
{
    return integerValue(track.trackNumberOfChannels) >= kSurroundChannels;
}

int count(const MCSelection &selection, const std::function<bool(const MCVideoTrack &)> &matches)
{
    int n = 0;
    for (const MCVideoTrackPtr &track : selection.trackList)
        n += matches(*track);
    return n;
}

} // namespace

MCMkvTabRules::MCMkvTabRules(QObject *parent)
    : QObject(parent)
{
}

void MCMkvTabRules::setVideoMatrixIndex(int row)
{
    if (row < VideoPassthru || row > VideoTwoPasses || row == m_videoRow)
        return;
    m_videoRow = row;
    emit stateChanged();
}

void MCMkvTabRules::setAudioMatrixIndex(int row)
{
    if (row < AudioPassthru || row > AudioAc351 || row == m_audioRow)
        return;
    m_audioRow = row;
    // A stereo track needs no stereo copy beside it.
    if (row == AudioAacStereo)
        m_addStereoTrack = false;
    emit stateChanged();
}

void MCMkvTabRules::setAddStereoTrack(bool add)
{
    if (add == m_addStereoTrack)
        return;
    m_addStereoTrack = add;
    emit stateChanged();
}

void MCMkvTabRules::setSubtitleMatrixIndex(int row)
{
    if (row < SubtitleMux || row > SubtitleDrop || row == m_subtitleRow)
        return;
    m_subtitleRow = row;
    emit stateChanged();
}

int MCMkvTabRules::audioRowFor(const MCVideoTrack &track)
{
    if (track.userCodec == QStringLiteral("ac3"))
        return AudioAc351;
    if (track.userCodec == QStringLiteral("aac"))
        return integerValue(track.userNumberOfChannels) >= kSurroundChannels ? AudioAac51 : AudioAacStereo;
    return AudioPassthru;
}

QString MCMkvTabRules::audioBitRateFor(int row)
{
    switch (row) {
    case AudioAacStereo:
        return QStringLiteral("160");
    case AudioAac51:
        return QStringLiteral("384");
    case AudioAc351:
        return QStringLiteral("448");
    default:
        return {};
    }
}

void MCMkvTabRules::decide(MCSelection &selection, int chosenAudio, const Typed &typed)
{
    selection.userVideoBitRate = typed.videoBitRate;
    selection.userWidth = typed.width;
    const QString chosen = QString::number(chosenAudio);
    MCVideoTrackPtr chosenTrack;
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track->trackType == kAudio && track->selectedAudioTrackIndex == chosen)
            chosenTrack = track;
    }
    // Another track chosen: the rows show its wish before they change it.
    if (chosenTrack && m_shownAudioTrack != chosenTrack->trackFilePath + chosen) {
        m_shownAudioTrack = chosenTrack->trackFilePath + chosen;
        showChoiceOf(*chosenTrack);
    }
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track->trackType == kVideo)
            applyVideoRow(selection, *track);
        else if (isSubtitle(*track))
            track->userCodec = m_subtitleRow == SubtitleMux ? QStringLiteral("mux") : QStringLiteral("drop");
        else if (track == chosenTrack)
            wantAudio(*track, m_audioRow, m_addStereoTrack);
        else if (track->trackType == kAudio && audioRowFor(*track) == AudioPassthru)
            track->userCodec = kPassthru; // a wish of another tab has no row here
    }
    selection.addAnyStereoTracks();

    mustConvertVideoTrack = m_videoRow != VideoPassthru;
    audioSelected = chosenTrack != nullptr;
    subtitleSelected = count(selection, isSubtitle) > 0;
    canAddStereoTrack = chosenTrack && integerValue(chosenTrack->trackNumberOfChannels) > 2 && m_audioRow != AudioAacStereo;
    // A typed width only takes effect when the picture is re-encoded.
    const bool widthTyped = integerValue(typed.width) > 0 && typed.width != selection.videoTrackWidth;
    videoPassThruColor = m_videoRow == VideoPassthru && widthTyped ? kRed : kBlack;
    surroundColor = chosenTrack && !isSurround(*chosenTrack) ? kRed : kBlack;

    convertRefusalText = refusalFor(selection, typed);
    canConvert = convertRefusalText.isEmpty();
    if (canConvert)
        selection.jobType = conversionJobType();
    emit stateChanged();
}

void MCMkvTabRules::showChoiceOf(const MCVideoTrack &track)
{
    m_audioRow = audioRowFor(track);
    m_addStereoTrack = track.createStereoCopyFlag;
}

void MCMkvTabRules::applyVideoRow(MCSelection &selection, MCVideoTrack &track) const
{
    track.userCodec = m_videoRow == VideoPassthru ? kPassthru : QStringLiteral("mpeg4");
    selection.userPassNumber = m_videoRow == VideoTwoPasses ? QStringLiteral("2") : QStringLiteral("1");
}

void MCMkvTabRules::wantAudio(MCVideoTrack &track, int row, bool stereoCopy)
{
    if (row == AudioPassthru) {
        track.userCodec = kPassthru;
        track.userNumberOfChannels = track.trackNumberOfChannels;
    } else {
        track.userCodec = row == AudioAc351 ? QStringLiteral("ac3") : QStringLiteral("aac");
        track.userNumberOfChannels = row == AudioAacStereo ? QStringLiteral("2") : QStringLiteral("6");
        track.userBitRate = audioBitRateFor(row);
    }
    track.createStereoCopyFlag = stereoCopy && row != AudioAacStereo && integerValue(track.trackNumberOfChannels) > 2;
}

bool MCMkvTabRules::holdsVideo(const QString &) const
{
    return true;
}

bool MCMkvTabRules::holdsAudio(const QString &) const
{
    return true;
}

QString MCMkvTabRules::conversionJobType() const
{
    return MCWords::jobMkvConversion;
}

QString MCMkvTabRules::containerName() const
{
    return QStringLiteral("MKV");
}

QString MCMkvTabRules::copyRefusal(const MCSelection &selection) const
{
    const QString extension = selection.videoTrackFileExtension.toLower();
    const auto copies = [&selection](const QString &type) {
        return std::any_of(selection.trackList.cbegin(), selection.trackList.cend(), [&type](const MCVideoTrackPtr &track) {
            return track->trackType == type && track->userCodec == kPassthru && !track->externalTrackFlag;
        });
    };
    // mkvmerge reads no ASF file at all.
    if ((extension == QStringLiteral("wmv") || extension == QStringLiteral("asf")) && (copies(kVideo) || copies(kAudio)))
        return QStringLiteral("mkvmerge cannot copy tracks out of a WMV file: choose MPEG-4 and an AAC or AC-3 row.");
    // It reads a program stream's sound but leaves its picture out.
    if (MCContainers::isProgramStream(extension) && copies(kVideo))
        return QStringLiteral("The video of a VOB or MPEG file cannot be copied into an MKV as it is: choose MPEG-4.");
    return {};
}

QString MCMkvTabRules::refusalFor(const MCSelection &selection, const Typed &typed) const
{
    const int videos = count(selection, [](const MCVideoTrack &t) { return t.trackType == kVideo; });
    if (videos != 1)
        return QStringLiteral("An %1 conversion takes one video track (selected: %2).").arg(containerName()).arg(videos);
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track->trackType != kAudio || track->userCodec == kPassthru || isSurround(*track))
            continue;
        if (integerValue(track->userNumberOfChannels) < kSurroundChannels)
            continue;
        const QString &language = track->trackLanguage;
        const QString which = language.isEmpty() || language == QStringLiteral("undetermined")
                                  ? QStringLiteral("this one")
                                  : QStringLiteral("the %1 track").arg(language);
        return QStringLiteral("%1 needs a surround track of 6 channels; %2 has %3: choose AAC stereo or passthru.")
            .arg(track->userCodec == QStringLiteral("ac3") ? QStringLiteral("AC-3 5.1") : QStringLiteral("AAC 5.1"), which,
                 track->trackNumberOfChannels);
    }
    if (const QString copying = copyRefusal(selection); !copying.isEmpty())
        return copying;
    if (m_videoRow == VideoPassthru)
        return {};
    if (!typed.widthOK)
        return QStringLiteral("The width must be a whole number of pixels.");
    return MCAviRefusal::mpeg4BitRateReason(selection, typed.videoBitRateOK);
}
