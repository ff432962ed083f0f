#include "MCFloatValidator.h"
#include "MCIntegerValidator.h"

#include <gtest/gtest.h>

namespace {

TEST(MCNumberValidatorTest, IntegerFieldRefusesAnythingButDigits)
{
    MCIntegerValidator validator;
    EXPECT_TRUE(validator.beginEditing(QStringLiteral("1")));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("12")), QStringLiteral("12"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("12a")), QStringLiteral("12"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("12.")), QStringLiteral("12"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("1 2")), QStringLiteral("12"));
    // A pasted run of digits in another script is not a number to the tools.
    EXPECT_EQ(validator.textDidChange(QStringLiteral("12\u0663")), QStringLiteral("12"));
    EXPECT_EQ(validator.textDidChange(QString()), QString());
    EXPECT_EQ(validator.textDidChange(QStringLiteral("x")), QString());
}

TEST(MCNumberValidatorTest, FloatFieldAllowsOnePoint)
{
    MCFloatValidator validator;
    validator.beginEditing(QStringLiteral("1"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("1.")), QStringLiteral("1."));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("1.2")), QStringLiteral("1.2"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("1.2.")), QStringLiteral("1.2"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("1,2")), QStringLiteral("1.2"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral(".5")), QStringLiteral(".5"));
    EXPECT_EQ(validator.textDidChange(QString()), QString());
}

TEST(MCNumberValidatorTest, ARefusedChangeRestoresTheTextOfTheLatestEdit)
{
    MCFloatValidator validator;
    validator.beginEditing(QStringLiteral("29.97"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("29.97x")), QStringLiteral("29.97"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("25")), QStringLiteral("25"));
    EXPECT_EQ(validator.textDidChange(QStringLiteral("25..")), QStringLiteral("25"));
}

} // namespace
