#include "EngineTestSupport.h"
#include "MCMkvExtractor.h"
#include "MCMp4BoxStep.h"
#include "MCMencoderVideo.h"
#include "MCStepStatus.h"
#include "TestSupport.h"

#include <QFile>

#include <gtest/gtest.h>

TEST(MCConverterTest, StringFoundInLogReadsOnlyTheLast20LinesAfterCarriageReturns)
{
    QTemporaryDir dir;
    QFile log(dir.filePath(QStringLiteral("tool.log")));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.write("Opening video filter: [scale]\nearly marker\n");
    // 25 progress updates rewritten in place: one physical line.
    for (int i = 1; i <= 25; ++i)
        log.write(QStringLiteral("Pos: %1s (%2%)\r").arg(i).arg(i * 4).toUtf8());
    log.write("\nlate 'quoted' marker\n");
    log.close();

    MCConverter step;
    step.logFileURL = QUrl::fromLocalFile(log.fileName());
    EXPECT_TRUE(step.stringFoundInLog(QStringLiteral("(100%)")));
    EXPECT_TRUE(step.stringFoundInLog(QStringLiteral("late 'quoted'")));
    EXPECT_FALSE(step.stringFoundInLog(QStringLiteral("early marker")));
    EXPECT_FALSE(step.stringFoundInLog(QStringLiteral("(20%)"))); // the 5th update, 21 lines back
    step.logFileURL = QUrl::fromLocalFile(dir.filePath(QStringLiteral("missing.log")));
    EXPECT_FALSE(step.stringFoundInLog(QStringLiteral("Pos")));
}

TEST(MCConverterTest, OutputsGoToTheSaveFolderOrBesideTheVideo)
{
    PrivatePreferences prefs;
    MCSelectionPtr selection = selectionFor(QStringLiteral("/videos/in/clip.mkv"));
    selection->trackList = {makeTrack(QStringLiteral("Video"), QStringLiteral("h264"), QStringLiteral("/videos/in/clip.mkv")),
                            makeTrack(QStringLiteral("External Subtitle"), QStringLiteral("srt"), QStringLiteral("/subs/clip.srt"))};
    MCConverter step;
    step.inititializeForTrack(1, QStringLiteral("Label"), true);
    EXPECT_FALSE(step.isTemporaryOutput);
    step.initializeFor(selection);
    EXPECT_EQ(step.inputFileURL.toLocalFile(), QStringLiteral("/subs/clip.srt"));
    EXPECT_EQ(step.outputFileURL.toLocalFile(), prefs.saveFolder + QStringLiteral("/clip.srt"));

    prefs.preferences->saveDirectoryURL = QUrl();
    step.initializeFor(selection);
    EXPECT_EQ(step.outputFileURL.toLocalFile(), QStringLiteral("/videos/in/clip.srt"));
    // The other rule falls back to the input's own folder.
    step.determineSaveDirectoryURL();
    EXPECT_EQ(step.saveDirectoryURL.toLocalFile(), QStringLiteral("/subs"));
}

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
    EXPECT_EQ(percents, (QStringList{QStringLiteral(" 6%"), QStringLiteral(" 7%"), QStringLiteral(" 8%"),
                                     QStringLiteral("10%"), QStringLiteral("102%")}));
    EXPECT_FALSE(MCMencoderVideo::percentFromPosLine(QStringLiteral("Selected audio codec: [mpg123] (x)")));

    const QStringList extractLines = lines("engine/mkvextract-subtitle.log");
    EXPECT_EQ(MCMkvExtractor::progressFromLine(extractLines.at(0)), QStringLiteral("error"));
    EXPECT_EQ(MCMkvExtractor::progressFromLine(extractLines.at(2)), QStringLiteral("100%"));

    EXPECT_EQ(MCMp4BoxStep::progressFromLine(QStringLiteral("Media Export: |=====     | (45/100)")), QStringLiteral("45%"));
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(QString()), QStringLiteral("0%"));
    EXPECT_EQ(MCMp4BoxStep::progressFromLine(QStringLiteral("Extracting raw track")), QStringLiteral("error"));

    // The window's bars and the command line's lines read the last
    // percentage, held to a hundred; a step number must never pass for one.
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("Pass #2: 37%")), 37.0);
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("Muxing Step #3: 12.5 %")), 12.5);
    EXPECT_EQ(MCStepStatus::percentIn(QStringLiteral("140%")), 100.0);
    EXPECT_FALSE(MCStepStatus::percentIn(QStringLiteral("Pass 1 Complete")));
    EXPECT_FALSE(MCStepStatus::percentIn(QStringLiteral("Muxing Step #2")));
    EXPECT_FALSE(MCStepStatus::percentIn(QString()));
}

TEST(MCConverterTest, LastLogLineMatchesTheShellPipeline)
{
    QTemporaryDir dir;
    QFile blankEnd(dir.filePath(QStringLiteral("blank-end.log")));
    ASSERT_TRUE(blankEnd.open(QIODevice::WriteOnly));
    blankEnd.write("Pos: 1s ( 3%)\rPos: 2s ( 5%)\n\n");
    blankEnd.close();
    const QStringList logs{testsupport::testDataPath(QStringLiteral("engine/mencoder-one-pass.log")),
                           testsupport::testDataPath(QStringLiteral("engine/mkvextract-subtitle.log")),
                           blankEnd.fileName(), dir.filePath(QStringLiteral("missing.log"))};
    for (const QString &log : logs) {
        const QString shell = MCHelpers::doUnixCommand(QStringLiteral("tr '\\r' '\\n' < "),
                                                       {QUrl::fromLocalFile(log), QStringLiteral("| tail -1")});
        EXPECT_EQ(MCConverter::lastLineOfFile(log), shell) << log.toStdString();
    }
}
