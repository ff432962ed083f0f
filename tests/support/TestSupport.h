#pragma once

#include "MCAlertCenter.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>

// Records every alert and answers with a chosen button.
class RecordingAlertPresenter : public MCAlertPresenter
{
public:
    void present(const MCAlert &alert, std::function<void(int)> onClose) override;

    QList<MCAlert> alerts;
    int answer = MCAlertFirstButtonReturn;
};

namespace testsupport {

// Installs a fresh recording presenter as the application's and returns it.
std::shared_ptr<RecordingAlertPresenter> recordAlerts();

// Runs the event loop until done() holds or the time-out passes; answers done().
bool waitUntil(const std::function<bool()> &done, int timeoutMs = 60000);

// Runs a shell command (bash -c), answers its exit status; output goes to *output.
int run(const QString &command, QString *output = nullptr);

// Generates media with ffmpeg at test time. Each answers the path written.
// args are ffmpeg arguments between the inputs and the output file.
QString ffmpeg(const QString &dir, const QString &name, const QString &arguments);

// A recorded tool report saved under tests/data.
QString testDataPath(const QString &relative);
QString readTestData(const QString &relative);

// mediainfo's value for one key of the first section of the given kind,
// e.g. mediaInfo(path, "Video", "Width") (plain, no --Legacy).
QString mediaInfo(const QString &path, const QString &kind, const QString &parameter);

// Fills a folder with links to everything in the tests' resource folder but
// the entry named left, so a test can leave a tool out or put its own in.
// Answers the folder.
QString resourcesWithout(const QString &into, const QString &left);
// A file's content hash (empty when it cannot be read): sources must come
// out of a run unchanged.
QByteArray checksum(const QString &path);

} // namespace testsupport

// Lets GoogleTest print Qt texts in failure messages.
#include <ostream>
inline void PrintTo(const QString &text, std::ostream *os)
{
    *os << '"' << text.toStdString() << '"';
}
