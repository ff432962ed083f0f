#pragma once

#include "MCAlertCenter.h"

#include <QString>

#include <functional>

// Alerts without a window: each one becomes the line "message: informative
// text" on stderr, and a question is answered at once by the answerer
// (which knows the command line's options); informational alerts close.
class MCCliAlertPresenter : public MCAlertPresenter
{
public:
    // Answers a question alert with a button code; without an answerer the
    // first button is pressed.
    using Answerer = std::function<int(const MCAlert &alert)>;

    explicit MCCliAlertPresenter(Answerer answerer = {});

    void present(const MCAlert &alert, std::function<void(int)> onClose) override;

    static QString lineFor(const MCAlert &alert);

private:
    Answerer m_answerer;
    QString m_lastLine;
};
