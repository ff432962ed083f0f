#include "MCNotificationCenter.h"
#include "MCTimeValidator.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// What the field holds after the editor applied a keystroke, before the mask.
TEST(MCTimeValidatorTest, MaskEdits)
{
    const struct
    {
        const char *what, *oldText, *newText;
        int caret;
        const char *text;
        int expectedCaret;
        bool beep;
    } cases[] = {
        {"first digit overwrites", "00:00:00", "100:00:00", 1, "10:00:00", 1, false},
        {"second digit jumps the separator", "10:00:00", "120:00:00", 2, "12:00:00", 3, false},
        {"digit typed before a separator lands after it", "12:00:00", "127:00:00", 3, "12:70:00", 4, false},
        {"a typed separator changes nothing", "12:00:00", "12::00:00", 3, "12:00:00", 2, false},
        {"letter refused", "12:00:00", "12:a00:00", 4, "12:00:00", 3, true},
        {"typing past the end refused", "12:34:56", "12:34:567", 9, "12:34:56", 8, false},
        {"pasted digits fill across separators", "00:00:00", "12345600:00:00", 6, "12:34:56", 8, false},
        {"paste overflowing the mask beeps", "00:00:00", "1234567890:00:00", 10, "12:34:56", 8, true},
        {"backspace zeroes the digit", "01:23:45", "01:2:45", 4, "01:20:45", 4, false},
        {"backspace at the end", "01:23:45", "01:23:4", 7, "01:23:40", 7, false},
        {"select-all delete", "01:23:45", "", 0, "00:00:00", 0, false},
        {"deleting a separator zeroes the next digit", "01:23:45", "0123:45", 2, "01:03:45", 2, false},
        {"deleting across a separator", "01:23:45", "03:45", 1, "00:03:45", 1, false},
        {"typing over a selection", "01:23:45", "01:9:45", 4, "01:90:45", 4, false},
        {"pasting over everything stays in the mask", "00:00:00", "1234567", 7, "12:34:56", 8, true},
        {"letter over a selection refused", "01:23:45", "01:x:45", 4, "01:23:45", 3, true},
        {"subtitle milliseconds keep their comma", "00:00:01,500", "00:00:01,50", 11, "00:00:01,500", 11, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const MCTimeEdit edit = MCTimeValidator::maskEdit(QString::fromLatin1(c.oldText), QString::fromLatin1(c.newText), c.caret);
        EXPECT_EQ(edit.text, QString::fromLatin1(c.text));
        EXPECT_EQ(edit.caret, c.expectedCaret);
        EXPECT_EQ(edit.beep, c.beep);
    }
}

TEST(MCTimeValidatorTest, SecondsAndTexts)
{
    EXPECT_EQ(MCTimeValidator::convertTimeInSecondsFrom(u"1:75:80"_s), 8180);
    EXPECT_EQ(MCTimeValidator::convertTimeInSecondsFrom(u"00:00:05,999"_s), 5);
    EXPECT_EQ(MCTimeValidator::convertTimeInSecondsFrom(u"ab:cd"_s), 0);
    EXPECT_EQ(MCTimeValidator::convertToTextTimeFrom(8180), u"02:16:20"_s);
    EXPECT_EQ(MCTimeValidator::convertToTextTimeFrom(360000 + 61), u"100:01:01"_s);
    EXPECT_EQ(MCTimeValidator::convertToTextTimeFrom(1e300), u"596523:14:07"_s);
}

TEST(MCTimeValidatorTest, TheRememberedTextFollowsTheMaskAndLeavingTheFieldSaysSo)
{
    QList<MCNotification> seen;
    QObject receiver;
    MCNotificationCenter::defaultCenter().addObserver(&receiver, {}, [&](const MCNotification &n) { seen.append(n); });
    MCTimeValidator validator;
    EXPECT_TRUE(validator.textShouldBeginEditing(u"00:00:00"_s, 0, 0));
    validator.controlTextDidChange(u"startTimeTextField"_s, u"100:00:00"_s, 1);
    EXPECT_EQ(validator.controlTextDidChange(u"startTimeTextField"_s, u"120:00:00"_s, 2).text, u"12:00:00"_s);
    EXPECT_EQ(validator.isValidObject(u"endTimeTextField"_s, u"00:90:00"_s), u"01:30:00"_s);
    ASSERT_EQ(seen.size(), 3);
    EXPECT_EQ(seen[0].object.toString(), u"10:00:00"_s);
    EXPECT_EQ(seen[2].name, MCNotificationName::timeTextFieldExited);
    EXPECT_EQ(seen[2].userInfo.value(u"theTextField"_s).toString(), u"endTimeTextField"_s);
}

} // namespace
