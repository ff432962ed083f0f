#include "AccessibleTree.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QUuid>

namespace {

const QString kAccessible = QStringLiteral("org.a11y.atspi.Accessible");
const QString kComponent = QStringLiteral("org.a11y.atspi.Component");

// AT-SPI's state numbers.
enum : uint { StateChecked = 4, StateEnabled = 8, StateFocused = 12, StateShowing = 25 };

struct Reference
{
    QString service;
    QString path;
};

bool hasState(const QList<uint> &words, uint state)
{
    const int word = static_cast<int>(state / 32);
    return word < words.size() && (words.at(word) & (1u << (state % 32)));
}

} // namespace

AccessibleTree::AccessibleTree(const QString &address)
    : m_connectionName(QStringLiteral("atspi-") + QUuid::createUuid().toString(QUuid::Id128))
    , m_bus(QDBusConnection::connectToBus(address, m_connectionName))
{
}

AccessibleTree::~AccessibleTree()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

namespace {

QDBusMessage call(const QDBusConnection &bus, const QString &service, const QString &path, const QString &interface,
                  const QString &method, const QList<QVariant> &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, 2000);
}

Reference referenceIn(const QDBusArgument &argument)
{
    QString service;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> service >> path;
    argument.endStructure();
    return {service, path.path()};
}

QList<Reference> childrenOf(const QDBusConnection &bus, const QString &service, const QString &path)
{
    QList<Reference> children;
    const QDBusMessage reply = call(bus, service, path, kAccessible, QStringLiteral("GetChildren"));
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty()) {
        const QDBusArgument list = reply.arguments().first().value<QDBusArgument>();
        list.beginArray();
        while (!list.atEnd())
            children.append(referenceIn(list));
        list.endArray();
    }
    if (!children.isEmpty())
        return children;
    // Tables leave their cells out of GetChildren; they are asked one by one.
    const QDBusMessage count = call(bus, service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                    QStringLiteral("Get"), {kAccessible, QStringLiteral("ChildCount")});
    if (count.type() != QDBusMessage::ReplyMessage || count.arguments().isEmpty())
        return children;
    const int total = count.arguments().first().value<QDBusVariant>().variant().toInt();
    for (int index = 0; index < total && index < 500; ++index) {
        const QDBusMessage child = call(bus, service, path, kAccessible, QStringLiteral("GetChildAtIndex"), {index});
        if (child.type() == QDBusMessage::ReplyMessage && !child.arguments().isEmpty())
            children.append(referenceIn(child.arguments().first().value<QDBusArgument>()));
    }
    return children;
}

QString property(const QDBusConnection &bus, const QString &service, const QString &path, const QString &name)
{
    const QDBusMessage reply = call(bus, service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                    QStringLiteral("Get"), {kAccessible, name});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    return reply.arguments().first().value<QDBusVariant>().variant().toString();
}

QList<uint> statesOf(const QDBusConnection &bus, const QString &service, const QString &path)
{
    const QDBusMessage reply = call(bus, service, path, kAccessible, QStringLiteral("GetState"));
    QList<uint> words;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return words;
    const QDBusArgument list = reply.arguments().first().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        uint word = 0;
        list >> word;
        words << word;
    }
    list.endArray();
    return words;
}

QRect extentsOf(const QDBusConnection &bus, const QString &service, const QString &path)
{
    const QDBusMessage reply = call(bus, service, path, kComponent, QStringLiteral("GetExtents"), {QVariant::fromValue(0u)});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return {};
    const QDBusArgument box = reply.arguments().first().value<QDBusArgument>();
    int x = 0, y = 0, width = 0, height = 0;
    box.beginStructure();
    box >> x >> y >> width >> height;
    box.endStructure();
    return {x, y, width, height};
}

} // namespace

AccessibleTree::Node AccessibleTree::read(const QString &applicationName) const
{
    const QString registry = QStringLiteral("org.a11y.atspi.Registry");
    for (const Reference &application : childrenOf(m_bus, registry, QStringLiteral("/org/a11y/atspi/accessible/root"))) {
        if (property(m_bus, application.service, application.path, QStringLiteral("Name")).compare(applicationName, Qt::CaseInsensitive) == 0)
            return readNode(application.service, application.path, 0);
    }
    return {};
}

AccessibleTree::Node AccessibleTree::readNode(const QString &service, const QString &path, int depth) const
{
    Node node;
    node.name = property(m_bus, service, path, QStringLiteral("Name"));
    const QDBusMessage role = call(m_bus, service, path, kAccessible, QStringLiteral("GetRoleName"));
    if (role.type() == QDBusMessage::ReplyMessage && !role.arguments().isEmpty())
        node.role = role.arguments().first().toString();
    const QList<uint> states = statesOf(m_bus, service, path);
    node.showing = depth == 0 || hasState(states, StateShowing);
    node.enabled = hasState(states, StateEnabled);
    node.checked = hasState(states, StateChecked);
    node.focused = hasState(states, StateFocused);
    if (!node.showing || depth > 40)
        return node; // hidden pages and closed menus are not read
    node.extents = extentsOf(m_bus, service, path);
    for (const Reference &child : childrenOf(m_bus, service, path))
        node.children.append(readNode(child.service, child.path, depth + 1));
    return node;
}

QList<const AccessibleTree::Node *> AccessibleTree::Node::findAll(const std::function<bool(const Node &)> &matches) const
{
    QList<const Node *> found;
    if (matches(*this))
        found << this;
    for (const Node &child : children)
        found += child.findAll(matches);
    return found;
}

const AccessibleTree::Node *AccessibleTree::Node::find(const QString &role, const QString &name) const
{
    const QList<const Node *> found =
        findAll([&](const Node &node) { return node.showing && node.role == role && node.name == name; });
    return found.isEmpty() ? nullptr : found.first();
}

QString AccessibleTree::dump(const Node &node, int depth)
{
    QString text = QString(depth * 2, QLatin1Char(' '))
                   + QStringLiteral("%1 \"%2\" %3,%4 %5x%6%7%8%9\n")
                         .arg(node.role, node.name)
                         .arg(node.extents.x())
                         .arg(node.extents.y())
                         .arg(node.extents.width())
                         .arg(node.extents.height())
                         .arg(node.enabled ? QString() : QStringLiteral(" disabled"))
                         .arg(node.checked ? QStringLiteral(" checked") : QString())
                         .arg(node.focused ? QStringLiteral(" focused") : QString());
    for (const Node &child : node.children)
        text += dump(child, depth + 1);
    return text;
}
