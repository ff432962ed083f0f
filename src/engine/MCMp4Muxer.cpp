#include "MCMp4Muxer.h"

#include <QDir>
#include <QFileInfo>

#include <cmath>

namespace {

const QString kVideo = QStringLiteral("Video");
const QString kAudio = QStringLiteral("Audio");

bool isSubtitle(const MCVideoTrack &track)
{
    return track.muxingTrackType == QStringLiteral("Subtitle")
           || track.muxingTrackType == QStringLiteral("External Subtitle");
}

bool isEmptyWord(const QString &text)
{
    return text.isEmpty() || text == QStringLiteral("none");
}

// The several tracks of a kind share one alternate group; one of them plays.
QString withGroup(const QString &addition, int group, bool enabled)
{
    return QStringLiteral("%1:group=%2%3").arg(addition).arg(group).arg(enabled ? QString() : QStringLiteral(":disable"));
}

bool subtitleQualifies(const MCVideoTrack &track)
{
    if (!isSubtitle(track) || track.userCodec != QStringLiteral("mux"))
        return false;
    const QFileInfo file(track.muxingTrackFileURL.toLocalFile());
    const QString extension = file.suffix().toLower();
    return file.isFile() && (extension == QStringLiteral("srt") || extension == QStringLiteral("sub"));
}

} // namespace

MCMp4Muxer::MCMp4Muxer()
{
    converterName = QStringLiteral("mp4Muxer");
}

QString MCMp4Muxer::extensionFor(const MCTrackList &tracks, const QString &device)
{
    static const QStringList appleDevices{QStringLiteral("Apple TV 3"),
                                          QStringLiteral("iPad 3/iPhone 4S"),
                                          QStringLiteral("Apple TV 2"),
                                          QStringLiteral("iPad (2 and Earlier)"),
                                          QStringLiteral("iPhone 4/iPod Touch (4G and Later)"),
                                          QStringLiteral("iPhone/iPod Touch (3G and Earlier)"),
                                          QStringLiteral("iPod")};
    for (const MCVideoTrackPtr &track : tracks) {
        if (track->muxingTrackType == kAudio && track->muxingTrackCodec.toLower() == QStringLiteral("ac3"))
            return QStringLiteral(".m4v");
    }
    return appleDevices.contains(device) ? QStringLiteral(".m4v") : QStringLiteral(".mp4");
}

bool MCMp4Muxer::deviceWantsIpod(const QString &device)
{
    static const QStringList ipodDevices{QStringLiteral("iPad 3/iPhone 4S"), QStringLiteral("iPad (2 and Earlier)"),
                                         QStringLiteral("iPhone 4/iPod Touch (4G and Later)"),
                                         QStringLiteral("iPhone/iPod Touch (3G and Earlier)"), QStringLiteral("iPod")};
    return ipodDevices.contains(device);
}

QString MCMp4Muxer::parOption(const QString &ratio)
{
    if (ratio.isEmpty() || ratio == QStringLiteral("1"))
        return {};
    // Truncated, as MP4Box is given it; the nudge keeps 1.185 from reading 1184.
    const int thousandths = static_cast<int>(std::floor(ratio.toDouble() * 1000.0 + 1e-6));
    // "0" and "none" are the record's empty values: no ratio known.
    if (thousandths <= 0)
        return {};
    return QStringLiteral("-par 1=%1:1000").arg(thousandths);
}

bool MCMp4Muxer::isOnOtherVolume(const QString &folder)
{
    // Removable and network volumes are mounted under these folders.
    static const QStringList mountFolders{QStringLiteral("volumes"), QStringLiteral("media"), QStringLiteral("mnt")};
    const QStringList parts = QDir::cleanPath(folder).split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < parts.size() && i < 2; ++i) {
        if (mountFolders.contains(parts.at(i).toLower()))
            return true;
    }
    return false;
}

QString MCMp4Muxer::trackSpecification(const MCVideoTrack &track, const QString &defaultName) const
{
    QString addition = doubleQuotedFormOf(track.muxingTrackFileURL.toLocalFile());
    if (track.muxingTrackMp4boxID != QStringLiteral("one track"))
        addition += QLatin1Char('#') + track.muxingTrackMp4boxID;
    if (!isEmptyWord(track.muxingTrackLanguage))
        addition += QStringLiteral(":lang=") + language2CodeFor(track.muxingTrackLanguage);
    const QString title = isEmptyWord(track.muxingTrackTitle) ? defaultName : track.muxingTrackTitle;
    return addition + QStringLiteral(":name=") + singleQuotedFormOf(title);
}

