// Fuzz target for the settings loader: any bytes as the settings file
// (a damaged or hand-edited one), loaded, saved and loaded again. What was
// saved must read back the same.
#include "MCPreferences.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("kestrane.ini"));
    QFile file(path);
    if (size > 16 * 1024 || !file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char *>(data), qint64(size));
    file.close();
    qsizetype presets = 0;
    QUrl saveFolder;
    {
        MCPreferences loaded(path);
        if (!loaded.savePreferencesToDefaults())
            return 0;
        presets = loaded.userPresetSettingsList.size();
        saveFolder = loaded.saveDirectoryURL;
    }
    const MCPreferences reread(path);
    if (reread.userPresetSettingsList.size() != presets || reread.saveDirectoryURL != saveFolder)
        std::abort();
    return 0;
}
