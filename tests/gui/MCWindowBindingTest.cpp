// The window driven through the application controller: a start queues a
// job, and quitting while it runs asks first.
#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCGuiApplication.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCQueuePanel.h"
#include "MCSelectionController.h"
#include "MCVideoFile.h"
#include "MCTrackTableModel.h"
#include "GuiTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QStringListModel>
#include <QTabWidget>
#include <QMimeData>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QComboBox>

namespace {

void drop(MCDropTableView *table, const QString &path)
{
    guitest::dropOn(table->viewport(), {QUrl::fromLocalFile(path)});
}

// The scheduler state of a process ("T" when stopped).
QString processState(const QString &pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QString line = QString::fromLatin1(stat.readAll());
    return line.mid(line.lastIndexOf(QLatin1Char(')')) + 2, 1);
}

class WindowBindingTest : public guitest::WindowTest
{
protected:
    // Loads a generated AVI (MPEG-4 video, MP3 audio) with both tracks ticked.
    void load(const QString &name, int seconds, const QString &size)
    {
        // Without a selection preset nothing is ticked and nothing converts.
        EXPECT_FALSE(w->convertButton->isEnabled());
        const QString path = loadAndTick(name, seconds, size);
        ASSERT_FALSE(path.isEmpty());
        EXPECT_EQ(w->fileTextField->text(), path);
    }
};

TEST_F(WindowBindingTest, ConvertQueuesAPassThroughJobAndShowsItsProgress)
{
    load(QStringLiteral("tiny.avi"), 1, QStringLiteral("160x120"));
    EXPECT_TRUE(w->videoMatrix->button(0)->isChecked());
    EXPECT_TRUE(w->audioMatrix->button(0)->isChecked());
    // Passing the tracks through leaves nothing to type.
    EXPECT_FALSE(w->vidBitRateField->isEnabled());
    ASSERT_TRUE(w->convertButton->isEnabled());
    w->convertButton->click();

    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    EXPECT_EQ(app->queue()->qJobList().first()->jobType, QStringLiteral("AVI Conversion"));
    QAbstractItemModel *progress = w->queuePanel->progressTable()->model();
    bool sawRow = false;
    ASSERT_TRUE(testsupport::waitUntil([&] {
        sawRow = sawRow || progress->rowCount() > 0;
        return app->queue()->qJobList().first()->jobStatus() == QStringLiteral("Completed");
    }, 60000));
    EXPECT_TRUE(sawRow);
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
}

TEST_F(WindowBindingTest, TabsAndTrackTicksReachTheRules)
{
    load(QStringLiteral("tiny.avi"), 1, QStringLiteral("160x120"));
    // Without a video track there is nothing to convert.
    w->trackModel->setData(w->trackModel->index(0, MCTrackTableModel::SelectedColumn), Qt::Unchecked,
                           Qt::CheckStateRole);
    EXPECT_FALSE(w->convertButton->isEnabled());
    // The reason stands beside the disabled button.
    EXPECT_FALSE(w->convertRefusalLabel->isHidden());
    EXPECT_TRUE(w->convertRefusalLabel->text().startsWith(QStringLiteral("An AVI takes one video track")))
        << w->convertRefusalLabel->text().toStdString();
    w->toggleVideoButton->click();
    EXPECT_TRUE(w->convertButton->isEnabled());
    EXPECT_TRUE(w->convertRefusalLabel->isHidden());
    EXPECT_EQ(w->trackModel->index(0, MCTrackTableModel::SelectedColumn).data(Qt::CheckStateRole).toInt(), Qt::Checked);

    // Typed bit rates count once the video is re-encoded.
    w->videoMatrix->button(1)->click();
    EXPECT_TRUE(w->vidBitRateField->isEnabled());
    w->vidBitRateField->setText(QStringLiteral("1500.6"));
    emit w->vidBitRateField->editingFinished();
    EXPECT_EQ(w->vidBitRateField->text(), QStringLiteral("1501"));

    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Files")));
    EXPECT_EQ(w->tableStack->currentWidget(), w->fileTable);
    EXPECT_FALSE(w->joinButton->isEnabled());
}

TEST_F(WindowBindingTest, QuitWithARunningJobAndCancelLeavesItPaused)
{
    load(QStringLiteral("long.avi"), 40, QStringLiteral("640x480"));
    w->videoMatrix->button(2)->click(); // two passes: long enough to catch running
    w->convertButton->click();
    ASSERT_TRUE(testsupport::waitUntil([&] { return runningJob() != nullptr; }, 20000));
    MCJob *job = runningJob();

    alerts->answer = MCAlertSecondButtonReturn;
    w->close();
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().message, QStringLiteral("Videos are still being processed.  Quit anyways?"));
    EXPECT_TRUE(w->isVisible());
    const QString pid = job->stepPIDList().last();
    EXPECT_TRUE(testsupport::waitUntil([&] { return processState(pid) == QStringLiteral("T"); }, 2000))
        << processState(pid).toStdString();
    EXPECT_TRUE(app->queue()->qJobIsRunning());
    EXPECT_EQ(app->queue()->qJobList().size(), 1);
    // The panel says so, and the button offers the way on.
    const QModelIndex status = w->queuePanel->jobTable()->model()->index(0, MCQueueJobModel::StatusColumn);
    EXPECT_EQ(status.data().toString(), QStringLiteral("Paused"));
    EXPECT_EQ(w->queuePanel->pauseButton()->text(), QStringLiteral("Resume"));
}

