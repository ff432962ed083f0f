#include "MCCliMkvChoices.h"

#include "MCCliOptions.h"
#include "MCMkvTabRules.h"
#include "MCSelectionController.h"

namespace {

int rowOf(const QString &choice, const QStringList &rows)
{
    return static_cast<int>(rows.indexOf(choice));
}

} // namespace

void MCCliMkvChoices::apply(const MCCliOptions &options, MCSelectionController &rules)
{
    MCMkvTabRules *current = rules.conversionTab(rules.currentTab());
    if (!current)
        return;
    MCMkvTabRules &tab = *current;
    if (!options.device.isEmpty() && rules.currentTab() == MCSelectionController::tabMp4)
        rules.setMp4Device(options.device);
    if (!options.video.isEmpty())
        tab.setVideoMatrixIndex(rowOf(options.video, {QStringLiteral("passthru"), QStringLiteral("mpeg4"), QStringLiteral("mpeg4-2pass")}));
    if (!options.bitrate.isEmpty())
        rules.setEnteredUserVideoBitRate(options.bitrate);
    if (!options.width.isEmpty())
        rules.setEnteredUserWidth(options.width);
    if (!options.subtitles.isEmpty())
        tab.setSubtitleMatrixIndex(options.subtitles == QStringLiteral("mux") ? MCMkvTabRules::SubtitleMux : MCMkvTabRules::SubtitleDrop);
    if (!options.audio.isEmpty() || options.stereoCopy) {
        const int audioRow = rowOf(options.audio, {QStringLiteral("passthru"), QStringLiteral("aac"), QStringLiteral("aac-5.1"),
                                                   QStringLiteral("ac3")});
        // Each audio track in turn, as chosen in the chooser.
        for (int track = 0; track < rules.audioTrackLabels().size(); ++track) {
            rules.setAudioTrackPopupIndex(track);
            if (audioRow >= 0)
                tab.setAudioMatrixIndex(audioRow);
            if (options.stereoCopy && tab.canAddStereoTrack)
                tab.setAddStereoTrack(true);
            rules.updateTabs();
        }
        rules.setAudioTrackPopupIndex(0);
    }
    rules.updateTabs();
}

QString MCCliMkvChoices::durationText(const QString &seconds)
{
    const int total = seconds.toInt();
    return QStringLiteral("%1:%2:%3")
        .arg(total / 3600, 2, 10, QLatin1Char('0'))
        .arg(total / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(total % 60, 2, 10, QLatin1Char('0'));
}
