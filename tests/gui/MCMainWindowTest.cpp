// The main window used as a person uses it: drops, Qt's own file dialog,
// the keyboard, typed fields, the queue's rows, and what is kept for the
// next start.
#include "GuiTestSupport.h"
#include "MCDropTableView.h"
#include "MCGuiAlertPresenter.h"
#include "MCJob.h"
#include "MCJobMenu.h"
#include "MCMainWindow.h"
#include "MCPreferencesController.h"
#include "MCPresetSelectionsPanel.h"
#include "MCPresetSettingsPanel.h"
#include "MCQueueController.h"
#include "MCQueueJobModel.h"
#include "MCQueuePanel.h"
#include "MCTrackTableModel.h"

#include <QtWidgets>
#include <QTest>

#include <cmath>

namespace {

using guitest::makeAvi;
using Model = MCQueueJobModel;

class MainWindowTest : public guitest::WindowTest
{
protected:
    QVariant queueCell(int column, int role = Qt::DisplayRole) const
    {
        return w->queuePanel->jobTable()->model()->index(0, column).data(role);
    }
    bool ticked(int row) const
    {
        return w->trackModel->index(row, MCTrackTableModel::SelectedColumn).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }
};

TEST_F(MainWindowTest, DropsLoadVideosAnywhereAndRefuseWhatIsNot)
{
    // Edit Files lists only what it can edit; a join is named after its first file.
    showTab(QStringLiteral("Edit Files"));
    EXPECT_EQ(w->tableStack->currentWidget(), w->fileTable);
    const QString clip = makeAvi(dir.path(), QStringLiteral("clip.avi"));
    const QString second = makeAvi(dir.path(), QStringLiteral("b.AVI"));
    const QString mov = testsupport::ffmpeg(dir.path(), QStringLiteral("c.mov"), QStringLiteral("-f lavfi -i testsrc=size=160x120 -t 1"));
    ASSERT_TRUE(drop(w->fileTable, {second, mov, clip}, 2));
    EXPECT_EQ(w->fileModel->stringList(), (QStringList{second, clip}));
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().informativeText, QStringLiteral("Kestrane can only edit AVI, MKV and MP4 files."));
    w->joinButton->click();
    EXPECT_EQ(queueCell(Model::FileNameColumn).toString(), QStringLiteral("b.AVI"));
    EXPECT_EQ(queueCell(Model::FileNameColumn, Qt::ToolTipRole).toString(), second + QLatin1Char('\n') + clip);

    showTab(QStringLiteral("AVI"));
    guitest::dropOn(w->tabs->currentWidget(), guitest::urls({clip})); // beside the table, not on it
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileTextField->text(), clip);
    guitest::dropOn(w->tabs->currentWidget(), {QUrl(QStringLiteral("https://example.org/movie.avi"))});
    guitest::dropOn(w->trackTable->viewport(), guitest::urls({guitest::writeFile(dir.filePath(QStringLiteral("notes.txt")), "words\n")}));
    ASSERT_TRUE(testsupport::waitUntil([&] { return alerts->alerts.size() > 1; }, 20000));
    ASSERT_EQ(alerts->alerts.size(), 2) << "the URL is ignored";
    EXPECT_EQ(alerts->alerts.last().message, QStringLiteral("Error Opening: notes.txt"));
    EXPECT_EQ(w->trackModel->rowCount(), 2) << "the loaded file stays";
    EXPECT_EQ(w->fileTextField->text(), clip);
}

