#pragma once

#include <QDialog>
#include <QUrl>

class MCPreferences;
class MCToolTipBinder;
class QCheckBox;
class QLineEdit;
class QPushButton;

// The preferences panel: save folder, subtitle font, position and size,
// log keeping, tooltips and the legacy encoder switch. OK stores the
// fields into the preferences and saves them; Cancel drops them.
class MCPreferencesController : public QDialog
{
    Q_OBJECT
public:
    MCPreferencesController(MCPreferences *preferences, MCToolTipBinder *toolTips, QWidget *parent = nullptr);

    void openPreferences();
    void changeSaveButton();
    void clearSaveDirectory();
    void changeFontButton();
    void okPreferencesButton();
    void cancelPreferencesButton();

    void loadPropertiesFromPreferences();
    void savePropertiesToPreferences();

    QLineEdit *saveDirectoryField() const { return m_saveField; }
    QLineEdit *subtitlePositionField() const { return m_subPosField; }
    QLineEdit *subtitleSizeField() const { return m_subSizeField; }
    QCheckBox *keepLogsBox() const { return m_keepLogs; }
    QCheckBox *toolTipsBox() const { return m_toolTips; }

private:
    void showFontName();

    MCPreferences *m_preferences;
    QUrl m_fontURL;
    QLineEdit *m_saveField;
    QLineEdit *m_fontField;
    QLineEdit *m_subPosField;
    QLineEdit *m_subSizeField;
    QCheckBox *m_keepLogs;
    QCheckBox *m_toolTips;
    QCheckBox *m_legacyEncoder;
};
