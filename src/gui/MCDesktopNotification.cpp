#include "MCDesktopNotification.h"

#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

bool MCDesktopNotification::send(const QString &summary, const QString &body, const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return false;
    QDBusMessage notify = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                                         QStringLiteral("/org/freedesktop/Notifications"),
                                                         QStringLiteral("org.freedesktop.Notifications"),
                                                         QStringLiteral("Notify"));
    // app_name, replaces_id, app_icon, summary, body, actions, hints, expire_timeout (-1: the server's)
    const QVariantMap hints{{QStringLiteral("desktop-entry"), QStringLiteral("kestrane")}};
    notify << QStringLiteral("Kestrane") << 0u << QStringLiteral("kestrane") << summary << body << QStringList() << hints << -1;
    notify.setAutoStartService(true);
    return bus.send(notify);
}
