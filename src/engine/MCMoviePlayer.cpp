#include "MCMoviePlayer.h"

#include "MCPreferences.h"

MCMoviePlayer::MCMoviePlayer()
{
    converterName = QStringLiteral("moviePlayer");
}

MCOptionList MCMoviePlayer::optionsFor(const MCSelection &selection) const
{
    MCOptionList options{selection.videoTrackFileURL};
    for (const MCVideoTrackPtr &track : selection.trackList) {
        const bool inside = track->trackFilePath == selection.videoTrackFilePath;
        const QString id = QString::number(track->trackMencoderID.toInt());
        if (track->trackType == QLatin1String("Video")) {
            options << QStringLiteral("-vid %1").arg(id);
        } else if (track->trackType == QLatin1String("Audio")) {
            if (inside)
                options << QStringLiteral("-aid %1").arg(id);
            else
                options << QStringLiteral("-audiofile") << track->trackFileURL;
        } else if (track->trackType == QLatin1String("Subtitle") || track->trackType == QLatin1String("External Subtitle")) {
            if (inside)
                options << QStringLiteral("-sid %1").arg(id);
            else
                options << QStringLiteral("-sub") << track->trackFileURL;
        }
    }
    // Today's mplayer refuses -noautoexpand and then does not start, so a
    // choice without subtitles adds nothing here.
    if (selection.subCount.toInt() > 0)
        options << QStringLiteral("-font") << subtitleFontURL
                << QStringLiteral("-ass -ass-font-scale 1.0 -ass-color FFFFFF00");
    options << QStringLiteral("&> /dev/null & echo $!");
    return options;
}

void MCMoviePlayer::playMovie(const MCSelectionPtr &selection)
{
    if (!selection)
        return;
    if (MCPreferences *preferences = MCPreferences::applicationPreferences())
        subtitleFontURL = preferences->subtitleFontURL;
    doShellScriptFor(urlOfApp(QStringLiteral("mplayer")), optionsFor(*selection));
}
