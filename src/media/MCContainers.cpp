#include "MCContainers.h"

#include <QStringList>

namespace MCContainers {

bool isTransportStream(const QString &extension)
{
    static const QStringList extensions{QStringLiteral("ts"), QStringLiteral("mts"), QStringLiteral("m2ts"),
                                        QStringLiteral("m2t"), QStringLiteral("tp"), QStringLiteral("trp")};
    return extensions.contains(extension.toLower());
}

bool isProgramStream(const QString &extension)
{
    static const QStringList extensions{QStringLiteral("vob"), QStringLiteral("mpg"), QStringLiteral("mpeg"),
                                        QStringLiteral("m2p"), QStringLiteral("ps")};
    return extensions.contains(extension.toLower());
}

} // namespace MCContainers
