#pragma once

#include <QJsonObject>

class MCVideoFile;
class MCVideoTrack;

// The inspection of a file as JSON: the file's properties, with every field
// of every track record under "tracks" (flags as booleans, numbers kept as
// the texts the tools gave).
namespace MCJsonReport {
QJsonObject fileObject(const MCVideoFile &file);
QJsonObject trackObject(const MCVideoTrack &track);
} // namespace MCJsonReport
