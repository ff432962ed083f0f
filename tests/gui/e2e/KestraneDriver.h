#pragma once

#include "AccessibleTree.h"

#include <QList>
#include <QPoint>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class DesktopSession;

// The real kestrane on a private desktop, used as a person uses it: it is
// started as its desktop entry starts it, looked at through what it shows
// to a screen reader, and driven with pointer and key events. The
// end-to-end tests and the screenshot walk share it.
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
    // What the program asked the desktop to open (folders, logs, pages), in
    // order; a stand-in for xdg-open notes them instead of opening them.
    QStringList opened() const;

    // What the screen reader sees of the program now.
    Node window() const;
    const Node *find(const QString &role, const QString &name);
    const Node *findWhere(const std::function<bool(const Node &)> &matches);
    // Polls until a showing object matches; it stays readable until the next look.
    const Node *waitFor(const QString &role, const QString &name, int timeoutMs);
    const Node *waitForWhere(const std::function<bool(const Node &)> &matches, int timeoutMs);
    // Clicks the centre of an enabled object of that role and name.
    bool clickOn(const QString &role, const QString &name);
    void click(const QPoint &point) const;
    void rightClick(const QPoint &point) const;
    void key(const QString &keys) const;
    void type(const QString &text) const;

    // File > Open... by its key and the path typed into Qt's own dialog;
    // beforeReturn runs with the path typed (to photograph the dialog).
    bool openThroughDialog(const QString &path, const std::function<void()> &beforeReturn = {});

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
    QString openedListPath() const;

    const DesktopSession &m_session;
    QString m_work;
    std::unique_ptr<AccessibleTree> m_tree;
    QProcess m_kestrane;
    Node m_last;
};
