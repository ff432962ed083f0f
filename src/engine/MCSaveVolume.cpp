#include "MCSaveVolume.h"

#include <QFileInfo>
#include <QStorageInfo>

MCSaveVolume::MCSaveVolume(const QString &folder, qint64 lowFreeBytes)
    : m_folder(folder)
    , m_lowFreeBytes(lowFreeBytes)
{
}

QString MCSaveVolume::shortageFor(const QStringList &sources) const
{
    const QStorageInfo volume(m_folder);
    if (m_folder.isEmpty() || !volume.isValid() || !volume.isReady())
        return {};
    qint64 needed = 0;
    QStringList counted;
    for (const QString &input : sources) {
        const QFileInfo source(input);
        if (counted.contains(source.canonicalFilePath()) || !source.isFile())
            continue;
        counted << source.canonicalFilePath();
        needed += source.size();
    }
    // A result about the size of its sources, logs and statistics beside it.
    needed += needed / 10 + m_lowFreeBytes;
    if (volume.bytesAvailable() >= needed)
        return {};
    return QStringLiteral("It appears that your save volume is almost out of free space. This job needs about %1 MB; %2 has %3 MB free.")
        .arg(needed / 1000000 + 1)
        .arg(m_folder)
        .arg(volume.bytesAvailable() / 1000000);
}

bool MCSaveVolume::isAlmostFull() const
{
    const QStorageInfo volume(m_folder);
    if (m_folder.isEmpty() || !volume.isValid() || !volume.isReady())
        return false;
    return volume.bytesAvailable() <= m_lowFreeBytes;
}
