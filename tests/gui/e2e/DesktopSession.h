#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// A private desktop for one test run: an Xvfb screen on a free display
// number (no window manager), a session bus with the accessibility bus
// behind it, and private XDG folders, so nothing of the user's is read or
// written. Input goes in through XTest (xdotool) like a person's.
class DesktopSession
{
public:
    DesktopSession();
    ~DesktopSession();

    // Empty when the session is up; otherwise why not (Xvfb cannot run here,
    // a tool is missing).
    QString failure() const { return m_failure; }
    bool xvfbMissing() const { return m_xvfbMissing; }

    QProcessEnvironment environment() const { return m_environment; }
    QString accessibilityBus() const { return m_accessibilityBus; }

    void click(const QPoint &screenPoint) const;
    // Keys as xdotool names them, several separated by blanks ("Down Return").
    void key(const QString &keys) const;
    void type(const QString &text) const;
    // The whole screen as a PNG (ImageMagick's import).
    bool screenshot(const QString &path) const;

private:
    bool startXvfb();
    bool run(const QString &program, const QStringList &arguments, int timeoutMs = 10000) const;
    bool startSessionBus();

    QTemporaryDir m_home;
    QString m_failure;
    bool m_xvfbMissing = false;
    QString m_accessibilityBus;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_xvfb;
    std::unique_ptr<QProcess> m_bus;
};
