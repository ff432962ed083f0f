#include "GuiTestSupport.h"

#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCQueueController.h"
#include "MCTrackTableModel.h"

#include "TestSupport.h"

#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
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
    if (!dialog)
        return false;
    auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
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

QString makeAvi(const QString &dir, const QString &name, int seconds, const QString &size)
{
    return testsupport::ffmpeg(dir, name,
                               QStringLiteral("-f lavfi -i testsrc=size=%1:rate=25 -f lavfi -i sine -t %2 "
                                              "-c:v mpeg4 -c:a libmp3lame")
                                   .arg(size)
                                   .arg(seconds));
}

QString makeSurroundMkv(const QString &dir)
{
    QFile srt(dir + QStringLiteral("/film.srt"));
    if (srt.open(QIODevice::WriteOnly))
        srt.write("1\n00:00:00,200 --> 00:00:01,500\nHello\n\n");
    srt.close();
    return testsupport::ffmpeg(dir, QStringLiteral("film.mkv"),
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2:r=48000 "
                                              "-i '%1' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s]' "
                                              "-map 0:v -map '[s]' -map 2 -c:v libx264 -preset ultrafast -c:a ac3 "
                                              "-c:s srt -metadata:s:a:0 language=ger")
                                   .arg(srt.fileName()));
}

QStringList described(const QString &path, const QString &kind, const QString &fields)
{
    QString out;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1;%2\\n' '%3'").arg(kind, fields, path), &out);
    return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

void WindowTest::SetUp()
{
    ASSERT_TRUE(dir.isValid());
    restart();
}

void WindowTest::restart()
{
    app = std::make_unique<MCGuiApplication>();
    app->start({});
    alerts = testsupport::recordAlerts(); // after the window installed its own
    w = app->window();
}

QString WindowTest::loadAndTick(const QString &name, int seconds, const QString &size)
{
    const QString path = makeAvi(dir.path(), name, seconds, size);
    dropOn(w->trackTable->viewport(), {QUrl::fromLocalFile(path)});
    if (!testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000))
        return {};
    w->toggleVideoButton->click();
    w->toggleAudioButton->click();
    return path;
}

MCJob *WindowTest::runningJob() const
{
    MCJob *job = app->queue()->currentJob();
    return job && !job->stepPIDList().isEmpty() ? job : nullptr;
}

void WindowTest::TearDown()
{
    app->delegate()->stopAndEmptyQueue();
    forgetSavedSettings();
}

void forgetSavedSettings()
{
    QSettings settings(QStringLiteral("Kestrane"), QStringLiteral("Kestrane"));
    settings.clear();
    settings.sync();
}

} // namespace guitest
