// Watch mode on screen: the main window gives way to the watch window and
// comes back when watching ends; the window says what it is doing.
#include "GuiTestSupport.h"
#include "MCAppDelegate.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCWatchModeController.h"
#include "MCWatchWindow.h"

#include <QtWidgets>
#include <QTest>

namespace {

class WatchWindowTest : public guitest::WindowTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid());
        WindowTest::SetUp();
        watch = app->watchWindow();
        controller = app->delegate()->watchModeController;
        app->delegate()->appPreferences->watchFolderURL = QUrl();
    }

    void enterWatchMode()
    {
        w->watchButton->click();
        ASSERT_TRUE(testsupport::waitUntil([&] { return watch->isVisible() && !w->isVisible(); }, 5000));
    }
    QString status() const { return watch->statusLabel->text(); }

    QTemporaryDir folder;
    MCWatchWindow *watch = nullptr;
    MCWatchModeController *controller = nullptr;
};

TEST_F(WatchWindowTest, WatchingReplacesTheMainWindowUntilItEnds)
{
    ASSERT_NO_FATAL_FAILURE(enterWatchMode());
    // No folder chosen yet: the window says so, once, and nothing scans.
    EXPECT_EQ(watch->pathField->text(), MCWatchModeController::invalidFolderMessage);
    EXPECT_TRUE(status().isEmpty()) << status().toStdString();
    EXPECT_FALSE(controller->isScanning());

    // A file dropped is no folder; a folder dropped is watched.
    guitest::dropOn(watch, guitest::urls({guitest::makeAvi(dir.path(), QStringLiteral("movie.avi"), 1)}));
    EXPECT_EQ(watch->pathField->text(), MCWatchModeController::invalidFolderMessage);
    EXPECT_EQ(status(), QStringLiteral("Drop a folder here to watch it."));
    guitest::dropOn(watch, guitest::urls({folder.path()}));
    EXPECT_EQ(watch->pathField->text(), folder.path());
    EXPECT_TRUE(controller->isScanning());
    EXPECT_EQ(status(), QStringLiteral("Waiting for new videos."));

    // Cancelling the chooser stops the scan, and the window says so.
    watch->chooseButton->click();
    QFileDialog *chooser = guitest::shownFileDialog();
    ASSERT_TRUE(chooser);
    chooser->reject();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !controller->isScanning() && !status().startsWith(QStringLiteral("Waiting")); }, 3000));
    // A folder typed into the chooser, as a person would, starts it again.
    watch->chooseButton->click();
    ASSERT_TRUE(guitest::typeIntoFileDialog(folder.path()));
    ASSERT_TRUE(testsupport::waitUntil([&] { return controller->isScanning(); }, 3000));
    EXPECT_EQ(status(), QStringLiteral("Waiting for new videos."));
    EXPECT_EQ(app->delegate()->appPreferences->watchFolderURL, QUrl::fromLocalFile(folder.path()));

    watch->endButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->isVisible() && !watch->isVisible(); }, 5000));
    EXPECT_FALSE(controller->appIsInWatchMode());
    EXPECT_FALSE(controller->isScanning());
    EXPECT_TRUE(testsupport::waitUntil([&] { return w->windowOpacity() == 1.0; }, 2000)) << w->windowOpacity();
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(WatchWindowTest, OnlyAQueuedMovieIsNamedAsTakenUpAndGivenUpOnesAreListed)
{
    app->delegate()->appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.path());
    ASSERT_NO_FATAL_FAILURE(enterWatchMode());
    ASSERT_TRUE(controller->isScanning());
    MCPresetsController *presets = app->delegate()->presetsController;
    // A finished movie appears in the folder and two scans see it unchanged.
    const auto arrives = [&](const QString &name) {
        ASSERT_TRUE(QFile::copy(guitest::makeAvi(dir.path(), name, 1), QDir(folder.path()).filePath(name)));
        controller->watchLoop();
        controller->watchLoop();
    };
    presets->setSelectionMethodIndex(0); // "Manual" selects no track: looked at, never queued
    arrives(QStringLiteral("ignored.avi"));
    QTest::qWait(2500); // the intake starts a watched file two seconds later
    EXPECT_TRUE(app->queue()->qJobList().isEmpty());
    EXPECT_EQ(status(), QStringLiteral("Waiting for new videos."));
    presets->setSelectionMethodIndex(static_cast<int>(presets->presetSelectionsNamesList.indexOf(QStringLiteral("First Track"))));
    arrives(QStringLiteral("taken.avi"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !app->queue()->qJobList().isEmpty(); }, 5000));
    EXPECT_EQ(status(), QStringLiteral("Last taken up: taken.avi"));

    EXPECT_FALSE(watch->givenUpList->isVisible()) << "listed only once there are any";
    emit controller->movieGivenUp(QUrl::fromLocalFile(folder.filePath(QStringLiteral("broken.avi"))), QStringLiteral("not a video"));
    ASSERT_TRUE(watch->givenUpList->isVisible() && watch->givenUpList->count() == 1);
    EXPECT_EQ(watch->givenUpList->item(0)->text(), QStringLiteral("Not converted: broken.avi (not a video)"));
}

} // namespace
