#include "MCMencoderVideo.h"

#include "MCAudioOptions.h"

#include "MCContainers.h"
#include "MCNotificationCenter.h"
#include "MCPreferences.h"

#include <QDir>

namespace {

const QString kVideo = QStringLiteral("Video");
const QString kAudio = QStringLiteral("Audio");

QString mp3Options(const QString &bitRate)
{
    return QStringLiteral("-oac mp3lame -srate 48000 -lameopts preset=%1").arg(bitRate);
}

int integerOf(const QString &text)
{
    return text.trimmed().toInt();
}

} // namespace

MCMencoderVideo::MCMencoderVideo()
{
    converterName = QStringLiteral("mencoderVideo");
    isTemporaryOutput = false;
}

MCVideoTrackPtr MCMencoderVideo::firstTrackOfType(const QStringList &types) const
{
    if (!converterSelection)
        return nullptr;
    for (const MCVideoTrackPtr &track : converterSelection->trackList) {
        if (track && types.contains(track->trackType))
            return track;
    }
    return nullptr;
}

bool MCMencoderVideo::copiesVideo() const
{
    const MCVideoTrackPtr video = firstTrackOfType({kVideo});
    return video && video->userCodec == QStringLiteral("passthru");
}

bool MCMencoderVideo::readsThroughLavf() const
{
    const QString extension = converterSelection->videoTrackFileExtension.toLower();
    // MEncoder's own readers put the picture of an MPEG program stream half a
    // second after its sound, lose the first pictures of a transport stream
    // and cannot open short H.264 ones.
    if (MCContainers::isTransportStream(extension) || MCContainers::isProgramStream(extension))
        return true;
    // Its AVI reader hands the decoder the empty chunks ffmpeg writes for a
    // skipped picture, after which the first picture repeats to the end. A
    // copy is not decoded and keeps MEncoder's reader.
    return extension == QStringLiteral("avi") && !copiesVideo();
}

MCOptionList MCMencoderVideo::inputOptions() const
{
    MCOptionList options{inputFileURL};
    if (readsThroughLavf())
        options << QStringLiteral("-demuxer lavf");
    // MEncoder takes an ASF file for 1000 pictures a second and writes the
    // AVI so; the file's own rate keeps each picture once.
    static const QStringList asf{QStringLiteral("wmv"), QStringLiteral("asf")};
    const double rate = converterSelection->videoTrackFPS.toDouble();
    if (asf.contains(converterSelection->videoTrackFileExtension.toLower()) && rate > 0)
        options << QStringLiteral("-ofps %1").arg(converterSelection->videoTrackFPS.trimmed());
    return options;
}

MCOptionList MCMencoderVideo::videoOptions() const
{
    // A copy takes no encoder options: MEncoder would still check them and
    // refuse a copied video of unknown bit rate ("vbitrate=0").
    if (copiesVideo())
        return {QStringLiteral("-ovc copy")};
    MCOptionList options;
    // Both passes must see the same pictures, or the second runs past the
    // first one's log: no picture skipped or added for audio sync.
    if (converterSelection->userPassNumber == QStringLiteral("2"))
        options << QStringLiteral("-mc 0 -noskip");
    const int width = integerOf(converterSelection->userWidth);
    // An empty or zero width means "as the source": scaling to it would
    // hand mencoder "scale=:-10".
    const bool scale = width > 0 && width < integerOf(converterSelection->videoTrackWidth);
    options << QStringLiteral("-vf")
            << (scale ? QStringLiteral("scale=%1:-10,harddup").arg(width) : QStringLiteral("harddup"))
            << QStringLiteral("-ovc lavc") << QStringLiteral("-ffourcc xvid") << QStringLiteral("-lavcopts");
    return options;
}

MCOptionList MCMencoderVideo::audioOptions() const
{
    const MCVideoTrackPtr audio = firstTrackOfType({kAudio});
    if (!audio)
        return {QStringLiteral("-nosound")};
    MCOptionList options;
    if (audio->userCodec == QStringLiteral("passthru")) {
        options << QStringLiteral("-oac copy");
    } else if (integerOf(audio->trackNumberOfChannels) >= 6) {
        if (audio->userCodec == QStringLiteral("mp3"))
            options << mp3Options(audio->userBitRate);
        else if (audio->userCodec == QStringLiteral("ac3"))
            options << MCAudioOptions::surroundAc3(audio->userBitRate);
    } else {
        options << mp3Options(audio->userBitRate);
    }
    options << MCAudioOptions::decoderFor(*audio);
    if (audio->trackFilePath == converterSelection->videoTrackFilePath)
        options << QStringLiteral("-aid %1").arg(audioIdFor(*audio));
    else
        options << QStringLiteral("-audiofile") << audio->trackFileURL;
    return options;
}

QString MCMencoderVideo::audioIdFor(const MCVideoTrack &audio) const
{
    // FFmpeg's readers number the audio streams from 0 in file order.
    if (readsThroughLavf())
        return QString::number(integerOf(audio.trackIndex) - 1);
    return audio.trackMencoderID;
}

