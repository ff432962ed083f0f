#pragma once

#include <QString>
#include <QStringList>

// The volume a job writes its results to, asked before the job starts and
// after it ends whether it has room.
class MCSaveVolume
{
public:
    // lowFreeBytes: what counts as almost full, and is kept free besides.
    MCSaveVolume(const QString &folder, qint64 lowFreeBytes);

    // Why results the size of these sources would not fit; empty when they
    // would, or when the volume cannot be asked.
    QString shortageFor(const QStringList &sources) const;
    bool isAlmostFull() const;

private:
    QString m_folder;
    qint64 m_lowFreeBytes;
};
