#pragma once

#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <array>

// What the window shows of one filter row of the track-selection preset
// editor: its edit button (with the floating filter panel) and, on rows 2
// and 3, the add/remove button.
struct MCFilterRow
{
    bool visible = false;
    QString editTitle;   // "Filter #n", "Edit" while the pointer is on it, "Done" while editing
    bool editEnabled = true;
    bool inEditMode = false;
    bool panelShown = false;
    QString addTitle;    // "+" or "-" (rows 2 and 3)
    bool addVisible = false;
    bool addEnabled = true;

    QVariantMap toMap() const;
};

// The three filter rows of one kind (audio or subtitles), numbered 1 to 3,
// with the rules for their visibility, titles and enabling.
class MCFilterRows
{
public:
    MCFilterRows();

    const MCFilterRow &row(int number) const;

    // One, two or three filters show one, two or three rows; other counts
    // leave the rows as they are.
    void adjustForCount(qsizetype count);

    // Editing a row shows its panel, titles it "Done" and disables the
    // buttons of the other rows that could disturb it; stopping undoes that.
    void startEditing(int number);
    void stopEditing(int number);
    bool isEditing() const;

    // The pointer over an edit button. Entering answers whether the row's
    // filter is to be loaded into the panel.
    bool pointerEntered(int number);
    void pointerExited(int number);

    QVariantList toVariantList() const;

    static bool isRowNumber(int number) { return number >= 1 && number <= 3; }

private:
    void setOthersEnabled(int number, bool enabled);
    MCFilterRow &at(int number) { return m_rows[std::size_t(number - 1)]; }

    std::array<MCFilterRow, 3> m_rows;
};
