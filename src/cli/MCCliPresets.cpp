#include "MCCliPresets.h"

#include "MCPreferences.h"
#include "MCPresetCatalog.h"
#include "MCPresetSelections.h"
#include "MCPresetsController.h"
#include "MCSelectionController.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>
#include <memory>

namespace {

using Kind = MCPresetCatalog::Kind;
using P = MCPresetSelections;

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
}

int fail(int status, const QString &text)
{
    print(stderr, QStringLiteral("kestrane-cli: %1\n").arg(text));
    return status;
}

// "none", "all", a track number, or properties "lang=English,codec=ac3,channels=stereo".
std::optional<QVariantMap> filterFrom(const QString &text, bool audio, QString *error)
{
    const QString any = QString();
    if (text == QLatin1String("none"))
        return audio ? P::audioFilter(P::choiceNone, QStringLiteral("1"), any, any, any)
                     : P::subtitleFilter(P::choiceNone, QStringLiteral("1"), any, any);
    if (text == QLatin1String("all"))
        return audio ? P::audioFilter(P::choiceAll, any, any, any, any) : P::subtitleFilter(P::choiceAll, any, any, any);
    bool isNumber = false;
    if (const int number = text.toInt(&isNumber); isNumber && number > 0) {
        return audio ? P::audioFilter(P::choiceAudioNumber, text, P::anyLanguage, P::anyCodec, P::anyType)
                     : P::subtitleFilter(P::choiceSubtitleNumber, text, P::anyLanguage, P::anyCodec);
    }
    QString language = P::anyLanguage;
    QString codec = P::anyCodec;
    QString channels = P::anyType;
    for (const QString &part : text.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QString key = part.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = part.section(QLatin1Char('='), 1).trimmed();
        if (key == QLatin1String("lang") && !value.isEmpty())
            language = value;
        else if (key == QLatin1String("codec") && !value.isEmpty())
            codec = value;
        else if (audio && key == QLatin1String("channels") && value == QLatin1String("stereo"))
            channels = P::stereoOnly;
        else if (audio && key == QLatin1String("channels") && value == QLatin1String("surround"))
            channels = P::surroundOnly;
        else {
            *error = QStringLiteral("invalid filter '%1' (none, all, a track number, or lang=...,codec=...%2)")
                         .arg(text, audio ? QStringLiteral(",channels=stereo|surround") : QString());
            return std::nullopt;
        }
    }
    return audio ? P::audioFilter(P::choiceProperties, QStringLiteral("1"), language, codec, channels)
                 : P::subtitleFilter(P::choiceProperties, QStringLiteral("1"), language, codec);
}

QString kindName(Kind kind)
{
    return kind == Kind::Selection ? QStringLiteral("selection") : QStringLiteral("settings");
}

} // namespace

MCCliPresets::MCCliPresets(const MCCliOptions &options)
    : m_options(options)
{
}

QVariantMap MCCliPresets::settingsRecord(const MCCliOptions &o)
{
    QVariantMap record{{QStringLiteral("pTypeOfProcessIndex"), 0}};
    if (!o.device.isEmpty())
        record.insert(QStringLiteral("pDevice"), o.device);
    static const QStringList videoRows{QStringLiteral("passthru"), QStringLiteral("mpeg4"), QStringLiteral("mpeg4-2pass")};
    if (!o.video.isEmpty())
        record.insert(QStringLiteral("pVideoActionIndex"), videoRows.indexOf(o.video));
    if (!o.bitrate.isEmpty()) {
        record.insert(QStringLiteral("pVideoBitRate"), o.bitrate);
        record.insert(QStringLiteral("pVideoBitRateIndex"), 1);
    }
    if (!o.width.isEmpty()) {
        record.insert(QStringLiteral("pWidth"), o.width);
        record.insert(QStringLiteral("pWidthIndex"), 1);
    }
    // Stereo: passthru or MP3; surround: passthru, MP3 or AC-3 5.1.
    if (!o.audio.isEmpty()) {
        record.insert(QStringLiteral("pStereoActionIndex"), o.audio == QLatin1String("passthru") ? 0 : 1);
        record.insert(QStringLiteral("pSurroundActionIndex"), static_cast<int>(QStringList{QStringLiteral("passthru"), QStringLiteral("mp3"),
                                                                                           QStringLiteral("ac3")}
                                                                                   .indexOf(o.audio)));
    }
    if (!o.audioBitrate.isEmpty())
        record.insert(o.audio == QLatin1String("ac3") ? QStringLiteral("pSurroundBitRate") : QStringLiteral("pStereoBitRate"), o.audioBitrate);
    if (o.stereoCopy)
        record.insert(QStringLiteral("pAudioAddStereo"), true);
    if (!o.subtitles.isEmpty())
        record.insert(QStringLiteral("pSubAction"), o.subtitles == QLatin1String("burn") ? QStringLiteral("Burn (hard)") : QStringLiteral("Extract"));
    return record;
}

