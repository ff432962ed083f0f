#pragma once

#include <QString>

class MCSelectionController;

// The decisions of the two editing tabs, made on the rules' state after
// every change: what may be joined, split or edited, the status line, and
// the job the live record names.
class MCEditTabRules
{
public:
    explicit MCEditTabRules(MCSelectionController &rules);

    void updateEditFilesTab();
    void updateEditTracksTab();

private:
    void setStatus(const QString &text, const QString &color);

    MCSelectionController &m_rules;
};
