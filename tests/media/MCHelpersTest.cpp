#include "MCHelpers.h"



#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(MCHelpersCommand, OptionsAreJoinedAndToolHeadsSetTheirEnvironment)
{
    const MCOptionList options{u"-p"_s, u"123"_s, QString(), QUrl::fromLocalFile(u"/tmp/a b.avi"_s), QVariant(42)};
    EXPECT_EQ(MCHelpers::commandFromOptions(u"ps"_s, options), u"ps -p 123 \"/tmp/a b.avi\""_s);

    EXPECT_TRUE(MCHelpers::headForTool(QUrl::fromLocalFile(u"/r/Frameworks/mymkvthing"_s), {}).startsWith(u"export LANG=C.UTF-8; \""_s));
    const QUrl ffmpeg = QUrl::fromLocalFile(u"/r/ffmpeg"_s);
    EXPECT_EQ(MCHelpers::headForTool(ffmpeg, {u"-vf scale=1"_s}), u"\"/r/ffmpeg\""_s);
    const QString burning = MCHelpers::headForTool(ffmpeg, {u"-vf ass=x.ass"_s});
    EXPECT_TRUE(burning.startsWith(u"export FONTCONFIG_PATH=\""_s));
    EXPECT_TRUE(burning.contains(u"/fonts/fonts.conf\";\"/r/ffmpeg\""_s));
}

TEST(MCHelpersOutput, OneTrailingLineFeedGoesFailuresAnswerStandardErrorAndIntegerAndPathRules)
{
    const std::pair<QString, QString> cases[] = {
        {u"printf 'a\\n\\n'"_s, u"a\n"_s},         {u"printf 'a\\r\\n'"_s, u"a\r"_s},
        {u"printf 'a'"_s, u"a"_s},                 {u"true"_s, QString()},
        {u"echo out; echo err >&2; exit 3"_s, u"err"_s},
        {u"printf 'caf\\xe9'"_s, u"cafi"_s},       {u"printf 'caf\\xc3\\xa9'"_s, u"café"_s},
    };
    for (const auto &[command, expected] : cases)
        EXPECT_EQ(MCHelpers::doUnixCommand(command, {}), expected) << command.toStdString();
    // A chatty foreground tool does not hang.
    EXPECT_EQ(MCHelpers::doUnixCommand(u"head -c 3000000 /dev/zero | tr '\\0' x"_s, {}).size(), 3000000);

    // Integer and path rules.
    for (const char *yes : {"12", " 7", "12abc", "0", "-5"})
        EXPECT_TRUE(MCHelpers::isStringInteger(QString::fromLatin1(yes))) << yes;
    for (const char *no : {"00", "0.0", "-0", "", "abc"})
        EXPECT_FALSE(MCHelpers::isStringInteger(QString::fromLatin1(no))) << no;
    EXPECT_TRUE(MCHelpers::directoryPathExistsFor(u"~"_s));
    EXPECT_FALSE(MCHelpers::directoryPathExistsFor(u"/etc/passwd"_s));
}
