#pragma once

#include "EngineTestSupport.h"
#include "MCNotificationCenter.h"
#include "TestSupport.h"

#include <QCryptographicHash>
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
                    rows << row.toMap().value(u"Step"_s).toString() + QLatin1Char('=')
                                + row.toMap().value(u"Progress"_s).toString();
                ticks << rows.join(QLatin1Char('|'));
            });
    }
    bool waitForDone(int timeoutMs = 120000)
    {
        return testsupport::waitUntil([this] { return done; }, timeoutMs);
    }

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

// An XviD/MP3 AVI as MEncoder writes them (MEncoder misreads ffmpeg's MP3 in AVI).
inline QString xvidAvi(const QString &name, const QString &size, int seconds)
{
    const QString path = editingMedia(name);
    if (!QFile::exists(path)) {
        const QString pcm
            = testsupport::ffmpeg(QFileInfo(path).path(), name + u".pcm.avi"_s,
                                  QStringLiteral("-f lavfi -i testsrc2=s=%1:r=25:d=%2 -f lavfi -i sine=d=%2:r=48000 "
                                                 "-ac 2 -c:v mpeg4 -vtag XVID -g 25 -q:v 5 -c:a pcm_s16le")
                                      .arg(size)
                                      .arg(seconds));
        testsupport::run(u"mencoder '%1' -ovc copy -oac mp3lame -lameopts cbr:br=128 -o '%2'"_s.arg(pcm, path));
    }
    return path;
}

inline double durationSeconds(const QString &path)
{
    return testsupport::mediaInfo(path, u"General"_s, u"Duration"_s).toDouble() / 1000.0;
}

inline QByteArray md5Of(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Md5);
}

// Preferences on a private file with an empty save folder.
class EditingTest : public ::testing::Test
{
protected:
    ~EditingTest() override { MCAlertCenter::instance().setPresenter(nullptr); }

    QStringList saved(const QString &pattern) const { return QDir(prefs.saveFolder).entryList({pattern}, QDir::Files); }
    QString savedPath(const QString &name) const { return prefs.saveFolder + QLatin1Char('/') + name; }

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
