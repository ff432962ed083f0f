#pragma once

#include "MCGuiApplication.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

class MCJob;
class MCMainWindow;
class QAbstractItemView;
class QComboBox;
class QFileDialog;
class QWidget;

// What the window's tests do the way a person does it.
namespace guitest {

// Drops files on a widget as a file manager does (text/uri-list).
void dropOn(QWidget *target, const QList<QUrl> &urls);
QList<QUrl> urls(const QStringList &paths);

// The file dialog on screen, waited for up to a few seconds (null if none).
QFileDialog *shownFileDialog();
// Types a path into the file dialog on screen and presses Return; answers
// whether there was a dialog to type into.
bool typeIntoFileDialog(const QString &path);

// Picks an item of a pop-up as a click does (both activation signals).
void choose(QComboBox *popUp, const QString &item);

// Writes a small file; answers its path.
QString writeFile(const QString &path, const QByteArray &content);
// A small AVI (MPEG-4 video, MP3 audio) written into dir.
QString makeAvi(const QString &dir, const QString &name, int seconds = 2, const QString &size = QStringLiteral("160x120"));
// Two seconds of H.264 with AC-3 5.1 (German) and an SRT subtitle, as an MKV.
QString makeSurroundMkv(const QString &dir);
// mediainfo's words for each track of a kind, e.g. "AAC/2" for each audio track.
QStringList described(const QString &path, const QString &kind, const QString &fields);

// Empties the settings file the window's tests share, so what one test
// saved (a tab, a size, presets) does not reach the next.
void forgetSavedSettings();

// A started window with its alerts recorded and a folder for media; the
// queue is emptied and the saved settings forgotten afterwards.
class WindowTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
    // A new start of the program on the settings saved so far.
    void restart();
    void showTab(const QString &name);
    // Drops files on a table and waits until it lists `rows` rows.
    bool drop(QAbstractItemView *table, const QStringList &paths, int rows);
    // Drops a generated AVI on the track table and ticks both its tracks;
    // answers its path (empty when it did not load).
    QString loadAndTick(const QString &name, int seconds = 2, const QString &size = QStringLiteral("160x120"));
    // The only queued job, or null.
    MCJob *queued() const;
    // Waits for the job to complete or fail; answers its status.
    static QString finish(MCJob *job);

    QTemporaryDir dir;
    std::unique_ptr<MCGuiApplication> app;
    std::shared_ptr<RecordingAlertPresenter> alerts;
    MCMainWindow *w = nullptr;
};

} // namespace guitest
