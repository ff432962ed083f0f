#include "EngineTestSupport.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

PrivatePreferences::PrivatePreferences()
    : saveFolder(dir.path() + QStringLiteral("/save"))
    , preferences(std::make_unique<MCPreferences>(dir.path() + QStringLiteral("/settings.ini")))
    , m_previous(MCPreferences::applicationPreferences())
{
    QDir().mkpath(saveFolder);
    preferences->saveDirectoryURL = QUrl::fromLocalFile(saveFolder);
    preferences->keepLogsFlag = false;
    MCPreferences::setApplicationPreferences(preferences.get());
}

PrivatePreferences::~PrivatePreferences()
{
    MCPreferences::setApplicationPreferences(m_previous);
}

MCVideoTrackPtr makeTrack(const QString &type, const QString &codec, const QString &filePath)
{
    auto track = std::make_shared<MCVideoTrack>();
    track->trackType = type;
    track->trackCodec = codec;
    track->trackExtension = codec;
    track->trackFilePath = filePath;
    track->trackFileURL = QUrl::fromLocalFile(filePath);
    track->trackFileExtension = QFileInfo(filePath).suffix();
    track->trackSelected = true;
    return track;
}

QString ShellStep::startConversionFor(const MCSelectionPtr &selection)
{
    initializeFor(selection);
    outputFileURL = urlInSaveDirectory(m_outputName);
    logFileURL = urlInSaveDirectory(m_outputName + QStringLiteral(".log"));
    QString script = m_script;
    script.replace(QStringLiteral("OUT"), doubleQuotedFormOf(outputFileURL.toLocalFile()));
    return launchInBackground(QUrl::fromLocalFile(QStringLiteral("/bin/sh")),
                              {QStringLiteral("-c"), singleQuotedFormOf(script), QStringLiteral("&>"), logFileURL,
                               QStringLiteral("& echo $!")});
}

void StepsJob::startJob()
{
    setStepConverterList(steps);
    for (const MCConverterPtr &step : steps) {
        if (step)
            startStep(step, true);
    }
    addMonitorLoop(useStartMonitor ? MCMonitorPolicy::start() : MCMonitorPolicy::standard());
}

void StepsJob::startPass2SelectorFor(const MCConverterPtr &)
{
    pass2OnMainThread = QThread::currentThread() == QCoreApplication::instance()->thread();
    ++pass2Starts;
}

MCSelectionPtr selectionFor(const QString &path, const QString &jobType)
{
    auto selection = std::make_shared<MCSelection>();
    selection->initialize();
    selection->videoTrackFilePath = path;
    selection->videoTrackFileURL = QUrl::fromLocalFile(path);
    selection->videoTrackFileName = QFileInfo(path).fileName();
    selection->videoTrackFileExtension = QFileInfo(path).suffix();
    selection->jobType = jobType;
    return selection;
}

QString processState(const QString &pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid.trimmed()));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QString text = QString::fromLatin1(stat.readAll());
    const QString state = text.mid(text.lastIndexOf(QLatin1Char(')')) + 2, 1);
    return state == QStringLiteral("Z") ? QString() : state;
}

bool reachesState(const QString &pid, const QString &state)
{
    return testsupport::waitUntil([&] { return processState(pid) == state; }, 2000);
}
