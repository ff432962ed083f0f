#include "GuiTestSupport.h"

#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCQueueController.h"

#include <QtWidgets>
#include <QTest>

namespace guitest {

void dropOn(QWidget *target, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return; // refused, as the desktop would see it
    QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
}

QList<QUrl> urls(const QStringList &paths)
{
    QList<QUrl> list;
    for (const QString &path : paths)
        list << QUrl::fromLocalFile(path);
    return list;
}

QFileDialog *shownFileDialog()
{
    QFileDialog *found = nullptr;
    testsupport::waitUntil(
        [&] {
            for (QWidget *window : QApplication::topLevelWidgets()) {
                if (auto *dialog = qobject_cast<QFileDialog *>(window); dialog && dialog->isVisible())
                    found = dialog;
            }
            return found != nullptr;
        },
        5000);
    return found;
}

bool typeIntoFileDialog(const QString &path)
{
    QFileDialog *dialog = shownFileDialog();
    auto *name = dialog ? dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
    if (!name)
        return false;
    // Typed with the focus in the field, as a person does: without it the
    // dialog rewrites the field whenever its list selection follows the text.
    QApplication::setActiveWindow(dialog);
    if (!QTest::qWaitForWindowActive(dialog))
        return false;
    name->setFocus();
    name->clear();
    QTest::keyClicks(name, path);
    QTest::keyClick(name, Qt::Key_Return);
    return true;
}

void choose(QComboBox *popUp, const QString &item)
{
    const int index = popUp->findText(item);
    ASSERT_GE(index, 0) << item.toStdString();
    popUp->setCurrentIndex(index);
    emit popUp->activated(index);
    emit popUp->textActivated(item);
}

QString makeAvi(const QString &dir, const QString &name, int seconds, const QString &size)
{
    return testsupport::ffmpeg(dir, name,
                               QStringLiteral("-f lavfi -i testsrc=size=%1:rate=25 -f lavfi -i sine -t %2 "
                                              "-c:v mpeg4 -c:a libmp3lame")
                                   .arg(size)
                                   .arg(seconds));
}

QString writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size()) << path.toStdString();
    return path;
}

QString makeSurroundMkv(const QString &dir)
{
    const QString srt = writeFile(dir + QStringLiteral("/film.srt"), "1\n00:00:00,200 --> 00:00:01,500\nHello\n\n");
    return testsupport::ffmpeg(dir, QStringLiteral("film.mkv"),
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2:r=48000 "
                                              "-i '%1' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s]' "
                                              "-map 0:v -map '[s]' -map 2 -c:v libx264 -preset ultrafast -c:a ac3 "
                                              "-c:s srt -metadata:s:a:0 language=ger")
                                   .arg(srt));
}

QStringList described(const QString &path, const QString &kind, const QString &fields)
{
    QString out;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1;%2\\n' '%3'").arg(kind, fields, path), &out);
    QStringList tracks = out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    tracks.sort();
    return tracks;
}

void forgetSavedSettings()
{
    QSettings settings(QStringLiteral("Kestrane"), QStringLiteral("Kestrane"));
    settings.clear();
    settings.sync();
}

void WindowTest::SetUp()
{
    ASSERT_TRUE(dir.isValid());
    restart();
}

void WindowTest::TearDown()
{
    app->delegate()->stopAndEmptyQueue();
    forgetSavedSettings();
}

void WindowTest::restart()
{
    app = std::make_unique<MCGuiApplication>();
    app->start({});
    alerts = testsupport::recordAlerts(); // after the window installed its own
    w = app->window();
}

void WindowTest::showTab(const QString &name)
{
    w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(name));
}

bool WindowTest::drop(QAbstractItemView *table, const QStringList &paths, int rows)
{
    dropOn(table->viewport(), urls(paths));
    return testsupport::waitUntil([&] { return table->model()->rowCount() == rows; }, 20000);
}

QString WindowTest::loadAndTick(const QString &name, int seconds, const QString &size)
{
    const QString path = makeAvi(dir.path(), name, seconds, size);
    if (!drop(w->trackTable, {path}, 2))
        return {};
    w->toggleVideoButton->click();
    w->toggleAudioButton->click();
    return path;
}

MCJob *WindowTest::queued() const
{
    const QList<MCJob *> jobs = app->queue()->qJobList();
    return jobs.size() == 1 ? jobs.first() : nullptr;
}

QString WindowTest::finish(MCJob *job)
{
    const auto ended = [&] { return job->jobStatus() == QLatin1String("Completed") || job->jobStatus() == QLatin1String("Failed"); };
    testsupport::waitUntil(ended, 120000);
    return job->jobStatus();
}

} // namespace guitest

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
