#include "MCGuiApplication.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Kestrane"));
    QApplication::setApplicationName(QStringLiteral("Kestrane"));
    QApplication::setApplicationVersion(QStringLiteral(KESTRANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("kestrane"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("kestrane")));

    MCGuiApplication kestrane;
    kestrane.start(app.arguments().mid(1));
    return app.exec();
}
