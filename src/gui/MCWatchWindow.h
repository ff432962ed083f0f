#pragma once

#include <QPointer>
#include <QWidget>

class MCWatchModeController;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

// The small window shown instead of the main window while a folder is
// watched: the folder (or why there is none), a chooser, what was queued
// last and the way back. A folder dropped on it becomes the watched folder.
// It also does the switching between the two windows, with fades.
class MCWatchWindow : public QWidget
{
    Q_OBJECT
public:
    MCWatchWindow(MCWatchModeController *controller, QWidget *mainWindow);

    QLineEdit *pathField = nullptr;
    QPushButton *chooseButton = nullptr;
    QPushButton *endButton = nullptr;
    // Waiting, the last movie queued, or nothing while no folder is watched.
    QLabel *statusLabel = nullptr;
    // Movies watch mode gave up on, with the reason; hidden while empty.
    QListWidget *givenUpList = nullptr;

    static constexpr int animationDurationMs = 250;

protected:
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void toggleWindows(bool towardsWatchWindow);
    void openFolderChooser();
    void showStatus();
    void jobsQueued(int first, int last);
    void movieGivenUp(const QUrl &file, const QString &reason);
    // Fades from out to in, placing in level with out's top and centred.
    static void switchWindows(QWidget *out, QWidget *in);

    MCWatchModeController *m_controller;
    QPointer<QWidget> m_mainWindow;
    QString m_lastTakenUp;
    QString m_dropHint;
};
