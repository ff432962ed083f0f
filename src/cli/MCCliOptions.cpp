#include "MCCliOptions.h"

#include "MCMp4TabRules.h"
#include "MCWords.h"

#include <QRegularExpression>

#include <functional>

namespace {

using Setter = std::function<std::optional<QString>(MCCliOptions &, const QString &)>;

struct OptionRule
{
    QString name;
    bool takesValue;
    QStringList commands; // empty: accepted with every command
    Setter set;
};

std::optional<QString> oneOf(const QString &option, const QString &value, const QStringList &allowed, QString &field)
{
    if (!allowed.contains(value))
        return QStringLiteral("invalid argument '%1' for '%2' (valid: %3)").arg(value, option, allowed.join(QStringLiteral(", ")));
    field = value;
    return std::nullopt;
}

std::optional<QString> positiveNumber(const QString &option, const QString &value, QString &field)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    if (!ok || number <= 0)
        return QStringLiteral("invalid argument '%1' for '%2' (a positive whole number)").arg(value, option);
    field = QString::number(number);
    return std::nullopt;
}

std::optional<QString> trackList(const QString &value, MCCliOptions &options)
{
    QList<int> positions;
    for (const QString &part : value.split(QLatin1Char(','))) {
        bool ok = false;
        const int position = part.trimmed().toInt(&ok);
        if (!ok || position < 1)
            return QStringLiteral("invalid argument '%1' for '--tracks' (track numbers from 1, e.g. 1,2,4)").arg(value);
        if (!positions.contains(position))
            positions << position;
    }
    options.tracks = positions;
    return std::nullopt;
}

std::optional<QString> timeRange(const QString &value, MCCliOptions &options)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{1,2}:[0-5]\\d:[0-5]\\d)-(\\d{1,2}:[0-5]\\d:[0-5]\\d)$"));
    const QRegularExpressionMatch match = pattern.match(value);
    if (!match.hasMatch())
        return QStringLiteral("invalid argument '%1' for '--time' (HH:MM:SS-HH:MM:SS)").arg(value);
    const auto padded = [](const QString &time) { return time.size() == 7 ? QLatin1Char('0') + time : time; };
    options.startTime = padded(match.captured(1));
    options.endTime = padded(match.captured(2));
    return std::nullopt;
}

std::optional<QString> aspectRatio(const QString &value, MCCliOptions &options)
{
    static const QRegularExpression pattern(QStringLiteral("^([1-9]\\d{0,4}):([1-9]\\d{0,4})$"));
    const QRegularExpressionMatch match = pattern.match(value);
    if (!match.hasMatch())
        return QStringLiteral("invalid argument '%1' for '--par' (W:H, whole numbers above 0, e.g. 40:33)").arg(value);
    options.parWidth = match.captured(1);
    options.parHeight = match.captured(2);
    return std::nullopt;
}

const QStringList kAviDevices{QStringLiteral("General"), QStringLiteral("DivX DVD"), QStringLiteral("PS3"), QStringLiteral("Xbox")};

// A device name as the target's list writes it (typed in any case), checked
// once the target is known.
std::optional<QString> checkDevice(MCCliOptions &options)
{
    if (options.device.isEmpty())
        return std::nullopt;
    if (options.intoMkv())
        return QStringLiteral("--device is for AVI and MP4 conversions");
    const QStringList &devices = options.intoMp4() ? MCMp4TabRules::deviceList() : kAviDevices;
    for (const QString &device : devices) {
        if (device.compare(options.device, Qt::CaseInsensitive) == 0) {
            options.device = device;
            return std::nullopt;
        }
    }
    return QStringLiteral("invalid argument '%1' for '--device'%2 (valid: %3)")
        .arg(options.device, options.intoMp4() ? QStringLiteral(" into MP4") : QString(), devices.join(QStringLiteral(", ")));
}

