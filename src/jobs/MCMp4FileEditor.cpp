#include "MCMp4FileEditor.h"

#include "MCJoinPropertyCheck.h"
#include "MCMp4Muxer.h"
#include "MCOutputGuard.h"
#include "MCStagedSource.h"
#include "MCWords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cmath>

namespace {

const QString kIsma = QStringLiteral("-isma");
const QString kInterleave = QStringLiteral("-inter 500");

QList<QUrl> urlsOf(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << QUrl::fromLocalFile(path);
    return urls;
}

} // namespace

MCMp4FileEditor::MCMp4FileEditor()
{
    converterName = QStringLiteral("mp4FileEditor");
}

QString MCMp4FileEditor::startConversionFor(const MCSelectionPtr &selection)
{
    converterSelection = selection;
    m_splitting = false;
    doShell_ID.clear();
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    if (!fileToClean.isEmpty())
        return removeSysTracksFromURL(fileToClean, selection);
    const QString &type = selection->jobType;
    if (type == MCWords::jobMp4TrackRemoval)
        return startRemoval();
    if (type == MCWords::jobMp4Joining)
        return startJoining(selection->editFilesURLsList);
    if (type == MCWords::jobMp4Splitting)
        return startSplitting();
    if (type == MCWords::jobParEditing)
        return startParEditing();
    return refuse(QStringLiteral("MP4Box cannot do \"%1\"").arg(type));
}

void MCMp4FileEditor::nameOutputAfter(const QUrl &file, const QString &what)
{
    const QFileInfo info(file.toLocalFile());
    const QString stem = urlInSaveDirectory(info.fileName()).toLocalFile();
    logFileURL = QUrl::fromLocalFile(QStringLiteral("%1.%2.log").arg(stem, what));
    outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.%2.%3").arg(stem, what, info.suffix()));
    tempFileToDeleteURL.clear();
}

QString MCMp4FileEditor::startRemoval()
{
    initializeFor(converterSelection);
    inputFileURL = converterSelection->videoTrackFileURL;
    const MCTrackList removed = converterSelection->trackList;
    if (removed.isEmpty())
        return refuse(QStringLiteral("no track is chosen for removal"));
    MCOptionList arguments;
    for (const MCVideoTrackPtr &track : removed) {
        if (!isStringInteger(track->trackMp4boxID))
            return refuse(QStringLiteral("MP4Box knows no track \"%1\" in the file").arg(track->trackMp4boxID));
        arguments << QStringLiteral("-rem") << track->trackMp4boxID;
    }
    nameOutputAfter(inputFileURL, QStringLiteral("deletedtrack"));
    if (MCOutputGuard::writesOverAnInput({outputFileURL, logFileURL}, {inputFileURL}))
        return refuse(QStringLiteral("its result would be written over one of its own inputs"));
    // MP4Box removes tracks in place: it works on a copy, never on the source.
    if (!isRecordingCommands()) {
        QFile::remove(outputFileURL.toLocalFile());
        if (!QFile::copy(inputFileURL.toLocalFile(), outputFileURL.toLocalFile()))
            return refuse(QStringLiteral("the file could not be copied to %1").arg(outputFileURL.toLocalFile()));
    }
    arguments << kIsma << kInterleave << temporaryFolderOptions(saveDirectoryURL) << outputFileURL;
    return launchMp4Box(arguments, {inputFileURL});
}

QString MCMp4FileEditor::startJoining(const QList<QUrl> &files)
{
    if (files.size() < 2)
        return refuse(QStringLiteral("joining takes at least two files"));
    inputFileURL = files.first();
    const QStringList mismatched = findMismatchedProperetiesFor(files);
    if (!mismatched.isEmpty())
        MCJoinPropertyCheck::showJoinWarning(mismatched);
    determineSaveDirectoryURL();
    nameOutputAfter(inputFileURL, QStringLiteral("joined"));
    MCOptionList arguments;
    for (const QUrl &file : files)
        arguments << QStringLiteral("-cat") << file;
    arguments << kIsma << kInterleave << QStringLiteral("-new") << outputFileURL;
    return launchMp4Box(arguments, files);
}

QString MCMp4FileEditor::splitOptionFor(const MCSelection &selection)
{
    if (selection.splitType == QStringLiteral("time")) {
        bool startRead = false;
        bool endRead = false;
        const double start = selection.splitStartTimeSeconds.toDouble(&startRead);
        const double end = selection.splitEndTimeSeconds.toDouble(&endRead);
        if (!startRead || !endRead || start < 0.0 || end <= start)
            return {};
        return QStringLiteral("-splitx %1:%2").arg(selection.splitStartTimeSeconds, selection.splitEndTimeSeconds);
    }
    if (selection.splitType == QStringLiteral("size")) {
        // Megabytes as entered, in the kilobytes MP4Box counts.
        const int kilobytes = selection.splitSize.toInt() * 1000;
        return kilobytes > 0 ? QStringLiteral("-splits %1").arg(kilobytes) : QString();
    }
    return {};
}

