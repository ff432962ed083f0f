#include "MCCodecTables.h"

namespace MCCodecTables {

MCCodecTable video()
{
    return {
        {
            {"xvid", "dx50", "div3", "divx", "div2", "div3", "vfw", "mpeg4", "mpeg-4"},
            {"avc", "h264"},
            {"real"},
            {"wmv"},
            {"sorenson", "h263"},
            {"V_MS", "VFW", "VC-1", "WVC1"},
            {"MPEG2", "MPEG-2"},
            // Today's codecs, after the older classes so that they win.
            {"hevc", "h265", "hvc1", "hev1"},
            {"vp8"},
            {"vp9"},
            {"av1", "av01"},
        },
        {"mpeg4", "h264", "rm", "wmv", "h263", "VC-1", "mpeg2", "hevc", "vp8", "vp9", "av1"},
        {"avi", "h264", "rm", "wmv", "h263", "wmv", "mpg", "hevc", "ivf", "ivf", "ivf"},
    };
}

MCCodecTable audio()
{
    return {
        {
            {"vorbis", "ogg"},
            {"mpeg3", "mpeg/l3", "mpeg-1 Audio layer 3", "MPEG-1/2 L3", "mpeg-2 Audio layer 3", "Audio layer 3", "MPA2L3"},
            {"mpeg2", "mpeg/l2", "mpeg-1 Audio layer 2", "MPEG-1/2 L2", "mpeg-2 Audio layer 2", "Audio layer 2", "MPA2L2"},
            {"aac", "mpeg4"},
            {"ac3", "ac-3"},
            {"pcm"},
            {"dts"},
            {"wma"},
            {"flac"},
            {"Wavpack"},
            // Today's codecs. E-AC-3 reads "AC3+" and so also matches AC-3
            // above; coming later, it wins.
            {"opus"},
            {"e-ac-3", "eac3", "ac3+"},
            {"truehd", "mlp fba"},
        },
        {"ogg", "mp3", "mp2", "aac", "ac3", "wav", "dts", "wma", "flac", "Wavpack", "opus", "eac3", "truehd"},
        {"ogg", "mp3", "mp2", "aac", "ac3", "wav", "dts", "wma", "flac", "wv", "opus", "eac3", "thd"},
    };
}

MCCodecTable subtitle()
{
    return {
        {
            {"ssa"},
            {"ass"},
            {"utf8", "utf-8", "subrip"},
            {"VobSub", "S_VOBSUB"},
            {"MicroDVD"},
            {"S_HDMV", "PGS"},
            {"tx3g", "timed", "3gpp"},
            {"text"},
            // DVB bitmap subtitles of broadcast recordings (PGS is class 6).
            {"dvb"},
        },
        {"ssa", "ass", "srt", "vobsub", "sub", "pgs", "ttxt", "txt", "dvbsub"},
        {"ssa", "ass", "srt", "idx", "sub", "sup", "ttxt", "txt", "dvbsub"},
    };
}

} // namespace MCCodecTables
