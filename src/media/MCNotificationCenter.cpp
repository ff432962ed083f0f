#include "MCNotificationCenter.h"

#include <QCoreApplication>
#include <QThread>

MCNotificationCenter::MCNotificationCenter()
{
    qRegisterMetaType<MCNotification>();
}

MCNotificationCenter &MCNotificationCenter::defaultCenter()
{
    static MCNotificationCenter *center = [] {
        auto *created = new MCNotificationCenter;
        if (QCoreApplication::instance())
            created->moveToThread(QCoreApplication::instance()->thread());
        return created;
    }();
    return *center;
}

void MCNotificationCenter::post(const QString &name, const QVariant &object, const QVariantMap &userInfo)
{
    const MCNotification notification{name, object, userInfo};
    if (QThread::currentThread() == thread()) {
        emit notified(notification);
        return;
    }
    QMetaObject::invokeMethod(this, [this, notification] { emit notified(notification); }, Qt::QueuedConnection);
}

QMetaObject::Connection MCNotificationCenter::addObserver(QObject *receiver, const QString &name,
                                                          std::function<void(const MCNotification &)> handler)
{
    return connect(this, &MCNotificationCenter::notified, receiver,
                   [name, handler = std::move(handler)](const MCNotification &notification) {
                       if (name.isEmpty() || notification.name == name)
                           handler(notification);
                   });
}
