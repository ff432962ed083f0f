#pragma once

#include "MCAlertCenter.h"

#include <QString>

#include <optional>

// Whether a job may write into its save folder; when it may not, the alert
// that says why in words the user can act on.
namespace MCSaveFolderCheck {

std::optional<MCAlert> refusal(const QString &folderPath);

} // namespace MCSaveFolderCheck
