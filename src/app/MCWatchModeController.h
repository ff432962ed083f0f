#pragma once

#include "MCWatchModeLink.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

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

private:
    void setAppIsInWatchMode(bool on);
    void setWatchFolderPath(const QString &path);
    QList<QUrl> currentMovies();
    bool isOwnOutput(const QString &path) const;
    void forgetRecordsOfFilesThatLeft(const QList<QUrl> &current);
    void checkGrowingFiles();
    void handOnStableFiles();

    QTimer m_watchTimer;
    bool m_appIsInWatchMode = false;
    QString m_watchFolderPath;
    // Results Kestrane announced; true once seen in the folder, so that a
    // result the user removes and puts back counts as new.
    QHash<QString, bool> m_ownOutputs;
};
