#include "MCStagedSource.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString MCStagedSource::linkInto(const QString &folder, const QString &source, const QString &name)
{
    const QString link = QDir(folder).filePath(name);
    const QFileInfo existing(link);
    // Only the job writes into its folder, so what stands there is its own.
    if (existing.exists() || existing.isSymLink())
        return link;
    if (QFile::link(QFileInfo(source).absoluteFilePath(), link))
        return link;
    return QFile::copy(source, link) ? link : QString();
}
