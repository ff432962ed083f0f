// Fuzz target for stored presets: arbitrary dictionaries (as a damaged or
// hand-edited settings file could hold) are read as track-selection and
// settings presets, written back and applied to a small file.
#include "MCPresetSelections.h"
#include "MCPresetSettings.h"
#include "MCSelectionController.h"

#include <QCoreApplication>
#include <QVariantList>
#include <QVariantMap>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

const char *const kKeys[] = {
    "pName", "pSelectedVideoTrack", "pSelectedAudioTrack", "pAudioIsByLanguage", "pSelectedAudioLanguage",
    "pSelectedSubtitleTrack", "pSubtitleIsByLanguage", "pSelectedSubtitleLanguage",
    "useFirstIfNoAudioLanguageMatch", "useFirstIfNoSubtitleLanguageMatch", "isEditable", "pAudioFilterMode",
    "pAudioFilterArray", "pSubtitleFilterMode", "pSubtitleFilterArray", "currentTrackChoice",
    "currentTrackNumber", "currentLanguage", "currentCodec", "currentChannels", "pDevice",
    "pTypeOfProcessIndex", "pVideoActionIndex", "pVideoBitRate", "pVideoBitRateIndex", "pWidth", "pWidthIndex",
    "pFPS", "pFPSIndex", "pStereoActionIndex", "pStereoBitRate", "pSurroundActionIndex", "pSurroundBitRate",
    "pAudioAddStereo", "pSubAction"};

const char *const kWords[] = {
    "None", "All", "Audio Track Number", "Subtitle Track Number", "Tracks w/ Properties ...", "Any Language",
    "Any Codec", "Any Type", "Stereo Only", "Surround Only", "Apply All", "Prioritized", "First Track",
    "All Tracks", "By Language", "English", "French", "ac3", "mp3", "srt", "1", "2", "3", "10", "-1", "0",
    "Manual", "DivX DVD", "General", "PS3", "Original", "Burn (hard)", "Extract", "99999999999999999999", ""};

// Reads values out of the fuzzer's bytes; past the end every byte is 0.
class Reader
{
public:
    Reader(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}

    uint8_t byte() { return m_at < m_size ? m_data[m_at++] : 0; }
    bool done() const { return m_at >= m_size; }

    QString text()
    {
        const int length = byte() % 24;
        QByteArray bytes;
        for (int i = 0; i < length && !done(); ++i)
            bytes.append(char(byte()));
        return QString::fromUtf8(bytes);
    }

    QVariant value(int depth)
    {
        switch (byte() % 9) {
        case 0:
        case 1: return QString::fromLatin1(kWords[byte() % std::size(kWords)]);
        case 2: return text();
        case 3: return bool(byte() & 1);
        case 4: {
            qint32 number = 0;
            for (int i = 0; i < 4; ++i)
                number = qint32(quint32(number) << 8 | byte());
            return number;
        }
        case 5: return double(int8_t(byte())) * 1e10;
        case 6: return depth < 3 ? QVariant(list(depth + 1)) : QVariant();
        case 7: return depth < 3 ? QVariant(map(depth + 1)) : QVariant();
        default: return QVariant();
        }
    }

    QVariantList list(int depth)
    {
        QVariantList values;
        const int count = byte() % 5;
        for (int i = 0; i < count && !done(); ++i)
            values.append(value(depth));
        return values;
    }

    QVariantMap map(int depth)
    {
        QVariantMap entries;
        const int count = byte() % 24;
        for (int i = 0; i < count && !done(); ++i) {
            const uint8_t pick = byte();
            const QString key = (pick & 0x80) ? text() : QString::fromLatin1(kKeys[pick % std::size(kKeys)]);
            entries.insert(key, value(depth));
        }
        return entries;
    }

private:
    const uint8_t *m_data;
    size_t m_size, m_at = 0;
};

MCVideoTrackPtr track(const char *type, const char *codec, const char *channels, const char *language)
{
    auto t = std::make_shared<MCVideoTrack>();
    t->trackType = QString::fromLatin1(type);
    t->trackCodec = QString::fromLatin1(codec);
    t->trackNumberOfChannels = QString::fromLatin1(channels);
    t->trackLanguage = QString::fromLatin1(language);
    return t;
}

struct World
{
    World()
    {
        file->theFileName = QStringLiteral("clip.avi");
        file->theFileExtension = QStringLiteral("avi");
        file->theWidth = QStringLiteral("1280");
        file->theHeight = QStringLiteral("720");
        file->theVideoBitRate = QStringLiteral("4000");
        file->trackList = {track("Video", "h264", "0", "English"), track("Audio", "ac3", "6", "English"),
                           track("Audio", "mp3", "2", "French"), track("Subtitle", "srt", "0", "English")};
        rules.initialize();
        rules.setCurrentVideoFile(file);
        rules.currentSelection()->initializeFrom(*file);
    }

    std::shared_ptr<MCVideoFile> file = std::make_shared<MCVideoFile>();
    MCSelectionController rules;
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
    Reader reader(data, size);
    const QVariantMap record = reader.map(0);

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
