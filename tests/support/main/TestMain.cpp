#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

// Every test program gets a Qt application and private settings, state and
// config folders, so no test ever touches the user's own.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toUtf8());
    qputenv("XDG_STATE_HOME", (home.path() + QStringLiteral("/state")).toUtf8());
    if (qEnvironmentVariableIsEmpty("KESTRANE_RESOURCES"))
        qputenv("KESTRANE_RESOURCES", KESTRANE_BUILD_RESOURCES);
    QCoreApplication::setOrganizationName(QStringLiteral("KestraneTests"));
    QCoreApplication::setApplicationName(QStringLiteral("kestrane-tests"));
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
