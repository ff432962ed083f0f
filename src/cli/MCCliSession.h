#pragma once

#include "MCCliOptions.h"
#include "MCSelection.h"

#include <QObject>
#include <QString>
#include <QUrl>

#include <memory>

class MCAppDelegate;
class MCDryRun;
class MCJobWatcher;
class MCProgressPrinter;

// One run of kestrane-cli past the argument check: builds the application
// controller on the chosen settings, takes the files in through the same
// intake as the window, applies the presets and the explicit choices through
// the selection rules, starts the job and follows the queue to its end.
class MCCliSession : public QObject
{
    Q_OBJECT
public:
    explicit MCCliSession(MCCliOptions options, QObject *parent = nullptr);
    ~MCCliSession() override;

    // The exit status: 0 every job done with its output, 1 a file or job
    // failed, 2 bad usage or a refused choice, 128 + the signal when
    // interrupted.
    int run();

    // The window's alert line for a file that failed to load with answer.
    static QString loadFailureLine(const QString &fileName, const QString &answer);

private:
    int setUp();
    int choosePresets();
    int convert();
    int join();
    int split();
    int extract();
    // Removes the tracks --tracks names from an MKV or MP4 file.
    int removeTracks();
    // Edit Tracks with that row, on the tracks --tracks names (or the preset's).
    int editTracks(int row);
    // add-audio (an AVI) and add-tracks (an MP4): the files after the first
    // become tracks of a copy of it.
    int addTracks();
    // Sets the pixel aspect ratio of MP4 files.
    int par();
    int remux();
    // Runs until a signal; answers the exit status.
    int watch();

    // The tabs' common start: checks the files, selects the tab and takes
    // the files in as the Open command would.
    QList<QUrl> checkedFiles(const QStringList &paths);
    void openFiles(const QString &tab, const QList<QUrl> &urls);
    // The files on the command line opened into Edit Files; empty when
    // none could be taken.
    QList<QUrl> openForFileEdit();
    bool loaded(const QUrl &url) const;
    bool selectTracks(const QList<int> &positions, const QUrl &url);
    void applyExplicitSettings();
    // The hook every started selection passes: per-file checks, then the
    // queue (or the dry run).
    void takeSelection(const MCSelectionPtr &selection);
    bool startAllowed(QString *why) const;
    // Starts the job of the files taken in, or says why the rules refuse.
    void startIfAllowed(const QUrl &url, const QString &jobType);
    int finish();
    void interrupted(int signalNumber);
    void fail(const QString &text);
    // A choice the rules refuse: the reason on stderr, exit status 2.
    void refuse(const QString &fileName, const QString &why);

    MCCliOptions m_options;
    std::unique_ptr<MCAppDelegate> m_app;
    std::unique_ptr<MCProgressPrinter> m_printer;
    MCJobWatcher *m_watcher = nullptr;
    MCDryRun *m_dryRun = nullptr;
    int m_status = 0;
    int m_signal = 0;
    int m_queued = 0;
    bool m_waiting = false;
    bool m_jobCutShort = false;
    bool m_refused = false;
};
