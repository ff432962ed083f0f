#include "Mp4BoxCommand.h"

#include "ToolError.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <map>
#include <numeric>
#include <set>

namespace mediatool {
namespace {

const char kUsage[] =
    "usage: MP4Box -add FILE[#ID][:lang=CODE][:name=TITLE][:group=N][:disable][:par=N:D] [-add ...] [-par ID=N:D]\n"
    "              [-keepall] [-new] [-ipod] [-fps RATE] [-isma] [-inter MS] [-tmp FOLDER] FILE\n"
    "       MP4Box -cat FILE -cat FILE [-cat ...] [-isma] [-inter MS] [-tmp FOLDER] -new FILE\n"
    "       MP4Box -splitx START:END | -splits KB [-isma] [-inter MS] [-tmp FOLDER] FILE\n"
    "       MP4Box -rem ID [-rem ID ...] [-isma] [-inter MS] [-tmp FOLDER] FILE\n"
    "       MP4Box FILE -raw ID | -srt ID [-tmp FOLDER]\n"
    "       MP4Box [-isma] [-inter MS] [-par ID=N:D] [-ipod] [-tmp FOLDER] FILE";

[[noreturn]] void refuse(const std::string &message)
{
    throw UsageError(message + "\n" + kUsage);
}

std::optional<long long> wholeNumber(const std::string &text)
{
    if (text.empty() || !std::all_of(text.begin(), text.end(), [](char c) { return std::isdigit(static_cast<unsigned char>(c)); }))
        return std::nullopt;
    if (text.size() > 12)
        return std::nullopt;
    return std::stoll(text);
}

int positiveWhole(const std::string &text, const std::string &what)
{
    const auto value = wholeNumber(text);
    if (!value || *value < 1 || *value > 1'000'000'000)
        throw UsageError(what + " needs a whole number above 0, not \"" + text + "\"");
    return static_cast<int>(*value);
}

std::optional<double> decimalOf(const std::string &text)
{
    if (text.empty() || std::isspace(static_cast<unsigned char>(text.front())))
        return std::nullopt;
    char *end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !std::isfinite(value))
        return std::nullopt;
    return value;
}

// "N:D" with both parts whole numbers above 0.
Ratio ratioOf(const std::string &text, const std::string &what)
{
    const auto colon = text.find(':');
    if (colon == std::string::npos)
        throw UsageError(what + " needs a ratio N:D, not \"" + text + "\"");
    return {positiveWhole(text.substr(0, colon), what), positiveWhole(text.substr(colon + 1), what)};
}

// The track options after a file name, ":key=value" items, with or without
// a leading "#ID". `allowTitle` is false while looking for where a title ends.
class TrackOptionReader
{
public:
    explicit TrackOptionReader(TrackImport &import) : import(import) {}

    void read(const std::string &text, bool allowTitle)
    {
        std::size_t at = 0;
        if (!text.empty() && text.front() == '#') {
            at = std::min(text.find(':'), text.size());
            import.trackId = positiveWhole(text.substr(1, at - 1), "the track number after \"#\"");
        }
        while (at < text.size()) {
            if (text[at] != ':')
                throw UsageError("unexpected \"" + text.substr(at) + "\" in track options");
            at = readItem(text, at + 1, allowTitle);
        }
    }

    static bool reads(const std::string &text, bool allowTitle)
    {
        TrackImport scratch;
        try {
            TrackOptionReader(scratch).read(text, allowTitle);
            return true;
        } catch (const ToolError &) {
            return false;
        }
    }

private:
    // Reads the item starting at `at`; answers where the next ":" stands.
    std::size_t readItem(const std::string &text, std::size_t at, bool allowTitle)
    {
        const std::size_t next = std::min(text.find(':', at), text.size());
        const std::string item = text.substr(at, next - at);
        const std::string key = item.substr(0, item.find('='));
        const std::string value = item.size() > key.size() ? item.substr(key.size() + 1) : std::string();
        if (item == "disable") {
            import.disabled = true;
        } else if (key == "lang" && item.size() > key.size()) {
            import.language = isoLanguageCode(value);
        } else if (key == "group" && item.size() > key.size()) {
            const auto group = wholeNumber(value);
            if (!group || *group > 65535)
                throw UsageError(":group needs a number from 0 to 65535, not \"" + value + "\"");
            import.group = static_cast<int>(*group);
        } else if (key == "par" && item.size() > key.size()) {
            // The ratio holds a colon of its own.
            const std::size_t end = std::min(text.find(':', next + 1), text.size());
            import.pixelAspect = ratioOf(text.substr(at + 4, end - at - 4), ":par");
            return end;
        } else if (key == "name" && item.size() > key.size()) {
            if (!allowTitle)
                throw UsageError("a second :name");
            return readTitle(text, at + 5);
        } else {
            throw UsageError("unknown track option \"" + item + "\" (known: lang, name, group, disable, par)");
        }
        return next;
    }

