#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

// The window's tests need a QApplication (offscreen) and private settings.
int main(int argc, char **argv)
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toUtf8());
    qputenv("XDG_STATE_HOME", (home.path() + QStringLiteral("/state")).toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setOrganizationName(QStringLiteral("KestraneTests"));
    QApplication::setApplicationName(QStringLiteral("kestrane-gui-tests"));
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
