#include "MCDropTableView.h"
#include "MCGuiAlertPresenter.h"
#include "MCGuiApplication.h"
#include "MCMainWindow.h"
#include "MCPreferences.h"
#include "MCProgressDelegate.h"
#include "MCTrackTableModel.h"
#include "GuiTestSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

#include <QApplication>
#include <QScreen>
#include <QDropEvent>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStringListModel>
#include <QTabWidget>
#include <QTemporaryDir>

namespace {

void dropOn(MCDropTableView *table, const QList<QUrl> &urls)
{
    guitest::dropOn(table->viewport(), urls);
}

class MainWindowTest : public guitest::WindowTest
{
protected:
    QString avi(const QString &name, int seconds = 2)
    {
        return guitest::makeAvi(dir.path(), name, seconds);
    }
};

TEST_F(MainWindowTest, DroppedVideoFillsTheTrackTableAndStatusLine)
{
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

TEST_F(MainWindowTest, EditFilesTabListsOnlyAvisAndMkvs)
{
    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("Edit Files")));
    const QString first = avi(QStringLiteral("a.avi"));
    const QString second = avi(QStringLiteral("b.AVI"));
    const QString other = testsupport::ffmpeg(dir.path(), QStringLiteral("c.mov"),
                                              QStringLiteral("-f lavfi -i testsrc=size=160x120 -t 1"));
    dropOn(w->fileTable, {QUrl::fromLocalFile(first), QUrl::fromLocalFile(other), QUrl::fromLocalFile(second)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 2; }, 20000));
    EXPECT_EQ(w->fileModel->stringList(), (QStringList{first, second}));
    ASSERT_EQ(alerts->alerts.size(), 1);
    EXPECT_EQ(alerts->alerts.first().informativeText, QStringLiteral("Kestrane can only edit AVI, MKV and MP4 files."));
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
    for (const bool dark : {false, true}) {
        const QColor background = dark ? QColor(0x23, 0x26, 0x29) : QColor(0xfc, 0xfc, 0xfc);
        const QColor text = dark ? QColor(0xee, 0xee, 0xee) : QColor(0x20, 0x20, 0x20);
        QPalette theme;
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
            theme.setColor(role, background);
        const QColor grey(0x80, 0x80, 0x80);
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
            theme.setColor(role, text);
            theme.setColor(QPalette::Disabled, role, grey);
        }
        QApplication::setPalette(theme);
        QLabel label;
        MCMainWindow::setColorName(&label, QStringLiteral("red"));
        const QColor red = label.palette().color(QPalette::WindowText);
        EXPECT_GE(contrast(red, background), 4.5) << (dark ? "dark" : "light");
        EXPECT_GT(red.red(), 2 * std::max(red.green(), red.blue())) << "still reads as red";
        EXPECT_EQ(label.palette().color(QPalette::Disabled, QPalette::WindowText), grey) << "disabled stays grey";
        MCMainWindow::setColorName(&label, QStringLiteral("black"));
        EXPECT_EQ(label.palette().color(QPalette::WindowText), text) << (dark ? "dark" : "light");
    }
    QApplication::setPalette(original);
}

TEST(MainWindowScreen, OpensWithinTheScreenWhateverSizeWasSaved)
{
    // Once shown, when the frame around the window is known.
    const auto fits = [](const MCMainWindow *window) {
        return testsupport::waitUntil(
            [&] { return window->screen()->availableGeometry().contains(window->frameGeometry()); }, 1000);
    };
    {
        MCGuiApplication first;
        first.start({});
        EXPECT_TRUE(fits(first.window())) << "default size";
        // A size saved on a larger screen, or at another scale.
        first.window()->setGeometry(-200, -100, 4000, 3000);
        first.createGuiSettingsDictionary();
        MCPreferences::applicationPreferences()->savePreferencesToDefaults();
    }
    MCGuiApplication second;
    second.start({});
    EXPECT_TRUE(fits(second.window())) << second.window()->frameGeometry().width() << "x"
                                       << second.window()->frameGeometry().height();
    guitest::forgetSavedSettings();
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
