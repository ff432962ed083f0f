#pragma once

#include "MatrixCell.h"

#include <QList>
#include <QString>
#include <QStringList>

// The source x choice table: "ok", "refused (n)", "FAILED (n)" or "-",
// with the numbered reasons below it.
class MatrixTable
{
public:
    MatrixTable(QStringList rows, QStringList columns);

    void set(qsizetype row, qsizetype column, const Verdict &verdict);
    int failedCount() const;

    // Aligned columns for a terminal, or a Markdown table for the docs.
    QString plainText() const;
    QString markdown() const;

private:
    QString cellText(const Verdict &verdict, QStringList &notes) const;
    QList<QStringList> texts(QStringList &notes) const;

    QStringList m_rows;
    QStringList m_columns;
    QList<QList<Verdict>> m_verdicts;
};
