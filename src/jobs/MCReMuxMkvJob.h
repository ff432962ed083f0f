#pragma once

#include "MCJob.h"

// Remuxes one MKV file without header-removal compression.
class MCReMuxMkvJob : public MCJob
{
    Q_OBJECT
public:
    explicit MCReMuxMkvJob(QObject *parent = nullptr);

    void startJob() override;
    // Every step keeps its row, "Complete" included; a tick without news
    // shows the step's row of the tick before.
    void monitorStartJob();

    static void registerJobType();

};
