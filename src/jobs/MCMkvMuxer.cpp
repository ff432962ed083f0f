#include "MCMkvMuxer.h"

#include "MCMkvJobChecks.h"
#include "MCWords.h"

#include <QSet>

namespace {

QString flagText(bool flag)
{
    return flag ? QStringLiteral("1") : QStringLiteral("0");
}

QString idListOption(const QStringList &ids, const QString &listOption, const QString &noneOption)
{
    return ids.isEmpty() ? noneOption : QStringLiteral("%1 %2").arg(listOption, ids.join(QLatin1Char(',')));
}

} // namespace

MCMkvMuxer::MCMkvMuxer()
{
    converterName = QStringLiteral("MkvMuxer");
}

QString MCMkvMuxer::startConversionFor(const MCSelectionPtr &selection)
{
    if (!selection)
        return refuse(QStringLiteral("there is nothing to work on"));
    selection->logSelectionMuxingProperties();
    initializeFor(selection);
    QString suffix = QStringLiteral("muxed");
    if (selection->jobType == MCWords::jobAviConversion) {
        tracksToMux = selection->trackList;
    } else if (selection->jobType == MCWords::jobAviTrackRemoval) {
        if (const QString refusal = MCMkvJobChecks::removalRefusal(*selection); !refusal.isEmpty())
            return refuse(refusal);
        tracksToMux = selection->keepTracksList;
        for (const MCVideoTrackPtr &track : tracksToMux)
            track->initializeForMuxing();
        suffix = QStringLiteral("removed");
    }
    outputFileURL = QUrl::fromLocalFile(QStringLiteral("%1.%2.mkv").arg(outputFileURL.toLocalFile(), suffix));
    logFileURL = QUrl::fromLocalFile(QStringLiteral("%1.%2.log").arg(logFileURL.toLocalFile(), suffix));
    tempFileToDeleteURL.clear();

    QList<QUrl> inputs{selection->videoTrackFileURL};
    for (const MCVideoTrackPtr &track : tracksToMux)
        inputs.append(track->muxingTrackFileURL);
    MCOptionList arguments{QStringLiteral("-o"), outputFileURL};
    arguments << trackOptions();
    return launchMkvmerge(arguments, inputs);
}

MCOptionList MCMkvMuxer::trackOptions() const
{
    MCOptionList options;
    QSet<QString> seenPaths;
    for (const MCVideoTrackPtr &first : tracksToMux) {
        const QString path = first->muxingTrackFileURL.toLocalFile();
        if (seenPaths.contains(path))
            continue;
        QStringList video;
        QStringList audio;
        QStringList subtitles;
        for (const MCVideoTrackPtr &track : tracksToMux) {
            if (track->muxingTrackFileURL.toLocalFile() != path)
                continue;
            const QString &id = track->trackMkvmergeID;
            options << QStringLiteral("--language %1:%2").arg(id, language3CodeFor(track->muxingTrackLanguage))
                    << QStringLiteral("--track-name %1:%2").arg(id, singleQuotedFormOf(track->muxingTrackTitle))
                    << QStringLiteral("--default-track %1:%2").arg(id, flagText(track->trackDefaultFlag))
                    << QStringLiteral("--forced-track %1:%2").arg(id, flagText(track->trackForcedFlag))
                    << QStringLiteral("--compression %1:none").arg(id);
            const QString &type = track->muxingTrackType;
            if (type == QStringLiteral("Video"))
                video.append(id);
            else if (type == QStringLiteral("Audio"))
                audio.append(id);
            else if (type == QStringLiteral("Subtitle") || type == QStringLiteral("External Subtitle"))
                subtitles.append(id);
        }
        options << idListOption(video, QStringLiteral("-d"), QStringLiteral("-D"))
                << idListOption(audio, QStringLiteral("-a"), QStringLiteral("-A"))
                << idListOption(subtitles, QStringLiteral("-s"), QStringLiteral("-S")) << singleQuotedFormOf(path);
        seenPaths.insert(path);
    }
    return options;
}
