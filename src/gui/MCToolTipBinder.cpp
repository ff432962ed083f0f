#include "MCToolTipBinder.h"

#include "MCPreferences.h"

MCToolTipBinder::MCToolTipBinder(MCPreferences *preferences, QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
{
    connect(m_preferences, &MCPreferences::toolTipsChanged, this, &MCToolTipBinder::apply);
}

void MCToolTipBinder::bind(QWidget *widget, const QString &toolTipName)
{
    m_bindings.append({widget, toolTipName});
    widget->setToolTip(m_preferences->toolTip(toolTipName));
}

void MCToolTipBinder::apply()
{
    for (const auto &[widget, name] : std::as_const(m_bindings)) {
        if (widget)
            widget->setToolTip(m_preferences->toolTip(name));
    }
}
