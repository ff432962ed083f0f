#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QWidget>

class MCPreferences;

// Gives every named control its help text from the preferences, and
// follows the preferences when tooltips are switched on or off.
class MCToolTipBinder : public QObject
{
    Q_OBJECT
public:
    MCToolTipBinder(MCPreferences *preferences, QObject *parent = nullptr);

    void bind(QWidget *widget, const QString &toolTipName);
    void apply();

private:
    MCPreferences *m_preferences;
    QList<QPair<QPointer<QWidget>, QString>> m_bindings;
};
