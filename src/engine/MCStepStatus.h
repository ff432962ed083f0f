#pragma once

#include <QString>

#include <optional>

// Reading a step's status word ("Waiting", "Pass #2: 37.5%", "Complete"):
// the window's progress bars and the command line's progress lines read it
// the same way.
namespace MCStepStatus {

// The last percentage in the status, held to 0-100; none for a plain word.
std::optional<double> percentIn(const QString &status);

} // namespace MCStepStatus
