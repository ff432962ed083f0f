#include "MCInputFileCheck.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

QString MCInputFileCheck::problem(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat status = {};
    // stat's own errno tells a link loop (ELOOP) or a file in a missing
    // folder from a missing file; QFileInfo only answers "does not exist".
    if (::stat(name.constData(), &status) != 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("Not a regular file");
    if (::access(name.constData(), R_OK) != 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    return {};
}