const QStringList kConvert{QStringLiteral("convert")};
// The conversion choices also make a settings preset.
const QStringList kChoices{QStringLiteral("convert"), QStringLiteral("presets")};
const QStringList kPresetActions{QStringLiteral("list"), QStringLiteral("show"), QStringLiteral("add-settings"),
                                 QStringLiteral("add-selection"), QStringLiteral("remove")};

const QList<OptionRule> &optionRules()
{
    static const QList<OptionRule> rules{
        {QStringLiteral("help"), false, {}, [](MCCliOptions &o, const QString &) { o.help = true; return std::optional<QString>(); }},
        {QStringLiteral("version"), false, {}, [](MCCliOptions &o, const QString &) { o.version = true; return std::optional<QString>(); }},
        {QStringLiteral("dry-run"), false, {}, [](MCCliOptions &o, const QString &) { o.dryRun = true; return std::optional<QString>(); }},
        {QStringLiteral("overwrite"), false, {}, [](MCCliOptions &o, const QString &) { o.overwrite = true; return std::optional<QString>(); }},
        {QStringLiteral("resume"), false, {}, [](MCCliOptions &o, const QString &) { o.resume = true; return std::optional<QString>(); }},
        {QStringLiteral("quiet"), false, {}, [](MCCliOptions &o, const QString &) { o.quiet = true; return std::optional<QString>(); }},
        {QStringLiteral("settings"), true, {}, [](MCCliOptions &o, const QString &v) { o.settingsFile = v; return std::optional<QString>(); }},
        {QStringLiteral("save-dir"), true, {}, [](MCCliOptions &o, const QString &v) { o.saveDir = v; return std::optional<QString>(); }},
        {QStringLiteral("json"), false, {QStringLiteral("inspect")}, [](MCCliOptions &o, const QString &) { o.json = true; return std::optional<QString>(); }},
        {QStringLiteral("selection-preset"), true, {QStringLiteral("convert"), QStringLiteral("extract"), QStringLiteral("watch")},
         [](MCCliOptions &o, const QString &v) { o.selectionPreset = v; return std::optional<QString>(); }},
        {QStringLiteral("settings-preset"), true, {QStringLiteral("convert"), QStringLiteral("watch")}, [](MCCliOptions &o, const QString &v) { o.settingsPreset = v; return std::optional<QString>(); }},
        {QStringLiteral("tracks"), true, {QStringLiteral("convert"), QStringLiteral("extract"), QStringLiteral("remove-tracks")},
         [](MCCliOptions &o, const QString &v) { return trackList(v, o); }},
        {QStringLiteral("to"), true, kConvert,
         [](MCCliOptions &o, const QString &v) {
             return oneOf(QStringLiteral("--to"), v, {QStringLiteral("avi"), QStringLiteral("mkv"), QStringLiteral("mp4")}, o.target);
         }},
        // Which devices are valid depends on --to, which may follow.
        {QStringLiteral("device"), true, kChoices, [](MCCliOptions &o, const QString &v) { o.device = v; return std::optional<QString>(); }},
        {QStringLiteral("video"), true, kChoices,
         [](MCCliOptions &o, const QString &v) {
             return oneOf(QStringLiteral("--video"), v, {QStringLiteral("passthru"), QStringLiteral("mpeg4"), QStringLiteral("mpeg4-2pass")}, o.video);
         }},
        {QStringLiteral("bitrate"), true, kChoices, [](MCCliOptions &o, const QString &v) { return positiveNumber(QStringLiteral("--bitrate"), v, o.bitrate); }},
        {QStringLiteral("width"), true, kChoices, [](MCCliOptions &o, const QString &v) { return positiveNumber(QStringLiteral("--width"), v, o.width); }},
        {QStringLiteral("audio"), true, kChoices,
         [](MCCliOptions &o, const QString &v) {
             // Which of them the target takes is checked once every option is read.
             return oneOf(QStringLiteral("--audio"), v,
                          {QStringLiteral("passthru"), QStringLiteral("mp3"), QStringLiteral("ac3"), QStringLiteral("aac"),
                           QStringLiteral("aac-5.1")},
                          o.audio);
         }},
        {QStringLiteral("audio-bitrate"), true, kChoices,
         [](MCCliOptions &o, const QString &v) { return oneOf(QStringLiteral("--audio-bitrate"), v, MCCliOptions::audioBitRates(), o.audioBitrate); }},
        {QStringLiteral("stereo-copy"), false, kChoices, [](MCCliOptions &o, const QString &) { o.stereoCopy = true; return std::optional<QString>(); }},
        {QStringLiteral("subtitles"), true, kChoices,
         [](MCCliOptions &o, const QString &v) {
             return oneOf(QStringLiteral("--subtitles"), v,
                          {QStringLiteral("burn"), QStringLiteral("extract"), QStringLiteral("mux"), QStringLiteral("drop")}, o.subtitles);
         }},
        {QStringLiteral("remux-header-removal"), true, kConvert,
         [](MCCliOptions &o, const QString &v) {
             return oneOf(QStringLiteral("--remux-header-removal"), v, {QStringLiteral("yes"), QStringLiteral("no")}, o.remuxHeaderRemoval);
         }},
        {QStringLiteral("audio-filter"), true, {QStringLiteral("presets")},
         [](MCCliOptions &o, const QString &v) { o.audioFilters << v; return std::optional<QString>(); }},
        {QStringLiteral("subtitle-filter"), true, {QStringLiteral("presets")},
         [](MCCliOptions &o, const QString &v) { o.subtitleFilters << v; return std::optional<QString>(); }},
        {QStringLiteral("time"), true, {QStringLiteral("split")}, [](MCCliOptions &o, const QString &v) { return timeRange(v, o); }},
        {QStringLiteral("size"), true, {QStringLiteral("split")}, [](MCCliOptions &o, const QString &v) { return positiveNumber(QStringLiteral("--size"), v, o.sizeMB); }},
        {QStringLiteral("pieces"), true, {QStringLiteral("split")}, [](MCCliOptions &o, const QString &v) { return positiveNumber(QStringLiteral("--pieces"), v, o.pieces); }},
        {QStringLiteral("duration"), true, {QStringLiteral("split")},
         [](MCCliOptions &o, const QString &v) { return positiveNumber(QStringLiteral("--duration"), v, o.durationSeconds); }},
        {QStringLiteral("par"), true, {QStringLiteral("par")}, [](MCCliOptions &o, const QString &v) { return aspectRatio(v, o); }},
    };
    return rules;
}

