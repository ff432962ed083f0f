#pragma once

#include "EngineTestSupport.h"
#include "MCNotificationCenter.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <algorithm>

using namespace Qt::StringLiterals;

// Watches one job: its progress rows tick by tick ("Step=Progress|..." per
// tick) and its end.
class JobWatch
{
public:
    explicit JobWatch(const MCJob &job)
    {
        MCNotificationCenter::defaultCenter().addObserver(
            &receiver, {}, [this, serial = QVariant(job.jobSerial())](const MCNotification &n) {
                if (n.userInfo.value(u"job"_s) != serial)
                    return;
                done = done || n.name == MCNotificationName::jobDone;
                if (n.name != MCNotificationName::progressUpdate)
                    return;
                QStringList rows;
                for (const QVariant &row : n.object.toList())
                    rows << row.toMap().value(u"Step"_s).toString() + u'=' + row.toMap().value(u"Progress"_s).toString();
                ticks << rows.join(u'|');
            });
    }
    bool waitForDone(int timeoutMs = 120000) { return testsupport::waitUntil([this] { return done; }, timeoutMs); }

    QObject receiver;
    QStringList ticks;
    bool done = false;
};

// Media generated once per test program.
inline QString editingMedia(const QString &name)
{
    static QTemporaryDir dir;
    return dir.filePath(name);
}

// ffmpeg inputs: a moving test picture with a black bottom quarter (burned
// text is easy to see there) and a tone.
inline QString testInputs(const QString &size, int seconds)
{
    return u"-f lavfi -i testsrc2=s=%1:r=25:d=%2,drawbox=y=ih*0.7:h=ih*0.3:color=black:t=fill -f lavfi -i sine=d=%2:r=48000 "_s
        .arg(size)
        .arg(seconds);
}

// A clip made by ffmpeg from these arguments, unless it is there.
inline QString clip(const QString &name, const QString &arguments)
{
    const QString path = editingMedia(name);
    return QFile::exists(path) ? path : testsupport::ffmpeg(QFileInfo(path).path(), name, arguments);
}

// An XviD/MP3 AVI as MEncoder writes them (MEncoder misreads ffmpeg's MP3 in AVI).
inline QString xvidAvi(const QString &name, const QString &size, int seconds)
{
    const QString path = editingMedia(name);
    if (!QFile::exists(path)) {
        const QString pcm = clip(name + u".pcm.avi"_s, testInputs(size, seconds) + u"-ac 2 -c:v mpeg4 -vtag XVID -g 25 -q:v 5 -c:a pcm_s16le"_s);
        testsupport::run(u"mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'"_s.arg(pcm, path));
    }
    return path;
}

inline QString writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
    return path;
}

inline QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline double durationSeconds(const QString &path)
{
    return testsupport::mediaInfo(path, u"General"_s, u"Duration"_s).toDouble() / 1000.0;
}

// Preferences on a private file with an empty save folder.
class EditingTest : public ::testing::Test
{
protected:
    ~EditingTest() override { MCAlertCenter::instance().setPresenter(nullptr); }

    QStringList saved(const QString &pattern) const { return QDir(prefs.saveFolder).entryList({pattern}, QDir::Files); }
    QString savedPath(const QString &name) const { return prefs.saveFolder + u'/' + name; }

    // Runs a job on a deep copy of the selection, as the queue would, and
    // keeps its progress ticks; true when it completed.
    bool completes(MCJob &job, const MCSelectionPtr &selection)
    {
        JobWatch watch(job);
        job.jobSelection = selection->copy();
        job.jobType = selection->jobType;
        job.startJob();
        const bool ended = watch.waitForDone();
        ticks = watch.ticks;
        return ended && !job.hasFailed();
    }

    bool sawRow(const QString &row) const
    {
        return std::any_of(ticks.cbegin(), ticks.cend(), [&row](const QString &tick) { return tick.contains(row); });
    }

    PrivatePreferences prefs;
    QStringList ticks;
};
