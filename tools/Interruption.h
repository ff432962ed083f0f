#pragma once

namespace mediatool {

// SIGTERM, SIGINT and SIGHUP only raise a flag; the copy and encode loops
// look at it between packets and unwind, so every unfinished output is
// discarded on the way out. SIGSTOP/SIGCONT need nothing: the work simply
// pauses with the process.
void installInterruptionHandlers();

// Throws ToolError when a stop signal arrived.
void throwIfInterrupted();

} // namespace mediatool