const OptionRule *findRule(const QString &name)
{
    for (const OptionRule &rule : optionRules()) {
        if (rule.name == name)
            return &rule;
    }
    return nullptr;
}

struct PendingOption
{
    const OptionRule *rule;
    QString value;
};

std::optional<QString> checkPresetsRules(const MCCliOptions &options)
{
    const QString action = options.files.value(0);
    if (!kPresetActions.contains(action))
        return QStringLiteral("presets needs one of: %1").arg(kPresetActions.join(QStringLiteral(", ")));
    const qsizetype wanted = action == QStringLiteral("list") ? 1 : 2;
    if (options.files.size() != wanted)
        return wanted == 1 ? QStringLiteral("presets list takes no name") : QStringLiteral("presets %1 takes one NAME").arg(action);
    const bool filters = !options.audioFilters.isEmpty() || !options.subtitleFilters.isEmpty();
    if (options.hasExplicitSettings() && action != QStringLiteral("add-settings"))
        return QStringLiteral("the conversion options apply to presets add-settings only");
    if (filters && action != QStringLiteral("add-selection"))
        return QStringLiteral("--audio-filter and --subtitle-filter apply to presets add-selection only");
    if (options.dryRun)
        return QStringLiteral("presets cannot be a dry run");
    return std::nullopt;
}