MCOptionList MCMencoderVideo::subtitleOptions() const
{
    if (integerOf(converterSelection->subCount) < 1)
        return {QStringLiteral("-noautoexpand")};
    const MCVideoTrackPtr subtitle = firstTrackOfType({QStringLiteral("Subtitle"), QStringLiteral("External Subtitle")});
    if (!subtitle || subtitle->userCodec != QStringLiteral("burn"))
        return {};
    MCOptionList options;
    if (subtitle->trackFilePath == converterSelection->videoTrackFilePath)
        options << QStringLiteral("-sid %1").arg(subtitle->trackMencoderID);
    else
        options << QStringLiteral("-sid 99 -sub") << subtitle->trackFileURL;
    const int position = appPreferences ? integerOf(appPreferences->subtitlePosition) : 0;
    options << QStringLiteral("-font") << subtitleFontURL;
    if (subtitle->trackCodec == QStringLiteral("srt"))
        options << QStringLiteral("-utf8");
    options << QStringLiteral("-subpos") << QString::number(100 - position)
            << QStringLiteral("-subfont-text-scale") << (appPreferences ? appPreferences->subtitleSize : QString());
    return options;
}

QString MCMencoderVideo::passLogFilePath() const
{
    const QString folder = stagingFolder.isEmpty() ? QDir::tempPath() : stagingFolder;
    return doubleQuotedFormOf(QDir(folder).filePath(QStringLiteral("passLogFile.log")));
}

void MCMencoderVideo::composeOptionArrays()
{
    optionArray1 = inputOptions() + videoOptions();
    optionArray2.clear();
    const QString encoderOptions =
        QStringLiteral("threads=8:vcodec=mpeg4:autoaspect:vbitrate=%1").arg(converterSelection->userVideoBitRate);
    const bool copy = copiesVideo();
    const bool twoPasses = !copy && converterSelection->userPassNumber == QStringLiteral("2");
    const QString passLog = QStringLiteral(" -passlogfile %1").arg(passLogFilePath());
    if (twoPasses) {
        optionArray2 = optionArray1;
        optionArray1 << encoderOptions + QStringLiteral(":vpass=1:turbo") + passLog;
        optionArray2 << encoderOptions + QStringLiteral(":vpass=2") + passLog;
    } else if (!copy) {
        optionArray1 << encoderOptions;
    }
    const MCOptionList ending{QStringLiteral("-o"), outputFileURL, QStringLiteral("&>"), logFileURL,
                              QStringLiteral("& echo $!")};
    const MCOptionList rest = audioOptions() + subtitleOptions() + ending;
    optionArray1 << rest;
    if (twoPasses)
        optionArray2 << rest;
    currentPass = twoPasses ? 1 : 0;
}

void MCMencoderVideo::prepareFor(const MCSelectionPtr &selection)
{
    initializeFor(selection);
    // The input name is kept whole and ".avi" appended, so the output can
    // never be the input itself.
    const QString base = outputFileURL.toLocalFile();
    outputFileURL = QUrl::fromLocalFile(base + QStringLiteral(".avi"));
    logFileURL = QUrl::fromLocalFile(base + QStringLiteral(".log"));
    tempFileToDeleteURL.clear();
    composeOptionArrays();
    const MCVideoTrackPtr video = firstTrackOfType({kVideo});
    const bool newEncoder = (video && video->trackCodec == QStringLiteral("VC-1"))
                            || selection->videoTrackFileExtension.toLower() == QStringLiteral("mts");
    mencoderVersion = newEncoder ? QStringLiteral("mencodernew") : QStringLiteral("mencoder");
}

QString MCMencoderVideo::startConversionFor(const MCSelectionPtr &selection)
{
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    prepareFor(selection);
    MCNotificationCenter::defaultCenter().post(MCNotificationName::conversionStarted, outputFileURL);
    oldProgress = QString();
    return launchInBackground(urlOfApp(mencoderVersion), optionArray1);
}

QString MCMencoderVideo::startPass2()
{
    currentPass = 2;
    return launchInBackground(urlOfApp(mencoderVersion), optionArray2);
}

std::optional<QString> MCMencoderVideo::percentFromPosLine(const QString &line)
{
    if (line.section(QLatin1Char(':'), 0, 0) != QStringLiteral("Pos"))
        return std::nullopt;
    const qsizetype open = line.lastIndexOf(QLatin1Char('('));
    if (open < 0)
        return std::nullopt;
    return line.mid(open + 1).section(QLatin1Char(')'), 0, 0);
}

QString MCMencoderVideo::monitorConversion()
{
    if (!toolIsRunning())
        return currentPass == 1 ? QStringLiteral("Pass 1 Complete") : QStringLiteral("Complete");
    const std::optional<QString> percent = percentFromPosLine(lastLogLine());
    if (!percent)
        return oldProgress;
    oldProgress = currentPass != 0 ? QStringLiteral("Pass #%1: %2").arg(currentPass).arg(*percent) : *percent;
    return oldProgress;
}
