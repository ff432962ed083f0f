#include "MCStepStatus.h"

#include <gtest/gtest.h>

// The window's bars and the command line's lines both read these; a step
// number in the words must never pass for progress.
TEST(MCStepStatus, ReadsTheLastPercentageHeldToAHundred)
{
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("Pass #2: 37%")), 37.0);
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("Muxing Step #3: 12.5 %")), 12.5);
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("140%")), 100.0);
    EXPECT_FALSE(MCStepStatus::percentIn(QStringLiteral("Pass 1 Complete")));
    EXPECT_FALSE(MCStepStatus::percentIn(QStringLiteral("Muxing Step #2")));
    EXPECT_FALSE(MCStepStatus::percentIn(QString()));
}
