#include "MCWatchModeController.h"

#include "MCLog.h"
#include "MCPreferences.h"
#include "MCJob.h"
#include "MCQueueController.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

namespace {

const QString kFileURL = QStringLiteral("fileURL");
const QString kOldSize = QStringLiteral("oldSize");

QString sizeText(const QUrl &file)
{
    // A file that cannot be read has size zero and simply waits.
    return QString::number(static_cast<quint64>(QFileInfo(file.toLocalFile()).size()));
}

} // namespace

const QString MCWatchModeController::invalidFolderMessage =
    QStringLiteral("must select a valid directory to start watch mode");

// A job appears when the intake starts it; this is how long that may take.
constexpr int kJobAppearsWithinMs = MCWatchModeController::jobStartDelayMs + 3000;
// Spacing between two movies handed to the intake: the first has started.
constexpr int kIntakeSpacingMs = MCWatchModeController::jobStartDelayMs + 500;

MCWatchModeController::MCWatchModeController(QObject *parent)
    : QObject(parent)
    , m_followUp(kJobAppearsWithinMs)
{
    m_watchTimer.setInterval(watchIntervalMs);
    connect(&m_watchTimer, &QTimer::timeout, this, &MCWatchModeController::watchLoop);
    m_intakeTimer.setSingleShot(true);
    m_intakeTimer.setInterval(kIntakeSpacingMs);
    connect(&m_intakeTimer, &QTimer::timeout, this, &MCWatchModeController::handOnNext);
}

QStringList MCWatchModeController::movieExtensionsList() const
{
    static const QStringList extensions{QStringLiteral("mov"), QStringLiteral("mp4"), QStringLiteral("m4v"),
                                        QStringLiteral("avi"), QStringLiteral("mkv"), QStringLiteral("ogg"),
                                        QStringLiteral("mts"), QStringLiteral("ts"),  QStringLiteral("flv"),
                                        QStringLiteral("wmv")};
    return extensions;
}

void MCWatchModeController::appendToBaseWatchFolderMovieList(const QString &path)
{
    // Kept apart from the base list: that list forgets what is not on disk
    // yet, and a result is announced before its tool creates it.
    m_ownOutputs.insert(QFileInfo(path).absoluteFilePath(), false);
}

void MCWatchModeController::setAppIsInWatchMode(bool on)
{
    if (m_appIsInWatchMode == on)
        return;
    m_appIsInWatchMode = on;
    emit appIsInWatchModeChanged();
}

void MCWatchModeController::setWatchFolderPath(const QString &path)
{
    if (m_watchFolderPath == path)
        return;
    m_watchFolderPath = path;
    emit watchFolderPathChanged();
}

// ---------------------------------------------------------------- start and end

void MCWatchModeController::startWatchMode(bool bySender)
{
    if (appPreferences)
        watchFolderURL = appPreferences->watchFolderURL;
    m_watchTimer.stop();
    const QString path = watchFolderURL.isEmpty() ? QString() : QDir::cleanPath(watchFolderURL.toLocalFile());
    if (!path.isEmpty() && QFileInfo(path).isDir()) {
        setWatchFolderPath(path);
        baseWatchFolderMovieList = makeMovieListForWatchFolderURL(watchFolderURL);
        monitorWatchFolderMovieList.clear();
        m_watchTimer.start();
        MCLog::line(QStringLiteral("Watching %1 (%2 movies already there)").arg(path).arg(baseWatchFolderMovieList.size()));
    } else {
        setWatchFolderPath(invalidFolderMessage);
    }
    if (!bySender)
        return;
    setAppIsInWatchMode(true);
    if (queueController)
        emit queueController->drawerCloseRequested();
    QTimer::singleShot(windowDelayMs, this, &MCWatchModeController::delayedToggleWindows);
}

void MCWatchModeController::endWatchMode()
{
    m_watchTimer.stop();
    m_intakeTimer.stop();
    m_waitingForIntake.clear();
    emit toggleWindowsRequested(false);
    QTimer::singleShot(windowDelayMs, this, &MCWatchModeController::delayedOpenDrawer);
    setAppIsInWatchMode(false);
}

