#include "MCDryRun.h"

#include "MCConverter.h"
#include "MCJob.h"
#include "MCJobWatcher.h"
#include "MCQueueController.h"
#include "MCTerminalText.h"
#include "MCVideoFile.h"
#include "MCWords.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>

namespace {

// A job built in compose-only mode finishes within a few queue ticks.
constexpr int kComposeTimeoutMs = 30000;

QString channelsText(const QString &channels)
{
    return channels == QStringLiteral("1") ? QStringLiteral("1 channel") : QStringLiteral("%1 channels").arg(channels);
}

QString videoTarget(const MCSelection &selection, const MCVideoTrack &track)
{
    if (track.userCodec != QStringLiteral("mpeg4"))
        return track.userCodec;
    QString text = QStringLiteral("mpeg4, %1 kbit/s").arg(selection.userVideoBitRate);
    if (selection.userWidth.toInt() > 0 && selection.userWidth.toInt() < selection.videoTrackWidth.toInt())
        text += QStringLiteral(", width %1").arg(selection.userWidth);
    text += selection.userPassNumber == QStringLiteral("2") ? QStringLiteral(", 2 passes") : QStringLiteral(", 1 pass");
    return text;
}

QString audioTarget(const MCVideoTrack &track)
{
    if (track.userCodec == QStringLiteral("passthru"))
        return QStringLiteral("passthru, %1 kbit/s, %2").arg(track.trackBitRate, channelsText(track.trackNumberOfChannels));
    return QStringLiteral("%1, %2 kbit/s, %3").arg(track.userCodec, track.userBitRate, channelsText(track.userNumberOfChannels));
}

QString trackLine(const MCSelection &selection, const MCVideoFile &file, const MCVideoTrack &track, const QString &prefix)
{
    qsizetype position = -1;
    for (qsizetype i = 0; i < file.trackList.size(); ++i) {
        if (file.trackList.at(i).get() == &track)
            position = i + 1;
    }
    const QString where = position > 0 ? QStringLiteral("track %1").arg(position) : QStringLiteral("added track");
    QString source = QStringLiteral("%1 %2").arg(track.trackType, track.trackCodec);
    if (track.trackType == QStringLiteral("Audio"))
        source += QStringLiteral(" %1").arg(channelsText(track.trackNumberOfChannels));
    if (!track.trackLanguage.isEmpty() && track.trackLanguage != QStringLiteral("undetermined"))
        source += QStringLiteral(" (%1)").arg(track.trackLanguage);
    if (track.externalTrackFlag)
        source += QStringLiteral(" from %1").arg(track.trackFileName);
    QString target = track.userCodec;
    if (track.trackType == QStringLiteral("Video"))
        target = videoTarget(selection, track);
    else if (track.trackType == QStringLiteral("Audio"))
        target = audioTarget(track);
    const bool converting = selection.jobType == MCWords::jobAviConversion || selection.jobType == MCWords::jobMkvConversion
                            || selection.jobType == MCWords::jobMp4Conversion;
    return QStringLiteral("  %1: %2%3\n").arg(prefix.isEmpty() ? where : prefix, source,
                                                converting ? QStringLiteral(" -> ") + target : QString());
}

QString splitLine(const MCSelection &selection)
{
    if (selection.splitType == QStringLiteral("size"))
        return QStringLiteral("  split: %1 pieces of %2 MB\n").arg(selection.splitNumber, selection.splitSize);
    if (selection.splitType == QStringLiteral("duration"))
        return QStringLiteral("  split: pieces of %1 seconds\n").arg(selection.splitDurationSeconds);
    return QStringLiteral("  split: %1 to %2\n").arg(selection.splitStartTimeText, selection.splitEndTimeText);
}

} // namespace

MCDryRun::MCDryRun(std::FILE *out, QObject *parent)
    : QObject(parent)
    , m_out(out)
    , m_queue(new MCQueueController(this))
{
    MCConverter::setCommandRecorder([this](const QString &command) { m_commands << command; });
}

MCDryRun::~MCDryRun()
{
    MCConverter::setCommandRecorder({});
}

void MCDryRun::print(const QString &text)
{
    MCTerminalText::print(m_out, text);
}

QString MCDryRun::describe(const MCSelection &selection, const MCVideoFile &file)
{
    const bool named = !selection.videoTrackFilePath.isEmpty() && selection.videoTrackFilePath != QStringLiteral("none");
    const QString name = !named && !selection.editFilesURLsList.isEmpty()
                             ? selection.editFilesURLsList.first().toLocalFile()
                             : selection.videoTrackFilePath;
    QString text = QStringLiteral("%1\n  job: %2\n").arg(name, selection.jobType);
    const QString &type = selection.jobType;
    const bool splitting = type == MCWords::jobAviSplitting || type == MCWords::jobMkvSplitting || type == MCWords::jobMp4Splitting;
    const bool aspect = type == MCWords::jobParEditing;
    const bool editingFiles = splitting || aspect || type == MCWords::jobAviJoining || type == MCWords::jobMkvJoining
                              || type == MCWords::jobMp4Joining;
    if (editingFiles) {
        for (const QUrl &url : selection.editFilesURLsList)
            text += QStringLiteral("  file: %1\n").arg(url.toLocalFile());
        if (splitting)
            text += splitLine(selection);
        if (aspect)
            text += QStringLiteral("  pixel aspect: %1:%2\n").arg(selection.userParWidth, selection.userParHeight);
        return text;
    }
    if ((type == MCWords::jobAviConversion || type == MCWords::jobMp4Conversion) && !selection.theDevice.isEmpty()
        && selection.theDevice != QStringLiteral("none"))
        text += QStringLiteral("  device: %1\n").arg(selection.theDevice);
    for (const MCVideoTrackPtr &track : selection.trackList) {
        if (track)
            text += trackLine(selection, file, *track, QString());
    }
    for (const MCVideoTrackPtr &track : selection.addedAudioTrackList) {
        if (track)
            text += trackLine(selection, file, *track, QStringLiteral("stereo copy"));
    }
    return text;
}

void MCDryRun::take(const MCSelectionPtr &selection, const MCVideoFile &file)
{
    m_pending.append({selection->copy(), describe(*selection, file)});
}

QStringList MCDryRun::composeCommands(const MCSelectionPtr &selection)
{
    m_commands.clear();
    const qsizetype before = m_queue->qJobList().size();
    m_queue->addToQueue(selection);
    if (m_queue->qJobList().size() == before)
        return {};
    QEventLoop loop;
    QTimer poll;
    const QDeadlineTimer deadline(kComposeTimeoutMs);
    connect(&poll, &QTimer::timeout, &loop, [&] {
        bool finished = true;
        for (const MCJob *job : m_queue->qJobList())
            finished = finished && MCJobWatcher::hasEnded(*job);
        if (finished || deadline.hasExpired())
            loop.quit();
    });
    poll.start(50);
    loop.exec();
    m_queue->clearQueueButton();
    return m_commands;
}

bool MCDryRun::run()
{
    bool everyJobComposed = true;
    for (const Pending &pending : std::as_const(m_pending)) {
        print(pending.description);
        const QStringList commands = composeCommands(pending.selection);
        if (commands.isEmpty()) {
            print(QStringLiteral("  (no job for this selection)\n"));
            everyJobComposed = false;
        }
        for (const QString &command : commands)
            print(QStringLiteral("  command: %1\n").arg(command));
        print(QStringLiteral("\n"));
    }
    m_pending.clear();
    return everyJobComposed;
}
