#include "AccessibleTree.h"

#include <QtDBus>

namespace {

const QString kAccessible = QStringLiteral("org.a11y.atspi.Accessible");
const QString kProperties = QStringLiteral("org.freedesktop.DBus.Properties");

// AT-SPI's state numbers.
enum : uint { StateChecked = 4, StateEnabled = 8, StateShowing = 25 };

struct Reference
{
    QString service;
    QString path;
};

// The first value a call answers (invalid when it failed).
QVariant call(const QDBusConnection &bus, const Reference &object, const QString &interface, const QString &method,
              const QList<QVariant> &arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(object.service, object.path, interface, method);
    message.setArguments(arguments);
    const QDBusMessage reply = bus.call(message, QDBus::Block, 2000);
    return reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty() ? reply.arguments().first() : QVariant();
}

QVariant property(const QDBusConnection &bus, const Reference &object, const QString &name)
{
    return call(bus, object, kProperties, QStringLiteral("Get"), {kAccessible, name}).value<QDBusVariant>().variant();
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

QList<Reference> childrenOf(const QDBusConnection &bus, const Reference &object)
{
    QList<Reference> children;
    const QVariant list = call(bus, object, kAccessible, QStringLiteral("GetChildren"));
    if (list.isValid()) {
        const QDBusArgument array = list.value<QDBusArgument>();
        array.beginArray();
        while (!array.atEnd())
            children.append(referenceIn(array));
        array.endArray();
    }
    if (!children.isEmpty())
        return children;
    // Tables leave their cells out of GetChildren; they are asked one by one.
    const int total = property(bus, object, QStringLiteral("ChildCount")).toInt();
    for (int index = 0; index < total && index < 500; ++index) {
        const QVariant child = call(bus, object, kAccessible, QStringLiteral("GetChildAtIndex"), {index});
        if (child.isValid())
            children.append(referenceIn(child.value<QDBusArgument>()));
    }
    return children;
}

QList<uint> statesOf(const QDBusConnection &bus, const Reference &object)
{
    const QVariant reply = call(bus, object, kAccessible, QStringLiteral("GetState"));
    QList<uint> words;
    if (reply.isValid())
        reply.value<QDBusArgument>() >> words;
    return words;
}

QRect extentsOf(const QDBusConnection &bus, const Reference &object)
{
    const QVariant reply = call(bus, object, QStringLiteral("org.a11y.atspi.Component"), QStringLiteral("GetExtents"),
                                {QVariant::fromValue(0u)});
    int x = 0, y = 0, width = 0, height = 0;
    if (reply.isValid()) {
        const QDBusArgument box = reply.value<QDBusArgument>();
        box.beginStructure();
        box >> x >> y >> width >> height;
        box.endStructure();
    }
    return {x, y, width, height};
}

AccessibleTree::Node readNode(const QDBusConnection &bus, const Reference &object, int depth)
{
    AccessibleTree::Node node;
    node.name = property(bus, object, QStringLiteral("Name")).toString();
    node.role = call(bus, object, kAccessible, QStringLiteral("GetRoleName")).toString();
    const QList<uint> states = statesOf(bus, object);
    const auto has = [&](uint state) { return state / 32 < states.size() && (states.at(state / 32) & (1u << (state % 32))); };
    node.showing = depth == 0 || has(StateShowing);
    node.enabled = has(StateEnabled);
    node.checked = has(StateChecked);
    if (!node.showing || depth > 40)
        return node; // hidden pages and closed menus are not read
    node.extents = extentsOf(bus, object);
    for (const Reference &child : childrenOf(bus, object))
        node.children.append(readNode(bus, child, depth + 1));
    return node;
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

AccessibleTree::Node AccessibleTree::read(const QString &applicationName) const
{
    const Reference root{QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/accessible/root")};
    for (const Reference &application : childrenOf(m_bus, root)) {
        if (property(m_bus, application, QStringLiteral("Name")).toString().compare(applicationName, Qt::CaseInsensitive) == 0)
            return readNode(m_bus, application, 0);
    }
    return {};
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
    QString text = QStringLiteral("%1%2 \"%3\" %4,%5 %6x%7%8%9\n")
                       .arg(QString(depth * 2, QLatin1Char(' ')), node.role, node.name)
                       .arg(node.extents.x())
                       .arg(node.extents.y())
                       .arg(node.extents.width())
                       .arg(node.extents.height())
                       .arg(node.enabled ? QString() : QStringLiteral(" disabled"), node.checked ? QStringLiteral(" checked") : QString());
    for (const Node &child : node.children)
        text += dump(child, depth + 1);
    return text;
}