void MCWatchModeController::chooseWatchFolderURL()
{
    m_watchTimer.stop();
    emit folderChooserRequested();
}

void MCWatchModeController::watchFolderChosen(const QUrl &folder)
{
    watchFolderURL = folder;
    if (appPreferences) {
        appPreferences->watchFolderURL = folder;
        appPreferences->savePreferencesToDefaults();
    }
    startWatchMode(false);
}

void MCWatchModeController::delayedToggleWindows()
{
    if (m_appIsInWatchMode)
        emit toggleWindowsRequested(true);
}

void MCWatchModeController::delayedOpenDrawer()
{
    if (queueController && !queueController->qJobList().isEmpty())
        emit queueController->drawerOpenRequested();
}

QRect MCWatchModeController::frameLevelWithTopOf(const QRect &other, const QSize &size)
{
    return {QPoint(other.x() + (other.width() - size.width()) / 2, other.y()), size};
}

// ---------------------------------------------------------------- scanning

QList<QUrl> MCWatchModeController::makeMovieListForWatchFolderURL(const QUrl &folder) const
{
    // Without Hidden, hidden files and folders are skipped (and not entered);
    // without FollowSymlinks a link to a folder is never entered, so a link
    // loop cannot trap the scan.
    QDirIterator entries(folder.toLocalFile(), QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    const QStringList extensions = movieExtensionsList();
    QList<QUrl> movies;
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo entry = entries.fileInfo();
        if (extensions.contains(entry.suffix().toLower()))
            movies << QUrl::fromLocalFile(entry.absoluteFilePath());
    }
    return movies;
}

bool MCWatchModeController::isOwnOutput(const QString &path) const
{
    // Every result is announced by its own final name (split pieces each by
    // theirs), so only an exact name is ours: "movie-2.avi" dropped beside
    // our "movie.avi.avi" is the user's.
    return m_ownOutputs.contains(path);
}

QList<QUrl> MCWatchModeController::currentMovies()
{
    QList<QUrl> movies;
    QSet<QString> ownSeen;
    for (const QUrl &movie : makeMovieListForWatchFolderURL(watchFolderURL)) {
        const QString path = movie.toLocalFile();
        if (!isOwnOutput(path)) {
            movies << movie;
        } else if (m_ownOutputs.contains(path)) {
            m_ownOutputs[path] = true;
            ownSeen.insert(path);
        }
    }
    // A result that was there and has gone is forgotten like any file.
    for (auto own = m_ownOutputs.begin(); own != m_ownOutputs.end();) {
        if (own.value() && !ownSeen.contains(own.key()))
            own = m_ownOutputs.erase(own);
        else
            ++own;
    }
    return movies;
}

void MCWatchModeController::watchLoop()
{
    // A folder that went away (an unmounted disk) keeps what it knew, so
    // its old files do not all count as new when it comes back.
    if (!QFileInfo(watchFolderURL.toLocalFile()).isDir())
        return;
    followTakenUpMovies();
    const QList<QUrl> current = currentMovies();
    if (current.isEmpty()) {
        baseWatchFolderMovieList.clear();
        monitorWatchFolderMovieList.clear();
        return;
    }
    QSet<QUrl> watched;
    for (const QVariantMap &record : std::as_const(monitorWatchFolderMovieList))
        watched.insert(record.value(kFileURL).toUrl());
    const QSet<QUrl> base(baseWatchFolderMovieList.cbegin(), baseWatchFolderMovieList.cend());
    QList<QUrl> known, growing, fresh;
    for (const QUrl &movie : current) {
        if (base.contains(movie))
            known << movie;
        else if (watched.contains(movie))
            growing << movie;
        else
            fresh << movie;
    }
    forgetRecordsOfFilesThatLeft(current);
    if (fresh.isEmpty() && growing.isEmpty() && known.size() == baseWatchFolderMovieList.size())
        return;
    if (known.size() < baseWatchFolderMovieList.size())
        baseWatchFolderMovieList = known;
    checkGrowingFiles();
    for (const QUrl &movie : std::as_const(fresh))
        monitorWatchFolderMovieList << QVariantMap{{kFileURL, movie}, {kOldSize, sizeText(movie)}};
    handOnStableFiles();
    if (queueController)
        emit queueController->drawerCloseRequested();
}

