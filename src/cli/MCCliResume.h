#pragma once

class MCAppDelegate;

// Jobs a killed run left unfinished (the journal keeps them): --resume
// queues them again; any other run says they exist and how to resume them.
// Either way, what they had begun to write is removed first.
class MCCliResume
{
public:
    // Answers how many jobs were queued again.
    static int runAgain(MCAppDelegate &app);
    static void tellOfInterruptedJobs(MCAppDelegate &app);
};
