#include "MCJobFactory.h"

MCJobFactory &MCJobFactory::instance()
{
    static MCJobFactory factory;
    return factory;
}

void MCJobFactory::registerJobType(const QString &className, Creator creator)
{
    m_creators.insert(className, std::move(creator));
}

bool MCJobFactory::hasJobType(const QString &className) const
{
    return m_creators.contains(className);
}

MCJob *MCJobFactory::create(const QString &className, QObject *parent) const
{
    const auto found = m_creators.constFind(className);
    return found == m_creators.constEnd() ? nullptr : (*found)(parent);
}
