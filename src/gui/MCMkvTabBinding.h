#pragma once

#include <QObject>

#include <functional>

class MCMkvTabPage;
class MCMkvTabRules;
class MCSelectionController;
class QLineEdit;

// Ties the controls of the "MKV" or "MP4" tab (the page's tabName) to that
// tab's rules: rows and the stereo copy go to the tab's rules, the number
// fields, the audio-track chooser and the device to the settings they share
// with the "AVI" tab; every published value flows back.
class MCMkvTabBinding : public QObject
{
    Q_OBJECT
public:
    // userChanged runs the rules after a user action.
    MCMkvTabBinding(MCMkvTabPage *page, MCSelectionController *rules, std::function<void()> userChanged,
                    QObject *parent = nullptr);

    void refresh();

private:
    void bindRows();
    void bindField(QLineEdit *field, void (MCSelectionController::*setter)(const QString &));
    void refreshDevice();
    void changed();

    MCMkvTabPage *m_page;
    MCSelectionController *m_rules;
    MCMkvTabRules *m_tab;
    std::function<void()> m_userChanged;
    bool m_refreshing = false;
};
