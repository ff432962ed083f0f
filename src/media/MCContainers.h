#pragma once

#include <QString>

// Kinds of container told by a file's extension (any letter case), where
// the tools treat them alike.
namespace MCContainers {

// MPEG transport streams: broadcast and camera recordings, Blu-ray files.
bool isTransportStream(const QString &extension);
// MPEG program streams: DVD VOB files and MPEG-1/2 files.
bool isProgramStream(const QString &extension);

} // namespace MCContainers
