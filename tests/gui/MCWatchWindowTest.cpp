// Watch mode on screen: the main window gives way to the watch window and
// comes back when watching ends; the window says what it is doing.
#include "GuiTestSupport.h"
#include "MCAppDelegate.h"
#include "MCGuiApplication.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCPresetsController.h"
#include "MCQueueController.h"
#include "MCWatchModeController.h"
#include "MCWatchWindow.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QFileDialog>
#include <QTemporaryDir>
#include <QTest>

namespace {

class WatchWindowTest : public guitest::WindowTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(folder.isValid() && media.isValid());
        WindowTest::SetUp();
        main = w;
        watch = app->watchWindow();
        controller = app->delegate()->watchModeController;
        app->delegate()->appPreferences->watchFolderURL = QUrl();
    }

    void enterWatchMode()
    {
        main->watchButton->click();
        ASSERT_TRUE(testsupport::waitUntil([&] { return watch->isVisible() && !main->isVisible(); }, 5000));
    }

    // A finished movie appears in the folder and two scans see it unchanged.
    void movieArrives(const QString &name)
    {
        const QString made = guitest::makeAvi(media.path(), name, 1);
        ASSERT_TRUE(QFile::copy(made, QDir(folder.path()).filePath(name)));
        controller->watchLoop();
        controller->watchLoop();
    }

    QTemporaryDir folder, media;
    MCMainWindow *main = nullptr;
    MCWatchWindow *watch = nullptr;
    MCWatchModeController *controller = nullptr;
};

TEST_F(WatchWindowTest, WatchingReplacesTheMainWindowUntilItEnds)
{
    // No folder chosen yet: the window says so, once, and nothing scans.
    ASSERT_TRUE(main->watchButton->isEnabled());
    enterWatchMode();
    EXPECT_EQ(watch->pathField->text(), MCWatchModeController::invalidFolderMessage);
    EXPECT_TRUE(watch->statusLabel->text().isEmpty()) << watch->statusLabel->text().toStdString();
    EXPECT_FALSE(controller->isScanning());
    EXPECT_EQ(watch->frameGeometry().top(), main->frameGeometry().top());
    const QRect mainFrame = main->frameGeometry();
    EXPECT_EQ(watch->frameGeometry().left(), mainFrame.left() + (mainFrame.width() - watch->frameGeometry().width()) / 2);

    // A folder chosen in the chooser, typed as a person would, starts the scan in place.
    watch->chooseButton->click();
    ASSERT_TRUE(guitest::typeIntoFileDialog(folder.path()));
    ASSERT_TRUE(testsupport::waitUntil([&] { return watch->pathField->text() == folder.path(); }, 3000));
    EXPECT_TRUE(controller->isScanning());
    EXPECT_EQ(watch->statusLabel->text(), QStringLiteral("Waiting for new videos."));
    EXPECT_EQ(app->delegate()->appPreferences->watchFolderURL, QUrl::fromLocalFile(folder.path()));

    // Cancelling the chooser leaves the scan stopped, and the window says so.
    watch->chooseButton->click();
    QFileDialog *chooser = guitest::shownFileDialog();
    ASSERT_TRUE(chooser);
    chooser->reject();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !controller->isScanning() && !watch->statusLabel->text().startsWith(QStringLiteral("Waiting")); }, 3000));

    watch->endButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return main->isVisible() && !watch->isVisible(); }, 5000));
    EXPECT_FALSE(controller->appIsInWatchMode());
    EXPECT_FALSE(controller->isScanning());
    EXPECT_TRUE(testsupport::waitUntil([&] { return main->windowOpacity() == 1.0; }, 2000)) << main->windowOpacity();
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(WatchWindowTest, OnlyAQueuedMovieIsNamedAsTakenUp)
{
    app->delegate()->appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.path());
    enterWatchMode();
    ASSERT_TRUE(controller->isScanning());

    // "Manual" selects no track: the movie is looked at but never queued.
    app->delegate()->presetsController->setSelectionMethodIndex(0);
    movieArrives(QStringLiteral("ignored.avi"));
    QTest::qWait(2500); // the intake starts a watched file two seconds later
    EXPECT_TRUE(app->queue()->qJobList().isEmpty());
    EXPECT_EQ(watch->statusLabel->text(), QStringLiteral("Waiting for new videos."));

    const int firstTrack = static_cast<int>(app->delegate()->presetsController->presetSelectionsNamesList.indexOf(QStringLiteral("First Track")));
    app->delegate()->presetsController->setSelectionMethodIndex(firstTrack);
    movieArrives(QStringLiteral("taken.avi"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return !app->queue()->qJobList().isEmpty(); }, 5000));
    EXPECT_EQ(watch->statusLabel->text(), QStringLiteral("Last taken up: taken.avi"));
}

TEST_F(WatchWindowTest, AFolderDroppedOnTheWatchWindowIsWatched)
{
    enterWatchMode();
    const QString movie = guitest::makeAvi(media.path(), QStringLiteral("movie.avi"), 1);
    guitest::dropOn(watch, {QUrl::fromLocalFile(movie)});
    EXPECT_EQ(watch->pathField->text(), MCWatchModeController::invalidFolderMessage);
    EXPECT_EQ(watch->statusLabel->text(), QStringLiteral("Drop a folder here to watch it."));

    guitest::dropOn(watch, {QUrl::fromLocalFile(folder.path())});
    EXPECT_EQ(watch->pathField->text(), folder.path());
    EXPECT_TRUE(controller->isScanning());
    EXPECT_EQ(watch->statusLabel->text(), QStringLiteral("Waiting for new videos."));
}

} // namespace

TEST_F(WatchWindowTest, MoviesGivenUpAreListedOnlyOnceThereAreAny)
{
    app->delegate()->appPreferences->watchFolderURL = QUrl::fromLocalFile(folder.path());
    enterWatchMode();
    EXPECT_FALSE(watch->givenUpList->isVisible());
    emit controller->movieGivenUp(QUrl::fromLocalFile(folder.path() + QStringLiteral("/broken.avi")), QStringLiteral("not a video"));
    EXPECT_TRUE(watch->givenUpList->isVisible());
    ASSERT_EQ(watch->givenUpList->count(), 1);
    EXPECT_EQ(watch->givenUpList->item(0)->text(), QStringLiteral("Not converted: broken.avi (not a video)"));
}
