#include "MCHelpers.h"

#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(MCHelpersCommand, OptionsAreJoinedWithOneBlankEachAndLocationsQuoted)
{
    const MCOptionList options{QStringLiteral("-p"), QStringLiteral("123"), QString(),
                               QUrl::fromLocalFile(QStringLiteral("/tmp/a b.avi")), QVariant(42)};
    EXPECT_EQ(MCHelpers::commandFromOptions(QStringLiteral("ps"), options).toStdString(),
              "ps -p 123 \"/tmp/a b.avi\"");
}

TEST(MCHelpersCommand, ToolHeadsForMkvAndFfmpeg)
{
    const QUrl mkvTool = QUrl::fromLocalFile(QStringLiteral("/r/Frameworks/mymkvthing"));
    EXPECT_TRUE(MCHelpers::headForTool(mkvTool, {}).startsWith(QStringLiteral("export LANG=C.UTF-8; \"")));

    const QUrl ffmpeg = QUrl::fromLocalFile(QStringLiteral("/r/ffmpeg"));
    EXPECT_EQ(MCHelpers::headForTool(ffmpeg, {QStringLiteral("-vf scale=1")}).toStdString(), "\"/r/ffmpeg\"");
    const QString burning = MCHelpers::headForTool(ffmpeg, {QStringLiteral("-vf ass=x.ass")});
    EXPECT_TRUE(burning.startsWith(QStringLiteral("export FONTCONFIG_PATH=\"")));
    EXPECT_TRUE(burning.contains(QStringLiteral("/fonts/fonts.conf\";\"/r/ffmpeg\"")));
}

TEST(MCHelpersQuoting, ShellCharactersStayLiteral)
{
    EXPECT_EQ(MCHelpers::doubleQuotedFormOf(QStringLiteral("plain name.avi")), QStringLiteral("\"plain name.avi\""));
    EXPECT_EQ(MCHelpers::singleQuotedFormOf(QStringLiteral("Title")), QStringLiteral("'Title'"));
    for (const QString &name : {QStringLiteral("a$(echo hi)b"), QStringLiteral("it's \"here\""),
                                QStringLiteral("back`tick`\\"), QStringLiteral("new\nline")}) {
        EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf '%s'"), {MCHelpers::doubleQuotedFormOf(name)}), name);
        EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf '%s'"), {MCHelpers::singleQuotedFormOf(name)}), name);
    }
}

TEST(MCHelpersQuoting, NamesAreNeverRunAsCommands)
{
    QTemporaryDir dir;
    const QString previous = QDir::currentPath();
    QDir::setCurrent(dir.path());
    const QString canary = dir.path() + QStringLiteral("/canary");
    const QString evil = dir.path() + QStringLiteral("/a$(touch canary)`touch canary`\\\"'.avi");
    QFile file(evil);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("ls"), {QUrl::fromLocalFile(evil)}), evil);
    MCHelpers::doShellScriptFor(QUrl::fromLocalFile(QStringLiteral("/bin/ls")), {QUrl::fromLocalFile(evil)});
    QDir::setCurrent(previous);
    EXPECT_FALSE(QFileInfo::exists(canary));
}

TEST(MCHelpersOutput, ExactlyOneTrailingLineFeedIsRemoved)
{
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf 'a\\n\\n'"), {}), QStringLiteral("a\n"));
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf 'a\\r\\n'"), {}), QStringLiteral("a\r"));
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf 'a'"), {}), QStringLiteral("a"));
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("true"), {}), QString());
}

TEST(MCHelpersOutput, FailureAnswersStandardErrorAndBadUtf8FallsBackToAscii)
{
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("echo out; echo err >&2; exit 3"), {}), QStringLiteral("err"));
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf 'caf\\xe9'"), {}), QStringLiteral("cafi"));
    EXPECT_EQ(MCHelpers::doUnixCommand(QStringLiteral("printf 'caf\\xc3\\xa9'"), {}), QStringLiteral("café"));
}

TEST(MCHelpersOutput, ChattyForegroundToolDoesNotHang)
{
    const QString text = MCHelpers::doUnixCommand(QStringLiteral("head -c 3000000 /dev/zero | tr '\\0' x"), {});
    EXPECT_EQ(text.size(), 3000000);
}

TEST(MCHelpersBackground, BackgroundPatternAnswersTheProcessNumber)
{
    QTemporaryDir dir;
    const QUrl log = QUrl::fromLocalFile(dir.path() + QStringLiteral("/sleep.log"));
    const QString pid = MCHelpers::doShellScriptFor(QUrl::fromLocalFile(QStringLiteral("/bin/sleep")),
                                                    {QStringLiteral("30"), QStringLiteral("&>"), log, QStringLiteral("& echo $!")});
    ASSERT_TRUE(MCHelpers::isStringInteger(pid)) << pid.toStdString();
    EXPECT_TRUE(MCHelpers::processIsRunning(pid));
    MCHelpers::doUnixCommand(QStringLiteral("kill"), {QStringLiteral("KILL"), pid});
    EXPECT_TRUE(testsupport::waitUntil([&] { return !MCHelpers::processIsRunning(pid); }, 5000));
    EXPECT_TRUE(QFileInfo::exists(log.toLocalFile()));
}

TEST(MCHelpersTests, IntegerRule)
{
    for (const char *yes : {"12", " 7", "12abc", "0", "-5"})
        EXPECT_TRUE(MCHelpers::isStringInteger(QString::fromLatin1(yes))) << yes;
    for (const char *no : {"00", "0.0", "-0", "", "abc"})
        EXPECT_FALSE(MCHelpers::isStringInteger(QString::fromLatin1(no))) << no;
}

TEST(MCHelpersTests, ProcessAndPathTests)
{
    EXPECT_FALSE(MCHelpers::processIsRunning(QString()));
    EXPECT_FALSE(MCHelpers::processIsRunning(QStringLiteral("abc")));
    EXPECT_TRUE(MCHelpers::processIsRunning(QString::number(QCoreApplication::applicationPid())));
    EXPECT_TRUE(MCHelpers::directoryPathExistsFor(QStringLiteral("~")));
    EXPECT_FALSE(MCHelpers::directoryPathExistsFor(QStringLiteral("/etc/passwd")));
    EXPECT_TRUE(MCHelpers::fileExistsAtURL(QUrl::fromLocalFile(QStringLiteral("/etc/passwd"))));
    EXPECT_FALSE(MCHelpers::fileExistsAtURL(QUrl()));
}

TEST(MCHelpersTools, ToolLocationRules)
{
    const QString root = MCHelpers::resourceFolderPath();
    ASSERT_FALSE(root.isEmpty());
    EXPECT_EQ(MCHelpers::urlOfApp(QStringLiteral("MKVmerge")).toLocalFile(), root + QStringLiteral("/Frameworks/mkvmerge"));
    EXPECT_EQ(MCHelpers::urlOfApp(QStringLiteral("mp4box")).toLocalFile(), root + QStringLiteral("/mp4boxUpdated/MP4box"));
    EXPECT_EQ(MCHelpers::urlOfApp(QStringLiteral("mediaInfo")).toLocalFile(), root + QStringLiteral("/mediainfo"));
    EXPECT_TRUE(MCHelpers::urlOfApp(QStringLiteral("nosuchtool")).isEmpty());
    // "MP4Box" in capitals is an ordinary top-level name.
    const QUrl capital = MCHelpers::urlOfApp(QStringLiteral("MP4Box"));
    EXPECT_TRUE(capital.isEmpty() || capital.toLocalFile() == root + QStringLiteral("/mp4box"));
}
