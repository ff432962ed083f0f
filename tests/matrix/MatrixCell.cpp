#include "MatrixCell.h"

#include "MatrixProcess.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace {

// How far a stream's length may stray from the source's.
constexpr double kDurationSlack = 0.5;
const QStringList kSubtitleExtensions{QStringLiteral("srt"), QStringLiteral("ass"), QStringLiteral("ssa"),
                                      QStringLiteral("sub"), QStringLiteral("idx"), QStringLiteral("sup")};

// "kestrane-cli: movie.mkv: why" gives "why".
QString reasonOf(const QString &line, const QString &fileName)
{
    const QString prefix = QStringLiteral("kestrane-cli: %1: ").arg(fileName);
    return line.startsWith(prefix) ? line.mid(prefix.size()) : line;
}

QString formatName(const StreamFacts &stream)
{
    return stream.formatProfile.isEmpty() ? stream.format : stream.format + QLatin1Char(' ') + stream.formatProfile;
}

bool near(double a, double b, double slack)
{
    return std::abs(a - b) <= slack;
}

} // namespace

MatrixCell::MatrixCell(const PreparedSource &source, const MatrixChoice &choice, QString folder, QString cli)
    : m_source(source)
    , m_choice(choice)
    , m_folder(std::move(folder))
    , m_cli(std::move(cli))
{
}

