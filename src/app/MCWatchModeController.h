#pragma once

#include "MCWatchModeFollowUp.h"
#include "MCWatchModeLink.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

#include <functional>

class MCPreferences;
class MCQueueController;

// Watch mode: scans a folder every five seconds and announces each new
// movie (moviesTakenUp) once two scans in a row saw the same non-zero size;
// the intake takes it in "watch" mode, applies the presets and queues the jobs. The window
// side (fades, the watch window, the folder chooser) binds to the signals.
class MCWatchModeController : public QObject, public MCWatchModeLink
{
    Q_OBJECT
    Q_PROPERTY(bool appIsInWatchMode READ appIsInWatchMode NOTIFY appIsInWatchModeChanged)
    Q_PROPERTY(QString watchFolderPath READ watchFolderPath NOTIFY watchFolderPathChanged)

public:
    explicit MCWatchModeController(QObject *parent = nullptr);

    MCPreferences *appPreferences = nullptr;
    MCQueueController *queueController = nullptr;
    // How long after its intake a watched movie's job starts.
    static constexpr int jobStartDelayMs = 2000;
    // The intake's answer for one settled movie: true once it loaded and its
    // job is on the way; false with the reason otherwise (then it is tried
    // again). Set by whoever takes movies in; without it movies are only
    // announced through moviesTakenUp.
    std::function<bool(const QUrl &file, QString &refusal)> takeUpMovie;

    QUrl watchFolderURL;
    QList<QUrl> baseWatchFolderMovieList;
    // Records {"fileURL": QUrl, "oldSize": "%llu" text}, one per growing file.
    QList<QVariantMap> monitorWatchFolderMovieList;
    QList<QUrl> toProcessList;

    static const QString invalidFolderMessage;
    static constexpr int watchIntervalMs = 5000;
    static constexpr int windowDelayMs = 400;

    // bySender: the user's command, which also switches the windows.
    void startWatchMode(bool bySender);
    void endWatchMode();
    // Stops the scan and asks the front end for a folder
    // (folderChooserRequested); its answer comes to watchFolderChosen.
    void chooseWatchFolderURL();
    void watchFolderChosen(const QUrl &folder);
    QList<QUrl> makeMovieListForWatchFolderURL(const QUrl &folder) const;
    void watchLoop();
    void delayedToggleWindows();
    void delayedOpenDrawer();

    // Where a window goes when it replaces another: centred on it
    // horizontally, top edges level.
    static QRect frameLevelWithTopOf(const QRect &other, const QSize &size);

    bool isScanning() const { return m_watchTimer.isActive(); }
    // Movies tried maxAttempts times and left alone, as "PATH: REASON".
    const QStringList &givenUpMovies() const { return m_followUp.givenUp(); }
    QString watchFolderPath() const { return m_watchFolderPath; }

    bool appIsInWatchMode() const override { return m_appIsInWatchMode; }
    QStringList movieExtensionsList() const override;
    void appendToBaseWatchFolderMovieList(const QString &path) override;

signals:
    void appIsInWatchModeChanged();
    void watchFolderPathChanged();
    // towardsWatchWindow: main window out, watch window in; else back.
    void toggleWindowsRequested(bool towardsWatchWindow);
    void folderChooserRequested();
    // Files found complete in this scan, for the intake to take.
    void moviesTakenUp(const QList<QUrl> &files);
    // A movie refused or failed too often; it is not tried again.
    void movieGivenUp(const QUrl &file, const QString &reason);

private:
    void setAppIsInWatchMode(bool on);
    void setWatchFolderPath(const QString &path);
    QList<QUrl> currentMovies();
    bool isOwnOutput(const QString &path) const;
    void forgetRecordsOfFilesThatLeft(const QList<QUrl> &current);
    void checkGrowingFiles();
    void handOnStableFiles();
    void handOnNext();
    void followTakenUpMovies();
    void settle(const MCWatchModeFollowUp::Outcome &outcome);

    QTimer m_watchTimer;
    // Movies that settled together go to the intake one at a time: each
    // loads into the one current file and starts a moment later.
    QList<QUrl> m_waitingForIntake;
    QTimer m_intakeTimer;
    MCWatchModeFollowUp m_followUp;
    bool m_appIsInWatchMode = false;
    QString m_watchFolderPath;
    // Results Kestrane announced; true once seen in the folder, so that a
    // result the user removes and puts back counts as new.
    QHash<QString, bool> m_ownOutputs;
};
