#include "MCDropTableView.h"
#include "MCGuiAlertPresenter.h"
#include "MCGuiApplication.h"
#include "MCMainWindow.h"
#include "MCProgressDelegate.h"
#include "MCTrackTableModel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStringListModel>
#include <QTabWidget>
#include <QTemporaryDir>

namespace {

// Drops files on a table the way the desktop does.
void dropOn(MCDropTableView *table, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(table->viewport(), &enter);
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(table->viewport(), &drop);
}

class MainWindowTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(dir.isValid());
        app = std::make_unique<MCGuiApplication>();
        app->start({});
        alerts = testsupport::recordAlerts(); // after the window installed its own
    }

    QString avi(const QString &name, int seconds = 2)
    {
        return testsupport::ffmpeg(dir.path(), name,
                                   QStringLiteral("-f lavfi -i testsrc=size=160x120:rate=25 -f lavfi -i sine "
                                                  "-t %1 -c:v mpeg4 -c:a libmp3lame").arg(seconds));
    }

    QTemporaryDir dir;
    std::unique_ptr<MCGuiApplication> app;
    std::shared_ptr<RecordingAlertPresenter> alerts;
};

TEST_F(MainWindowTest, DroppedVideoFillsTheTrackTableAndStatusLine)
{
    MCMainWindow *w = app->window();
    EXPECT_EQ(w->fileTextField->text(), QStringLiteral("Drop Video File(s) in the Table Below"));
    const QString path = avi(QStringLiteral("clip.avi"));
    dropOn(w->trackTable, {QUrl::fromLocalFile(path)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileTextField->text(), path);
    const QString info = w->trackModel->index(0, MCTrackTableModel::InfoColumn).data().toString();
    EXPECT_TRUE(info.startsWith(QStringLiteral("Video"))) << info.toStdString();
    EXPECT_TRUE(alerts->alerts.isEmpty());
}

TEST_F(MainWindowTest, NotAVideoAlertsAndKeepsTheLoadedFile)
{
    MCMainWindow *w = app->window();
    const QString path = avi(QStringLiteral("clip.avi"));
    dropOn(w->trackTable, {QUrl::fromLocalFile(path)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));

    QFile text(dir.filePath(QStringLiteral("notes.txt")));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("just words\n");
    text.close();
    dropOn(w->trackTable, {QUrl::fromLocalFile(text.fileName())});
    ASSERT_TRUE(testsupport::waitUntil([&] { return !alerts->alerts.isEmpty(); }, 20000));
    EXPECT_EQ(alerts->alerts.first().message, QStringLiteral("Error Opening: notes.txt"));
    EXPECT_EQ(alerts->alerts.first().buttons, QStringList{QStringLiteral("OK")});
    EXPECT_EQ(w->trackModel->rowCount(), 2);
    EXPECT_EQ(w->fileTextField->text(), path);
}

TEST_F(MainWindowTest, EditFilesTabListsOnlyAvis)
{
    MCMainWindow *w = app->window();
    w->tabs->setCurrentIndex(1);
    const QString first = avi(QStringLiteral("a.avi"));
    const QString second = avi(QStringLiteral("b.AVI"));
    const QString other = testsupport::ffmpeg(dir.path(), QStringLiteral("c.mkv"),
                                              QStringLiteral("-f lavfi -i testsrc=size=160x120 -t 1"));
    dropOn(w->fileTable, {QUrl::fromLocalFile(first), QUrl::fromLocalFile(other), QUrl::fromLocalFile(second)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileModel->stringList(), (QStringList{first, second}));
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().informativeText, QStringLiteral("Kestrane can only edit AVI files."));
}

TEST(ProgressDelegate, ReadsTheTrailingPercentageOnly)
{
    EXPECT_EQ(MCProgressDelegate::percentageIn(QStringLiteral("Pass #2: 37%")), 37);
    EXPECT_EQ(MCProgressDelegate::percentageIn(QStringLiteral("99.6%")), 99);
    EXPECT_EQ(MCProgressDelegate::percentageIn(QStringLiteral("140%")), 100);
    EXPECT_FALSE(MCProgressDelegate::percentageIn(QStringLiteral("Complete")));
    EXPECT_FALSE(MCProgressDelegate::percentageIn(QStringLiteral("Pass 1 Complete")));
    EXPECT_FALSE(MCProgressDelegate::percentageIn(QString()));
}

TEST(GuiAlertPresenter, ButtonsAnswerInOrderAndTimeOutAnswersTheFirst)
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
    ASSERT_TRUE(box);
    EXPECT_EQ(box->windowModality(), Qt::WindowModal);
    EXPECT_EQ(box->text(), ask.message);
    ASSERT_EQ(box->buttons().size(), 2);
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
    EXPECT_EQ(answers, QList<int>{MCAlertFirstButtonReturn}); // answered once only
}

} // namespace
