// The window used as a person uses it: Qt's own file dialog with a typed
// path, the keyboard, drops anywhere on the window, and Quit.
#include "GuiTestSupport.h"
#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCGuiApplication.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCPreferencesController.h"
#include "MCQueueController.h"
#include "MCTrackTableModel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>

namespace {

class WindowInputTest : public guitest::WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        QApplication::setActiveWindow(w);
        ASSERT_TRUE(QTest::qWaitForWindowActive(w));
    }

    bool ticked(int row) const
    {
        return w->trackModel->index(row, MCTrackTableModel::SelectedColumn).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }

    void loadClip()
    {
        guitest::dropOn(w->trackTable->viewport(), {QUrl::fromLocalFile(guitest::makeAvi(dir.path(), QStringLiteral("clip.avi")))});
        ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    }

    // Every button a person can press on the current tab.
    QSet<QPushButton *> pressableButtons() const
    {
        QSet<QPushButton *> buttons;
        for (QPushButton *button : w->findChildren<QPushButton *>()) {
            if (button->isVisibleTo(w) && button->isEnabled() && button->window() == w)
                buttons.insert(button);
        }
        return buttons;
    }

};

TEST_F(WindowInputTest, OpenAndAddTracksLoadWhatIsTypedIntoQtsOwnFileDialog)
{
    const QString clip = guitest::makeAvi(dir.path(), QStringLiteral("clip.avi"));
    QFile subtitles(dir.filePath(QStringLiteral("clip.srt")));
    ASSERT_TRUE(subtitles.open(QIODevice::WriteOnly));
    subtitles.write("1\n00:00:00,000 --> 00:00:01,000\nHello\n\n");
    subtitles.close();

    // Cancelling loads nothing and says nothing.
    w->openAction->trigger();
    QFileDialog *dialog = guitest::shownFileDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Select video file to open:"));
    // At first in the home folder, not wherever the program was started.
    EXPECT_EQ(dialog->directory().absolutePath(), QDir::homePath());
    dialog->reject();
    QTest::qWait(200);
    EXPECT_EQ(w->trackModel->rowCount(), 0);

    w->openAction->trigger();
    ASSERT_TRUE(guitest::typeIntoFileDialog(clip));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileTextField->text(), clip);
    // The next dialog starts where that file came from.
    w->openAction->trigger();
    dialog = guitest::shownFileDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->directory().absolutePath(), QFileInfo(clip).absolutePath());
    dialog->reject();
    QTest::qWait(200);

    ASSERT_TRUE(w->addButton->isEnabled());
    w->addButton->click();
    ASSERT_TRUE(guitest::typeIntoFileDialog(subtitles.fileName()));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 3; }, 20000));
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().informativeText.toStdString();
}

TEST_F(WindowInputTest, QuitWithoutARunningJobClosesAtTheFirstAsking)
{
    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Tracks")));
    QTest::keyClick(w, Qt::Key_Q, Qt::ControlModifier);
    EXPECT_TRUE(testsupport::waitUntil([&] { return !w->isVisible(); }, 3000));
    // The window's state went into the preferences on the way out.
    EXPECT_EQ(app->delegate()->appPreferences->guiSettingsDictionary.value(QStringLiteral("currentTab")).toString(),
              QStringLiteral("Edit Tracks"));
}

TEST_F(WindowInputTest, SpaceTicksTheCurrentRowAndCtrlReturnConverts)
{
    loadClip();
    ASSERT_FALSE(ticked(0));
    // The row's name cell is current, as after a click on the name.
    w->trackTable->setFocus();
    w->trackTable->setCurrentIndex(w->trackModel->index(1, MCTrackTableModel::InfoColumn));
    QTest::keyClick(w->trackTable, Qt::Key_Space);
    EXPECT_TRUE(ticked(1));
    QTest::keyClick(w->trackTable, Qt::Key_Space);
    EXPECT_FALSE(ticked(1));
    QTest::keyClick(w->trackTable, Qt::Key_Space);
    w->trackTable->setCurrentIndex(w->trackModel->index(0, MCTrackTableModel::InfoColumn));
    QTest::keyClick(w->trackTable, Qt::Key_Space);
    ASSERT_TRUE(ticked(0));
    ASSERT_TRUE(w->convertButton->isEnabled());

    QTest::keyClick(w->trackTable, Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    EXPECT_EQ(app->queue()->qJobList().first()->jobType, QStringLiteral("AVI Conversion"));
}

TEST_F(WindowInputTest, CtrlCommaOpensThePreferences)
{
    QTest::keyClick(w, Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(testsupport::waitUntil([&] { return w->preferencesPanel->isVisible(); }, 2000));
    w->preferencesPanel->reject();
}

TEST_F(WindowInputTest, TabReachesEveryButtonOnEveryTab)
{
    loadClip();
    w->toggleVideoButton->click(); // so that Convert is on
    for (int tab = 0; tab < w->tabs->count(); ++tab) {
        w->tabs->setCurrentIndex(tab);
        QApplication::processEvents();
        const QSet<QPushButton *> buttons = pressableButtons();
        ASSERT_FALSE(buttons.isEmpty());
        QSet<QWidget *> reached;
        w->openButton->setFocus();
        for (int press = 0; press < 120 && QApplication::focusWidget(); ++press) {
            reached.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        for (QPushButton *button : buttons)
            EXPECT_TRUE(reached.contains(button)) << "tab " << tab << ": " << button->text().toStdString();
    }
}

TEST_F(WindowInputTest, FilesDroppedOutsideTheTablesLoadToo)
{
    const QString clip = guitest::makeAvi(dir.path(), QStringLiteral("clip.avi"));
    guitest::dropOn(w->tabs->currentWidget(), {QUrl::fromLocalFile(clip)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileTextField->text(), clip);
    // Only local files are taken.
    guitest::dropOn(w->tabs->currentWidget(), {QUrl(QStringLiteral("https://example.org/movie.avi"))});
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

} // namespace
