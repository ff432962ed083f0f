#include "MCJobTypes.h"

#include "MCConvertToAviJob.h"
#include "MCConvertToMkvJob.h"
#include "MCEditAviJob.h"
#include "MCEditMkvJob.h"
#include "MCEditMp4Job.h"
#include "MCReMuxMkvJob.h"

void MCJobTypes::registerAll()
{
    MCConvertToAviJob::registerJobType();
    MCConvertToMkvJob::registerJobType();
    MCEditAviJob::registerJobType();
    MCEditMkvJob::registerJobType();
    MCEditMp4Job::registerJobType();
    MCReMuxMkvJob::registerJobType();
}
