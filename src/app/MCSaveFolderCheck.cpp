#include "MCSaveFolderCheck.h"

#include <QFileInfo>

namespace MCSaveFolderCheck {

std::optional<MCAlert> refusal(const QString &folderPath)
{
    const QFileInfo folder(folderPath);
    if (folder.isDir() && folder.isWritable())
        return std::nullopt;
    MCAlert alert;
    if (!folder.exists()) {
        // A folder that is gone (an unplugged disk, a typo) is not a
        // permission problem; saying so would send the user the wrong way.
        alert.message = QStringLiteral("The save folder for this job does not exist.");
        alert.informativeText = QStringLiteral("Create the folder or change the save location: %1").arg(folder.filePath());
    } else {
        alert.message = QStringLiteral("Kestrane does not have permision to write to the save folder for this job.");
        alert.informativeText = QStringLiteral("Either move the file, change the save location, or edit the permissions for the output folder.");
    }
    alert.timeoutSeconds = 10.0;
    return alert;
}

} // namespace MCSaveFolderCheck
