#pragma once

#include "AccessibleTree.h"

#include <QList>
#include <QPoint>
#include <QProcess>
#include <QString>

#include <functional>
#include <memory>

class DesktopSession;

// The real kestrane on a private desktop, used as a person uses it: looked
// at through what it shows to a screen reader, and driven with pointer and
// key events. The end-to-end test and the screenshot walk share it.
class KestraneDriver
{
public:
    using Node = AccessibleTree::Node;

    // workFolder: where media is made and the program's output is logged.
    KestraneDriver(const DesktopSession &session, QString workFolder);
    ~KestraneDriver();

    // Starts the program and waits for its window, which is given the
    // focus; "" when it stands, else what went wrong.
    QString start();
    QProcess &process() { return m_kestrane; }
    QString logPath() const;

    // Polls until done() holds or the time is up; answers done().
    static bool within(int timeoutMs, const std::function<bool()> &done);

    // What the screen reader sees of the program now.
    Node window() const;
    // Polls until a showing object matches; it stays readable until the next look.
    const Node *waitFor(const QString &role, const QString &name, int timeoutMs);
    const Node *waitForWhere(const std::function<bool(const Node &)> &matches, int timeoutMs);
    // Clicks the centre of an enabled object of that role and name.
    bool clickOn(const QString &role, const QString &name);

    // File > Open... by its key and the path typed into Qt's own dialog.
    bool openThroughDialog(const QString &path);

    // The track table's rows: the check box cell and the track's name cell.
    struct TrackRow
    {
        Node check, info;
    };
    QList<TrackRow> trackRows();
    // Ticks every track by a click on its check box.
    bool tickAllTracks();

    // The queue table's cell in a row's column, found by a cell of that row
    // holding rowName (e.g. the file name); null when there is none.
    const Node *queueCell(const QString &rowName, const QString &columnHeader);

    // A clip made with ffmpeg in the work folder (x264 video, MP3 audio
    // unless another audio encoder is named).
    QString makeClip(const QString &name, int seconds, const QString &size = QStringLiteral("640x360"),
                     const QString &audioCodec = QStringLiteral("libmp3lame"));

private:
    QList<const Node *> look(const std::function<bool(const Node &)> &matches);

    const DesktopSession &m_session;
    QString m_work;
    std::unique_ptr<AccessibleTree> m_tree;
    QProcess m_kestrane;
    Node m_last;
};
