// Fuzz target for reading mediainfo's report: any text as the report of a
// Matroska file, read for its tracks and its properties and printed back.
#include "MCMediaInfoReport.h"
#include "MCVideoFile.h"

#include <QUrl>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 64 * 1024)
        return 0;
    const QStringList lines = MCMediaInfoReport::lines(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));
    MCVideoFile file;
    const MCTrackListResult tracks = file.trackListFromReport(lines, QUrl::fromLocalFile(QStringLiteral("/fuzz/clip.mkv")));
    file.filePropertiesFromReport(lines);
    if (tracks.ok())
        file.trackList = tracks.tracks;
    (void)file.stringFromFileProperties();
    for (const QString &line : lines)
        (void)MCMediaInfoReport::leadingInteger(MCMediaInfoReport::keyValue(line).value);
    return 0;
}
