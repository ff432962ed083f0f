// Watch mode on screen: the main window gives way to the watch window and
// comes back when watching ends.
#if KESTRANE_HAVE_APP

#include "MCAppDelegate.h"
#include "MCGuiApplication.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCWatchModeController.h"
#include "MCWatchWindow.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

TEST(WatchWindowTest, WatchingReplacesTheMainWindowUntilItEnds)
{
    QTemporaryDir folder;
    MCGuiApplication app;
    app.start({});
    auto alerts = testsupport::recordAlerts();
    MCMainWindow *main = app.window();
    MCWatchWindow *watch = app.watchWindow();
    MCWatchModeController *controller = app.delegate()->watchModeController;

    // No folder chosen yet: the window says so and nothing scans.
    app.delegate()->appPreferences->watchFolderURL = QUrl();
    ASSERT_TRUE(main->watchButton->isEnabled());
    main->watchButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return watch->isVisible() && !main->isVisible(); }, 5000));
    EXPECT_EQ(watch->pathField->text(), MCWatchModeController::invalidFolderMessage);
    EXPECT_FALSE(controller->isScanning());
    EXPECT_EQ(watch->frameGeometry().top(), main->frameGeometry().top());
    const QRect mainFrame = main->frameGeometry();
    EXPECT_EQ(watch->frameGeometry().left(), mainFrame.left() + (mainFrame.width() - watch->frameGeometry().width()) / 2);

    // A folder chosen while watching starts the scan in place.
    controller->watchFolderChosen(QUrl::fromLocalFile(folder.path()));
    EXPECT_EQ(watch->pathField->text(), folder.path());
    EXPECT_TRUE(controller->isScanning());
    EXPECT_EQ(app.delegate()->appPreferences->watchFolderURL, QUrl::fromLocalFile(folder.path()));

    watch->endButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return main->isVisible() && !watch->isVisible(); }, 5000));
    EXPECT_FALSE(controller->appIsInWatchMode());
    EXPECT_FALSE(controller->isScanning());
    EXPECT_DOUBLE_EQ(main->windowOpacity(), 1.0);
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

#endif
