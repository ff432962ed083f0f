#include "MCFilterRows.h"

#include <algorithm>

namespace {

const QString kPlus = QStringLiteral("+");
const QString kMinus = QStringLiteral("-");

QString restingTitle(int number)
{
    return QStringLiteral("Filter #%1").arg(number);
}

} // namespace

QVariantMap MCFilterRow::toMap() const
{
    return {{QStringLiteral("visible"), visible},       {QStringLiteral("editTitle"), editTitle},
            {QStringLiteral("editEnabled"), editEnabled}, {QStringLiteral("inEditMode"), inEditMode},
            {QStringLiteral("panelShown"), panelShown}, {QStringLiteral("addTitle"), addTitle},
            {QStringLiteral("addVisible"), addVisible}, {QStringLiteral("addEnabled"), addEnabled}};
}

MCFilterRows::MCFilterRows()
{
    for (int number = 1; number <= 3; ++number)
        at(number).editTitle = restingTitle(number);
    at(1).visible = true;
    at(2).addTitle = kPlus;
    at(2).addVisible = true;
    at(3).addTitle = kPlus;
}

const MCFilterRow &MCFilterRows::row(int number) const
{
    return m_rows[std::size_t(isRowNumber(number) ? number - 1 : 0)];
}

void MCFilterRows::adjustForCount(qsizetype count)
{
    if (count < 1 || count > 3)
        return;
    at(2).visible = count >= 2;
    at(3).visible = count >= 3;
    at(2).addTitle = count >= 2 ? kMinus : kPlus;
    if (count >= 2)
        at(3).addTitle = count == 3 ? kMinus : kPlus;
    // A row's add button shows once the row above it is there.
    at(2).addVisible = true;
    at(3).addVisible = at(2).visible;
}

void MCFilterRows::setOthersEnabled(int number, bool enabled)
{
    switch (number) {
    case 1:
        at(2).editEnabled = at(2).addEnabled = at(3).editEnabled = at(3).addEnabled = enabled;
        break;
    case 2:
        at(1).editEnabled = at(2).addEnabled = at(3).editEnabled = at(3).addEnabled = enabled;
        break;
    case 3:
        at(1).editEnabled = at(2).editEnabled = at(2).addEnabled = enabled;
        break;
    default:
        break;
    }
}

void MCFilterRows::startEditing(int number)
{
    if (!isRowNumber(number))
        return;
    MCFilterRow &row = at(number);
    row.panelShown = true;
    row.inEditMode = true;
    row.editTitle = QStringLiteral("Done");
    setOthersEnabled(number, false);
}

void MCFilterRows::stopEditing(int number)
{
    if (!isRowNumber(number))
        return;
    MCFilterRow &row = at(number);
    row.panelShown = false;
    row.inEditMode = false;
    row.editTitle = restingTitle(number);
    setOthersEnabled(number, true);
}

bool MCFilterRows::isEditing() const
{
    return std::any_of(m_rows.cbegin(), m_rows.cend(), [](const MCFilterRow &row) { return row.inEditMode; });
}

bool MCFilterRows::pointerEntered(int number)
{
    if (!isRowNumber(number))
        return false;
    MCFilterRow &row = at(number);
    if (!row.editEnabled || row.inEditMode)
        return false;
    row.panelShown = true;
    row.editTitle = QStringLiteral("Edit");
    return true;
}

void MCFilterRows::pointerExited(int number)
{
    if (!isRowNumber(number))
        return;
    MCFilterRow &row = at(number);
    if (!row.editEnabled || row.inEditMode)
        return;
    row.panelShown = false;
    row.editTitle = restingTitle(number);
}

QVariantList MCFilterRows::toVariantList() const
{
    QVariantList rows;
    for (const MCFilterRow &row : m_rows)
        rows.append(row.toMap());
    return rows;
}
