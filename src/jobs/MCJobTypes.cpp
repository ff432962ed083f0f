#include "MCJobTypes.h"

#include "MCConvertToAviJob.h"

void MCJobTypes::registerAll()
{
    MCConvertToAviJob::registerJobType();
}
