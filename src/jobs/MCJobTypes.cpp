#include "MCJobTypes.h"

#include "MCConvertToAviJob.h"
#include "MCEditAviJob.h"
#include "MCReMuxMkvJob.h"

void MCJobTypes::registerAll()
{
    MCConvertToAviJob::registerJobType();
    MCEditAviJob::registerJobType();
    MCReMuxMkvJob::registerJobType();
}
