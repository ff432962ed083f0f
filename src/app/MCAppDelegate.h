#pragma once

#include "MCHelpers.h"
#include "MCJobJournal.h"
#include "MCSelection.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>

class MCIntakeProbe;
class MCInterruptedJobs;
class MCPreferences;
class MCPresetsController;
class MCQueueController;
class MCSelectionController;
class MCVideoFile;
class MCWatchModeController;

// The application controller: builds the preferences, the presets, the
// selection rules and the queue; takes files in (opened, dropped, watched),
// tests and loads them for the current tab with the alerts the user sees,
// and turns the current selection into queued jobs. QtCore only: the window
// and the command line both drive this one object.
class MCAppDelegate : public QObject, public MCHelpers
{
    Q_OBJECT
    Q_PROPERTY(QString fileTextField READ fileTextField WRITE setFileTextField NOTIFY fileTextFieldChanged)
    Q_PROPERTY(QString openingFileMode READ openingFileMode WRITE setOpeningFileMode NOTIFY openingFileModeChanged)
    Q_PROPERTY(QStringList editFilesPathsArray READ editFilesPathsArray NOTIFY editFilesPathsArrayChanged)
    Q_PROPERTY(QList<QUrl> openedURLsArray READ openedURLsArray NOTIFY openedURLsArrayChanged)

public:
    // Without a settings file the user's own preferences are used.
    explicit MCAppDelegate(const QString &settingsFilePath = QString(), QObject *parent = nullptr);
    ~MCAppDelegate() override;

    // Start-up: builds and wires the controllers; safe to call once.
    void applicationDidFinishLaunching();

    MCPreferences *appPreferences = nullptr;
    MCPresetsController *presetsController = nullptr;
    MCSelectionController *selectionController = nullptr;
    MCQueueController *queueController = nullptr;
    MCWatchModeController *watchModeController = nullptr;
    std::shared_ptr<MCVideoFile> currentVideoFile;
    MCSelectionPtr currentSelection;
    QList<QUrl> editFilesURLsArray;

    // What the window (or another front end) supplies.
    std::function<void()> endTextEditing;              // commit a value being typed
    std::function<void()> redrawQueueDrawer;
    std::function<QVariantMap()> createGuiSettingsDictionary;
    std::function<void(const QUrl &)> openWebPage;     // help menu pages
    // Where a selection goes when it is started; the queue unless replaced
    // (the command line's dry run describes it instead).
    std::function<void(const MCSelectionPtr &)> queueSelection;

    QString onlineGuideAddress;
    QString onlineTroubleshootingAddress;

    // Intake
    void openedFileHubForFiles(const QList<QUrl> &urls);
    // A movie the watch folder found complete: loaded now with the presets
    // in force and started MCWatchModeController::jobStartDelayMs later. Answers whether it
    // loaded; a refusal makes no alert (nobody is at the window).
    bool takeUpWatchedMovie(const QUrl &url);
    QString testNewFileURL(const QUrl &url, bool withAlerts);
    void loadNewFileTracksFrom(const QUrl &url, bool withAlerts);
    void addFileTrackFrom(const QUrl &url);
    void handleHeaderCompression(int returnCode);
    void applyPresets();

    // Typed entry points: what a front end does, without its controls.
    // Opens files into a tab, as the Open command does.
    void openFiles(const QString &tab, const QList<QUrl> &urls);
    // Adds files as tracks of the loaded file, as Add Tracks does.
    void addFiles(const QList<QUrl> &urls);
    // The window's intake: the inspection tools run off this thread first
    // (intakeProbe is busy meanwhile), then the files are taken in with
    // the opening mode given, and done() follows.
    void takeInFilesAfterInspection(const QList<QUrl> &urls, const QString &mode, const std::function<void()> &done);
    MCIntakeProbe *intakeProbe = nullptr;
    // Starts the current tab's job. On "Edit Files" jobType picks joining,
    // splitting or the remux; MKV Remux queues the loaded MKV's remux from
    // any tab. Answers false when the save folder refused it.
    bool startJob(const QString &jobType = {});

    void finishStartProcess();
    // Whether later files of a batch are still being taken in.
    bool takingInBatch() const { return !m_batchToTakeIn.isEmpty(); }
    // The save folder of a job from the current selection: the preference's,
    // or the source's folder.
    QString saveFolderForCurrentJob() const;
    // Alerts (10 s) and answers false when that folder cannot be written.
    bool checkSaveFolderIsWritable();

    // Help menu; "Save File Info" answers through saveFileInfo.
    void helpMenuItemSelected(const QString &title);
    // Writes mediainfo's full report of the current file(s) as
    // "NAME.info.txt"; answers the paths written.
    QStringList saveFileInfo();

    // Jobs an earlier Kestrane was killed before it finished. Whatever they
    // had begun to write is removed as they are found; they stay on record
    // until run again or let go.
    QList<MCJobJournal::Entry> interruptedJobs();
    void runInterruptedJobsAgain(const QList<MCJobJournal::Entry> &jobs);
    void forgetInterruptedJobs(const QList<MCJobJournal::Entry> &jobs);
    // The window's question: run them again (OK) or let them go (Cancel).
    void offerInterruptedJobs();

    // Quit: with a running job, pauses it and asks; reply(true) quits.
    void applicationShouldTerminate(const std::function<void(bool)> &reply);
    // Stops the running job and removes every job from the queue.
    void stopAndEmptyQueue();

    // The answer of the last load ("OK", "not a video", ...).
    QString lastLoadAnswer() const { return m_lastLoadAnswer; }

    QString fileTextField() const { return m_fileTextField; }
    void setFileTextField(const QString &text);
    QString openingFileMode() const { return m_openingFileMode; }
    void setOpeningFileMode(const QString &mode);
    QStringList editFilesPathsArray() const { return m_editFilesPathsArray; }
    QList<QUrl> openedURLsArray() const { return m_openedURLsArray; }
    void setOpenedURLsArray(const QList<QUrl> &urls);

    static const QString dropFilesText;

signals:
    void fileTextFieldChanged();
    void openingFileModeChanged();
    void editFilesPathsArrayChanged();
    void openedURLsArrayChanged();
    // A later file of a batch failed its test; the window says nothing, the
    // command line names it. answer is the load's answer when it got so far.
    void batchFileSkipped(const QUrl &url, const QString &answer);

private:
    QString currentTab() const;
    QString testForAviTab(const QUrl &url, bool withAlerts);
    QString testForEditFilesTab(bool withAlerts);
    QString testForEditTracksTab(const QUrl &url, bool withAlerts);
    QString loadRule(const QUrl &url, bool withAlerts);
    void addTrackAndApplyPresets(const QUrl &url, bool withAlerts);
    void markEditTrackSources();
    void queueCurrentSelection();
    void queueRemux();
    void alertErrorOpening(const QUrl &url, const QString &text, bool withAlerts) const;
    void offerHeaderRemovalRemux();
    void startBatch();
    void takeInNextBatchFile();
    void takeInBatchFile(const QUrl &url);

    QString m_fileTextField;
    QString m_openingFileMode;
    QStringList m_editFilesPathsArray;
    QList<QUrl> m_openedURLsArray;
    QList<QUrl> m_batchToTakeIn;
    QString m_lastLoadAnswer;
    QString m_settingsFilePath;
    bool m_launched = false;
    MCJobJournal m_journal;
    MCInterruptedJobs *m_interrupted = nullptr;
};
