#pragma once

#include <QDBusConnection>
#include <QString>

// A desktop notification through the freedesktop notification service on
// the session bus. Without a bus or a service nothing is shown, and nothing
// waits for an answer.
class MCDesktopNotification
{
public:
    static bool send(const QString &summary, const QString &body,
                     const QDBusConnection &bus = QDBusConnection::sessionBus());
};
