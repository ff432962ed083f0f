// Fuzz target for the command line's option reading: the input's lines are
// the arguments. An accepted command line must name a known command (or
// ask for help, the version or a resume) and keep the rules of its command.
#include "MCCliOptions.h"

#include <QByteArray>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 4096)
        return 0;
    QStringList arguments;
    for (const QByteArray &line : QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)).split('\n'))
        arguments << QString::fromUtf8(line);
    MCCliOptions options;
    if (MCCliOptions::parse(arguments, options))
        return 0;
    if (options.help || options.version || options.resume)
        return 0;
    const bool known = MCCliOptions::commands().contains(options.command);
    const bool filesGiven = !options.files.isEmpty();
    const bool splitOneWay = options.command != QStringLiteral("split") || options.startTime.isEmpty() != options.sizeMB.isEmpty();
    if (!known || !filesGiven || !splitOneWay)
        std::abort();
    return 0;
}
