#pragma once

#include "AvHandles.h"
#include "ChannelMixer.h"

extern "C" {
#include <libavutil/audio_fifo.h>
}

#include <optional>
#include <string>

namespace mediatool {

// What the audio is turned into.
struct AudioEncoding
{
    std::string encoder;       // FFmpeg encoder name: "ac3", "aac", "mp2", ...
    int64_t bitRate = 0;       // bit/s; 0 lets the encoder choose
    int decodedChannels = 0;   // -channels; 0 keeps the source's count
    int sampleRate = 0;        // -srate; 0 keeps the source's rate
    std::optional<PanFilter> pan;
    int profile = -99;         // FF_PROFILE_UNKNOWN unless an AAC object type was asked for
};

// Where the audio comes from. `offsetUs` is how much later than the video
// the audio starts: that much silence is put in front (or, negative, that
// much audio is left out), so the encoded stream starts with the video.
struct AudioSource
{
    AVFormatContext *input = nullptr;
    int stream = -1;
    int64_t offsetUs = 0;
    double framesPerSecond = 0; // of the video beside it, for the progress line
};

// Decodes the source stream, mixes and resamples it, encodes it and writes
// it to `output` (a muxer whose pb is set; the stream is added here). Prints
// MEncoder-style "Pos:" progress lines on stdout while it works.
class AudioEncoder
{
public:
    AudioEncoder(const AudioSource &source, const AudioEncoding &encoding);
    ~AudioEncoder();
    AudioEncoder(const AudioEncoder &) = delete;
    AudioEncoder &operator=(const AudioEncoder &) = delete;

    // Adds the encoded stream to `muxer` (before its header is written).
    void addStreamTo(AVFormatContext *muxer);
    // Runs the whole encode into `muxer`, header and trailer included.
    void encodeInto(AVFormatContext *muxer);

    const AVCodecContext *encoderContext() const { return encoder.get(); }
    std::string summary() const;

private:
    void openDecoder();
    void openEncoder(const AudioEncoding &encoding);
    void openResampler(const AVFrame *decoded);
    void decodePacket(const AVPacket *packet);
    void pushSamples(const AVFrame *decoded);
    void queueConverted(uint8_t **data, int samples);
    void queueSilence(int64_t samples);
    void encodeQueued(bool final);
    void sendFrame(AVFrame *frame);
    void reportProgress(int64_t positionUs, bool force);

    AudioSource source;
    CodecPtr decoder;
    CodecPtr encoder;
    ResamplerPtr resampler;
    AVChannelLayout resamplerInput{};
    int resamplerFormat = -1;
    int resamplerRate = 0;
    AVAudioFifo *fifo = nullptr;
    int decodedChannels = 0;
    std::optional<PanFilter> pan;
    AVFormatContext *muxer = nullptr;
    AVStream *outputStream = nullptr;
    int64_t samplesToDrop = 0;
    int64_t samplesEncoded = 0;
    int64_t bytesWritten = 0;
    int64_t durationUs = 0;
    int64_t lastReportMs = -1;
    int64_t startMs = 0;
};

} // namespace mediatool
