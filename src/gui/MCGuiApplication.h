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

// Builds the window over the application's controllers, installs the
// window's alerts and keeps the window state in the preferences.
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
    MCQueueController *queue() const { return m_queue; }
    // The application controller behind the window (null in a build
    // without it, where the window keeps its own simple intake).
    MCAppDelegate *delegate() const { return m_delegate; }

    // Files arriving by the open panel ("open", "add") or a drop ("drag").
    void openFiles(const QList<QUrl> &urls, const QString &mode);
    void openFilePanel(const QString &mode);
    // Quit: a running job is paused and the user asked.
    void applicationShouldTerminate(const std::function<void(bool)> &reply);
    void startScreenshotTour();
    // Plays the ticked tracks of the loaded file in mplayer.
    void playMovie();
    void showAboutBox();

    // Window geometry, tab and queue panel into the preferences' dictionary.
    void createGuiSettingsDictionary();
    void restoreGuiSettings();

private:
    void wireWindow();
    void loadFile(const QUrl &url);
    void listEditFiles(const QList<QUrl> &urls, bool append);

    std::shared_ptr<class MCVideoFile> m_videoFile;
    QList<QUrl> m_editFiles;
    QList<QUrl> m_tourFiles;
    MCAppDelegate *m_delegate = nullptr;
    MCWindowBinding *m_binding = nullptr;
    MCPreferences *m_preferences = nullptr;
    MCQueueController *m_queue = nullptr;
    std::unique_ptr<MCMainWindow> m_window;
    // Before the window in teardown: it switches to and from that window.
    std::unique_ptr<MCWatchWindow> m_watchWindow;
    std::shared_ptr<MCGuiAlertPresenter> m_presenter;
};
