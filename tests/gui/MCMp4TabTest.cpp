// The "MP4" tab and the MP4 edits used as a person uses them: a Matroska
// film made into an MP4 for a device, choices the MP4 cannot take refused
// beside Convert, and the pixel aspect and track edits of MP4 files.
#include "GuiTestSupport.h"
#include "MCAppDelegate.h"
#include "MCDropTableView.h"
#include "MCJob.h"
#include "MCMainWindow.h"
#include "MCMkvTabPage.h"
#include "MCMp4TabRules.h"
#include "MCQueueController.h"
#include "MCSelection.h"
#include "MCTrackTableModel.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>
#include <QTabWidget>

namespace {

using guitest::described;

class Mp4TabTest : public guitest::WindowTest
{
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        showTab(QStringLiteral("MP4"));
        tab = w->mp4Tab;
    }

    void showTab(const QString &name) { w->tabs->setCurrentIndex(MCMainWindow::tabNames().indexOf(name)); }

    static void choose(QComboBox *popUp, const QString &item)
    {
        popUp->setCurrentIndex(popUp->findText(item));
        emit popUp->textActivated(item);
    }

    // The track of that kind in the record's selection.
    MCVideoTrackPtr selected(const QString &kind) const
    {
        for (const MCVideoTrackPtr &track : app->delegate()->currentSelection->trackList) {
            if (track->trackType == kind)
                return track;
        }
        return nullptr;
    }

    QString waitForEnd(MCJob *job) const
    {
        testsupport::waitUntil([&] { return job->jobStatus() == QStringLiteral("Completed")
                                            || job->jobStatus() == QStringLiteral("Failed"); }, 120000);
        return job->jobStatus();
    }

    MCMkvTabPage *tab = nullptr;
};

TEST_F(Mp4TabTest, MakesAnM4vForTheChosenDeviceWithTheSurroundTrackAndItsStereoCopy)
{
    const QString source = guitest::makeSurroundMkv(dir.path());
    guitest::dropOn(w->trackTable->viewport(), {QUrl::fromLocalFile(source)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 3; }, 20000));
    w->toggleVideoButton->click();
    w->toggleAudioButton->click();
    w->toggleSubtitleButton->click();

    ASSERT_TRUE(tab->devicePopUp);
    QStringList offered;
    for (int i = 0; i < tab->devicePopUp->count(); ++i)
        offered << tab->devicePopUp->itemText(i);
    EXPECT_EQ(offered, MCMp4TabRules::deviceList());
    choose(tab->devicePopUp, QStringLiteral("Apple TV 3"));
    ASSERT_TRUE(tab->addStereoCheckBox->isEnabled()); // AC-3 5.1 copied may keep a stereo copy
    tab->addStereoCheckBox->click();
    ASSERT_TRUE(tab->convertButton->isEnabled()) << tab->convertRefusalLabel->text().toStdString();
    EXPECT_FALSE(tab->convertRefusalLabel->isVisible());

    const MCSelectionPtr record = app->delegate()->currentSelection;
    EXPECT_EQ(record->theDevice, QStringLiteral("Apple TV 3"));
    ASSERT_TRUE(selected(QStringLiteral("Audio")));
    EXPECT_EQ(selected(QStringLiteral("Audio"))->userCodec, QStringLiteral("passthru"));
    EXPECT_TRUE(selected(QStringLiteral("Audio"))->createStereoCopyFlag);
    EXPECT_EQ(selected(QStringLiteral("Video"))->userCodec, QStringLiteral("passthru"));

    tab->convertButton->click();
    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    MCJob *job = app->queue()->qJobList().first();
    EXPECT_EQ(job->jobType, QStringLiteral("MP4 Conversion"));
    EXPECT_EQ(job->jobSelection->theDevice, QStringLiteral("Apple TV 3"));
    ASSERT_EQ(waitForEnd(job), QStringLiteral("Completed")) << job->failureReason().toStdString();

    ASSERT_EQ(job->resultPaths().size(), 1);
    const QString result = job->resultPaths().first();
    EXPECT_TRUE(result.endsWith(QStringLiteral(".m4v"))) << result.toStdString(); // an Apple device
    EXPECT_EQ(described(result, QStringLiteral("Video"), QStringLiteral("%Format%")), QStringList{QStringLiteral("AVC")});
    QStringList sound = described(result, QStringLiteral("Audio"), QStringLiteral("%Format%/%Channel(s)%"));
    sound.sort();
    EXPECT_EQ(sound, (QStringList{QStringLiteral("AAC/2"), QStringLiteral("AC-3/6")}));
    EXPECT_EQ(described(result, QStringLiteral("Text"), QStringLiteral("%Format%")).size(), 1);
    EXPECT_TRUE(alerts->alerts.isEmpty()) << alerts->alerts.first().message.toStdString();
}

