#pragma once

#include "MCMkvmergeStep.h"

// Writes an MKV file again with header-removal compression switched off for
// every track (many players reject such tracks).
class MCMkvReMuxer : public MCMkvmergeStep
{
public:
    MCMkvReMuxer();

    QString startConversionFor(const MCSelectionPtr &selection) override;
};
