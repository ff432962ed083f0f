#include "Matrix.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace {

using Choice = MatrixChoice;

bool near(double a, double b, double slack)
{
    return std::abs(a - b) <= slack;
}

QString formatName(const StreamFacts &stream)
{
    return stream.formatProfile.isEmpty() ? stream.format : stream.format + u' ' + stream.formatProfile;
}

QString outputPath(const Choice &choice, const QString &base)
{
    if (choice.into == Choice::Into::Avi)
        return base + u".avi"_s;
    if (choice.into == Choice::Into::Mkv)
        return base + u".muxed.mkv"_s;
    // The muxer names the result after what it holds.
    return QFileInfo::exists(base + u".m4v"_s) ? base + u".m4v"_s : base + u".mp4"_s;
}

QString checkStreams(const Choice &choice, const MediaFacts &in, const MediaFacts &out)
{
    // How far a stream's length may stray from the source's.
    constexpr double kDurationSlack = 0.5;
    if (!out.video.present)
        return u"no video"_s;
    // MEncoder's lower-case "xvid" fourcc reads as its own format.
    const bool mpeg4 = out.video.format == u"MPEG-4 Visual"_s || out.video.codecId.compare(u"xvid"_s, Qt::CaseInsensitive) == 0;
    if (choice.video == Choice::Video::Mpeg4 ? !mpeg4 : out.video.format != in.video.format)
        return u"video is %1, not %2"_s.arg(out.video.format,
                                             choice.video == Choice::Video::Mpeg4 ? u"MPEG-4 Visual"_s : in.video.format);
    if (choice.width > 0 && out.video.width != choice.width)
        return u"video is %1 wide, not %2"_s.arg(out.video.width).arg(choice.width);
    // mkvmerge turns an AVI's empty "dropped" frames into gaps between time
    // stamps, which lowers the average rate; the lengths below still agree.
    // The MP4 muxer does the same with the frames MEncoder skipped.
    const bool gapsAllowed = (choice.into == Choice::Into::Mkv && choice.video == Choice::Video::AsSource)
                             || choice.into == Choice::Into::Mp4;
    if (in.video.frameRate > 0 && !gapsAllowed && !near(out.video.frameRate, in.video.frameRate, in.video.frameRate * 0.01))
        return u"%1 frames per second, the source has %2"_s.arg(out.video.frameRate).arg(in.video.frameRate);
    if (!near(out.video.seconds, in.video.seconds, kDurationSlack))
        return u"video lasts %1 s, the source %2 s"_s.arg(out.video.seconds).arg(in.video.seconds);

    if (!out.audio.present)
        return u"no audio"_s;
    QString wantedAudio = formatName(in.audio);
    int wantedChannels = in.audio.channels;
    if (choice.audio == Choice::Audio::Mp3)
        std::tie(wantedAudio, wantedChannels) = std::pair(u"MPEG Audio Layer 3"_s, 2);
    else if (choice.audio == Choice::Audio::Ac3)
        std::tie(wantedAudio, wantedChannels) = std::pair(u"AC-3"_s, 6);
    else if (choice.audio == Choice::Audio::AacStereo)
        std::tie(wantedAudio, wantedChannels) = std::pair(u"AAC"_s, 2);
    // AAC's profile depends on the encoder; the format is what was asked.
    const QString gotAudio = choice.audio == Choice::Audio::AacStereo ? out.audio.format : formatName(out.audio);
    if (gotAudio != wantedAudio || out.audio.channels != wantedChannels)
        return u"audio is %1 with %2 channels, not %3 with %4"_s.arg(gotAudio).arg(out.audio.channels).arg(wantedAudio).arg(
            wantedChannels);
    if (!near(out.audio.seconds, in.audio.seconds, kDurationSlack))
        return u"audio lasts %1 s, the source %2 s"_s.arg(out.audio.seconds).arg(in.audio.seconds);
    return {};
}

QString checkDecoding(const DecodedFacts &in, const DecodedFacts &out)
{
    if (!out.pictureMoves())
        return u"the picture does not move (%1 pictures decoded%2)"_s.arg(out.pictureHashes.size())
            .arg(out.error.isEmpty() ? QString() : u": "_s + out.error);
    if (!out.audible())
        return u"the audio is silent or cannot be decoded"_s;
    if (out.brokenPackets > 0)
        return u"%1 packets cannot be decoded"_s.arg(out.brokenPackets);
    if (out.flash < 0 || out.soundStart < 0)
        return u"the flash or the sound's start cannot be found"_s;
    // Encoders pad the start of the sound by some milliseconds; a tenth of
    // a second off the picture is what viewers notice.
    const double drift = (out.soundStart - out.flash) - (in.soundStart - in.flash);
    if (!near(drift, 0, 0.1))
        return u"the sound is %1 s %2 the picture"_s.arg(std::abs(drift), 0, 'f', 3).arg(drift > 0 ? u"behind"_s : u"ahead of"_s);
    return {};
}

