#include "MCAudioOptions.h"

QString MCAudioOptions::identityChannelMap()
{
    return QStringLiteral("-af pan=6:%1:%2:%3:%4:%5:%6")
        .arg(QStringLiteral("1:0:0:0:0:0"), QStringLiteral("0:1:0:0:0:0"), QStringLiteral("0:0:1:0:0:0"),
             QStringLiteral("0:0:0:1:0:0"), QStringLiteral("0:0:0:0:1:0"), QStringLiteral("0:0:0:0:0:1"));
}

QString MCAudioOptions::surroundAc3(const QString &bitRate)
{
    return QStringLiteral("-oac lavc -lavcopts acodec=ac3:abitrate=%1 -channels 6 %2 -srate 48000")
        .arg(bitRate, identityChannelMap());
}

QString MCAudioOptions::decoderFor(const MCVideoTrack &track)
{
    return track.trackCodec == QStringLiteral("ogg") ? QStringLiteral("-afm tremor") : QString();
}
