#include "TestSupport.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QThread>

void RecordingAlertPresenter::present(const MCAlert &alert, std::function<void(int)> onClose)
{
    alerts.append(alert);
    if (onClose)
        onClose(answer);
}

namespace testsupport {

std::shared_ptr<RecordingAlertPresenter> recordAlerts()
{
    auto presenter = std::make_shared<RecordingAlertPresenter>();
    MCAlertCenter::instance().setPresenter(presenter);
    return presenter;
}

bool waitUntil(const std::function<bool()> &done, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return done();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QThread::msleep(10);
    }
    return true;
}

int run(const QString &command, QString *output)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("/bin/bash"), {QStringLiteral("-c"), command});
    process.waitForFinished(-1);
    if (output)
        *output = QString::fromUtf8(process.readAll());
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QString ffmpeg(const QString &dir, const QString &name, const QString &arguments)
{
    const QString path = dir + QLatin1Char('/') + name;
    QString output;
    const int status = run(QStringLiteral("ffmpeg -nostdin -hide_banner -loglevel error -y %1 '%2'").arg(arguments, path), &output);
    if (status != 0)
        qWarning("ffmpeg failed for %s: %s", qPrintable(name), qPrintable(output));
    return path;
}

QString testDataPath(const QString &relative)
{
    // ctest sets the folder; a test program started by hand uses the source tree's.
    const QString folder = qEnvironmentVariable("KESTRANE_TEST_DATA", QStringLiteral(KESTRANE_SOURCE_TEST_DATA));
    return folder + QLatin1Char('/') + relative;
}

QString readTestData(const QString &relative)
{
    QFile file(testDataPath(relative));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString mediaInfo(const QString &path, const QString &kind, const QString &parameter)
{
    QString output;
    // QString::arg has no "%%" escape: "%%2%" becomes "%Width%".
    run(QStringLiteral("mediainfo --Inform='%1;%%2%\\n' '%3'").arg(kind, parameter, path), &output);
    return output.section(QLatin1Char('\n'), 0, 0).trimmed();
}

QString resourcesWithout(const QString &into, const QString &left)
{
    const QDir real(qEnvironmentVariable("KESTRANE_RESOURCES"));
    for (const QString &entry : real.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (entry != left)
            QFile::link(real.filePath(entry), into + QLatin1Char('/') + entry);
    }
    return into;
}

QByteArray checksum(const QString &path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) ? hash.result() : QByteArray();
}

} // namespace testsupport
