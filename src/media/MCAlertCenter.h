#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

// Return codes of an alert's buttons, first button first.
constexpr int MCAlertFirstButtonReturn = 1000;
constexpr int MCAlertSecondButtonReturn = 1001;

struct MCAlert
{
    enum class Style { Informational, Warning };

    QString message;
    QString informativeText;
    QStringList buttons{QStringLiteral("OK")};
    Style style = Style::Informational;
    double timeoutSeconds = 0.0; // 0: stays until answered
    bool attachedToDrawer = false;
};

// Shows alerts; the window implements it with sheets, the command line and
// tests with their own versions.
class MCAlertPresenter
{
public:
    virtual ~MCAlertPresenter() = default;
    // Calls onClose with the code of the button pressed (or of the first
    // button when the alert timed out). May call it before returning.
    virtual void present(const MCAlert &alert, std::function<void(int)> onClose) = 0;
};

// The application's one alert entry point. Without a presenter, alerts go to
// the log and answer with their first button.
class MCAlertCenter
{
public:
    static MCAlertCenter &instance();

    void setPresenter(std::shared_ptr<MCAlertPresenter> presenter);
    std::shared_ptr<MCAlertPresenter> presenter() const;
    void present(const MCAlert &alert, std::function<void(int)> onClose = {});

private:
    MCAlertCenter() = default;
    std::shared_ptr<MCAlertPresenter> m_presenter;
};
