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
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace {

using guitest::described;
using guitest::makeSurroundMkv;

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
    ASSERT_TRUE(tab->convertButton->isEnabled()) << tab->convertRefusalLabel->text().toStdString();
    EXPECT_FALSE(tab->devicePopUp) << "an MKV is made for no device";
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
