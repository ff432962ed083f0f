#include "MCAviEditor.h"

#include "MCJoinPropertyCheck.h"
#include "MCMencoderVideo.h"
#include "MCNotificationCenter.h"
#include "MCOutputGuard.h"
#include "MCSplitRange.h"
#include "MCWords.h"

#include <QFileInfo>

namespace {

const QString kAudioMuxer = QStringLiteral("audioMuxer");
const QString kAviSplitter = QStringLiteral("aviSplitter");

} // namespace

MCAviEditor::MCAviEditor()
{
    converterName = QStringLiteral("aviEditor");
}

QString MCAviEditor::startConversionFor(const MCSelectionPtr &selection)
{
    converterName = QStringLiteral("aviEditor");
    converterSelection = selection;
    doShell_ID.clear();
    tempFileToDeleteURL.clear();
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    if (selection->jobType == MCWords::jobAviJoining)
        return startJoining();
    if (selection->jobType == MCWords::jobAviSplitting)
        return startSplitting();
    if (selection->jobType == MCWords::jobAviTrackAddition)
        return startAddingAudio();
    return refuse(QStringLiteral("the AVI editor cannot do \"%1\"").arg(selection->jobType));
}

QString MCAviEditor::stemInSaveFolder(const QUrl &input)
{
    const QFileInfo info(input.toLocalFile());
    saveDirectoryURL = preferredSaveDirectory(QUrl::fromLocalFile(info.absolutePath()));
    return urlInSaveDirectory(info.fileName()).toLocalFile();
}

QString MCAviEditor::startJoining()
{
    const QList<QUrl> files = converterSelection->editFilesURLsList;
    if (files.isEmpty())
        return refuse(QStringLiteral("there are no files to join"));
    inputFileURL = files.first();
    const QStringList mismatched = findMismatchedProperetiesFor(files);
    if (!mismatched.isEmpty())
        MCJoinPropertyCheck::showJoinWarning(mismatched);
    const QString stem = stemInSaveFolder(inputFileURL);
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".joined.log"));
    outputFileURL = QUrl::fromLocalFile(
        QStringLiteral("%1.joined.%2").arg(stem, QFileInfo(inputFileURL.toLocalFile()).suffix()));
    MCOptionList arguments{QStringLiteral("-ovc copy"), QStringLiteral("-oac copy"), QStringLiteral("-idx"),
                           QStringLiteral("-o"), outputFileURL};
    for (const QUrl &file : files)
        arguments << file;
    return launch(QStringLiteral("mencoder"), arguments, files);
}

MCOptionList MCAviEditor::splitArgumentsFor(const MCSelection &selection)
{
    if (selection.splitType == QStringLiteral("time")) {
        if (!MCSplitRange::isValidTimeRange(selection.splitStartTimeText, selection.splitEndTimeText))
            return {};
        return {QStringLiteral("-t"),
                QStringLiteral("%1-%2").arg(selection.splitStartTimeText, selection.splitEndTimeText),
                QStringLiteral("-c")};
    }
    if (selection.splitType == QStringLiteral("size")) {
        // A size of nothing would make avisplit write pieces without end.
        if (selection.splitSize.toInt() <= 0)
            return {};
        return {QStringLiteral("-s"), selection.splitSize, QStringLiteral("-H"), selection.splitNumber};
    }
    return {};
}

QString MCAviEditor::startSplitting()
{
    converterName = kAviSplitter;
    inputFileURL = converterSelection->videoTrackFileURL;
    const QString stem = stemInSaveFolder(inputFileURL);
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".split.log"));
    outputFileURL = QUrl::fromLocalFile(
        QStringLiteral("%1.split.%2").arg(stem, QFileInfo(inputFileURL.toLocalFile()).suffix()));
    const QString &type = converterSelection->splitType;
    if (type != QStringLiteral("time") && type != QStringLiteral("size"))
        return refuse(QStringLiteral("avisplit splits by time or by size, not by \"%1\"").arg(type));
    const MCOptionList split = splitArgumentsFor(*converterSelection);
    if (split.isEmpty())
        return refuse(QStringLiteral("the split values cannot be used (a time range must end after it starts, a size must be above 0)"));
    MCOptionList arguments{QStringLiteral("-i"), inputFileURL};
    arguments << split << QStringLiteral("-o") << outputFileURL;
    return launch(QStringLiteral("avisplit"), arguments, {inputFileURL});
}

QString MCAviEditor::startAddingAudio()
{
    converterName = kAudioMuxer;
    inputFileURL = converterSelection->videoTrackFileURL;
    // The start marks the source's own tracks as selected too, and they come
    // first in the list; the files to add are the added audio tracks. Each
    // becomes one more "-p FILE" (one file gives the usual command).
    QList<QUrl> added;
    for (const MCVideoTrackPtr &track : converterSelection->trackList) {
        if (track && track->externalTrackFlag && track->trackType == QStringLiteral("Audio"))
            added << track->trackFileURL;
    }
    if (added.isEmpty()) {
        if (const MCVideoTrackPtr track = trackToProcess())
            added << track->trackFileURL;
    }
    if (added.isEmpty())
        return refuse(QStringLiteral("there is no audio file to add"));
    const QString stem = stemInSaveFolder(inputFileURL);
    outputFileURL = QUrl::fromLocalFile(
        QStringLiteral("%1.addedAudio.%2").arg(stem, QFileInfo(inputFileURL.toLocalFile()).suffix()));
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".addedAudio.log"));
    monitorCounter = 0;
    MCOptionList arguments{QStringLiteral("-i"), inputFileURL};
    for (const QUrl &file : std::as_const(added))
        arguments << QStringLiteral("-p") << file;
    arguments << QStringLiteral("-o") << outputFileURL;
    return launch(QStringLiteral("avimerge"), arguments, QList<QUrl>{inputFileURL} + added);
}

QString MCAviEditor::launch(const QString &tool, MCOptionList arguments, const QList<QUrl> &inputs)
{
    if (MCOutputGuard::writesOverAnInput({outputFileURL, logFileURL}, inputs))
        return refuse(QStringLiteral("its result would be written over one of its own inputs"));
    // A watched folder must not take the result up as a new movie.
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    arguments << QStringLiteral("&>") << logFileURL << QStringLiteral("& echo $!");
    return launchInBackground(urlOfApp(tool), arguments);
}

QString MCAviEditor::heartbeat(const QString &word)
{
    ++monitorCounter;
    return QStringLiteral("%1 %2").arg(word).arg(monitorCounter % 2 == 1 ? 1 : 2);
}

QString MCAviEditor::monitorConversion()
{
    if (!toolIsRunning())
        return QStringLiteral("Complete");
    if (converterName == kAudioMuxer)
        return heartbeat(QStringLiteral("avimerge"));
    if (converterName == kAviSplitter)
        return heartbeat(QStringLiteral("splitting"));
    if (const std::optional<QString> percent = MCMencoderVideo::percentFromPosLine(lastLogLine()))
        oldProgress = *percent;
    return oldProgress;
}

QStringList MCAviEditor::findMismatchedProperetiesFor(const QList<QUrl> &urls) const
{
    return MCJoinPropertyCheck::findMismatchedProperetiesFor(urls);
}
