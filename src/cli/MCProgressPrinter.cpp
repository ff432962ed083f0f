#include "MCProgressPrinter.h"

#include "MCStepStatus.h"
#include "MCTerminalText.h"

#include <QRegularExpression>
#include <QVariantMap>

#include <unistd.h>

namespace {

constexpr int kBarWidth = 30;

// Plain lines are printed when a step's status passes a multiple of this.
constexpr int kPlainStep = 10;

// Names and tool words come from files; a line of ours stays one line.
QString shown(const QString &text)
{
    return MCTerminalText::escapedLine(text);
}

QString plainKey(const QString &status)
{
    const std::optional<double> percent = MCStepStatus::percentIn(status);
    if (!percent)
        return status;
    // Keep the words ("Pass #2: ") and round the number down to the step.
    QString words = status;
    words.remove(QRegularExpression(QStringLiteral("[\\d.]+\\s*%")));
    return words + QString::number(static_cast<int>(*percent) / kPlainStep * kPlainStep);
}

} // namespace

MCProgressPrinter::MCProgressPrinter(Mode mode, std::FILE *out)
    : m_mode(mode)
    , m_out(out)
{
}

MCProgressPrinter::Mode MCProgressPrinter::modeFor(std::FILE *out, bool quiet)
{
    if (quiet)
        return Mode::Quiet;
    return ::isatty(::fileno(out)) ? Mode::Live : Mode::Plain;
}

QString MCProgressPrinter::bar(std::optional<double> percent, int width)
{
    const int filled = percent ? static_cast<int>(*percent * width / 100.0) : 0;
    return QLatin1Char('[') + QString(filled, QLatin1Char('#')) + QString(width - filled, QLatin1Char('.')) + QLatin1Char(']');
}

QString MCProgressPrinter::liveLine(const QString &step, const QString &status)
{
    return QStringLiteral("  %1 %2  %3").arg(bar(MCStepStatus::percentIn(status), kBarWidth), step, status);
}

void MCProgressPrinter::print(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), m_out);
    std::fflush(m_out);
}

void MCProgressPrinter::eraseLiveLines()
{
    if (m_liveLines > 0)
        print(QStringLiteral("\x1b[%1A\r\x1b[J").arg(m_liveLines));
    m_liveLines = 0;
}

void MCProgressPrinter::jobStarted(const QString &name, const QString &jobType, int number, int total)
{
    m_lastPlain.clear();
    if (m_mode == Mode::Quiet)
        return;
    eraseLiveLines();
    print(QStringLiteral("Job %1/%2: %3 (%4)\n").arg(number).arg(total).arg(shown(name), shown(jobType)));
}

void MCProgressPrinter::note(const QString &text)
{
    if (m_mode == Mode::Quiet)
        return;
    eraseLiveLines();
    print(MCTerminalText::escaped(text) + QLatin1Char('\n'));
}

void MCProgressPrinter::progress(const QVariantList &rows)
{
    if (m_mode == Mode::Quiet)
        return;
    if (m_mode == Mode::Live) {
        QString text = m_liveLines > 0 ? QStringLiteral("\x1b[%1A").arg(m_liveLines) : QString();
        for (const QVariant &row : rows) {
            const QVariantMap map = row.toMap();
            text += QStringLiteral("\r\x1b[2K") + liveLine(shown(map.value(QStringLiteral("Step")).toString()),
                                                           shown(map.value(QStringLiteral("Progress")).toString()))
                    + QLatin1Char('\n');
        }
        text += QStringLiteral("\x1b[J");
        m_liveLines = static_cast<int>(rows.size());
        print(text);
        return;
    }
    for (const QVariant &row : rows) {
        const QVariantMap map = row.toMap();
        const QString step = map.value(QStringLiteral("Step")).toString();
        const QString status = map.value(QStringLiteral("Progress")).toString();
        if (status.isEmpty())
            continue;
        const QString key = plainKey(status);
        if (m_lastPlain.value(step) == key)
            continue;
        m_lastPlain.insert(step, key);
        print(QStringLiteral("  %1: %2\n").arg(shown(step), shown(status)));
    }
}

void MCProgressPrinter::jobCompleted(const QString &name, const QString &results)
{
    eraseLiveLines();
    print(results.isEmpty() ? QStringLiteral("Completed: %1\n").arg(shown(name))
                            : QStringLiteral("Completed: %1 (%2)\n").arg(shown(name), shown(results)));
}

void MCProgressPrinter::jobFailed(const QString &name, const QString &reason, const QString &logPath)
{
    eraseLiveLines();
    print(logPath.isEmpty() ? QStringLiteral("Failed: %1: %2\n").arg(shown(name), shown(reason))
                            : QStringLiteral("Failed: %1: %2 (log: %3)\n").arg(shown(name), shown(reason), shown(logPath)));
}
