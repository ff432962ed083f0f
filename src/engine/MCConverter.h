#pragma once

#include "MCHelpers.h"
#include "MCResultCheck.h"
#include "MCSelection.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>

class MCPreferences;
class MCToolProcess;

// One step of a job: one external tool run in the background with its log
// file and process number. Subclasses compose the command and read the
// tool's progress from the last line of its log.
//
// Threads: start operations run on the main thread; monitorConversion runs
// on the job's monitor thread, one call at a time. A second start on the
// main thread (the second encoding pass) happens only while the monitor
// waits for it, so no field is touched by two threads at once. The tool's
// running state and exit status are safe to read from either thread.
//
// The step owns the tool it starts: a child process in its own process
// group that cannot outlive Kestrane; doShell_ID is its process number.
class MCConverter : public MCHelpers
{
public:
    MCConverter();
    ~MCConverter() override;

    MCConverter(const MCConverter &) = delete;
    MCConverter &operator=(const MCConverter &) = delete;

    QString converterName;
    QString stepName;
    QUrl subtitleFontURL;
    QUrl saveDirectoryURL;
    QString doShell_ID;
    QUrl logFileURL;
    QUrl inputFileURL;
    QUrl outputFileURL;
    MCSelectionPtr converterSelection;
    MCPreferences *appPreferences = nullptr;
    int trackItemToProcess = 0;
    bool isTemporaryOutput = false;
    QUrl tempFileToDeleteURL;
    qint32 currentPass = 0;
    qint32 monitorCounter = 0;
    QString oldProgress;
    QStringList languageList;
    QList<QStringList> languageArrayMatrix;
    // Carried for completeness; no step reads or sets them.
    bool conversionError = false;
    QString converterStatus;
    QString lg;
    bool converterIsDone = false;

    // Input, save folder, provisional output and log names, subtitle font.
    void initializeFor(const MCSelectionPtr &selection);
    // Starts the tool; answers its process number, or "error" when the
    // step cannot be built (nothing is started then).
    virtual QString startConversionFor(const MCSelectionPtr &selection);
    // "Complete" when the tool has ended, else a progress text (or "error"
    // when the log says nothing readable). The base answers nothing.
    virtual QString monitorConversion();

    void inititializeForTrack(int trackIndex, const QString &stepLabel, bool keepingTheOutput);

    QString language2CodeFor(const QString &name) const;
    QString language3CodeFor(const QString &name) const;

    // Whether text shows up in the last 20 lines of the log, progress lines
    // rewritten in place counting as lines of their own.
    bool stringFoundInLog(const QString &text) const;

    void determineSaveDirectoryURL();
    // A hook for result checks: answers "" (no error).
    QString checkForErrorsInOutputURL(const QUrl &outputURL, const QUrl &logURL) const;

    // Compose-only mode for the whole process (kestrane-cli --dry-run):
    // while a recorder is set, launchInBackground hands it the command line
    // it would run and starts nothing, answering "error" as a step that
    // cannot be built does. Set it before any job starts.
    using CommandRecorder = std::function<void(const QString &command)>;
    static void setCommandRecorder(CommandRecorder recorder);
    static bool isRecordingCommands();

    // The track this step works on, or null when the index is out of range.
    MCVideoTrackPtr trackToProcess() const;

    // The job's private folder in the save folder: when set, the step writes
    // its output and log there instead of the save folder itself.
    QString stagingFolder;
    // Runs on the main thread whenever a tool of this step ends.
    std::function<void()> onToolEnded;
    // What the step's results must look like (set by the job).
    MCResultExpectation expectedResult;

    // Whether the step's tool has been started and not yet ended.
    bool toolIsRunning() const;
    bool toolWasStarted() const;
    // Why the step failed ("" when it did not): it refused to start, its
    // tool was missing, or the tool ended with an error; the tool's own last
    // words from the log are part of the reason.
    QString failureReason() const;
    // The files this step leaves to the user: its output unless that is an
    // intermediate of the job.
    virtual QStringList resultPaths() const;
    // Signals the running tool and whatever it started.
    void signalTool(int signalNumber) const;
    // Continue, terminate, and after graceMs kill the running tool; waits for it.
    void stopTool(int graceMs);

    // What "tr '\r' '\n' < LOG | tail -1" prints, read directly.
    static QString lastLineOfFile(const QString &path);

protected:
    // The log's last line, carriage-return updates counted as lines.
    QString lastLogLine() const;
    // Records why the step cannot run and answers "error"; nothing starts.
    QString refuse(const QString &reason);
    // Exit codes the tool uses for a usable result (mkvmerge: 1 = warnings).
    virtual bool exitCodeMeansSuccess(int exitCode) const { return exitCode == 0; }
    // Runs a tool in the background and keeps its process number; "error"
    // (nothing started) when the tool is missing.
    QString launchInBackground(const QUrl &tool, const MCOptionList &options);
    // The save folder rule: the preferences' folder, else the given fallback.
    QUrl preferredSaveDirectory(const QUrl &fallbackFolder) const;
    // An URL in the save folder: save folder + "/" + name.
    QUrl urlInSaveDirectory(const QString &name) const;

private:
    struct ToolDeleter
    {
        void operator()(MCToolProcess *tool) const;
    };
    std::unique_ptr<MCToolProcess, ToolDeleter> m_tool;
    QString m_toolName;
    QString m_refusal;
};

using MCConverterPtr = std::shared_ptr<MCConverter>;
