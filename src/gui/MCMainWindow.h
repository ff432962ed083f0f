#pragma once

#include <QMainWindow>
#include <QUrl>

#include <functional>

class MCDropTableView;
class MCMkvTabPage;
class MCPreferences;
class MCPreferencesController;
class MCQueueController;
class MCQueuePanel;
class MCToolTipBinder;
class MCTrackTableModel;
class QAction;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QStringListModel;
class QTabWidget;

// The main window's controls: status line, track and file tables, the
// five tabs with their option groups, the preset pop-ups, the queue panel
// and the menus. What the controls do is wired by MCWindowBinding.
class MCMainWindow : public QMainWindow
{
    Q_OBJECT
public:
    MCMainWindow(MCPreferences *preferences, MCQueueController *queue, QWidget *parent = nullptr);
    ~MCMainWindow() override;

    static const QStringList &tabNames(); // "AVI", "MKV", "MP4", "Edit Files", "Edit Tracks"

    // Status line above the tables.
    QLabel *fileTextField;
    MCDropTableView *trackTable;
    MCTrackTableModel *trackModel;
    MCDropTableView *fileTable;
    QStringListModel *fileModel;
    QStackedWidget *tableStack;
    QPushButton *toggleVideoButton, *toggleAudioButton, *toggleSubtitleButton;
    QWidget *trackToggles;

    QComboBox *presetSelectionsPopUp, *presetSettingsPopUp;
    QPushButton *editSelectionsButton, *editSettingsButton;

    QTabWidget *tabs;
    // AVI tab
    QButtonGroup *videoMatrix, *audioMatrix, *subtitleMatrix;
    QLineEdit *vidBitRateField, *resWidthField;
    QComboBox *fpsCombo, *devicePopUp, *audioTrackPopUp, *audioBitRatePopUp;
    QLabel *audioTrackLabel;
    // Why Convert is disabled for a selection the tools cannot turn into an AVI.
    QLabel *convertRefusalLabel;
    QCheckBox *addStereoCheckBox;
    QPushButton *convertButton;
    MCMkvTabPage *mkvTab, *mp4Tab;
    // Edit Files tab
    QPushButton *joinButton, *splitButton, *remuxButton, *parButton;
    QButtonGroup *splitTypeMatrix;
    QLineEdit *splitStartTime, *splitEndTime, *splitSize, *splitNumber, *splitDuration, *parWidth, *parHeight;
    // Edit Tracks tab
    QButtonGroup *editTrackMatrix;
    QLabel *editTrackLabel;
    QPushButton *addTracksButton, *startTrackEditButton;

    QPushButton *openButton, *addButton, *playButton, *watchButton, *queueButton;

    QAction *openAction, *addAction, *startAction, *quitAction, *preferencesAction, *showQueueAction;
    QAction *onlineGuideAction, *troubleshootingAction, *toolTipsAction, *saveFileInfoAction, *aboutAction;

    MCQueuePanel *queuePanel;
    MCPreferencesController *preferencesPanel;
    MCToolTipBinder *toolTips;

    // Asked when the window is closed; reply(true) lets it close.
    std::function<void(std::function<void(bool)>)> askToClose;

    // Sets a field's text colour from the rules' colour names ("black", "red"):
    // "black" is the theme's own text colour, red one that reads on the theme.
    static void setColorName(QWidget *widget, const QString &name);
    static QColor colorFor(const QString &name, const QPalette &palette);
    // Shrinks and moves the window into the screen's free area.
    void fitOnScreen();
    // Gives the queue panel room for its names when it opens narrow.
    void widenQueuePanel();

    // The current tab's start button: Convert, Start, or on Edit Files Join
    // when the files can be joined and Split otherwise. Disabled: nothing.
    QPushButton *startButtonOfCurrentTab() const;

signals:
    // Files dropped anywhere on the window outside the tables, which say so themselves.
    void filesDropped(const QList<QUrl> &urls);

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QWidget *buildTopBar();
    QWidget *buildTables();
    QWidget *buildAviTab();
    QWidget *buildEditFilesTab();
    QWidget *buildEditTracksTab();
    void buildMenus();
    void bindToolTips();

    MCPreferences *m_preferences;
    bool m_closeApproved = false;
};
