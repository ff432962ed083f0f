#pragma once

#include "MCConverter.h"
#include "MCJob.h"
#include "MCPreferences.h"

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// Application preferences on a private settings file, with a temporary save
// folder; the previous preferences come back when it goes.
class PrivatePreferences
{
public:
    PrivatePreferences();
    ~PrivatePreferences();

    QTemporaryDir dir;
    QString saveFolder;
    std::unique_ptr<MCPreferences> preferences;

private:
    MCPreferences *m_previous;
};

MCVideoTrackPtr makeTrack(const QString &type, const QString &codec, const QString &filePath);

// A step running "sh -c SCRIPT" with OUT in the script standing for its
// output file (named outputName in the save folder) and a log beside it.
class ShellStep : public MCConverter
{
public:
    ShellStep(QString script, QString outputName)
        : m_script(std::move(script)), m_outputName(std::move(outputName)) { stepName = QStringLiteral("Shell"); }
    QString startConversionFor(const MCSelectionPtr &selection) override;
    QString monitorConversion() override { return toolIsRunning() ? QStringLiteral("Working") : QStringLiteral("Complete"); }

private:
    QString m_script;
    QString m_outputName;
};

// A step that starts nothing and answers the given words in turn, then
// "Complete" forever.
class ScriptedStep : public MCConverter
{
public:
    explicit ScriptedStep(QStringList words) : m_words(std::move(words)) { stepName = QStringLiteral("Scripted"); }
    QString startConversionFor(const MCSelectionPtr &) override { return QStringLiteral("error"); }
    QString monitorConversion() override { return m_words.isEmpty() ? QStringLiteral("Complete") : m_words.takeFirst(); }

private:
    QStringList m_words;
};

// A job of given steps under the common monitor contract.
class StepsJob : public MCJob
{
    Q_OBJECT
public:
    explicit StepsJob(QObject *parent = nullptr) : MCJob(parent) {}

    QList<MCConverterPtr> steps;
    bool useStartMonitor = false;
    std::atomic<int> pass2Starts{0};
    std::atomic<bool> pass2OnMainThread{false};

    void startJob() override;

protected:
    void startPass2SelectorFor(const MCConverterPtr &step) override;
};

// A selection whose video file is path (nothing is inspected).
MCSelectionPtr selectionFor(const QString &path, const QString &jobType = QStringLiteral("AVI Conversion"));

// "T" for a stopped process, "" when it is gone.
QString processState(const QString &pid);
// Signals land a moment after kill returns: waits for the state.
bool reachesState(const QString &pid, const QString &state);