std::optional<QVariantMap> MCCliPresets::selectionRecord(const MCCliOptions &o, QString *error)
{
    QVariantMap record{{QStringLiteral("pAudioFilterMode"), P::modeApplyAll}, {QStringLiteral("pSubtitleFilterMode"), P::modeApplyAll}};
    const auto filters = [error](const QStringList &texts, bool audio) -> std::optional<QVariantList> {
        QVariantList list;
        for (const QString &text : texts) {
            const std::optional<QVariantMap> filter = filterFrom(text, audio, error);
            if (!filter)
                return std::nullopt;
            list << *filter;
        }
        return list;
    };
    const std::optional<QVariantList> audio = filters(o.audioFilters, true);
    const std::optional<QVariantList> subtitles = filters(o.subtitleFilters, false);
    if (!audio || !subtitles)
        return std::nullopt;
    // Left out, a kind takes the new preset's defaults: the first audio
    // track and no subtitle.
    if (!audio->isEmpty())
        record.insert(QStringLiteral("pAudioFilterArray"), *audio);
    if (!subtitles->isEmpty())
        record.insert(QStringLiteral("pSubtitleFilterArray"), *subtitles);
    return record;
}

int MCCliPresets::run()
{
    const std::unique_ptr<MCPreferences> preferences = m_options.settingsFile.isEmpty()
                                                           ? std::make_unique<MCPreferences>()
                                                           : std::make_unique<MCPreferences>(m_options.settingsFile);
    MCSelectionController rules;
    MCPresetsController store(preferences.get(), &rules);
    rules.initialize();
    rules.setPresetsController(&store);
    store.initialize();
    MCPresetCatalog catalog(store);

    const QString action = m_options.files.first();
    const QString name = m_options.files.value(1);
    if (action == QLatin1String("list")) {
        for (const Kind kind : {Kind::Selection, Kind::Settings}) {
            for (const QString &each : catalog.names(kind)) {
                const bool own = catalog.record(kind, each).value(QStringLiteral("isEditable")).toBool();
                print(stdout, QStringLiteral("%1\t%2\t%3\n").arg(kindName(kind), each, own ? QStringLiteral("user") : QStringLiteral("built-in")));
            }
        }
        return 0;
    }
    if (action == QLatin1String("show")) {
        for (const Kind kind : {Kind::Selection, Kind::Settings}) {
            QVariantMap record = catalog.record(kind, name);
            if (record.isEmpty())
                continue;
            record.insert(QStringLiteral("kind"), kindName(kind));
            print(stdout, QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(record)).toJson(QJsonDocument::Indented)));
            return 0;
        }
        return fail(1, QStringLiteral("unknown preset '%1'").arg(name));
    }
    if (action == QLatin1String("remove")) {
        const QString why = catalog.remove(name);
        return why.isEmpty() ? 0 : fail(1, why);
    }
    QString why;
    std::optional<QVariantMap> record;
    Kind kind = Kind::Settings;
    if (action == QLatin1String("add-settings")) {
        record = settingsRecord(m_options);
    } else {
        kind = Kind::Selection;
        record = selectionRecord(m_options, &why);
        if (!record)
            return fail(2, why);
    }
    record->insert(QStringLiteral("pName"), name);
    why = catalog.add(kind, *record);
    return why.isEmpty() ? 0 : fail(1, why);
}