QString MCMp4FileEditor::startSplitting()
{
    inputFileURL = converterSelection->videoTrackFileURL;
    determineSaveDirectoryURL();
    nameOutputAfter(inputFileURL, QStringLiteral("split"));
    const QString split = splitOptionFor(*converterSelection);
    if (split.isEmpty())
        return refuse(QStringLiteral("MP4Box cannot split by \"%1\" with %2")
                          .arg(converterSelection->splitType,
                               converterSelection->splitType == QStringLiteral("size")
                                   ? QStringLiteral("%1 MB").arg(converterSelection->splitSize)
                                   : QStringLiteral("the range %1 to %2 seconds")
                                         .arg(converterSelection->splitStartTimeSeconds, converterSelection->splitEndTimeSeconds)));
    if (MCOutputGuard::writesOverAnInput({outputFileURL, logFileURL}, {inputFileURL}))
        return refuse(QStringLiteral("its result would be written over one of its own inputs"));
    // MP4Box writes the pieces beside the file it reads, named after it: it
    // reads the source through a link named as the output, in the job's folder.
    QUrl read = inputFileURL;
    if (!stagingFolder.isEmpty()) {
        const QFileInfo output(outputFileURL.toLocalFile());
        const QString link = MCStagedSource::linkInto(output.absolutePath(), inputFileURL.toLocalFile(), output.fileName());
        if (link.isEmpty())
            return refuse(QStringLiteral("the file could not be linked into the save folder"));
        read = QUrl::fromLocalFile(link);
    }
    m_splitting = true;
    // Checked above: the link itself leads to the source.
    return launchMp4Box({split, kIsma, kInterleave, read}, {});
}

int MCMp4FileEditor::parThousandthsFor(const MCSelection &selection)
{
    const double width = selection.userParWidth.toDouble();
    const double height = selection.userParHeight.toDouble();
    if (!(width > 0.0) || !(height > 0.0))
        return 0;
    return static_cast<int>(std::lround(width / height * 1000.0));
}

QString MCMp4FileEditor::startParEditing()
{
    inputFileURL = converterSelection->videoTrackFileURL;
    determineSaveDirectoryURL();
    nameOutputAfter(inputFileURL, QStringLiteral("newpar"));
    const int par = parThousandthsFor(*converterSelection);
    if (par <= 0)
        return refuse(QStringLiteral("the pixel aspect ratio %1:%2 is not one")
                          .arg(converterSelection->userParWidth, converterSelection->userParHeight));
    const QString add = QStringLiteral("%1:par=%2:1000").arg(singleQuotedFormOf(inputFileURL.toLocalFile())).arg(par);
    MCOptionList arguments{QStringLiteral("-add"), add, kIsma, kInterleave};
    arguments << temporaryFolderOptions(saveDirectoryURL) << QStringLiteral("-new") << outputFileURL;
    return launchMp4Box(arguments, {inputFileURL});
}

QString MCMp4FileEditor::removeSysTracksFromURL(const QUrl &file, const MCSelectionPtr &selection)
{
    converterSelection = selection;
    m_splitting = false;
    inputFileURL = file;
    determineSaveDirectoryURL();
    const QFileInfo info(file.toLocalFile());
    const QString stem = urlInSaveDirectory(info.fileName()).toLocalFile();
    // Made in the save folder (the job's own), not beside the user's file.
    outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.tmp.%2").arg(stem, info.suffix()));
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".fixing.log"));
    tempFileToDeleteURL = outputFileURL;
    isTemporaryOutput = true;
    MCOptionList arguments{QStringLiteral("-add"), file};
    arguments << temporaryFolderOptions(saveDirectoryURL) << QStringLiteral("-new") << outputFileURL;
    return launchMp4Box(arguments, {file});
}

QString MCMp4FileEditor::moveMetadataToFrontForURL(const QUrl &file, const MCSelectionPtr &selection)
{
    converterSelection = selection;
    m_splitting = false;
    inputFileURL = outputFileURL = file;
    logFileURL = QUrl::fromLocalFile(file.toLocalFile() + QStringLiteral(".muxing.log"));
    determineSaveDirectoryURL();
    tempFileToDeleteURL.clear();
    doShell_ID.clear();
    if (selection && MCOutputGuard::writesOverAnInput({file}, urlsOf(selection->sourcePaths())))
        return refuse(QStringLiteral("a source file is never rewritten"));
    MCOptionList arguments{kIsma, kInterleave};
    arguments << temporaryFolderOptions(saveDirectoryURL) << file;
    return launchMp4Box(arguments, {});
}

QStringList MCMp4FileEditor::findMismatchedProperetiesFor(const QList<QUrl> &urls) const
{
    return MCJoinPropertyCheck::findMismatchedProperetiesFor(urls);
}

QStringList MCMp4FileEditor::resultPaths() const
{
    if (!m_splitting)
        return MCConverter::resultPaths();
    if (!toolWasStarted())
        return {};
    // "movie.mp4.split.mp4" stands for "movie.mp4.split_001.mp4", ... and
    // "movie.mp4.split_10_20.mp4".
    const QFileInfo stem(outputFileURL.toLocalFile());
    const QString pattern = stem.completeBaseName() + QStringLiteral("_*.") + stem.suffix();
    QStringList pieces;
    for (const QFileInfo &piece : QDir(stem.absolutePath()).entryInfoList({pattern}, QDir::Files, QDir::Name))
        pieces << piece.absoluteFilePath();
    return pieces;
}

MCOptionList MCMp4FileEditor::temporaryFolderOptions(const QUrl &saveFolder)
{
    if (!MCMp4Muxer::isOnOtherVolume(saveFolder.toLocalFile()))
        return {};
    return {QStringLiteral("-tmp"), saveFolder};
}
