#pragma once

#include <QObject>
#include <QStringList>
#include <QUrl>

#include <functional>
#include <memory>

class MCAppDelegate;
class MCGuiAlertPresenter;
class MCMainWindow;
class MCPreferences;
class MCQueueController;
class MCWatchWindow;
class MCWindowBinding;

// The desktop front end over the application controller: builds the window
// and the watch window, ties them to the controller, shows its alerts as
// the window's sheets and keeps the window state in the preferences.
class MCGuiApplication : public QObject
{
    Q_OBJECT
public:
    explicit MCGuiApplication(QObject *parent = nullptr);
    ~MCGuiApplication() override;

    // Shows the window; files named on the command line arrive as a drop.
    void start(const QStringList &files);

    MCMainWindow *window() const { return m_window.get(); }
    MCWatchWindow *watchWindow() const { return m_watchWindow.get(); }
    MCQueueController *queue() const;
    MCAppDelegate *delegate() const { return m_delegate; }
    MCWindowBinding *binding() const { return m_binding; }

    // Files arriving by the open panel ("open", "add") or a drop ("drag").
    void openFiles(const QList<QUrl> &urls, const QString &mode);
    void openFilePanel(const QString &mode);
    // Plays the ticked tracks of the loaded file in mplayer.
    void playMovie();
    void showAboutBox();

    // Window geometry, tab, queue panel and the last folder opened into the
    // preferences' dictionary.
    void createGuiSettingsDictionary();
    void restoreGuiSettings();

private:
    void wireWindow();
    void wireMenus();
    // Quit: the delegate asks about a running job; the window's state is
    // saved whenever the quit goes ahead.
    void applicationShouldTerminate(const std::function<void(bool)> &reply);

    MCAppDelegate *m_delegate;
    MCPreferences *m_preferences;
    MCWindowBinding *m_binding = nullptr;
    std::unique_ptr<MCMainWindow> m_window;
    // Before the window in teardown: it switches to and from that window.
    std::unique_ptr<MCWatchWindow> m_watchWindow;
    std::shared_ptr<MCGuiAlertPresenter> m_presenter;
    // The folder of the files taken in last (opened, dropped); the Open
    // dialog starts there.
    QString m_openFolder;
};
