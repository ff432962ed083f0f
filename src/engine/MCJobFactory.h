#pragma once

#include <QHash>
#include <QString>

#include <functional>

class MCJob;
class QObject;

// Creates jobs by class name, so the queue needs no knowledge of the job
// classes (they live in a later library and register themselves).
class MCJobFactory
{
public:
    using Creator = std::function<MCJob *(QObject *parent)>;

    static MCJobFactory &instance();

    void registerJobType(const QString &className, Creator creator);
    bool hasJobType(const QString &className) const;
    // A new job of that class, or null when no such class is registered.
    MCJob *create(const QString &className, QObject *parent) const;

private:
    MCJobFactory() = default;
    QHash<QString, Creator> m_creators;
};
