#include "CliTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QString kEsc = QString(QChar(0x1b));
const QString kBell = QString(QChar(0x07));

class CliHostileInput : public CliTest
{
protected:
    // A copy of a generated clip under a name that would recolour a
    // terminal and ring its bell.
    QString hostileCopy(const QString &source, const QString &extension) const
    {
        const QString path = work.path() + u"/red"_s + kEsc + u"[31mclip"_s + kBell + extension;
        QFile::copy(source, path);
        return path;
    }

    static void expectNoRawControls(const QString &text, const char *where)
    {
        EXPECT_FALSE(text.contains(kEsc) || text.contains(kBell)) << where << ": " << text.toStdString();
    }

    // Files that are no video: empty, and 64 KiB of one byte.
    QString notVideo(const QString &name, int bytes) const
    {
        QFile file(work.filePath(name));
        file.open(QIODevice::WriteOnly);
        file.write(QByteArray(bytes, '\x5a'));
        return file.fileName();
    }

    QTemporaryDir work;
};

} // namespace

TEST_F(CliHostileInput, ControlCharactersInNamesAndTitlesArePrintedEscaped)
{
    const QString mkv = hostileCopy(threeTrackMkv(), u".mkv"_s);
    ASSERT_EQ(testsupport::run(u"mkvpropedit -q '%1' --edit track:a1 --set name=$'\\e]0;owned\\a'"_s.arg(mkv)), 0);

    CliResult result = runCli({u"inspect"_s, mkv});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    expectNoRawControls(result.out, "inspect");
    EXPECT_TRUE(result.out.contains(u"red\\e[31mclip\\x07.mkv"_s)) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(u"\\e]0;owned\\x07"_s)) << result.out.toStdString();

    // JSON keeps the text itself, in JSON's own escapes.
    result = runCli({u"inspect"_s, u"--json"_s, mkv});
    expectNoRawControls(result.out, "json");
    EXPECT_EQ(QJsonDocument::fromJson(result.out.toUtf8()).array().size(), 1) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(u"\\u001b[31mclip\\u0007"_s)) << result.out.toStdString();

    result = run(words(u"--dry-run convert --audio mp3 --subtitles extract"_s) + QStringList{mkv});
    expectNoRawControls(result.out + result.err, "dry run");
    EXPECT_TRUE(result.out.contains(u"red\\e[31mclip\\x07.mkv"_s)) << result.err.toStdString();

    // Progress, the job line and the Completed line of a real conversion.
    const QString avi = hostileCopy(xvidAvi(u"hostile.avi"_s), u".avi"_s);
    result = run({u"extract"_s, avi, u"--tracks"_s, u"2"_s});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    expectNoRawControls(result.out + result.err, "extract");
    EXPECT_TRUE(result.out.contains(u"Completed: red\\e[31mclip\\x07.avi"_s)) << result.out.toStdString();

    // Bad-input lines name the file escaped as well.
    result = run({u"convert"_s, work.path() + u"/gone"_s + kEsc + u".avi"_s});
    EXPECT_EQ(result.status, 1);
    expectNoRawControls(result.err, "missing file");
    EXPECT_TRUE(result.err.contains(u"gone\\e.avi: No such file or directory"_s)) << result.err.toStdString();
}

TEST_F(CliHostileInput, EditingCommandsRefuseWhatIsNotAVideoBeforeAnyToolRuns)
{
    const QString good = xvidAvi(u"edit-good.avi"_s), empty = notVideo(u"empty.avi"_s, 0), garbage = notVideo(u"garbage.avi"_s, 65536);
    const QList<QStringList> commands{{u"join"_s, good, garbage}, {u"join"_s, empty, good},
                                      {u"split"_s, garbage, u"--time"_s, u"00:00:00-00:00:01"_s}, {u"extract"_s, empty},
                                      {u"add-audio"_s, garbage, good}};
    for (const QStringList &command : commands) {
        const CliResult result = run(command);
        EXPECT_NE(result.status, 0) << command.join(u' ').toStdString();
        EXPECT_TRUE(result.err.contains(u"Kestrane could not identify this file as a video!!!!!!!!!."_s))
            << command.join(u' ').toStdString() << ": " << result.err.toStdString();
        EXPECT_FALSE(result.out.contains(u"Completed"_s)) << result.out.toStdString();
        EXPECT_TRUE(entriesIn(saveDir.path()).isEmpty()) << entriesIn(saveDir.path()).join(u' ').toStdString();
    }
}

TEST_F(CliHostileInput, PathProblemsAreNamedForWhatTheyAre)
{
    const QString loop = work.filePath(u"loop.avi"_s);
    ASSERT_TRUE(QFile::link(loop, loop));
    CliResult result = run({u"convert"_s, loop});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(u"loop.avi: Too many levels of symbolic links"_s)) << result.err.toStdString();
    result = run({u"convert"_s, work.filePath(u"no/such/dir/clip.avi"_s)});
    EXPECT_TRUE(result.err.contains(u"clip.avi: No such file or directory"_s)) << result.err.toStdString();

}
