#include "MatrixTable.h"

#include <algorithm>

MatrixTable::MatrixTable(QStringList rows, QStringList columns)
    : m_rows(std::move(rows))
    , m_columns(std::move(columns))
    , m_verdicts(m_rows.size(), QList<Verdict>(m_columns.size()))
{
}

void MatrixTable::set(qsizetype row, qsizetype column, const Verdict &verdict)
{
    m_verdicts[row][column] = verdict;
}

int MatrixTable::failedCount() const
{
    int count = 0;
    for (const QList<Verdict> &row : m_verdicts)
        count += static_cast<int>(std::count_if(row.cbegin(), row.cend(), [](const Verdict &verdict) {
            return verdict.outcome == Verdict::Outcome::Failed;
        }));
    return count;
}

QString MatrixTable::cellText(const Verdict &verdict, QStringList &notes) const
{
    if (verdict.outcome == Verdict::Outcome::Ok)
        return QStringLiteral("ok");
    if (verdict.outcome == Verdict::Outcome::NotApplicable)
        return QStringLiteral("-");
    // Equal reasons share one number.
    qsizetype note = notes.indexOf(verdict.detail);
    if (note < 0) {
        notes.append(verdict.detail);
        note = notes.size() - 1;
    }
    const QString word = verdict.outcome == Verdict::Outcome::Refused ? QStringLiteral("refused") : QStringLiteral("FAILED");
    return QStringLiteral("%1 (%2)").arg(word).arg(note + 1);
}

QList<QStringList> MatrixTable::texts(QStringList &notes) const
{
    QList<QStringList> texts;
    for (qsizetype row = 0; row < m_rows.size(); ++row) {
        QStringList line{m_rows.at(row)};
        for (const Verdict &verdict : m_verdicts.at(row))
            line << cellText(verdict, notes);
        texts << line;
    }
    return texts;
}

QString MatrixTable::plainText() const
{
    QStringList notes;
    QList<QStringList> lines = texts(notes);
    lines.prepend(QStringList{QStringLiteral("source")} + m_columns);
    QList<qsizetype> widths(m_columns.size() + 1, 0);
    for (const QStringList &line : std::as_const(lines)) {
        for (qsizetype i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths.at(i), line.at(i).size());
    }
    QString text;
    for (const QStringList &line : std::as_const(lines)) {
        for (qsizetype i = 0; i < line.size(); ++i)
            text += line.at(i).leftJustified(widths.at(i) + 2);
        text = text.trimmed() + QLatin1Char('\n');
    }
    for (qsizetype i = 0; i < notes.size(); ++i)
        text += QStringLiteral("(%1) %2\n").arg(i + 1).arg(notes.at(i));
    return text;
}

QString MatrixTable::markdown() const
{
    QStringList notes;
    const QList<QStringList> lines = texts(notes);
    QString text = QStringLiteral("| source | %1 |\n|---|").arg(m_columns.join(QStringLiteral(" | ")));
    text += QStringLiteral("---|").repeated(m_columns.size()) + QLatin1Char('\n');
    for (const QStringList &line : lines)
        text += QStringLiteral("| %1 |\n").arg(line.join(QStringLiteral(" | ")));
    text += QLatin1Char('\n');
    for (qsizetype i = 0; i < notes.size(); ++i)
        text += QStringLiteral("%1. %2\n").arg(i + 1).arg(notes.at(i));
    return text;
}
