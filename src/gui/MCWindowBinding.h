#pragma once

#include <QList>
#include <QObject>
#include <QTimer>
#include <QUrl>

class MCAppDelegate;
class MCMainWindow;
class MCMkvTabBinding;
class MCPresetSelectionsPanel;
class MCPresetSettingsPanel;
class MCPresetsController;
class MCSelectionController;
class QLineEdit;

// Ties the main window's controls to the application controller: the rules'
// flags, lists, texts and colours flow into the controls, and what the user
// does with a control goes back as the matching setter followed by a fresh
// run of the rules. Files arriving by drop or open panel and the start
// buttons go to the delegate.
class MCWindowBinding : public QObject
{
    Q_OBJECT
public:
    MCWindowBinding(MCMainWindow *window, MCAppDelegate *delegate, QObject *parent = nullptr);

    // Files opened ("open", "add") or dropped ("drag").
    void openFiles(const QList<QUrl> &urls, const QString &mode);
    // Copies every published value into the controls.
    void refresh();

    // The two preset editors, opened by the "Edit..." buttons beside the
    // preset pop-ups.
    MCPresetSelectionsPanel *presetSelectionsPanel;
    MCPresetSettingsPanel *presetSettingsPanel;

private:
    void bindIntake();
    void bindAviTab();
    void bindEditTabs();
    void bindTracks();
    void bindPresets();
    void bindPresetEditors();
    void bindStartButtons();
    // A typed field hands its text to a setter when editing ends.
    void bindField(QLineEdit *field, void (MCSelectionController::*setter)(const QString &));
    void refreshStatus();
    void refreshAviTab();
    void refreshEditTabs();
    void refreshTracks();
    void refreshPresets();
    void endTextEditing();
    // Runs the rules after a user action, unless the window is being updated.
    void userChanged();
    // While the inspection tools run: a busy cursor at once, and controls
    // held still if it takes long enough to be seen (no flicker otherwise).
    void showIntakeBusy(bool busy);

    MCMainWindow *m_window;
    MCAppDelegate *m_delegate;
    MCSelectionController *m_rules;
    MCPresetsController *m_presets;
    // The "MKV" and "MP4" tabs.
    QList<MCMkvTabBinding *> m_conversionTabs;
    // True while values are copied into the controls, so their own change
    // signals do not feed back into the rules.
    bool m_refreshing = false;
    QTimer m_holdControls;
};
