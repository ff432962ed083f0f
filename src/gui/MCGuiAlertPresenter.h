#pragma once

#include "MCAlertCenter.h"

#include <QPointer>
#include <QWidget>

#include <functional>

#include <QMessageBox>

// Shows alerts as window-modal message boxes on the main window (sheet-like),
// with the alert's buttons and style; an alert with a time-out closes itself
// and answers its first button.
class MCGuiAlertPresenter : public MCAlertPresenter
{
public:
    // windowFor answers the window the box is attached to (the drawer's
    // parent for drawer alerts, which is the same main window here).
    explicit MCGuiAlertPresenter(std::function<QWidget *()> windowFor);

    void present(const MCAlert &alert, std::function<void(int)> onClose) override;

    // The box on screen, newest first answered last; for tests.
    QMessageBox *currentBox() const { return m_current; }

private:
    std::function<QWidget *()> m_windowFor;
    QPointer<QMessageBox> m_current;
};