TEST_F(WindowBindingTest, SplitByTimeTakesTypedTimesOnceAFileIsListed)
{
    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Files")));
    EXPECT_FALSE(w->splitEndTime->isEnabled()); // nothing to split yet
    drop(w->fileTable, guitest::makeAvi(dir.path(), QStringLiteral("part.avi"), 4));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 1; }, 20000));
    ASSERT_TRUE(w->splitTypeMatrix->button(0)->isChecked());
    EXPECT_TRUE(w->splitStartTime->isEnabled());
    EXPECT_TRUE(w->splitEndTime->isEnabled());
    EXPECT_FALSE(w->splitButton->isEnabled()); // 00:00:00 to 00:00:00 is no range

    // Typed into the mask: the digits overwrite in place.
    w->splitEndTime->setFocus();
    w->splitEndTime->setCursorPosition(7);
    QTest::keyClicks(w->splitEndTime, QStringLiteral("3"));
    EXPECT_EQ(w->splitEndTime->text(), QStringLiteral("00:00:03"));
    ASSERT_TRUE(w->splitButton->isEnabled());
    w->splitButton->click();
    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    EXPECT_EQ(app->queue()->qJobList().first()->jobType, QStringLiteral("AVI Splitting"));

    // By size, the size fields are the ones to type in.
    w->splitTypeMatrix->button(1)->click();
    EXPECT_FALSE(w->splitEndTime->isEnabled());
    EXPECT_TRUE(w->splitSize->isEnabled());
    EXPECT_TRUE(w->splitNumber->isEnabled());
}

TEST_F(WindowBindingTest, ChosenPresetsComeBackAfterARestart)
{
    const auto choose = [](QComboBox *popUp, const QString &name) {
        const int index = popUp->findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        popUp->setCurrentIndex(index);
        emit popUp->activated(index);
    };
    choose(w->presetSelectionsPopUp, QStringLiteral("First Track"));
    choose(w->presetSettingsPopUp, QStringLiteral("Extract Tracks")); // also switches to Edit Tracks
    w->close();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !w->isVisible(); }, 3000));

    restart();
    EXPECT_EQ(w->tabs->currentIndex(), MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Tracks")));
    EXPECT_EQ(w->presetSelectionsPopUp->currentText(), QStringLiteral("First Track"));
    EXPECT_EQ(w->presetSettingsPopUp->currentText(), QStringLiteral("Extract Tracks"));
    // In force for the next file: its first tracks are ticked without a click.
    drop(w->trackTable, guitest::makeAvi(dir.path(), QStringLiteral("next.avi")));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->trackModel->index(0, MCTrackTableModel::SelectedColumn).data(Qt::CheckStateRole).toInt(), Qt::Checked);
}

TEST_F(WindowBindingTest, NumberFieldsRefuseWhatIsNoNumberAndConvertWaitsForABitRate)
{
    load(QStringLiteral("clip.avi"), 2, QStringLiteral("160x120"));
    w->videoMatrix->button(1)->click();
    QLineEdit *bitRate = w->vidBitRateField;
    ASSERT_TRUE(bitRate->isEnabled());

    // Typed as a person types: a letter is refused on the spot.
    bitRate->setFocus();
    bitRate->selectAll();
    QTest::keyClicks(bitRate, QStringLiteral("12a"));
    EXPECT_EQ(bitRate->text(), QStringLiteral("12"));
    QTest::keyClicks(w->resWidthField, QStringLiteral("x"));
    EXPECT_FALSE(w->resWidthField->text().contains(QLatin1Char('x')));
    QLineEdit *fps = w->fpsCombo->lineEdit();
    fps->selectAll();
    QTest::keyClicks(fps, QStringLiteral("25.5.1b"));
    EXPECT_EQ(fps->text(), QStringLiteral("25.51"));

    // A bit rate of 0 (or none at all) cannot make MPEG-4.
    bitRate->selectAll();
    QTest::keyClicks(bitRate, QStringLiteral("0"));
    QTest::keyClick(bitRate, Qt::Key_Return);
    EXPECT_FALSE(w->convertButton->isEnabled());
    const QColor red = MCMainWindow::colorFor(QStringLiteral("red"), QApplication::palette());
    EXPECT_EQ(bitRate->palette().color(QPalette::Text), red);
    bitRate->clear();
    QTest::keyClick(bitRate, Qt::Key_Return);
    EXPECT_FALSE(w->convertButton->isEnabled());
    QTest::keyClicks(bitRate, QStringLiteral("900"));
    QTest::keyClick(bitRate, Qt::Key_Return);
    EXPECT_TRUE(w->convertButton->isEnabled());
    EXPECT_NE(bitRate->palette().color(QPalette::Text), red);
    // Passed through, the video needs no bit rate.
    bitRate->clear();
    QTest::keyClick(bitRate, Qt::Key_Return);
    w->videoMatrix->button(0)->click();
    EXPECT_TRUE(w->convertButton->isEnabled());
}

} // namespace
