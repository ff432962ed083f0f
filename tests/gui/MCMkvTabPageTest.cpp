// The "MKV" and "MP4" tabs (one page) and the MP4 edits used as a person
// uses them: a Matroska film with a surround track converted, choices the
// MP4 cannot take refused beside Convert, the pixel aspect and track edits.
#include "GuiTestSupport.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCMkvTabPage.h"
#include "MCQueueController.h"
#include "MCSelection.h"

#include <QtWidgets>

namespace {

using guitest::described;

class MkvTabPageTest : public guitest::WindowTest
{
protected:
    // The surround film loaded on a tab with its three tracks ticked.
    MCMkvTabPage *loadFilm(const QString &tabName)
    {
        showTab(tabName);
        source = guitest::makeSurroundMkv(dir.path());
        EXPECT_TRUE(drop(w->trackTable, {source}, 3));
        for (QPushButton *toggle : {w->toggleVideoButton, w->toggleAudioButton, w->toggleSubtitleButton})
            toggle->click();
        return tabName == QLatin1String("MKV") ? w->mkvTab : w->mp4Tab;
    }

    // Converts with what is chosen; answers the result once completed.
    QString convert(MCMkvTabPage *tab, const QString &jobType)
    {
        EXPECT_TRUE(tab->convertButton->isEnabled()) << tab->convertRefusalLabel->text().toStdString();
        tab->convertButton->click();
        MCJob *job = queued();
        if (!job || job->jobType != jobType || finish(job) != QLatin1String("Completed") || job->resultPaths().size() != 1) {
            ADD_FAILURE() << (job ? job->failureReason().toStdString() : "nothing queued");
            return {};
        }
        EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
        return job->resultPaths().first();
    }

