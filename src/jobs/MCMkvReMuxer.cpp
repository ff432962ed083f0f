#include "MCMkvReMuxer.h"

#include <QFileInfo>

MCMkvReMuxer::MCMkvReMuxer()
{
    converterName = QStringLiteral("MkvReMuxer");
}

QString MCMkvReMuxer::startConversionFor(const MCSelectionPtr &selection)
{
    converterSelection = selection;
    doShell_ID.clear();
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    inputFileURL = selection->videoTrackFileURL;
    saveDirectoryURL = saveFolderBeside(inputFileURL);
    const QString stem = urlInSaveDirectory(QFileInfo(inputFileURL.toLocalFile()).fileName()).toLocalFile();
    outputFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".remux.mkv"));
    logFileURL = QUrl::fromLocalFile(stem + QStringLiteral(".remuxing.log"));
    tempFileToDeleteURL.clear();
    return launchMkvmerge({QStringLiteral("-o"), outputFileURL, QStringLiteral("--compression -1:none"), inputFileURL},
                          {inputFileURL});
}