TEST_F(Mp4TabTest, ChoicesTheMp4CannotTakeAreRefusedInRedBesideConvert)
{
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
    choose(w->devicePopUp, QStringLiteral("DivX DVD"));
    showTab(QStringLiteral("MP4"));
    EXPECT_FALSE(tab->convertButton->isEnabled());
    EXPECT_TRUE(tab->convertRefusalLabel->text().contains(QStringLiteral("not an MP4 device")));
    EXPECT_EQ(tab->devicePopUp->currentIndex(), -1) << "no MP4 device is shown as chosen";
    choose(tab->devicePopUp, QStringLiteral("PS3"));
    ASSERT_TRUE(tab->convertButton->isEnabled());
    tab->convertButton->click();
    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    EXPECT_EQ(app->queue()->qJobList().first()->jobSelection->theDevice, QStringLiteral("PS3"));
}

TEST_F(Mp4TabTest, EditFilesSetsThePixelAspectOfMp4FilesAndEditTracksEditsTheirTracks)
{
    const QString mp4 = testsupport::ffmpeg(dir.path(), QStringLiteral("clip.mp4"),
                                            QStringLiteral("-f lavfi -i testsrc2=s=160x120:r=25:d=2 -f lavfi -i sine=d=2 "
                                                           "-c:v libx264 -preset ultrafast -c:a aac"));
    showTab(QStringLiteral("Edit Files"));
    EXPECT_FALSE(w->parButton->isEnabled());
    guitest::dropOn(w->fileTable->viewport(), {QUrl::fromLocalFile(mp4)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 1; }, 20000));
    ASSERT_TRUE(w->parButton->isEnabled());
    for (auto [field, text] : {std::pair{w->parWidth, "4"}, std::pair{w->parHeight, "3"}}) {
        field->setText(QString::fromLatin1(text));
        emit field->editingFinished();
    }
    w->parButton->click();
    ASSERT_EQ(app->queue()->qJobList().size(), 1);
    MCJob *job = app->queue()->qJobList().first();
    EXPECT_EQ(job->jobType, QStringLiteral("PAR Editing"));
    EXPECT_EQ(job->jobSelection->userParWidth + QLatin1Char(':') + job->jobSelection->userParHeight, QStringLiteral("4:3"));
    ASSERT_EQ(waitForEnd(job), QStringLiteral("Completed")) << job->failureReason().toStdString();
    ASSERT_EQ(job->resultPaths().size(), 1);
    EXPECT_EQ(described(job->resultPaths().first(), QStringLiteral("Video"), QStringLiteral("%PixelAspectRatio%")),
              QStringList{QStringLiteral("1.333")});

    // An AVI beside it: no container's job sets the aspect of both.
    const QString avi = guitest::makeAvi(dir.path(), QStringLiteral("a.avi"));
    guitest::dropOn(w->fileTable->viewport(), {QUrl::fromLocalFile(mp4), QUrl::fromLocalFile(avi)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->fileModel->rowCount() == 2; }, 20000));
    EXPECT_FALSE(w->parButton->isEnabled());

    showTab(QStringLiteral("Edit Tracks"));
    guitest::dropOn(w->trackTable->viewport(), {QUrl::fromLocalFile(mp4)});
    ASSERT_TRUE(testsupport::waitUntil([&] { return w->trackModel->rowCount() == 2; }, 20000));
    w->toggleAudioButton->click();
    const std::pair<int, const char *> edits[] = {{0, "MP4 Track Extraction"}, {2, "MP4 Track Removal"}};
    for (const auto &[row, jobType] : edits) {
        w->editTrackMatrix->button(row)->click();
        ASSERT_TRUE(w->startTrackEditButton->isEnabled()) << jobType;
        w->startTrackEditButton->click();
        EXPECT_EQ(app->queue()->qJobList().last()->jobType, QString::fromLatin1(jobType));
    }
    w->editTrackMatrix->button(1)->click();
    EXPECT_FALSE(w->startTrackEditButton->isEnabled()) << "the file's own track is no added track";
}

} // namespace
