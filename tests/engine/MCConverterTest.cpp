#include "EngineTestSupport.h"
#include "MCMkvExtractor.h"
#include "MCMp4BoxStep.h"
#include "MCMencoderVideo.h"
#include "MCStepStatus.h"
#include "TestSupport.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(MCConverterTest, ProgressLinesOfEachTool)
{
    const auto lines = [](const char *log) {
        return testsupport::readTestData(QString::fromLatin1(log)).replace(QLatin1Char('\r'), QLatin1Char('\n')).split(QLatin1Char('\n'));
    };
    QStringList percents;
    for (const QString &line : lines("engine/mencoder-one-pass.log")) {
        if (const auto percent = MCMencoderVideo::percentFromPosLine(line); percent && !percents.contains(*percent))
            percents << *percent;
    }
    EXPECT_EQ(percents, (QStringList{u" 6%"_s, u" 7%"_s, u" 8%"_s,
                                     u"10%"_s, u"102%"_s}));

    const QStringList extractLines = lines("engine/mkvextract-subtitle.log");
    EXPECT_EQ(MCMkvExtractor::progressFromLine(extractLines.at(0)), u"error"_s);
    EXPECT_EQ(MCMkvExtractor::progressFromLine(extractLines.at(2)), u"100%"_s);

    EXPECT_EQ(MCMp4BoxStep::progressFromLine(u"Media Export: |=====     | (45/100)"_s), u"45%"_s);
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(u"Extracting raw track"_s), u"error"_s);

    // The window's bars and the command line's lines read the last
    // percentage, held to a hundred; a step number must never pass for one.
    EXPECT_EQ(MCStepStatus::percentIn(u"Pass #2: 37%"_s), 37.0);
    EXPECT_EQ(MCStepStatus::percentIn(u"Muxing Step #3: 12.5 %"_s), 12.5);
    EXPECT_EQ(MCStepStatus::percentIn(u"140%"_s), 100.0);
    EXPECT_FALSE(MCStepStatus::percentIn(u"Pass 1 Complete"_s));
    EXPECT_FALSE(MCStepStatus::percentIn(u"Muxing Step #2"_s));
    EXPECT_FALSE(MCStepStatus::percentIn(QString()));
}