    // A title runs up to the first ":" after which only other options follow,
    // so "Part 1: Intro" stays whole before ":group=1:disable".
    std::size_t readTitle(const std::string &text, std::size_t start)
    {
        std::size_t end = text.find(':', start);
        while (end != std::string::npos && !reads(text.substr(end), false))
            end = text.find(':', end + 1);
        end = std::min(end, text.size());
        import.title = text.substr(start, end - start);
        return end;
    }

    TrackImport &import;
};

std::vector<std::size_t> cutPoints(const std::string &importText)
{
    std::vector<std::size_t> cuts;
    for (std::size_t i = 1; i < importText.size(); ++i) {
        if (importText[i] == '#' || importText[i] == ':')
            cuts.push_back(i);
    }
    cuts.push_back(importText.size());
    return cuts;
}

struct OptionRule
{
    bool takesValue;
    std::set<Mp4Operation> operations;
};

using Op = Mp4Operation;

const std::map<std::string, OptionRule> &optionRules()
{
    static const std::map<std::string, OptionRule> rules{
        {"-add", {true, {Op::Import}}},
        {"-cat", {true, {Op::Join}}},
        {"-splitx", {true, {Op::Split}}},
        {"-splits", {true, {Op::Split}}},
        {"-rem", {true, {Op::Remove}}},
        {"-raw", {true, {Op::Extract}}},
        {"-srt", {true, {Op::Extract}}},
        {"-par", {true, {Op::Import, Op::Rewrite}}},
        {"-fps", {true, {Op::Import}}},
        {"-keepall", {false, {Op::Import}}},
        {"-new", {false, {Op::Import, Op::Join}}},
        {"-ipod", {false, {Op::Import, Op::Rewrite}}},
        {"-isma", {false, {Op::Import, Op::Join, Op::Split, Op::Remove, Op::Rewrite}}},
        {"-inter", {true, {Op::Import, Op::Join, Op::Split, Op::Remove, Op::Rewrite}}},
        {"-tmp", {true, {Op::Import, Op::Join, Op::Split, Op::Remove, Op::Extract, Op::Rewrite}}},
    };
    return rules;
}

const char *operationOption(Mp4Operation operation)
{
    switch (operation) {
    case Op::Import: return "-add";
    case Op::Join: return "-cat";
    case Op::Split: return "-splitx or -splits";
    case Op::Remove: return "-rem";
    case Op::Extract: return "-raw or -srt";
    case Op::Rewrite: break;
    }
    return "a file alone";
}

Mp4Operation operationOf(const Mp4BoxCommand &command)
{
    std::vector<Mp4Operation> asked;
    if (!command.imports.empty())
        asked.push_back(Op::Import);
    if (!command.joined.empty())
        asked.push_back(Op::Join);
    if (command.splitRange || command.splitKilobytes > 0)
        asked.push_back(Op::Split);
    if (!command.removedTracks.empty())
        asked.push_back(Op::Remove);
    if (!command.extractions.empty())
        asked.push_back(Op::Extract);
    if (asked.size() > 1)
        refuse(std::string(operationOption(asked[0])) + " and " + operationOption(asked[1]) + " cannot be combined");
    if (command.splitRange && command.splitKilobytes > 0)
        refuse("give -splitx or -splits, not both");
    return asked.empty() ? Op::Rewrite : asked.front();
}

void applyOption(Mp4BoxCommand &command, const std::string &option, const std::string &value, const FileTest &isFile)
{
    if (option == "-add") {
        command.imports.push_back(parseTrackImport(value, isFile));
    } else if (option == "-cat") {
        command.joined.push_back(value);
    } else if (option == "-splitx") {
        const auto colon = value.find(':');
        const auto start = decimalOf(value.substr(0, colon));
        const auto end = colon == std::string::npos ? std::nullopt : decimalOf(value.substr(colon + 1));
        if (!start || !end || *start < 0)
            refuse("-splitx needs START:END in seconds, not \"" + value + "\"");
        if (*end <= *start)
            refuse("-splitx " + value + " ends before it starts");
        command.splitRange = SplitRange{*start, *end};
    } else if (option == "-splits") {
        command.splitKilobytes = positiveWhole(value, "-splits");
    } else if (option == "-rem") {
        command.removedTracks.push_back(positiveWhole(value, "-rem"));
    } else if (option == "-raw" || option == "-srt") {
        command.extractions.push_back({positiveWhole(value, option), option == "-srt"});
    } else if (option == "-par") {
        const auto equals = value.find('=');
        if (equals == std::string::npos)
            refuse("-par needs TRACK=N:D, not \"" + value + "\"");
        command.trackAspects.emplace_back(positiveWhole(value.substr(0, equals), "-par"), ratioOf(value.substr(equals + 1), "-par"));
    } else if (option == "-fps") {
        command.frameRate = frameRateOf(value);
    } else if (option == "-inter") {
        const auto milliseconds = wholeNumber(value);
        if (!milliseconds || *milliseconds > 3'600'000)
            refuse("-inter needs a time in milliseconds, not \"" + value + "\"");
        command.interleaveMs = static_cast<int>(*milliseconds);
    } else if (option == "-tmp") {
        command.temporaryFolder = value;
    } else if (option == "-new") {
        command.createNew = true;
    } else if (option == "-keepall") {
        command.keepAll = true;
    } else if (option == "-ipod") {
        command.ipod = true;
    } else if (option == "-isma") {
        command.isma = true;
    }
}

} // namespace

TrackImport parseTrackImport(const std::string &importText, const FileTest &isFile)
{
    const std::vector<std::size_t> cuts = cutPoints(importText);
    for (auto cut = cuts.rbegin(); cut != cuts.rend(); ++cut) {
        TrackImport import;
        import.file = importText.substr(0, *cut);
        if (!isFile(import.file))
            continue;
        try {
            TrackOptionReader(import).read(importText.substr(*cut), true);
        } catch (const UsageError &error) {
            throw UsageError("-add " + importText + ": " + error.what());
        }
        return import;
    }
    // Name the file as the options would leave it.
    std::string file = importText;
    for (const std::size_t cut : cuts) {
        if (cut < importText.size() && TrackOptionReader::reads(importText.substr(cut), true)) {
            file = importText.substr(0, cut);
            break;
        }
    }
    throw ToolError("-add: cannot open " + file + ": no such file");
}

std::string isoLanguageCode(const std::string &code)
{
    std::string lower;
    for (const char c : code) {
        if (!std::isalpha(static_cast<unsigned char>(c)))
            throw UsageError("\"" + code + "\" is not a language code");
        lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    if (lower.size() == 3)
        return lower;
    // Kestrane writes "un" for an undetermined language; ICU no longer knows
    // the withdrawn "bh" (Bihari).
    if (lower == "un")
        return "und";
    if (lower == "bh")
        return "bih";
    const std::string three = lower.size() == 2 ? uloc_getISO3Language(lower.c_str()) : "";
    if (three.size() != 3)
        throw UsageError("\"" + code + "\" is not a language code");
    return three;
}

std::optional<Ratio> frameRateOf(const std::string &text)
{
    if (text == "none" || text == "0")
        return std::nullopt;
    const auto rate = decimalOf(text);
    if (!rate || *rate <= 0 || *rate > 1000)
        throw UsageError("-fps needs a frame rate such as 25 or 23.976, not \"" + text + "\"");
    for (const int base : {24, 30, 48, 60, 120}) {
        if (std::abs(*rate - base * 1000.0 / 1001.0) < 0.002)
            return Ratio{base * 1000, 1001};
    }
    const auto thousandths = static_cast<int>(std::lround(*rate * 1000));
    const int common = std::gcd(thousandths, 1000);
    return Ratio{thousandths / common, 1000 / common};
}

Mp4BoxCommand parseMp4BoxCommand(const std::vector<std::string> &arguments, const FileTest &isFile)
{
    Mp4BoxCommand command;
    std::vector<std::string> given;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string &argument = arguments[i];
        if (argument.empty())
            continue;
        if (argument == "-h" || argument == "-help" || argument == "--help")
            throw UsageError(kUsage);
        if (argument.front() != '-' || argument.size() == 1) {
            if (!command.file.empty())
                refuse("two files named: \"" + command.file + "\" and \"" + argument + "\"");
            command.file = argument;
            continue;
        }
        const auto rule = optionRules().find(argument);
        if (rule == optionRules().end())
            refuse("unknown option \"" + argument + "\"");
        std::string value;
        if (rule->second.takesValue) {
            if (i + 1 >= arguments.size())
                refuse(argument + " needs a value");
            value = arguments[++i];
        }
        given.push_back(argument);
        applyOption(command, argument, value, isFile);
    }
    command.operation = operationOf(command);
    for (const std::string &option : given) {
        if (!optionRules().at(option).operations.contains(command.operation))
            refuse(option + " does not go with " + operationOption(command.operation));
    }
    if (command.file.empty())
        refuse("no file named");
    if (command.operation == Op::Rewrite && !command.isma && command.interleaveMs < 0 && command.trackAspects.empty())
        refuse("nothing to do with " + command.file);
    if (command.operation == Op::Join && command.joined.size() + (command.createNew ? 0 : 1) < 2)
        refuse("-cat needs two files to join");
    return command;
}

} // namespace mediatool