Verdict MatrixCell::run() const
{
    QDir().mkpath(m_folder + QStringLiteral("/out"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_folder + QStringLiteral("/config"));
    environment.insert(QStringLiteral("XDG_STATE_HOME"), m_folder + QStringLiteral("/state"));
    environment.insert(QStringLiteral("KESTRANE_LOG_QUIET"), QStringLiteral("1"));
    const QStringList arguments = QStringList{QStringLiteral("--settings"), m_folder + QStringLiteral("/settings.conf"),
                                              QStringLiteral("--quiet"), QStringLiteral("convert"),
                                              QStringLiteral("--save-dir"), m_folder + QStringLiteral("/out")}
                                  + m_choice.options + QStringList{m_source.path};
    const ProcessResult result = runProcess(m_cli, arguments, environment);
    const QString fileName = QFileInfo(m_source.path).fileName();
    const bool mustConvert = m_choice.mustConvertFor(m_source.source);
    if (result.status == 2) {
        const QString why = reasonOf(result.lastErrorLine(), fileName);
        if (result.err.trimmed().isEmpty())
            return Verdict::failed(QStringLiteral("exit 2 without a reason"));
        return mustConvert ? Verdict::failed(QStringLiteral("refused a conversion that must work: %1").arg(why))
                           : Verdict::refused(why);
    }
    if (result.status != 0) {
        const QString said = result.err.trimmed().isEmpty() ? result.out.trimmed().section(QLatin1Char('\n'), -1)
                                                            : result.lastErrorLine();
        return Verdict::failed(QStringLiteral("exit %1: %2").arg(result.status).arg(said));
    }
    return judgeOutput();
}

Verdict MatrixCell::judgeOutput() const
{
    // An exit status of 0 proves nothing: the file itself must hold what was asked.
    const QString kind = m_choice.intoMkv ? QStringLiteral("MKV") : m_choice.intoMp4 ? QStringLiteral("MP4") : QStringLiteral("AVI");
    const QString avi = outputPath();
    if (QFileInfo(avi).size() <= 0)
        return Verdict::failed(QStringLiteral("exit 0 but no %1 written").arg(kind));
    const MediaFacts out = probeMedia(avi);
    const QLatin1String container = m_choice.intoMkv   ? QLatin1String("Matroska")
                                    : m_choice.intoMp4 ? QLatin1String("MPEG-4")
                                                       : QLatin1String("AVI");
    if (!out.readable || out.container != container)
        return Verdict::failed(QStringLiteral("exit 0 but the output is no readable %1").arg(kind));
    const DecodedFacts decoded = decodeMedia(avi);
    for (const QString &problem : {checkStreams(out), checkDecoding(decoded), checkSync(decoded),
                                   checkExtractedSubtitle(), checkBurnedSubtitle(avi)}) {
        if (!problem.isEmpty())
            return Verdict::failed(QStringLiteral("exit 0 but %1").arg(problem));
    }
    return Verdict::ok();
}

QString MatrixCell::outputPath() const
{
    const QString base = m_folder + QStringLiteral("/out/") + QFileInfo(m_source.path).fileName();
    if (m_choice.intoMkv)
        return base + QStringLiteral(".muxed.mkv");
    if (!m_choice.intoMp4)
        return base + QStringLiteral(".avi");
    // The muxer names the result after what it holds.
    const QString m4v = base + QStringLiteral(".m4v");
    return QFileInfo::exists(m4v) ? m4v : base + QStringLiteral(".mp4");
}

QString MatrixCell::checkStreams(const MediaFacts &out) const
{
    const MediaFacts &in = m_source.facts;
    if (!out.video.present)
        return QStringLiteral("no video");
    if (m_choice.video == MatrixChoice::Video::Mpeg4 ? !isMpeg4Visual(out.video) : out.video.format != in.video.format)
        return QStringLiteral("video is %1, not %2")
            .arg(out.video.format,
                 m_choice.video == MatrixChoice::Video::Mpeg4 ? QStringLiteral("MPEG-4 Visual") : in.video.format);
    if (m_choice.width > 0 && out.video.width != m_choice.width)
        return QStringLiteral("video is %1 wide, not %2").arg(out.video.width).arg(m_choice.width);
    // mkvmerge turns an AVI's empty "dropped" frames into gaps between time
    // stamps, which lowers the average rate; the lengths below still agree.
    // The MP4 muxer does the same with the frames MEncoder skipped.
    const bool gapsAllowed = (m_choice.intoMkv && m_choice.video == MatrixChoice::Video::AsSource) || m_choice.intoMp4;
    if (in.video.frameRate > 0 && !gapsAllowed && !near(out.video.frameRate, in.video.frameRate, in.video.frameRate * 0.01))
        return QStringLiteral("%1 frames per second, the source has %2").arg(out.video.frameRate).arg(in.video.frameRate);
    if (!near(out.video.seconds, in.video.seconds, kDurationSlack))
        return QStringLiteral("video lasts %1 s, the source %2 s").arg(out.video.seconds).arg(in.video.seconds);

    if (!out.audio.present)
        return QStringLiteral("no audio");
    QString wantedAudio = formatName(in.audio);
    int wantedChannels = in.audio.channels;
    if (m_choice.audio == MatrixChoice::Audio::Mp3) {
        wantedAudio = QStringLiteral("MPEG Audio Layer 3");
        wantedChannels = 2;
    } else if (m_choice.audio == MatrixChoice::Audio::Ac3) {
        wantedAudio = QStringLiteral("AC-3");
        wantedChannels = 6;
    } else if (m_choice.audio == MatrixChoice::Audio::AacStereo) {
        wantedAudio = QStringLiteral("AAC");
        wantedChannels = 2;
    }
    // AAC's profile depends on the encoder; the format is what was asked.
    const QString gotAudio = m_choice.audio == MatrixChoice::Audio::AacStereo ? out.audio.format : formatName(out.audio);
    if (gotAudio != wantedAudio || out.audio.channels != wantedChannels)
        return QStringLiteral("audio is %1 with %2 channels, not %3 with %4")
            .arg(gotAudio)
            .arg(out.audio.channels)
            .arg(wantedAudio)
            .arg(wantedChannels);
    if (!near(out.audio.seconds, in.audio.seconds, kDurationSlack))
        return QStringLiteral("audio lasts %1 s, the source %2 s").arg(out.audio.seconds).arg(in.audio.seconds);
    return {};
}

QString MatrixCell::checkDecoding(const DecodedFacts &decoded) const
{
    if (!decoded.pictureMoves())
        return QStringLiteral("the picture does not move (%1 pictures decoded%2)")
            .arg(decoded.pictureHashes.size())
            .arg(decoded.error.isEmpty() ? QString() : QStringLiteral(": ") + decoded.error);
    if (!decoded.audible())
        return QStringLiteral("the audio is silent or cannot be decoded");
    if (decoded.brokenPackets > 0)
        return QStringLiteral("%1 packets cannot be decoded").arg(decoded.brokenPackets);
    return {};
}

QString MatrixCell::checkSync(const DecodedFacts &out) const
{
    // Encoders pad the start of the sound by some milliseconds; a tenth of
    // a second off the picture is what viewers notice.
    constexpr double kSyncSlack = 0.1;
    if (out.flash < 0 || out.soundStart < 0)
        return QStringLiteral("the flash or the sound's start cannot be found");
    const DecodedFacts &in = m_source.decoded;
    const double drift = (out.soundStart - out.flash) - (in.soundStart - in.flash);
    if (!near(drift, 0, kSyncSlack))
        return QStringLiteral("the sound is %1 s %2 the picture").arg(std::abs(drift), 0, 'f', 3)
            .arg(drift > 0 ? QStringLiteral("behind") : QStringLiteral("ahead of"));
    return {};
}

QString MatrixCell::checkExtractedSubtitle() const
{
    if (!m_choice.extractsSubtitle)
        return {};
    const QFileInfoList files = QDir(m_folder + QStringLiteral("/out")).entryInfoList(QDir::Files);
    for (const QFileInfo &file : files) {
        if (kSubtitleExtensions.contains(file.suffix().toLower()) && file.size() > 0)
            return {};
    }
    return QStringLiteral("no subtitle file was extracted");
}

QString MatrixCell::checkBurnedSubtitle(const QString &avi) const
{
    if (!m_choice.burnsSubtitle || !m_source.source.subtitles)
        return {};
    // The line is shown from 0.1 s to 1.9 s at the bottom: there the picture
    // differs from the source's row by row far more than encoding noise does.
    constexpr double kShown = 0.6;
    constexpr int kSubtitleDifference = 15;
    const QByteArray source = greyPicture(m_source.path, kShown);
    const QByteArray output = greyPicture(avi, kShown);
    if (source.isEmpty() || output.isEmpty())
        return QStringLiteral("no picture at %1 s to look for the subtitle").arg(kShown);
    int strongest = 0;
    for (int row = kGreyHeight / 2; row < kGreyHeight; ++row) {
        int difference = 0;
        for (int column = 0; column < kGreyWidth; ++column) {
            const int at = row * kGreyWidth + column;
            difference += std::abs(static_cast<unsigned char>(source.at(at)) - static_cast<unsigned char>(output.at(at)));
        }
        strongest = std::max(strongest, difference / kGreyWidth);
    }
    if (strongest < kSubtitleDifference)
        return QStringLiteral("no subtitle burned into the picture");
    return {};
}
