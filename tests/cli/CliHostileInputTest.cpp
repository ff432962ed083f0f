#include "CliTestSupport.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString kEsc = QString(QChar(0x1b));
const QString kBell = QString(QChar(0x07));

class CliHostileInput : public ::testing::Test
{
protected:
    void SetUp() override { settings = quietSettings(settingsDir.path()); }

    QStringList common() const { return {QStringLiteral("--settings"), settings, QStringLiteral("--save-dir"), saveDir.path()}; }

    // A copy of a generated clip under a name that would recolour a
    // terminal and ring its bell.
    QString hostileCopy(const QString &source, const QString &extension) const
    {
        const QString path = work.path() + QStringLiteral("/red") + kEsc + QStringLiteral("[31mclip") + kBell + extension;
        QFile::copy(source, path);
        return path;
    }

    static void expectNoRawControls(const QString &text, const char *where)
    {
        EXPECT_FALSE(text.contains(kEsc)) << where << ": " << text.toStdString();
        EXPECT_FALSE(text.contains(kBell)) << where << ": " << text.toStdString();
    }

    QTemporaryDir settingsDir;
    QTemporaryDir saveDir;
    QTemporaryDir work;
    QString settings;
};

} // namespace

TEST_F(CliHostileInput, ControlCharactersInNamesAndTitlesArePrintedEscaped)
{
    const QString mkv = hostileCopy(threeTrackMkv(), QStringLiteral(".mkv"));
    ASSERT_EQ(testsupport::run(QStringLiteral("mkvpropedit -q '%1' --edit track:a1 --set name=$'\\e]0;owned\\a'").arg(mkv)), 0);

    CliResult result = runCli({QStringLiteral("inspect"), mkv});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    expectNoRawControls(result.out, "inspect");
    EXPECT_TRUE(result.out.contains(QStringLiteral("red\\e[31mclip\\x07.mkv"))) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("\\e]0;owned\\x07"))) << result.out.toStdString();

    // JSON keeps the text itself, in JSON's own escapes.
    result = runCli({QStringLiteral("inspect"), QStringLiteral("--json"), mkv});
    EXPECT_EQ(result.status, 0);
    expectNoRawControls(result.out, "json");
    const QJsonArray files = QJsonDocument::fromJson(result.out.toUtf8()).array();
    ASSERT_EQ(files.size(), 1) << result.out.toStdString();
    EXPECT_TRUE(result.out.contains(QStringLiteral("\\u001b[31mclip\\u0007"))) << result.out.toStdString();

    result = runCli(common() + QStringList{QStringLiteral("--dry-run"), QStringLiteral("convert"), QStringLiteral("--audio"), QStringLiteral("mp3"),
                                           QStringLiteral("--subtitles"), QStringLiteral("extract"), mkv});
    expectNoRawControls(result.out + result.err, "dry run");
    EXPECT_TRUE(result.out.contains(QStringLiteral("red\\e[31mclip\\x07.mkv"))) << result.err.toStdString();

    // Progress, the job line and the Completed line of a real conversion.
    const QString avi = hostileCopy(xvidAvi(QStringLiteral("hostile.avi")), QStringLiteral(".avi"));
    result = runCli(common() + QStringList{QStringLiteral("extract"), avi, QStringLiteral("--tracks"), QStringLiteral("2")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    expectNoRawControls(result.out + result.err, "extract");
    EXPECT_TRUE(result.out.contains(QStringLiteral("Completed: red\\e[31mclip\\x07.avi"))) << result.out.toStdString();

    // Bad-input lines name the file escaped as well.
    result = runCli(common() + QStringList{QStringLiteral("convert"), work.path() + QStringLiteral("/gone") + kEsc + QStringLiteral(".avi")});
    EXPECT_EQ(result.status, 1);
    expectNoRawControls(result.err, "missing file");
    EXPECT_TRUE(result.err.contains(QStringLiteral("gone\\e.avi: No such file or directory"))) << result.err.toStdString();
}

TEST_F(CliHostileInput, EditingCommandsRefuseWhatIsNotAVideoBeforeAnyToolRuns)
{
    const QString good = xvidAvi(QStringLiteral("edit-good.avi"));
    const QString empty = work.path() + QStringLiteral("/empty.avi");
    const QString garbage = work.path() + QStringLiteral("/garbage.avi");
    QFile(empty).open(QIODevice::WriteOnly);
    QFile file(garbage);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(64 * 1024, '\x5a'));
    file.close();

    const QString refusal = QStringLiteral("Kestrane could not identify this file as a video!!!!!!!!!.");
    const QList<QStringList> commands{
        {QStringLiteral("join"), good, garbage},
        {QStringLiteral("join"), empty, good},
        {QStringLiteral("split"), garbage, QStringLiteral("--time"), QStringLiteral("00:00:00-00:00:01")},
        {QStringLiteral("extract"), empty},
        {QStringLiteral("add-audio"), garbage, good},
    };
    for (const QStringList &command : commands) {
        const CliResult result = runCli(common() + command);
        EXPECT_NE(result.status, 0) << command.join(' ').toStdString();
        EXPECT_TRUE(result.err.contains(refusal)) << command.join(' ').toStdString() << ": " << result.err.toStdString();
        EXPECT_FALSE(result.out.contains(QStringLiteral("Completed"))) << result.out.toStdString();
        EXPECT_TRUE(entriesIn(saveDir.path()).isEmpty()) << entriesIn(saveDir.path()).join(' ').toStdString();
    }
}

TEST_F(CliHostileInput, PathProblemsAreNamedForWhatTheyAre)
{
    const QString loop = work.path() + QStringLiteral("/loop.avi");
    ASSERT_TRUE(QFile::link(loop, loop));
    CliResult result = runCli(common() + QStringList{QStringLiteral("convert"), loop});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.err.contains(QStringLiteral("loop.avi: Too many levels of symbolic links"))) << result.err.toStdString();
    result = runCli({QStringLiteral("inspect"), loop});
    EXPECT_TRUE(result.err.contains(QStringLiteral("Too many levels of symbolic links"))) << result.err.toStdString();

    result = runCli(common() + QStringList{QStringLiteral("convert"), work.path() + QStringLiteral("/no/such/dir/clip.avi")});
    EXPECT_TRUE(result.err.contains(QStringLiteral("clip.avi: No such file or directory"))) << result.err.toStdString();
}

TEST_F(CliHostileInput, ResumeRunsNothingWhenNothingWasInterrupted)
{
    CliResult result = runCli({QStringLiteral("--settings"), settings, QStringLiteral("--resume")});
    EXPECT_EQ(result.status, 0) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains(QStringLiteral("no interrupted jobs"))) << result.err.toStdString();

    result = runCli({QStringLiteral("--resume"), QStringLiteral("convert"), QStringLiteral("x.avi")});
    EXPECT_EQ(result.status, 2);
}
