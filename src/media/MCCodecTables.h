#pragma once

#include "MCVideoFile.h"

// The three codec classification tables, in class order. A later class that
// also matches a codec value wins, so the order matters.
namespace MCCodecTables {
MCCodecTable video();
MCCodecTable audio();
MCCodecTable subtitle();
} // namespace MCCodecTables
