#pragma once

#include "MCEditJob.h"

#include <QList>
#include <QUrl>

// File- and track-level edits of MP4 files with MP4Box: extracting tracks,
// removing them, adding tracks, joining files, splitting one, and setting
// the picture's pixel aspect ratio. A join MP4Box refuses is offered once
// more, on cleaned copies of the files.
class MCEditMp4Job : public MCEditJob
{
    Q_OBJECT
public:
    explicit MCEditMp4Job(QObject *parent = nullptr);

    void startJob() override;
    // Track removal's start, after its "Copying Original" row is shown: the
    // copy is made as the step starts.
    void continueTrackRemoval();
    // Rows (step, status) for every step, "Complete" included; a tick
    // without news repeats the step's row.
    void monitorStartJob();

    // The join retry: the alert, its answer, the cleaned copies, their
    // monitor and the join of the copies.
    void joinErrorAlert();
    void joinErrorAlertClosed(int returnCode);
    void retryJoinRemoveSysTracks();
    void monitorRemoveSysTrack();
    void retryJoin();

    // How often the "Bad Parameter Error" alert has been shown.
    int joinErrorCount() const { return m_joinErrorCount; }
    // The cleaned copies a retry joins.
    QList<QUrl> retryJoinURLsList;

    static void registerJobType();

protected:
    bool recoverFromStepFailure(const MCConverterPtr &failedStep) override;

private:
    void startTrackExtraction();
    void startTrackAddition();
    // Why a track would not make it into the file muxed again ("" when it would).
    static QString additionRefusal(const MCVideoTrack &track);
    // What each kind of edit leaves: checked before it takes its name.
    MCResultExpectation expectedResult() const;
    MCResultExpectation expectedRemoval() const;

    int m_joinErrorCount = 0;
    // The refused join, whose reason ends the job when no retry follows.
    MCConverterPtr m_refusedJoin;
    QString m_refusedJoinReason;
};
