#include "MCJobTypes.h"

#include "MCConvertToAviJob.h"
#include "MCConvertToMkvJob.h"
#include "MCConvertToMp4Job.h"
#include "MCEditAviJob.h"
#include "MCEditMkvJob.h"
#include "MCEditMp4Job.h"
#include "MCReMuxMkvJob.h"

void MCJobTypes::registerAll()
{
    MCConvertToAviJob::registerJobType();
    MCConvertToMkvJob::registerJobType();
    MCConvertToMp4Job::registerJobType();
    MCEditAviJob::registerJobType();
    MCEditMkvJob::registerJobType();
    MCEditMp4Job::registerJobType();
    MCReMuxMkvJob::registerJobType();
}
