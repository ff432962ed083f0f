#include "MCCommandLine.h"

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Kestrane"));
    QCoreApplication::setApplicationName(QStringLiteral("Kestrane"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KESTRANE_VERSION));
    return MCCommandLine(QCoreApplication::arguments()).run();
}
