#include "MCOutputGuard.h"

#include "MCLog.h"

#include <QFileInfo>

namespace {

QString comparablePath(const QUrl &url)
{
    const QFileInfo info(url.toLocalFile());
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

bool MCOutputGuard::writesOverAnInput(const QList<QUrl> &written, const QList<QUrl> &inputs)
{
    for (const QUrl &output : written) {
        if (output.toLocalFile().isEmpty())
            continue;
        const QString outputPath = comparablePath(output);
        for (const QUrl &input : inputs) {
            if (!input.toLocalFile().isEmpty() && comparablePath(input) == outputPath) {
                MCLog::line(QStringLiteral("Not started: %1 would be written over").arg(outputPath));
                return true;
            }
        }
    }
    return false;
}
