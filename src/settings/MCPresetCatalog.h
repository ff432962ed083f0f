#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

class MCPresetsController;

// The presets by name, for a front end without the pop-ups and the preset
// editors: choosing the ones in force, listing, showing, adding and removing
// the user's own. Changes are saved at once through the store's preferences.
class MCPresetCatalog
{
public:
    enum class Kind { Selection, Settings };

    explicit MCPresetCatalog(MCPresetsController &store);

    // Puts the named preset in force; false (nothing changed) for an
    // unknown name.
    bool choose(Kind kind, const QString &name);
    // The tab the settings preset in force works in; empty for "Manual" and
    // for a preset that leaves the tab alone.
    QString tabOfChosenSettings() const;

    QStringList names(Kind kind) const;
    // The stored record of the named preset; empty for an unknown name.
    QVariantMap record(Kind kind, const QString &name) const;
    // Adds a user preset made from a record (its name is the record's
    // "pName"). Answers why it cannot, or nothing.
    QString add(Kind kind, const QVariantMap &record);
    // Removes a user preset; answers why it cannot, or nothing.
    QString remove(const QString &name);

private:
    MCPresetsController &m_store;
};
