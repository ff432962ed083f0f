// Fuzz target for stored presets: any dictionary (as a damaged or
// hand-edited settings file could hold; the input is read as JSON) is read
// as a track-selection and a settings preset, written back and applied to a
// small file.
#include "MCPresetSelections.h"
#include "MCPresetSettings.h"
#include "RulesTestSupport.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QVariantMap>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

// A film with surround and stereo sound and a subtitle, loaded into the rules.
struct World : rulestest::Rules
{
    World()
    {
        file = rulestest::makeFile({{"Video", "h264"}, {"Audio", "ac3", "6"}, {"Audio", "mp3", "2", "French"}, {"Subtitle", "srt"}});
        file->theWidth = QStringLiteral("1280");
        file->theHeight = QStringLiteral("720");
        file->theVideoBitRate = QStringLiteral("4000");
        load(file);
    }

    std::shared_ptr<MCVideoFile> file;
};

World *world = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication app(*argc, *argv);
    world = new World; // lives for the whole run
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 8192)
        return 0;
    const QVariantMap record = QJsonDocument::fromJson(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size))).toVariant().toMap();

    MCPresetSelections selections(world->file, &world->rules);
    selections.initFromRecord(record);
    MCPresetSelections reread(world->file, &world->rules);
    reread.initFromRecord(selections.makeRecord());
    selections.makeSelections();

    MCPresetSettings settings(world->file, &world->rules);
    settings.initFromRecord(record);
    settings.makeRecord();
    settings.makeSettings();
    QCoreApplication::processEvents();
    return 0;
}