    QString source;
};

TEST_F(MkvTabPageTest, MkvMixesTheSurroundTrackDownToStereoAacAndLeavesTheSubtitlesOut)
{
    MCMkvTabPage *tab = loadFilm(QStringLiteral("MKV"));
    EXPECT_FALSE(tab->devicePopUp) << "an MKV is made for no device";
    EXPECT_TRUE(tab->addStereoCheckBox->isEnabled()); // a surround track may keep a stereo copy
    tab->audioMatrix->button(1)->click(); // AAC Stereo
    EXPECT_FALSE(tab->addStereoCheckBox->isEnabled());
    tab->subtitleMatrix->button(1)->click(); // Leave out
    EXPECT_FALSE(tab->vidBitRateField->isEnabled()); // the picture is copied
    const QString result = convert(tab, QStringLiteral("MKV Conversion"));
    ASSERT_EQ(result, source + QStringLiteral(".muxed.mkv"));
    EXPECT_EQ(described(result, QStringLiteral("Video"), QStringLiteral("%Format%")), QStringList{QStringLiteral("AVC")});
    EXPECT_EQ(described(result, QStringLiteral("Audio"), QStringLiteral("%Format%/%Channel(s)%/%Language%")),
              QStringList{QStringLiteral("AAC/2/de")});
    EXPECT_TRUE(described(result, QStringLiteral("Text"), QStringLiteral("%Format%")).isEmpty());
}

TEST_F(MkvTabPageTest, Mp4MakesAnM4vForTheChosenDeviceWithTheSurroundTrackAndItsStereoCopy)
{
    MCMkvTabPage *tab = loadFilm(QStringLiteral("MP4"));
    ASSERT_TRUE(tab->devicePopUp);
    guitest::choose(tab->devicePopUp, QStringLiteral("Apple TV 3"));
    ASSERT_TRUE(tab->addStereoCheckBox->isEnabled()); // AC-3 5.1 copied may keep a stereo copy
    tab->addStereoCheckBox->click();
    const QString result = convert(tab, QStringLiteral("MP4 Conversion"));
    EXPECT_TRUE(result.endsWith(QStringLiteral(".m4v"))) << result.toStdString(); // an Apple device
    EXPECT_EQ(described(result, QStringLiteral("Video"), QStringLiteral("%Format%")), QStringList{QStringLiteral("AVC")});
    EXPECT_EQ(described(result, QStringLiteral("Audio"), QStringLiteral("%Format%/%Channel(s)%")),
              (QStringList{QStringLiteral("AAC/2"), QStringLiteral("AC-3/6")}));
    EXPECT_EQ(described(result, QStringLiteral("Text"), QStringLiteral("%Format%")).size(), 1);
}

TEST_F(MkvTabPageTest, ChoicesTheMp4CannotTakeAreRefusedInRedBesideConvert)
{
    showTab(QStringLiteral("MP4"));
    MCMkvTabPage *tab = w->mp4Tab;
    ASSERT_FALSE(loadAndTick(QStringLiteral("clip.avi")).isEmpty()); // MPEG-4 with MP3
    EXPECT_FALSE(tab->convertButton->isEnabled());
    ASSERT_TRUE(tab->convertRefusalLabel->isVisible());
    EXPECT_TRUE(tab->convertRefusalLabel->text().contains(QStringLiteral("AAC or AC-3")))
        << tab->convertRefusalLabel->text().toStdString();
    EXPECT_EQ(tab->convertRefusalLabel->palette().color(QPalette::WindowText),
              MCMainWindow::colorFor(QStringLiteral("red"), tab->palette()));
    EXPECT_FALSE(w->mkvTab->convertRefusalLabel->isVisibleTo(w->mkvTab)) << "another tab's reason";
    tab->audioMatrix->button(1)->click(); // AAC Stereo
    EXPECT_TRUE(tab->convertButton->isEnabled()) << tab->convertRefusalLabel->text().toStdString();
    EXPECT_FALSE(tab->convertRefusalLabel->isVisible());

    // The device is shared with the "AVI" tab, whose "DivX DVD" makes no MP4.
    showTab(QStringLiteral("AVI"));
    w->videoMatrix->button(1)->click();
    guitest::choose(w->devicePopUp, QStringLiteral("DivX DVD"));
    showTab(QStringLiteral("MP4"));
    EXPECT_FALSE(tab->convertButton->isEnabled());
    EXPECT_TRUE(tab->convertRefusalLabel->text().contains(QStringLiteral("not an MP4 device")));
    EXPECT_EQ(tab->devicePopUp->currentIndex(), -1) << "no MP4 device is shown as chosen";
    guitest::choose(tab->devicePopUp, QStringLiteral("PS3"));
    tab->convertButton->click();
    ASSERT_TRUE(queued());
    EXPECT_EQ(queued()->jobSelection->theDevice, QStringLiteral("PS3"));
}

TEST_F(MkvTabPageTest, EditFilesSetsThePixelAspectOfMp4FilesAndEditTracksQueuesTheirEdits)
{
    const QString mp4 = testsupport::ffmpeg(dir.path(), QStringLiteral("clip.mp4"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2 "
                                                           "-c:v libx264 -preset ultrafast -c:a aac"));
    showTab(QStringLiteral("Edit Files"));
    ASSERT_TRUE(drop(w->fileTable, {mp4}, 1));
    for (auto [field, text] : {std::pair{w->parWidth, "4"}, std::pair{w->parHeight, "3"}}) {
        field->setText(QString::fromLatin1(text));
        emit field->editingFinished();
    }
    ASSERT_TRUE(w->parButton->isEnabled());
    w->parButton->click(); // the job itself is run for real in the job's tests
    MCJob *job = queued();
    ASSERT_TRUE(job && job->jobType == QStringLiteral("PAR Editing"));
    EXPECT_EQ(job->jobSelection->userParWidth + QLatin1Char(':') + job->jobSelection->userParHeight, QStringLiteral("4:3"));
    // An AVI beside it: no container's job sets the aspect of both.
    ASSERT_TRUE(drop(w->fileTable, {mp4, guitest::makeAvi(dir.path(), QStringLiteral("a.avi"))}, 2));
    EXPECT_FALSE(w->parButton->isEnabled());

    showTab(QStringLiteral("Edit Tracks"));
    ASSERT_TRUE(drop(w->trackTable, {mp4}, 2));
    w->toggleAudioButton->click();
    for (const auto &[row, jobType] : {std::pair{0, "MP4 Track Extraction"}, std::pair{2, "MP4 Track Removal"}}) {
        w->editTrackMatrix->button(row)->click();
        ASSERT_TRUE(w->startTrackEditButton->isEnabled()) << jobType;
        w->startTrackEditButton->click();
        EXPECT_EQ(app->queue()->qJobList().last()->jobType, QString::fromLatin1(jobType));
    }
    w->editTrackMatrix->button(1)->click();
    EXPECT_FALSE(w->startTrackEditButton->isEnabled()) << "the file's own track is no added track";
}

} // namespace