TEST_F(MainWindowTest, AFailedJobIsRedWithItsReasonShownAndItsLogAtHand)
{
    // The source goes away between loading and converting: the tool fails.
    const QString source = loadAndTick(QStringLiteral("gone.avi"));
    ASSERT_TRUE(!source.isEmpty() && QFile::remove(source));
    w->convertButton->click();
    MCJob *job = queued();
    ASSERT_TRUE(job);
    ASSERT_EQ(finish(job), QStringLiteral("Failed"));
    const QColor red = MCMainWindow::colorFor(QStringLiteral("red"), QApplication::palette());
    for (const int column : {Model::FileNameColumn, Model::StatusColumn, Model::OutputColumn})
        EXPECT_EQ(queueCell(column, Qt::ForegroundRole).value<QColor>(), red) << column;
    EXPECT_EQ(queueCell(Model::StatusColumn, Qt::ToolTipRole).toString(), job->failureReason());
    // Nothing else was chosen, so the failure is on show without a click.
    QLabel *details = w->queuePanel->detailsLabel();
    EXPECT_TRUE(details->isVisible());
    EXPECT_TRUE(details->text().contains(job->failureReason())) << details->text().toStdString();
    EXPECT_EQ(details->palette().color(QPalette::WindowText), red);

    QList<QUrl> opened;
    w->queuePanel->setOpener([&](const QUrl &url) { opened << url; });
    std::unique_ptr<MCJobMenu> menu(w->queuePanel->jobMenu(0));
    ASSERT_FALSE(job->failedLogPath().isEmpty());
    menu->openLogAction->trigger();
    menu->showInFolderAction->trigger();
    EXPECT_EQ(opened, guitest::urls({job->failedLogPath(), QFileInfo(job->failedLogPath()).absolutePath()}));
    app->queue()->clearQueueButton(); // failed jobs go too
    EXPECT_EQ(w->queuePanel->jobTable()->model()->rowCount(), 0);
    EXPECT_FALSE(details->isVisible());
}

TEST_F(MainWindowTest, OpenAndAddTracksLoadWhatIsTypedIntoQtsOwnFileDialog)
{
    const QString clip = makeAvi(dir.path(), QStringLiteral("clip.avi"));
    const QString subtitles = guitest::writeFile(dir.filePath(QStringLiteral("clip.srt")), "1\n00:00:00,000 --> 00:00:01,000\nHi\n\n");
    const auto cancelFrom = [&](const QString &folder) {
        w->openAction->trigger();
        QFileDialog *dialog = guitest::shownFileDialog();
        ASSERT_TRUE(dialog);
        EXPECT_EQ(dialog->directory().absolutePath(), folder);
        dialog->reject();
        QTest::qWait(200);
    };
    // At first in the home folder, not wherever the program was started;
    // cancelled, nothing loads.
    cancelFrom(QDir::homePath());
    EXPECT_EQ(w->trackModel->rowCount(), 0);
    w->openAction->trigger();
    ASSERT_TRUE(guitest::typeIntoFileDialog(clip));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    cancelFrom(QFileInfo(clip).absolutePath()); // where that file came from

    w->addButton->click();
    ASSERT_TRUE(guitest::typeIntoFileDialog(subtitles));
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 3; }, 20000));
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().informativeText.toStdString();
}

TEST_F(MainWindowTest, TrackTicksAndTypedNumbersReachTheRules)
{
    ASSERT_FALSE(loadAndTick(QStringLiteral("clip.avi")).isEmpty());
    w->trackModel->setData(w->trackModel->index(0, MCTrackTableModel::SelectedColumn), Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_FALSE(w->convertButton->isEnabled()) << "no video track";
    EXPECT_TRUE(w->convertRefusalLabel->text().startsWith(QStringLiteral("An AVI takes one video track")))
        << w->convertRefusalLabel->text().toStdString();
    EXPECT_FALSE(w->convertRefusalLabel->isHidden());
    w->toggleVideoButton->click();
    EXPECT_TRUE(ticked(0));
    EXPECT_TRUE(w->convertButton->isEnabled());
    EXPECT_TRUE(w->convertRefusalLabel->isHidden());

    EXPECT_FALSE(w->vidBitRateField->isEnabled()) << "a passed-through video needs no bit rate";
    w->videoMatrix->button(1)->click(); // MPEG-4
    QLineEdit *bitRate = w->vidBitRateField;
    ASSERT_TRUE(bitRate->isEnabled());
    bitRate->setText(QStringLiteral("1500.6"));
    emit bitRate->editingFinished();
    EXPECT_EQ(bitRate->text(), QStringLiteral("1501"));
    // Typed as a person types: what is no number is refused on the spot.
    const QList<std::tuple<QLineEdit *, const char *, const char *>> typed{
        {bitRate, "12a", "12"}, {w->resWidthField, "64x0", "640"}, {w->fpsCombo->lineEdit(), "25.5.1b", "25.51"}};
    for (const auto &[field, keys, kept] : typed) {
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QString::fromLatin1(keys));
        EXPECT_EQ(field->text(), QString::fromLatin1(kept)) << keys;
    }
    // MPEG-4 needs a bit rate above 0; the field says so in red.
    const QColor red = MCMainWindow::colorFor(QStringLiteral("red"), QApplication::palette());
    for (const auto &[keys, enabled] : {std::pair{"0", false}, std::pair{"", false}, std::pair{"900", true}}) {
        bitRate->clear();
        QTest::keyClicks(bitRate, QString::fromLatin1(keys));
        QTest::keyClick(bitRate, Qt::Key_Return);
        EXPECT_EQ(w->convertButton->isEnabled(), enabled) << keys;
        EXPECT_EQ(bitRate->palette().color(QPalette::Text) == red, !enabled) << keys;
    }
}

