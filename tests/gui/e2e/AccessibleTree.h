#pragma once

#include <QDBusConnection>
#include <QList>
#include <QRect>
#include <QString>

#include <functional>

// What a screen reader sees of a running program: its accessible objects
// as the desktop's accessibility bus (AT-SPI) publishes them, with their
// names, roles, states and places on the screen. The end-to-end tests read
// the window through it and aim the pointer with it.
class AccessibleTree
{
public:
    struct Node
    {
        QString name;
        QString role; // "push button", "table cell", "radio button", ...
        QRect extents; // screen coordinates
        bool showing = false;
        bool enabled = false;
        bool checked = false;
        QList<Node> children;

        QPoint centre() const { return extents.center(); }
        // Every node below this one (itself included) that matches.
        QList<const Node *> findAll(const std::function<bool(const Node &)> &matches) const;
        const Node *find(const QString &role, const QString &name) const;
    };

    // address: the accessibility bus's address.
    explicit AccessibleTree(const QString &address);
    ~AccessibleTree();

    bool isConnected() const { return m_bus.isConnected(); }
    // The showing objects of the named application (null root if absent).
    Node read(const QString &applicationName) const;
    // One line per object, indented, for a failure report.
    static QString dump(const Node &node, int depth = 0);

private:
    QString m_connectionName;
    QDBusConnection m_bus;
};
