#include "Mp4Writer.h"

#include "ToolError.h"

namespace mediatool {

Mp4Writer::Mp4Writer(const std::string &path, const Mp4Layout &layout)
    : StreamWriter(path, layout.ipod ? "ipod" : "mp4"), layout(layout)
{
    // Moving the index to the front reads the written data back by name.
    if (layout.indexInFront)
        context->url = av_strdup(("file:" + output.nameForReading()).c_str());
}

int Mp4Writer::addTrack(const AVCodecParameters *parameters, AVRational timeBase, const AVStream *source,
                        const TrackLabel &label)
{
    if (avformat_query_codec(context->oformat, parameters->codec_id, FF_COMPLIANCE_NORMAL) != 1)
        throw ToolError(std::string(layout.ipod ? "an iPod MP4" : "MP4") + " cannot hold "
                        + avcodec_get_name(parameters->codec_id) + " "
                        + (av_get_media_type_string(parameters->codec_type) ? av_get_media_type_string(parameters->codec_type) : "data"));
    const int index = addStream(parameters, timeBase);
    AVStream *track = stream(index);
    if (source)
        adoptTraits(index, source);
    if (!label.language.empty())
        av_dict_set(&track->metadata, "language", label.language.c_str(), 0);
    if (label.title) {
        // MP4Box names a track by its handler. A title tag from the source
        // would be written as a second name, which mediainfo shows beside it.
        av_dict_set(&track->metadata, "handler_name", label.title->c_str(), 0);
        av_dict_set(&track->metadata, "title", nullptr, 0);
    }
    // FFmpeg enables the tracks marked default (and the first of a kind when
    // none is).
    if (label.enabled == TrackLabel::Enabled::Yes)
        track->disposition |= AV_DISPOSITION_DEFAULT;
    else if (label.enabled == TrackLabel::Enabled::No)
        track->disposition &= ~AV_DISPOSITION_DEFAULT;
    if (label.pixelAspect.num > 0) {
        track->sample_aspect_ratio = label.pixelAspect;
        track->codecpar->sample_aspect_ratio = label.pixelAspect;
    }
    return index;
}

void Mp4Writer::writeHeader()
{
    AVDictionary *raw = nullptr;
    // Only the tracks asked for: no timecode track made up from a tag.
    av_dict_set(&raw, "write_tmcd", "0", 0);
    if (layout.indexInFront)
        av_dict_set(&raw, "movflags", "+faststart", 0);
    if (layout.objectDescriptor)
        av_dict_set(&raw, "skip_iods", "0", 0);
    const DictionaryPtr options(raw);
    StreamWriter::writeHeader(options.get());
}

} // namespace mediatool
