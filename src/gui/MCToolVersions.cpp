#include "MCToolVersions.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTimer>

namespace {

struct Known
{
    const char *name;
    QStringList arguments; // what makes the tool print its version
};

const QList<Known> &knownTools()
{
    static const QList<Known> tools{
        {"mediainfo", {QStringLiteral("--Version")}},
        {"mkvinfo", {QStringLiteral("--version")}},
        {"Frameworks/mkvmerge", {QStringLiteral("--version")}},
        {"Frameworks/mkvextract", {QStringLiteral("--version")}},
        {"mplayer", {}}, // both print their banner when started without a file
        {"mencoder", {}},
        {"mencodernew", {}},
        {"ffmpeg", {QStringLiteral("-version")}},
        {"avisplit", {}},
        {"avimerge", {}},
        {"mp4boxUpdated/MP4box", {QStringLiteral("-version")}},
    };
    return tools;
}

bool isOwnToolProgram(const QString &path)
{
    return QFileInfo(path).canonicalFilePath().endsWith(QLatin1String("/kestrane-mediatool"));
}

} // namespace

MCToolVersions::MCToolVersions(const QString &resourceFolder, QObject *parent)
    : QObject(parent)
{
    for (const Known &known : knownTools()) {
        const QString name = QString::fromLatin1(known.name);
        const QFileInfo file(resourceFolder + QLatin1Char('/') + name);
        const bool present = !resourceFolder.isEmpty() && file.exists() && file.isExecutable();
        m_tools.append({name, present ? file.absoluteFilePath() : QString(),
                        present ? QStringLiteral("asking...") : QStringLiteral("not found")});
    }
}

void MCToolVersions::start()
{
    for (int row = 0; row < m_tools.size(); ++row) {
        const Tool &tool = m_tools.at(row);
        if (tool.path.isEmpty())
            continue;
        const bool standIn = tool.name == QLatin1String("avisplit") || tool.name == QLatin1String("avimerge");
        if (standIn && isOwnToolProgram(tool.path)) {
            m_tools[row].version = QStringLiteral("Kestrane's own (kestrane-mediatool %1)").arg(QCoreApplication::applicationVersion());
            emit toolChanged(row);
            continue;
        }
        ++m_pending;
        ask(row, knownTools().at(row).arguments);
    }
    if (m_pending == 0)
        QTimer::singleShot(0, this, &MCToolVersions::finished);
}

void MCToolVersions::ask(int row, const QStringList &arguments)
{
    auto *process = new QProcess(this);
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setStandardInputFile(QProcess::nullDevice());
    auto *limit = new QTimer(process);
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, process, &QProcess::kill);
    connect(process, &QProcess::finished, this, [this, row, process] {
        answer(row, versionIn(QString::fromLocal8Bit(process->readAll())));
        process->deleteLater();
    });
    connect(process, &QProcess::errorOccurred, this, [this, row, process](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // a crash or the time limit still ends in finished()
        answer(row, QString());
        process->deleteLater();
    });
    limit->start(timeoutMs);
    process->start(m_tools.at(row).path, arguments);
}

void MCToolVersions::answer(int row, const QString &version)
{
    m_tools[row].version = version.isEmpty() ? QStringLiteral("no version reported") : version;
    emit toolChanged(row);
    if (--m_pending == 0)
        emit finished();
}

QString MCToolVersions::versionIn(const QString &output)
{
    static const QRegularExpression digit(QStringLiteral("\\d"));
    static const QRegularExpression tail(QStringLiteral("\\s+(Copyright|\\(C\\)|\\(c\\)).*$"));
    for (const QString &line : output.split(QLatin1Char('\n'))) {
        if (line.contains(digit))
            return line.trimmed().remove(tail).trimmed();
    }
    return {};
}
