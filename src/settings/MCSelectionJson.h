#pragma once

#include "MCSelection.h"

#include <QJsonObject>

// A selection record with its tracks as JSON, so a queued job can be written
// to disk and taken up again after Kestrane was killed. A track that stands
// in several lists is written once and comes back as one track.
namespace MCSelectionJson {

QJsonObject toJson(const MCSelection &selection);
// Unknown keys are ignored and missing ones keep their defaults, so a record
// written by another version still reads.
MCSelectionPtr fromJson(const QJsonObject &object);

} // namespace MCSelectionJson
