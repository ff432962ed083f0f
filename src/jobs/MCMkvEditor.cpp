#include "MCMkvEditor.h"

#include "MCJoinPropertyCheck.h"
#include "MCMediaSummary.h"
#include "MCMkvJobChecks.h"
#include "MCSplitRange.h"
#include "MCWords.h"

#include <QFileInfo>

MCMkvEditor::MCMkvEditor()
{
    converterName = QStringLiteral("mkvEditor");
}

QString MCMkvEditor::startConversionFor(const MCSelectionPtr &selection)
{
    converterSelection = selection;
    doShell_ID.clear();
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    if (selection->jobType == MCWords::jobAviSplitting)
        return startSplitting();
    if (selection->jobType == MCWords::jobAviJoining)
        return startJoining();
    return refuse(QStringLiteral("mkvmerge cannot do \"%1\"").arg(selection->jobType));
}

QString MCMkvEditor::splitOptionFor(const MCSelection &selection)
{
    if (selection.splitType == QStringLiteral("time")) {
        // A range mkvmerge would read as something else is not passed on.
        if (!MCSplitRange::isValidTimeRange(selection.splitStartTimeText, selection.splitEndTimeText))
            return {};
        return QStringLiteral("--split parts:%1-%2").arg(selection.splitStartTimeText, selection.splitEndTimeText);
    }
    if (selection.splitType == QStringLiteral("size")) {
        // Megabytes as entered; mkvmerge reads "0k" as no limit at all.
        const int kilobytes = selection.splitSize.toInt() * 1000;
        if (kilobytes <= 0)
            return {};
        return QStringLiteral("--split  %1k").arg(kilobytes);
    }
    if (selection.splitType == QStringLiteral("duration")) {
        if (selection.splitDurationSeconds.toInt() <= 0)
            return {};
        return QStringLiteral("--split %1s").arg(selection.splitDurationSeconds);
    }
    return {};
}

QString MCMkvEditor::startSplitting()
{
    inputFileURL = converterSelection->videoTrackFileURL;
    saveDirectoryURL = saveFolderBeside(inputFileURL);
    const QFileInfo input(inputFileURL.toLocalFile());
    const QString stem = urlInSaveDirectory(input.fileName()).toLocalFile();
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".split.log"));
    outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.split.%2").arg(stem, input.suffix()));
    tempFileToDeleteURL.clear();
    // Only a range needs the file's length: it must lie within the file.
    const double fileSeconds = converterSelection->splitType == QStringLiteral("time")
                                   ? MCMediaSummary::of(inputFileURL.toLocalFile()).durationSeconds
                                   : 0.0;
    if (const QString refusal = MCMkvJobChecks::splitRefusal(*converterSelection, fileSeconds); !refusal.isEmpty())
        return refuse(refusal);
    const QString split = splitOptionFor(*converterSelection);
    return launchMkvmerge({QStringLiteral("-o"), outputFileURL, split, QStringLiteral("--compression -1:none"),
                           inputFileURL},
                          {inputFileURL});
}

QString MCMkvEditor::startJoining()
{
    const QList<QUrl> files = converterSelection->editFilesURLsList;
    if (files.isEmpty())
        return refuse(QStringLiteral("there are no files to join"));
    inputFileURL = files.first();
    const QStringList mismatched = findMismatchedProperetiesFor(files);
    if (!mismatched.isEmpty())
        MCJoinPropertyCheck::showJoinWarning(mismatched);
    saveDirectoryURL = saveFolderBeside(inputFileURL);
    const QFileInfo first(inputFileURL.toLocalFile());
    const QString stem = urlInSaveDirectory(first.fileName()).toLocalFile();
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".joined.log"));
    outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.joined.%2").arg(stem, first.suffix()));
    tempFileToDeleteURL.clear();
    MCOptionList arguments{QStringLiteral("-o"), outputFileURL, inputFileURL};
    // mkvmerge's append form: a later file joins the one before it.
    for (qsizetype i = 1; i < files.size(); ++i)
        arguments << QStringLiteral("+%1").arg(singleQuotedFormOf(files.at(i).toLocalFile()));
    return launchMkvmerge(arguments, files);
}

QStringList MCMkvEditor::findMismatchedProperetiesFor(const QList<QUrl> &urls) const
{
    return MCJoinPropertyCheck::findMismatchedProperetiesFor(urls);
}
