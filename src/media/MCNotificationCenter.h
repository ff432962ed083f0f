#pragma once

#include <QObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>

namespace MCNotificationName {
inline const QString progressUpdate = QStringLiteral("progressUpdate");
inline const QString jobDone = QStringLiteral("jobDone");
inline const QString conversionStarted = QStringLiteral("conversionStarted");
inline const QString timeTextFieldChanged = QStringLiteral("timeTextFieldChangedNotification");
inline const QString timeTextFieldExited = QStringLiteral("timeTextFieldExitedNotification");
} // namespace MCNotificationName

struct MCNotification
{
    QString name;
    QVariant object;
    QVariantMap userInfo;
};
Q_DECLARE_METATYPE(MCNotification)

// The application's notification centre. Posting is allowed from any thread;
// observers are always called on the main thread, in posting order.
class MCNotificationCenter : public QObject
{
    Q_OBJECT
public:
    static MCNotificationCenter &defaultCenter();

    void post(const QString &name, const QVariant &object = {}, const QVariantMap &userInfo = {});

    // Calls handler for every notification of that name (all names when
    // empty) while receiver lives. Returns the connection so callers may end
    // it early.
    QMetaObject::Connection addObserver(QObject *receiver, const QString &name,
                                        std::function<void(const MCNotification &)> handler);

signals:
    void notified(const MCNotification &notification);

private:
    MCNotificationCenter();
};
