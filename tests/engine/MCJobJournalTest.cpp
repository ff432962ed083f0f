#include "EngineTestSupport.h"
#include "MCJobJournal.h"
#include "MCJobStaging.h"
#include "MCSelectionJson.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using namespace Qt::StringLiterals;

// Rewrites a journal entry as if another process, long gone, had written it;
// answers its new id.
QString orphan(const QString &folder, const QString &id)
{
    QFile file(QDir(folder).filePath(id + u".json"_s));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    file.close();
    object.insert(u"pid"_s, 0x3ffffff); // above any process number in use
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(QJsonDocument(object).toJson());
    file.close();
    const QString gone = u"%1-1-%2"_s.arg(0x3ffffff).arg(id.section(u'-', 2));
    EXPECT_TRUE(file.rename(QDir(folder).filePath(gone + u".json"_s)));
    return gone;
}

MCSelectionPtr conversionOf(const QString &path)
{
    MCSelectionPtr selection = selectionFor(path);
    MCVideoTrackPtr video = makeTrack(u"Video"_s, u"h264"_s, path);
    MCVideoTrackPtr audio = makeTrack(u"Audio"_s, u"ac3"_s, path);
    audio->userCodec = u"mp3"_s;
    audio->createStereoCopyFlag = true;
    selection->trackList = {video, audio};
    selection->keepTracksList = {audio}; // one track standing in two lists
    selection->editFilesURLsList = {QUrl::fromLocalFile(u"/films/a b.avi"_s)};
    selection->userVideoBitRate = u"1200"_s;
    selection->headerRemovalFlag = true;
    return selection;
}

TEST(MCJobJournalTest, AnInterruptedJobComesBackWholeAndItsHalfWrittenFolderGoes)
{
    QTemporaryDir state;
    QTemporaryDir save;
    MCJobJournal journal(state.filePath(u"jobs"_s));
    MCJobStaging staging;
    ASSERT_TRUE(staging.create(save.path()));
    QFile partial(QDir(staging.path()).filePath(u"clip.mkv.avi"_s));
    ASSERT_TRUE(partial.open(QIODevice::WriteOnly));
    partial.write("half a film");
    partial.close();
    // Not a private folder of a job: named in an entry, it is left alone.
    QDir(save.path()).mkpath(u"holiday"_s);

    QString id = journal.record(u"AVI Conversion"_s, u"clip.mkv"_s, *conversionOf(u"/films/clip.mkv"_s));
    journal.noteStarted(id, staging.path());
    QString foreign = journal.record(u"AVI Joining"_s, u"a.avi"_s, *conversionOf(u"/films/a.avi"_s));
    journal.noteStarted(foreign, save.filePath(u"holiday"_s));
    // Only jobs of a Kestrane that is gone are interrupted: this one still runs its queue.
    EXPECT_TRUE(journal.interruptedJobs().isEmpty());
    id = orphan(journal.folder(), id);
    foreign = orphan(journal.folder(), foreign);

    const QList<MCJobJournal::Entry> interrupted = journal.interruptedJobs();
    ASSERT_EQ(interrupted.size(), 2);
    const MCJobJournal::Entry &job = interrupted.at(0).id == id ? interrupted.at(0) : interrupted.at(1);
    EXPECT_EQ(job.stagingFolder, staging.path());
    // The whole record: values, lists, and tracks shared between lists.
    ASSERT_EQ(job.selection->trackList.size(), 2);
    EXPECT_EQ(job.selection->trackList.at(1)->userCodec, u"mp3"_s);
    EXPECT_EQ(job.selection->keepTracksList.value(0).get(), job.selection->trackList.at(1).get());
    EXPECT_EQ(job.selection->editFilesURLsList, QList<QUrl>{QUrl::fromLocalFile(u"/films/a b.avi"_s)});
    EXPECT_EQ(MCSelectionJson::toJson(*job.selection), MCSelectionJson::toJson(*conversionOf(u"/films/clip.mkv"_s)));

    // Two Kestranes started together: only the first takes the job over.
    MCJobJournal::Entry first = job;
    MCJobJournal::Entry second = job;
    EXPECT_TRUE(journal.claim(first));
    EXPECT_FALSE(MCJobJournal(journal.folder()).claim(second));
    EXPECT_FALSE(QFileInfo::exists(staging.path()));
    EXPECT_EQ(journal.interruptedJobs().size(), 1) << "a claimed job belongs to a running Kestrane";
    journal.forget(first.id);
    journal.clearUp(journal.interruptedJobs().value(0));
    EXPECT_TRUE(QFileInfo(save.filePath(u"holiday"_s)).isDir());
    EXPECT_TRUE(journal.interruptedJobs().isEmpty());
    journal.forget(journal.record(u"AVI Conversion"_s, u"clip.mkv"_s, *conversionOf(u"/films/clip.mkv"_s)));
    EXPECT_TRUE(QDir(journal.folder()).entryList(QDir::Files).isEmpty());

    // Damaged entries are dropped, not followed.
    QFile garbage(QDir(journal.folder()).filePath(u"1-2-3.json"_s));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write("{ not json");
    garbage.close();
    EXPECT_TRUE(journal.interruptedJobs().isEmpty());
    EXPECT_FALSE(garbage.exists());
}

} // namespace