MCOptionList MCMp4Muxer::videoAndAudioSpecifications() const
{
    MCOptionList options;
    for (const MCVideoTrackPtr &track : tracksToMux) {
        if (track->muxingTrackType == kVideo) {
            options << QStringLiteral("-add") << trackSpecification(*track, QStringLiteral("Video Track"));
            break;
        }
    }
    MCTrackList aacTracks;
    MCTrackList ac3Tracks;
    int audioCount = 0;
    for (const MCVideoTrackPtr &track : tracksToMux) {
        if (track->muxingTrackType != kAudio)
            continue;
        ++audioCount;
        const QString codec = track->muxingTrackCodec.toLower();
        if (codec == QStringLiteral("aac"))
            aacTracks.append(track);
        else if (codec == QStringLiteral("ac3"))
            ac3Tracks.append(track);
    }
    const MCTrackList audio = aacTracks + ac3Tracks;
    for (qsizetype i = 0; i < audio.size(); ++i) {
        QString addition = trackSpecification(*audio.at(i), QStringLiteral("Audio Track"));
        if (audioCount >= 2)
            addition = withGroup(addition, 1, i == 0);
        options << QStringLiteral("-add") << addition;
    }
    return options;
}

MCOptionList MCMp4Muxer::subtitleSpecifications(bool grouped)
{
    MCOptionList options;
    bool first = true;
    for (const MCVideoTrackPtr &track : tracksToMux) {
        if (!subtitleQualifies(*track))
            continue;
        // What the subtitle converter dumped is the job's to remove.
        if (track->muxingTrackFileURL.fileName().toLower() == QStringLiteral("dumpsub.srt"))
            tempFileToDeleteURL = track->muxingTrackFileURL;
        QString addition = trackSpecification(*track, QStringLiteral("Subtitle Track"));
        if (grouped)
            addition = withGroup(addition, 2, first);
        options << QStringLiteral("-add") << addition;
        first = false;
    }
    return options;
}

MCOptionList MCMp4Muxer::deviceAndTailOptions() const
{
    MCOptionList options{QStringLiteral("-fps"), converterSelection->userFPS, QStringLiteral("-isma"),
                         QStringLiteral("-inter 500")};
    // MP4Box's scratch file then lies on the output's volume.
    if (isOnOtherVolume(saveDirectoryURL.toLocalFile()))
        options << QStringLiteral("-tmp") << saveDirectoryURL;
    return options;
}

QList<QUrl> MCMp4Muxer::muxedFiles(bool subtitlesOnly) const
{
    QList<QUrl> files;
    for (const MCVideoTrackPtr &track : tracksToMux) {
        if (!subtitlesOnly || subtitleQualifies(*track))
            files.append(track->muxingTrackFileURL);
    }
    return files;
}

QString MCMp4Muxer::startConversionFor(const MCSelectionPtr &selection)
{
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    initializeFor(selection);
    tracksToMux = selection->trackList;
    tempFileToDeleteURL.clear();
    if (selection->mp4Muxer != QStringLiteral("mp4box"))
        return refuse(QStringLiteral("the MP4 muxer \"%1\" is not one Kestrane knows").arg(selection->mp4Muxer));
    outputFileURL = QUrl::fromLocalFile(outputFileURL.toLocalFile() + extensionFor(tracksToMux, selection->theDevice));
    logFileURL = QUrl::fromLocalFile(logFileURL.toLocalFile() + QStringLiteral(".muxing.log"));

    for (const MCVideoTrackPtr &track : tracksToMux) {
        // The encoder has already applied the aspect ratio to the picture.
        if (track->muxingTrackType == kVideo) {
            if (track->wasReEncoded)
                selection->videoTrackPAR = QStringLiteral("1");
            break;
        }
    }
    int subtitleCount = 0;
    for (const MCVideoTrackPtr &track : tracksToMux)
        subtitleCount += isSubtitle(*track) ? 1 : 0;

    MCOptionList arguments = videoAndAudioSpecifications();
    arguments << subtitleSpecifications(subtitleCount >= 2) << parOption(selection->videoTrackPAR)
              << QStringLiteral("-keepall -new")
              << (deviceWantsIpod(selection->theDevice) ? QStringLiteral("-ipod") : QString());
    arguments << deviceAndTailOptions() << outputFileURL;
    return launchMp4Box(arguments, muxedFiles(false));
}

QString MCMp4Muxer::muxIntoURL(const QUrl &file, const MCSelectionPtr &selection)
{
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    initializeFor(selection);
    tracksToMux = selection->trackList;
    tempFileToDeleteURL.clear();
    outputFileURL = file;
    logFileURL = QUrl::fromLocalFile(logFileURL.toLocalFile() + QStringLiteral(".muxing.log"));
    const MCOptionList subtitles = subtitleSpecifications(selection->subCount.toInt() >= 2);
    if (tracksToMux.isEmpty() || subtitles.isEmpty())
        return refuse(QStringLiteral("there is no subtitle file to add"));
    MCOptionList arguments = subtitles;
    arguments << parOption(selection->videoTrackPAR)
              << (deviceWantsIpod(selection->theDevice) ? QStringLiteral("-ipod") : QString())
              << QStringLiteral("-keepall") << deviceAndTailOptions() << outputFileURL;
    // The file itself is the one to update; only the added files are inputs.
    return launchMp4Box(arguments, muxedFiles(true));
}