QString checkSubtitle(const Choice &choice, const PreparedSource &source, const QString &folder, const QString &output)
{
    if (choice.extractsSubtitle) {
        static const QStringList extensions{u"srt"_s, u"ass"_s, u"ssa"_s, u"sub"_s, u"idx"_s, u"sup"_s};
        const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files);
        const bool found = std::any_of(files.cbegin(), files.cend(), [](const QFileInfo &file) {
            return extensions.contains(file.suffix().toLower()) && file.size() > 0;
        });
        return found ? QString() : u"no subtitle file was extracted"_s;
    }
    if (!choice.burnsSubtitle || !source.source.subtitles())
        return {};
    // The line is shown from 0.1 s to 1.9 s at the bottom: there the picture
    // differs from the source's row by row far more than encoding noise does.
    constexpr double kShown = 0.6;
    const QByteArray before = greyPicture(source.path, kShown), after = greyPicture(output, kShown);
    if (before.isEmpty() || after.isEmpty())
        return u"no picture at %1 s to look for the subtitle"_s.arg(kShown);
    int strongest = 0;
    for (int row = kGreyHeight / 2; row < kGreyHeight; ++row) {
        int difference = 0;
        for (int at = row * kGreyWidth; at < (row + 1) * kGreyWidth; ++at)
            difference += std::abs(static_cast<unsigned char>(before.at(at)) - static_cast<unsigned char>(after.at(at)));
        strongest = std::max(strongest, difference / kGreyWidth);
    }
    return strongest < 15 ? u"no subtitle burned into the picture"_s : QString();
}

// An exit status of 0 proves nothing: the file itself must hold what was asked.
Verdict judgeOutput(const PreparedSource &source, const Choice &choice, const QString &folder)
{
    const auto failed = [](const QString &why) { return Verdict{Verdict::Outcome::Failed, why}; };
    const QString kind = QStringList{u"AVI"_s, u"MKV"_s, u"MP4"_s}.at(static_cast<int>(choice.into));
    const QString output = outputPath(choice, folder + u'/' + QFileInfo(source.path).fileName());
    if (QFileInfo(output).size() <= 0)
        return failed(u"exit 0 but no %1 written"_s.arg(kind));
    const MediaFacts out = probeMedia(output);
    const QString container = QStringList{u"AVI"_s, u"Matroska"_s, u"MPEG-4"_s}.at(static_cast<int>(choice.into));
    if (!out.readable || out.container != container)
        return failed(u"exit 0 but the output is no readable %1"_s.arg(kind));
    const DecodedFacts decoded = decodeMedia(output);
    for (const QString &problem : {checkStreams(choice, source.facts, out), checkDecoding(source.decoded, decoded),
                                   checkSubtitle(choice, source, folder, output)}) {
        if (!problem.isEmpty())
            return failed(u"exit 0 but "_s + problem);
    }
    return {Verdict::Outcome::Ok, {}};
}

} // namespace

Verdict runCell(const PreparedSource &source, const MatrixChoice &choice, const QString &folder, const QString &cli)
{
    const QString out = folder + u"/out"_s;
    QDir().mkpath(out);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_CONFIG_HOME"_s, folder + u"/config"_s);
    environment.insert(u"XDG_STATE_HOME"_s, folder + u"/state"_s);
    environment.insert(u"KESTRANE_LOG_QUIET"_s, u"1"_s);
    const QStringList arguments = QStringList{u"--settings"_s, folder + u"/settings.conf"_s, u"--quiet"_s, u"convert"_s,
                                              u"--save-dir"_s, out}
                                  + choice.options.split(u' ', Qt::SkipEmptyParts) + QStringList{source.path};
    const ProcessResult result = runProcess(cli, arguments, environment);
    if (result.status == 2) {
        if (result.err.trimmed().isEmpty())
            return {Verdict::Outcome::Failed, u"exit 2 without a reason"_s};
        // "kestrane-cli: movie.mkv: why" gives "why".
        const QString line = result.lastErrorLine(), prefix = u"kestrane-cli: %1: "_s.arg(QFileInfo(source.path).fileName());
        const QString why = line.startsWith(prefix) ? line.mid(prefix.size()) : line;
        return choice.mustConvertFor(source.source) ? Verdict{Verdict::Outcome::Failed, u"refused a conversion that must work: "_s + why}
                                                    : Verdict{Verdict::Outcome::Refused, why};
    }
    if (result.status != 0) {
        const QString said = result.err.trimmed().isEmpty() ? result.out.trimmed().section(u'\n', -1) : result.lastErrorLine();
        return {Verdict::Outcome::Failed, u"exit %1: %2"_s.arg(result.status).arg(said)};
    }
    return judgeOutput(source, choice, out);
}