void MCWatchModeController::forgetRecordsOfFilesThatLeft(const QList<QUrl> &current)
{
    // Done on every scan: a record left behind could later match a new
    // copy of the same name mid-way and hand it on unfinished.
    const QSet<QUrl> present(current.cbegin(), current.cend());
    monitorWatchFolderMovieList.removeIf(
        [&present](const QVariantMap &record) { return !present.contains(record.value(kFileURL).toUrl()); });
}

void MCWatchModeController::checkGrowingFiles()
{
    for (auto record = monitorWatchFolderMovieList.begin(); record != monitorWatchFolderMovieList.end();) {
        const QUrl file = record->value(kFileURL).toUrl();
        const QString size = sizeText(file);
        if (size == QLatin1String("0")) {
            ++record;
        } else if (size == record->value(kOldSize).toString()) {
            toProcessList << file;
            baseWatchFolderMovieList << file;
            record = monitorWatchFolderMovieList.erase(record);
        } else {
            record->insert(kOldSize, size);
            ++record;
        }
    }
}

void MCWatchModeController::handOnStableFiles()
{
    if (toProcessList.isEmpty())
        return;
    m_waitingForIntake << toProcessList;
    toProcessList.clear();
    if (!m_intakeTimer.isActive())
        handOnNext();
}

void MCWatchModeController::handOnNext()
{
    while (!m_waitingForIntake.isEmpty()) {
        const QUrl file = m_waitingForIntake.takeFirst();
        MCLog::line(QStringLiteral("Watch folder: taking up %1").arg(file.toLocalFile()));
        emit moviesTakenUp({file});
        if (!takeUpMovie)
            continue;
        const quint64 newest = queueController ? MCWatchModeFollowUp::newestSerial(queueController->qJobList()) : 0;
        QString refusal;
        if (takeUpMovie(file, refusal)) {
            m_followUp.handedOn(file, newest);
            m_intakeTimer.start();
            return;
        }
        // Half-written, damaged or not a movie at all: said in the log, and
        // tried again once it holds its size.
        const QString answer = refusal.isEmpty() ? QStringLiteral("not a movie Kestrane can read") : refusal;
        MCLog::line(QStringLiteral("Watch folder: %1 refused: %2").arg(file.toLocalFile(), answer));
        settle(m_followUp.refused(file, answer));
    }
}

void MCWatchModeController::followTakenUpMovies()
{
    if (!queueController)
        return;
    for (const MCWatchModeFollowUp::Outcome &outcome : m_followUp.check(queueController->qJobList()))
        settle(outcome);
}

void MCWatchModeController::settle(const MCWatchModeFollowUp::Outcome &outcome)
{
    const QString path = outcome.file.toLocalFile();
    if (outcome.verdict == MCWatchModeFollowUp::Verdict::GiveUp) {
        MCLog::line(QStringLiteral("Watch folder: gave up on %1 after %2 attempts: %3")
                        .arg(path)
                        .arg(MCWatchModeFollowUp::maxAttempts)
                        .arg(outcome.reason));
        emit movieGivenUp(outcome.file, outcome.reason);
        return;
    }
    MCLog::line(QStringLiteral("Watch folder: %1 will be tried again once it holds its size (%2)").arg(path, outcome.reason));
    // Back to the growing files: handed on again after a scan that sees
    // the size it has now.
    baseWatchFolderMovieList.removeAll(outcome.file);
    monitorWatchFolderMovieList.removeIf([&](const QVariantMap &record) { return record.value(kFileURL).toUrl() == outcome.file; });
    monitorWatchFolderMovieList << QVariantMap{{kFileURL, outcome.file}, {kOldSize, sizeText(outcome.file)}};
}