TEST_F(MainWindowTest, SplitByTimeTakesTypedTimesOnceAFileIsListed)
{
    showTab(QStringLiteral("Edit Files"));
    EXPECT_FALSE(w->splitEndTime->isEnabled()); // nothing to split yet
    ASSERT_TRUE(drop(w->fileTable, {makeAvi(dir.path(), QStringLiteral("part.avi"), 4)}, 1));
    ASSERT_TRUE(w->splitTypeMatrix->button(0)->isChecked());
    EXPECT_TRUE(w->splitEndTime->isEnabled());
    EXPECT_FALSE(w->splitButton->isEnabled()); // 00:00:00 to 00:00:00 is no range
    // Typed into the mask: the digits overwrite in place.
    w->splitEndTime->setFocus();
    w->splitEndTime->setCursorPosition(7);
    QTest::keyClicks(w->splitEndTime, QStringLiteral("3"));
    EXPECT_EQ(w->splitEndTime->text(), QStringLiteral("00:00:03"));
    ASSERT_TRUE(w->splitButton->isEnabled());
    w->splitButton->click();
    ASSERT_TRUE(queued());
    EXPECT_EQ(queued()->jobType, QStringLiteral("AVI Splitting"));

    w->splitTypeMatrix->button(1)->click(); // by size, the size fields are the ones to type in
    EXPECT_FALSE(w->splitEndTime->isEnabled());
    EXPECT_TRUE(w->splitSize->isEnabled() && w->splitNumber->isEnabled());
}

