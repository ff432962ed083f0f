// Photographs the real window for docs/screenshots, driven as a person
// drives it: keys and clicks through xdotool on a private Xvfb screen.
// Usage: kestrane_screenshot_walk OUTPUT_FOLDER
#include "DesktopSession.h"
#include "KestraneDriver.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <functional>

namespace {

using Node = KestraneDriver::Node;

class Walk
{
public:
    Walk(const DesktopSession &session, QString output)
        : m_session(session)
        , m_output(std::move(output))
        , m_kestrane(session, m_work.path())
    {
    }

    // Answers what went wrong, or "" when every view was taken.
    QString run();

private:
    QString views();
    // The screen, cut to what is on it and kept small (few colours).
    bool shot(const QString &name);
    QString need(bool done, const QString &what) { return done ? QString() : what; }
    bool waitForCell(const std::function<bool(const QString &)> &matches, int timeoutMs);
    bool openFiles(const QString &typed, const QString &shown);

    const DesktopSession &m_session;
    QString m_output;
    QTemporaryDir m_work;
    KestraneDriver m_kestrane;
    QString m_holiday, m_beach, m_gone, m_concert;
};

bool Walk::shot(const QString &name)
{
    QThread::msleep(700); // redrawn after the last input
    const QString path = QDir(m_output).filePath(name + QStringLiteral(".png"));
    if (!m_session.screenshot(path))
        return false;
    std::printf("%s\n", qPrintable(path));
    return QProcess::execute(QStringLiteral("convert"), {path, QStringLiteral("-trim"), QStringLiteral("+repage"),
                                                         QStringLiteral("-strip"), QStringLiteral("-colors"),
                                                         QStringLiteral("48"), QStringLiteral("PNG8:") + path})
           == 0;
}

bool Walk::waitForCell(const std::function<bool(const QString &)> &matches, int timeoutMs)
{
    return m_kestrane.waitForWhere(
               [&](const Node &node) { return node.role == QLatin1String("cell") && node.showing && matches(node.name); },
               timeoutMs)
           != nullptr;
}

// Types names into the Open dialog ("a" "b" for several) and waits until
// shown is on screen as a label or a cell.
bool Walk::openFiles(const QString &typed, const QString &shown)
{
    m_session.key(QStringLiteral("ctrl+o"));
    if (!m_kestrane.waitFor(QStringLiteral("dialog"), QStringLiteral("Select video file to open:"), 10000))
        return false;
    QThread::msleep(500);
    m_session.type(typed);
    m_session.key(QStringLiteral("Return"));
    return m_kestrane.waitForWhere(
               [&](const Node &node) {
                   return node.showing && node.name == shown
                          && (node.role == QLatin1String("label") || node.role == QLatin1String("cell"));
               },
               20000)
           != nullptr;
}

QString Walk::run()
{
    if (!m_work.isValid())
        return QStringLiteral("no work folder");
    m_holiday = m_kestrane.makeClip(QStringLiteral("holiday.avi"), 90);
    m_beach = m_kestrane.makeClip(QStringLiteral("beach.avi"), 8, QStringLiteral("320x240"));
    m_gone = m_kestrane.makeClip(QStringLiteral("garden.avi"), 4, QStringLiteral("320x240"));
    m_concert = m_kestrane.makeClip(QStringLiteral("concert.mkv"), 6, QStringLiteral("640x360"), QStringLiteral("ac3"));
    if (m_holiday.isEmpty() || m_beach.isEmpty() || m_gone.isEmpty() || m_concert.isEmpty())
        return QStringLiteral("ffmpeg could not make the clips");
    if (const QString failure = m_kestrane.start(); !failure.isEmpty())
        return failure;
    const QString failure = views();
    if (!failure.isEmpty()) {
        QFile dump(QDir(m_output).filePath(QStringLiteral("walk-failed.txt")));
        if (dump.open(QIODevice::WriteOnly))
            dump.write(AccessibleTree::dump(m_kestrane.window()).toUtf8());
        m_session.screenshot(QDir(m_output).filePath(QStringLiteral("walk-failed.png")));
    }
    m_session.key(QStringLiteral("ctrl+q"));
    m_kestrane.process().waitForFinished(10000);
    return failure;
}

QString Walk::views()
{
    KestraneDriver &k = m_kestrane;
    // The Open dialog with a path typed, then the file on the AVI tab.
    m_session.key(QStringLiteral("ctrl+o"));
    if (!k.waitFor(QStringLiteral("dialog"), QStringLiteral("Select video file to open:"), 10000))
        return QStringLiteral("no Open dialog");
    QThread::msleep(500);
    m_session.type(m_holiday);
    shot(QStringLiteral("open-dialog"));
    m_session.key(QStringLiteral("Return"));
    if (!k.waitFor(QStringLiteral("label"), m_holiday, 20000))
        return QStringLiteral("the clip did not load");
    if (const QString missing = need(k.tickAllTracks(), QStringLiteral("no ticks")); !missing.isEmpty())
        return missing;
    if (!k.clickOn(QStringLiteral("radio button"), QStringLiteral("MPEG-4 (2 pass)")))
        return QStringLiteral("no MPEG-4");
    shot(QStringLiteral("main-avi"));

    if (!k.clickOn(QStringLiteral("page tab"), QStringLiteral("Edit Tracks")))
        return QStringLiteral("no Edit Tracks tab");
    shot(QStringLiteral("main-edit-tracks"));
    if (!k.clickOn(QStringLiteral("page tab"), QStringLiteral("Edit Files")))
        return QStringLiteral("no Edit Files tab");
    if (!openFiles(QStringLiteral("\"holiday.avi\" \"beach.avi\""), m_beach))
        return QStringLiteral("the files were not listed");
    shot(QStringLiteral("main-edit-files"));

    // The queue while a two-pass encode runs; then a clip that is gone by
    // the time it is converted.
    if (!k.clickOn(QStringLiteral("page tab"), QStringLiteral("AVI")) || !openFiles(m_holiday, m_holiday) || !k.tickAllTracks())
        return QStringLiteral("the clip did not load again");
    if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("Convert")))
        return QStringLiteral("Convert is not enabled");
    if (!waitForCell([](const QString &name) { return name == QLatin1String("Running"); }, 60000))
        return QStringLiteral("the job did not start");
    QThread::msleep(3000); // a few percent into the first pass
    shot(QStringLiteral("queue-running"));
    if (!waitForCell([](const QString &name) { return name == QLatin1String("Completed"); }, 240000))
        return QStringLiteral("the encode did not complete");
    if (!openFiles(m_gone, m_gone) || !k.tickAllTracks())
        return QStringLiteral("the second clip did not load");
    QFile::remove(m_gone);
    if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("Convert")))
        return QStringLiteral("Convert is not enabled for the second clip");
    if (!waitForCell([](const QString &name) { return name == QLatin1String("Failed"); }, 60000))
        return QStringLiteral("the job did not fail");
    shot(QStringLiteral("queue-failed"));

    // An H.264/AC-3 film made into an MP4 for a device, through the MP4 tab.
    if (!k.clickOn(QStringLiteral("page tab"), QStringLiteral("MP4")) || !openFiles(m_concert, m_concert) || !k.tickAllTracks())
        return QStringLiteral("the film did not load on the MP4 tab");
    // The device chooser reads as its current device; the next one is "Apple TV 3".
    if (!k.clickOn(QStringLiteral("combo box"), QStringLiteral("General")))
        return QStringLiteral("no device chooser");
    QThread::msleep(300);
    m_session.key(QStringLiteral("Down Return"));
    if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("Convert")))
        return QStringLiteral("Convert is not enabled on the MP4 tab");
    const QString film = QFileInfo(m_concert).fileName();
    const QDeadlineTimer converted(120000);
    for (const Node *status = nullptr; !status || status->name != QLatin1String("Completed");
         status = k.queueCell(film, QStringLiteral("Status"))) {
        if (converted.hasExpired())
            return QStringLiteral("the MP4 conversion did not complete");
        QThread::msleep(500);
    }
    shot(QStringLiteral("main-mp4"));

    m_session.key(QStringLiteral("ctrl+comma"));
    if (!k.waitFor(QStringLiteral("dialog"), QStringLiteral("Preferences"), 5000))
        return QStringLiteral("no preferences");
    shot(QStringLiteral("preferences"));
    m_session.key(QStringLiteral("Escape"));

    // Both preset editors (the two Edit... buttons), each with a new preset being named.
    struct Editor
    {
        QString title, presetName, file;
    };
    const QList<Editor> editors{{QStringLiteral("Track Selection Presets"), QStringLiteral("English audio first"),
                                 QStringLiteral("preset-selections")},
                                {QStringLiteral("Settings Presets"), QStringLiteral("Xbox, stereo MP3"),
                                 QStringLiteral("preset-settings")}};
    for (qsizetype i = 0; i < editors.size(); ++i) {
        const Editor &editor = editors.at(i);
        const Node tree = k.window();
        const QList<const Node *> edits = tree.findAll([](const Node &node) {
            return node.role == QLatin1String("push button") && node.name == QLatin1String("Edit...") && node.showing;
        });
        if (edits.size() != editors.size())
            return QStringLiteral("no Edit... buttons");
        m_session.click(edits.at(i)->centre());
        if (!k.waitFor(QStringLiteral("dialog"), editor.title, 5000))
            return QStringLiteral("no %1").arg(editor.title);
        if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("+")))
            return QStringLiteral("no + in %1").arg(editor.title);
        // The new preset's name is chosen for typing over.
        QThread::msleep(300);
        m_session.key(QStringLiteral("ctrl+a"));
        m_session.type(editor.presetName);
        m_session.key(QStringLiteral("Tab"));
        shot(editor.file);
        if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("OK")))
            return QStringLiteral("no OK in %1").arg(editor.title);
    }

    if (!k.clickOn(QStringLiteral("menu item"), QStringLiteral("Help")) || !k.clickOn(QStringLiteral("menu item"), QStringLiteral("About Kestrane")))
        return QStringLiteral("no About box");
    if (!k.waitFor(QStringLiteral("dialog"), QStringLiteral("About Kestrane"), 5000))
        return QStringLiteral("the About box did not open");
    shot(QStringLiteral("about"));
    {
        // The About box's own Close, not the queue panel's.
        const Node tree = k.window();
        const Node *about = tree.find(QStringLiteral("dialog"), QStringLiteral("About Kestrane"));
        const Node *close = about ? about->find(QStringLiteral("push button"), QStringLiteral("Close")) : nullptr;
        if (!close)
            return QStringLiteral("no Close in the About box");
        m_session.click(close->centre());
    }

    // The watch window stands in for the main window; its folder comes from Choose....
    if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("Watch Folder")))
        return QStringLiteral("no Watch Folder");
    if (!k.waitFor(QStringLiteral("push button"), QStringLiteral("Choose..."), 10000))
        return QStringLiteral("no watch window");
    QThread::msleep(700); // it slides in
    if (!k.clickOn(QStringLiteral("push button"), QStringLiteral("Choose...")))
        return QStringLiteral("no Choose... in the watch window");
    if (!k.waitFor(QStringLiteral("dialog"), QStringLiteral("Select the folder to watch."), 5000))
        return QStringLiteral("no folder chooser");
    QThread::msleep(500);
    m_session.type(m_work.path());
    m_session.key(QStringLiteral("Return"));
    if (!k.waitFor(QStringLiteral("push button"), QStringLiteral("End Watch Mode"), 10000))
        return QStringLiteral("no watch window");
    shot(QStringLiteral("watch-window"));
    k.clickOn(QStringLiteral("push button"), QStringLiteral("End Watch Mode"));
    return {};
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s OUTPUT_FOLDER\n", argv[0]);
        return 2;
    }
    const QString output = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
    QDir().mkpath(output);
    DesktopSession session;
    if (!session.failure().isEmpty()) {
        std::fprintf(stderr, "no desktop to photograph: %s\n", qPrintable(session.failure()));
        return 1;
    }
    const QString failure = Walk(session, output).run();
    if (!failure.isEmpty()) {
        std::fprintf(stderr, "the walk stopped: %s (see walk-failed.png and .txt)\n", qPrintable(failure));
        return 1;
    }
    return 0;
}
