// The "MKV" tab used as a person uses it: a Matroska film in, its surround
// track mixed down to stereo AAC, the subtitles left out.
#include "GuiTestSupport.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCMkvTabPage.h"
#include "MCQueueController.h"
#include "MCTrackTableModel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace {

// Two seconds of H.264 with AC-3 5.1 and an SRT subtitle.
QString makeSurroundMkv(const QString &dir)
{
    QFile srt(dir + QStringLiteral("/film.srt"));
    if (srt.open(QIODevice::WriteOnly))
        srt.write("1\n00:00:00,200 --> 00:00:01,500\nHello\n\n");
    srt.close();
    return testsupport::ffmpeg(dir, QStringLiteral("film.mkv"),
                               QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2:r=48000 "
                                              "-i '%1' -filter_complex '[1:a]pan=5.1|c0=c0|c1=c0|c2=c0|c3=c0|c4=c0|c5=c0[s]' "
                                              "-map 0:v -map '[s]' -map 2 -c:v libx264 -preset ultrafast -c:a ac3 "
                                              "-c:s srt -metadata:s:a:0 language=ger")
                                   .arg(srt.fileName()));
}

// mediainfo's word for each track of a kind, e.g. "AAC/2" for each audio track.
QStringList described(const QString &path, const QString &kind, const QString &fields)
{
    QString out;
    testsupport::run(QStringLiteral("mediainfo --Inform='%1;%2\\n' '%3'").arg(kind, fields, path), &out);
    return out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

class MkvTabTest : public guitest::WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(QStringLiteral("MKV")));
        tab = w->mkvTab;
    }

    MCMkvTabPage *tab = nullptr;
};

TEST_F(MkvTabTest, MixesTheSurroundTrackDownToStereoAacAndLeavesTheSubtitlesOut)
{
    const QString source = makeSurroundMkv(dir.path());
    guitest::dropOn(w->trackTable->viewport(), {QUrl::fromLocalFile(source)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 3; }, 20000));
    EXPECT_FALSE(tab->convertButton->isEnabled()); // nothing ticked yet
    w->toggleVideoButton->click();
    w->toggleAudioButton->click();
    w->toggleSubtitleButton->click();
    ASSERT_TRUE(tab->convertButton->isEnabled()) << tab->convertButton->toolTip().toStdString();
    EXPECT_TRUE(tab->addStereoCheckBox->isEnabled()); // a surround track may keep a stereo copy

    tab->audioMatrix->button(1)->click(); // AAC Stereo
    EXPECT_FALSE(tab->addStereoCheckBox->isEnabled());
    tab->subtitleMatrix->button(1)->click(); // Leave out
    EXPECT_FALSE(tab->vidBitRateField->isEnabled()); // the picture is copied
    ASSERT_TRUE(tab->convertButton->isEnabled());
    tab->convertButton->click();

    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    MCJob *job = app->queue()->qJobList().first();
    EXPECT_EQ(job->jobType, QStringLiteral("MKV Conversion"));
    ASSERT_TRUE(testsupport::waitUntil([&] { return job->jobStatus() == QStringLiteral("Completed")
                                                    || job->jobStatus() == QStringLiteral("Failed"); }, 120000));
    ASSERT_EQ(job->jobStatus(), QStringLiteral("Completed")) << job->failureReason().toStdString();

    const QString result = source + QStringLiteral(".muxed.mkv");
    ASSERT_TRUE(QFile::exists(result));
    EXPECT_EQ(described(result, QStringLiteral("Video"), QStringLiteral("%Format%")), QStringList{QStringLiteral("AVC")});
    EXPECT_EQ(described(result, QStringLiteral("Audio"), QStringLiteral("%Format%/%Channel(s)%/%Language%")),
              QStringList{QStringLiteral("AAC/2/de")});
    EXPECT_TRUE(described(result, QStringLiteral("Text"), QStringLiteral("%Format%")).isEmpty());
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
}

} // namespace