TEST_F(MainWindowTest, ChosenPresetsAndTabComeBackAfterARestartOnAWindowWithinTheScreen)
{
    const auto fits = [&] { // once shown, when its frame is known
        return testsupport::waitUntil([&] { return w->screen()->availableGeometry().contains(w->frameGeometry()); }, 1000);
    };
    EXPECT_TRUE(fits()) << "default size";
    guitest::choose(w->presetSelectionsPopUp, QStringLiteral("First Track"));
    guitest::choose(w->presetSettingsPopUp, QStringLiteral("Extract Tracks")); // also switches to Edit Tracks
    w->setGeometry(-200, -100, 4000, 3000); // as saved on a larger screen, or at another scale
    w->close();
    ASSERT_TRUE(testsupport::waitUntil([&] { return !w->isVisible(); }, 3000));

    restart();
    EXPECT_TRUE(fits()) << w->frameGeometry().width() << "x" << w->frameGeometry().height();
    EXPECT_EQ(w->tabs->currentIndex(), MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Tracks")));
    EXPECT_EQ(w->presetSelectionsPopUp->currentText(), QStringLiteral("First Track"));
    EXPECT_EQ(w->presetSettingsPopUp->currentText(), QStringLiteral("Extract Tracks"));
    // In force for the next file: its first tracks are ticked without a click.
    ASSERT_TRUE(drop(w->trackTable, {makeAvi(dir.path(), QStringLiteral("next.avi"))}, 2));
    EXPECT_TRUE(ticked(0));
}

TEST_F(MainWindowTest, TabReachesEveryButtonAndCtrlCommaAndEditOpenTheirSheets)
{
    QApplication::setActiveWindow(w); // keys reach shortcuts and the focus chain of the active window only
    ASSERT_TRUE(QTest::qWaitForWindowActive(w));
    ASSERT_FALSE(loadAndTick(QStringLiteral("clip.avi")).isEmpty()); // so that Convert is on
    for (int tab = 0; tab < w->tabs->count(); ++tab) {
        w->tabs->setCurrentIndex(tab);
        QApplication::processEvents();
        QSet<QWidget *> reached;
        w->openButton->setFocus();
        for (int press = 0; press < 120 && QApplication::focusWidget(); ++press) {
            reached.insert(QApplication::focusWidget());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        for (QPushButton *button : w->findChildren<QPushButton *>()) {
            const bool pressable = button->isVisibleTo(w) && button->isEnabled() && button->window() == w;
            EXPECT_TRUE(!pressable || reached.contains(button)) << "tab " << tab << ": " << button->text().toStdString();
        }
    }
    QTest::keyClick(w, Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(testsupport::waitUntil([&] { return w->preferencesPanel->isVisible(); }, 2000));
    w->preferencesPanel->reject();
    for (const auto &[button, sheet] : {std::pair<QPushButton *, QDialog *>{w->editSelectionsButton, w->findChild<MCPresetSelectionsPanel *>()},
                                        {w->editSettingsButton, w->findChild<MCPresetSettingsPanel *>()}}) {
        button->click();
        ASSERT_TRUE(sheet && sheet->isVisible()) << button->text().toStdString();
        sheet->reject();
    }
}

// WCAG's contrast ratio of two colours (1 to 21).
double contrast(const QColor &a, const QColor &b)
{
    const auto luminance = [](const QColor &c) {
        const auto linear = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
        return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
    };
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

TEST(MainWindowColours, BlackIsTheThemesTextAndRedReadsOnDarkAndLightThemes)
{
    const QPalette original = QApplication::palette();
    const QColor grey(0x80, 0x80, 0x80);
    for (const bool dark : {false, true}) {
        const QColor background = dark ? QColor(0x23, 0x26, 0x29) : QColor(0xfc, 0xfc, 0xfc);
        const QColor text = dark ? QColor(0xee, 0xee, 0xee) : QColor(0x20, 0x20, 0x20);
        QPalette theme;
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
            theme.setColor(role, background);
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            theme.setColor(role, text);
            theme.setColor(QPalette::Disabled, role, grey);
        }
        QApplication::setPalette(theme);
        QLabel label;
        MCMainWindow::setColorName(&label, QStringLiteral("red"));
        const QColor red = label.palette().color(QPalette::WindowText);
        EXPECT_GE(contrast(red, background), 4.5) << dark;
        EXPECT_GT(red.red(), 2 * std::max(red.green(), red.blue())) << "still reads as red";
        EXPECT_EQ(label.palette().color(QPalette::Disabled, QPalette::WindowText), grey) << "disabled stays grey";
        MCMainWindow::setColorName(&label, QStringLiteral("black"));
        EXPECT_EQ(label.palette().color(QPalette::WindowText), text) << dark;
    }
    QApplication::setPalette(original);
}

TEST(GuiAlertPresenter, ButtonsAnswerInOrderAndTimeOutAnswersTheFirstOnce)
{
    QWidget window;
    window.show();
    MCGuiAlertPresenter presenter([&]() -> QWidget * { return &window; });
    MCAlert ask;
    ask.message = QStringLiteral("Stop the currently running job?");
    ask.buttons = {QStringLiteral("OK"), QStringLiteral("Cancel")};
    QList<int> answers;
    presenter.present(ask, [&](int code) { answers << code; });
    QMessageBox *box = presenter.currentBox();
    ASSERT_TRUE(box && box->buttons().size() == 2);
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    for (QAbstractButton *button : box->buttons()) {
        if (button->text() == QLatin1String("Cancel"))
            button->click();
    }
    ASSERT_TRUE(testsupport::waitUntil([&] { return !answers.isEmpty(); }, 2000));
    EXPECT_EQ(answers, QList<int>{MCAlertSecondButtonReturn});

    MCAlert notice;
    notice.message = QStringLiteral("It appears that your save volume is almost out of free space.");
    notice.timeoutSeconds = 0.2;
    answers.clear();
    presenter.present(notice, [&](int code) { answers << code; });
    ASSERT_TRUE(testsupport::waitUntil([&] { return !answers.isEmpty(); }, 3000));
    QApplication::processEvents();
    EXPECT_EQ(answers, QList<int>{MCAlertFirstButtonReturn});
}

} // namespace