// The choices each conversion target takes.
std::optional<QString> checkTargetChoices(const MCCliOptions &options)
{
    // MKV and MP4 have the same audio and subtitle rows.
    const bool muxed = options.intoMkv() || options.intoMp4();
    const QStringList audio = muxed
                                  ? QStringList{QStringLiteral("passthru"), QStringLiteral("aac"), QStringLiteral("aac-5.1"), QStringLiteral("ac3")}
                                  : QStringList{QStringLiteral("passthru"), QStringLiteral("mp3"), QStringLiteral("ac3")};
    const QStringList subtitles = muxed ? QStringList{QStringLiteral("mux"), QStringLiteral("drop")}
                                        : QStringList{QStringLiteral("burn"), QStringLiteral("extract")};
    const QString into = options.targetTab();
    if (!options.audio.isEmpty() && !audio.contains(options.audio))
        return QStringLiteral("invalid argument '%1' for '--audio' into %2 (valid: %3)").arg(options.audio, into, audio.join(QStringLiteral(", ")));
    if (!options.subtitles.isEmpty() && !subtitles.contains(options.subtitles))
        return QStringLiteral("invalid argument '%1' for '--subtitles' into %2 (valid: %3)")
            .arg(options.subtitles, into, subtitles.join(QStringLiteral(", ")));
    if (muxed && !options.audioBitrate.isEmpty())
        return QStringLiteral("--audio-bitrate is for AVI conversions (into %1 each audio choice has its own bit rate)").arg(into);
    return std::nullopt;
}

std::optional<QString> checkCommandRules(MCCliOptions &options)
{
    if (const std::optional<QString> error = checkDevice(options))
        return error;
    if (options.command == QStringLiteral("presets"))
        return checkPresetsRules(options);
    if (options.command == QStringLiteral("convert")) {
        if (const std::optional<QString> error = checkTargetChoices(options))
            return error;
    }
    if (options.command == QStringLiteral("remove-tracks") && !options.tracks)
        return QStringLiteral("remove-tracks needs --tracks LIST (the tracks to remove)");
    if (options.command == QStringLiteral("split")) {
        const bool byTime = !options.startTime.isEmpty();
        const bool bySize = !options.sizeMB.isEmpty() || !options.pieces.isEmpty();
        const bool byDuration = !options.durationSeconds.isEmpty();
        if (int(byTime) + int(bySize) + int(byDuration) != 1)
            return QStringLiteral("split needs one of --time HH:MM:SS-HH:MM:SS, --size MB --pieces N or --duration SECONDS");
        if (bySize && (options.sizeMB.isEmpty() || options.pieces.isEmpty()))
            return QStringLiteral("split by size needs both --size MB and --pieces N");
        if (options.files.size() != 1)
            return QStringLiteral("split takes exactly one file");
    }
    if (options.command == QStringLiteral("add-audio") && options.files.size() < 2)
        return QStringLiteral("add-audio needs an AVI file and at least one audio file");
    if (options.command == QStringLiteral("add-tracks") && options.files.size() < 2)
        return QStringLiteral("add-tracks needs an MP4 file and at least one audio or subtitle file");
    if (options.command == QStringLiteral("par") && options.parWidth.isEmpty())
        return QStringLiteral("par needs --par W:H (the pixel aspect ratio, e.g. 40:33)");
    if (options.command == QStringLiteral("join") && options.files.size() < 2)
        return QStringLiteral("join needs at least two files");
    if ((options.command == QStringLiteral("extract") || options.command == QStringLiteral("remux")
         || options.command == QStringLiteral("remove-tracks"))
        && options.files.size() != 1)
        return QStringLiteral("%1 takes exactly one file").arg(options.command);
    if (options.command == QStringLiteral("watch")) {
        if (options.files.size() != 1)
            return QStringLiteral("watch takes exactly one folder");
        if (options.dryRun)
            return QStringLiteral("watch cannot be a dry run");
    }
    if (options.files.isEmpty())
        return QStringLiteral("%1: no file given").arg(options.command);
    return std::nullopt;
}

} // namespace

