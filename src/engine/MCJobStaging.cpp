#include "MCJobStaging.h"

#include <QSet>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int kMaxNumberedNames = 9999;

// rename that fails instead of replacing an existing file.
int renameNoReplace(const QByteArray &from, const QByteArray &to)
{
#ifdef SYS_renameat2
    const long result = syscall(SYS_renameat2, AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), 1 /*RENAME_NOREPLACE*/);
    if (result == 0 || (errno != ENOSYS && errno != EINVAL))
        return static_cast<int>(result);
#endif
    // File systems without the flag: a hard link fails on an existing name too.
    if (::link(from.constData(), to.constData()) != 0)
        return -1;
    ::unlink(from.constData());
    return 0;
}

} // namespace

MCJobStaging::~MCJobStaging()
{
    remove();
}

QString MCJobStaging::folderPrefix()
{
    return QStringLiteral(".kestrane-job-");
}

bool MCJobStaging::create(const QString &saveFolder)
{
    m_errorText.clear();
    m_saveFolder = QDir(saveFolder).absolutePath();
    QByteArray pattern = QFile::encodeName(QDir(m_saveFolder).filePath(folderPrefix() + QStringLiteral("XXXXXX")));
    if (::mkdtemp(pattern.data()) == nullptr) {
        m_errorText = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    m_path = QFile::decodeName(pattern);
    return true;
}

bool MCJobStaging::contains(const QString &file) const
{
    return exists() && QFileInfo(file).absolutePath() == m_path;
}

QString MCJobStaging::numberedName(const QString &fileName, int number)
{
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0)
        return QStringLiteral("%1 (%2)").arg(fileName).arg(number);
    return QStringLiteral("%1 (%2)%3").arg(fileName.left(dot)).arg(number).arg(fileName.mid(dot));
}

QString MCJobStaging::publish(const QString &file)
{
    const QString name = QFileInfo(file).fileName();
    const QByteArray from = QFile::encodeName(file);
    for (int number = 1; number <= kMaxNumberedNames; ++number) {
        const QString target = QDir(m_saveFolder).filePath(number == 1 ? name : numberedName(name, number));
        if (renameNoReplace(from, QFile::encodeName(target)) == 0)
            return target;
        if (errno != EEXIST) {
            m_errorText = QString::fromLocal8Bit(std::strerror(errno));
            return {};
        }
    }
    m_errorText = QStringLiteral("no free name for %1").arg(name);
    return {};
}

bool MCJobStaging::nameIsTaken(const QString &file) const
{
    struct stat target {};
    return ::lstat(QFile::encodeName(QDir(m_saveFolder).filePath(QFileInfo(file).fileName())).constData(), &target) == 0;
}

QString MCJobStaging::publishReplacing(const QString &file, const QStringList &protectedFiles)
{
    const QString target = QDir(m_saveFolder).filePath(QFileInfo(file).fileName());
    struct stat existing {};
    if (::lstat(QFile::encodeName(target).constData(), &existing) != 0 || !S_ISREG(existing.st_mode))
        return publish(file);
    for (const QString &protectedFile : protectedFiles) {
        struct stat other {};
        // Device and inode: the same file whatever its name or path.
        if (::stat(QFile::encodeName(protectedFile).constData(), &other) == 0 && other.st_dev == existing.st_dev
            && other.st_ino == existing.st_ino)
            return publish(file);
    }
    if (::rename(QFile::encodeName(file).constData(), QFile::encodeName(target).constData()) != 0) {
        m_errorText = QString::fromLocal8Bit(std::strerror(errno));
        return {};
    }
    return target;
}

void MCJobStaging::remove()
{
    if (m_path.isEmpty())
        return;
    QDir(m_path).removeRecursively();
    m_path.clear();
}

QStringList MCJobStaging::publishKept(const QStringList &logs, bool logsOnly)
{
    if (!exists())
        return {};
    QSet<QString> keptLogs;
    for (const QString &log : logs)
        keptLogs.insert(QFileInfo(log).absoluteFilePath());
    QStringList published;
    const QFileInfoList kept = QDir(m_path).entryInfoList(QDir::Files | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &file : kept) {
        if (logsOnly && !keptLogs.contains(file.absoluteFilePath()))
            continue;
        if (const QString name = publish(file.absoluteFilePath()); !name.isEmpty())
            published << name;
    }
    return published;
}