bool MCCliOptions::hasExplicitSettings() const
{
    return !device.isEmpty() || !video.isEmpty() || !bitrate.isEmpty() || !width.isEmpty() || !audio.isEmpty()
           || !audioBitrate.isEmpty() || stereoCopy || !subtitles.isEmpty() || !target.isEmpty();
}

QString MCCliOptions::targetTab() const
{
    if (intoMkv())
        return MCWords::tabMkv;
    return intoMp4() ? MCWords::tabMp4 : MCWords::tabAvi;
}

const QStringList &MCCliOptions::commands()
{
    static const QStringList names{QStringLiteral("inspect"), QStringLiteral("convert"), QStringLiteral("join"), QStringLiteral("split"),
                                   QStringLiteral("extract"), QStringLiteral("remove-tracks"), QStringLiteral("add-audio"),
                                   QStringLiteral("add-tracks"), QStringLiteral("par"), QStringLiteral("remux"), QStringLiteral("watch"), QStringLiteral("presets")};
    return names;
}

const QStringList &MCCliOptions::audioBitRates()
{
    static const QStringList rates{QStringLiteral("128"), QStringLiteral("160"), QStringLiteral("192"), QStringLiteral("224"),
                                   QStringLiteral("256"), QStringLiteral("320"), QStringLiteral("384"), QStringLiteral("448"),
                                   QStringLiteral("512"), QStringLiteral("640")};
    return rates;
}

std::optional<QString> MCCliOptions::parse(const QStringList &arguments, MCCliOptions &out)
{
    QList<PendingOption> pending;
    bool optionsEnded = false;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        if (optionsEnded || !argument.startsWith(QLatin1Char('-')) || argument == QStringLiteral("-")) {
            if (out.command.isEmpty() && !optionsEnded)
                out.command = argument;
            else
                out.files << argument;
            continue;
        }
        if (argument == QStringLiteral("--")) {
            optionsEnded = true;
            continue;
        }
        if (argument == QStringLiteral("-h")) {
            out.help = true;
            continue;
        }
        if (!argument.startsWith(QStringLiteral("--")))
            return QStringLiteral("invalid option -- '%1'").arg(argument.mid(1));
        const qsizetype equals = argument.indexOf(QLatin1Char('='));
        const QString name = argument.mid(2, equals < 0 ? -1 : equals - 2);
        const OptionRule *rule = findRule(name);
        if (!rule)
            return QStringLiteral("unrecognized option '--%1'").arg(name);
        QString value;
        if (rule->takesValue) {
            if (equals >= 0) {
                value = argument.mid(equals + 1);
            } else if (i + 1 < arguments.size()) {
                value = arguments.at(++i);
            } else {
                return QStringLiteral("option '--%1' requires an argument").arg(name);
            }
        } else if (equals >= 0) {
            return QStringLiteral("option '--%1' doesn't allow an argument").arg(name);
        }
        if (rule->commands.isEmpty()) {
            if (const std::optional<QString> error = rule->set(out, value))
                return error;
            continue;
        }
        pending << PendingOption{rule, value};
    }
    if (out.help || out.version)
        return std::nullopt;
    if (out.resume) {
        // The jobs come from the journal, with the files and choices they had.
        if (!out.command.isEmpty() || !pending.isEmpty())
            return QStringLiteral("--resume takes no command and no file");
        return std::nullopt;
    }
    if (out.command.isEmpty())
        return QStringLiteral("no command given");
    if (!commands().contains(out.command))
        return QStringLiteral("unknown command '%1'").arg(out.command);
    for (const PendingOption &option : pending) {
        if (!option.rule->commands.contains(out.command))
            return QStringLiteral("option '--%1' does not apply to %2").arg(option.rule->name, out.command);
        if (const std::optional<QString> error = option.rule->set(out, option.value))
            return error;
    }
    return checkCommandRules(out);
}
