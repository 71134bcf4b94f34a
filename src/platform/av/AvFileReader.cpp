#include "platform/av/AvFileReader.h"

#include "platform/av/SwrContext.h"

#include <filesystem>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/log.h>
}

namespace querlin {

namespace {

namespace fs = std::filesystem;

constexpr double longestInSeconds = 4.0 * 3600;
/// Kinds of files that hold their sound themselves; a playlist would open others.
constexpr const char* kinds = "caf,mov,wav,w64,aiff,au,flac,ogg,mp3,aac,amr,asf,matroska";

struct CloseInput {
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
};
struct FreeCodec {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Input = std::unique_ptr<AVFormatContext, CloseInput>;
using Codec = std::unique_ptr<AVCodecContext, FreeCodec>;
using Packet = std::unique_ptr<AVPacket, FreePacket>;
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

std::unexpected<std::string> failed(const char* text) { return std::unexpected(std::string(text)); }

/// One file from its opening to its last sample.
class Decoding {
public:
    explicit Decoding(AudioFormat wanted) : wanted_(wanted) {}

    std::expected<void, std::string> open(const fs::path& path);
    std::expected<DecodedAudio, std::string> decode();

private:
    /// Each gives false when there is enough or no more.
    bool feed(const AVPacket* packet);
    bool takeFrame();
    bool append(const std::uint8_t** samples, int frames);

    AudioFormat wanted_;
    Input input_;
    Codec codec_;
    int stream_ = -1;
    Frame frame_{av_frame_alloc()};
    SwrHandle resampler_;
    AVChannelLayout layout_{};
    int sampleFormat_ = AV_SAMPLE_FMT_NONE;
    int sampleRate_ = 0;
    std::vector<float> samples_;
};

std::expected<void, std::string> Decoding::open(const fs::path& path) {
    std::error_code error;
    const auto status = fs::status(path, error);
    if (!fs::exists(status)) return failed("Die Aufnahme ist nicht da.");
    // A pipe or a device might keep us waiting for ever.
    if (!fs::is_regular_file(status)) return failed("Die Aufnahme lässt sich nicht lesen.");
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", kinds, 0);
    AVFormatContext* opened = nullptr;
    // With the protocol in front a name is only ever a name.
    const int outcome = avformat_open_input(&opened, ("file:" + path.string()).c_str(), nullptr, &options);
    av_dict_free(&options);
    input_.reset(opened);
    if (outcome < 0 || avformat_find_stream_info(opened, nullptr) < 0) {
        return failed("Die Aufnahme lässt sich nicht lesen.");
    }
    const AVCodec* decoder = nullptr;
    stream_ = av_find_best_stream(opened, AVMEDIA_TYPE_AUDIO, -1, -1, &decoder, 0);
    if (stream_ < 0 || !decoder) return failed("In der Datei ist kein Ton.");
    codec_.reset(avcodec_alloc_context3(decoder));
    if (!codec_ || avcodec_parameters_to_context(codec_.get(), opened->streams[stream_]->codecpar) < 0 ||
        avcodec_open2(codec_.get(), decoder, nullptr) < 0) {
        return failed("Die Aufnahme lässt sich nicht lesen.");
    }
    return {};
}

std::expected<DecodedAudio, std::string> Decoding::decode() {
    const Packet packet(av_packet_alloc());
    bool wantsMore = true;
    while (wantsMore && av_read_frame(input_.get(), packet.get()) >= 0) {
        if (packet->stream_index == stream_) wantsMore = feed(packet.get());
        av_packet_unref(packet.get());
    }
    if (wantsMore && feed(nullptr)) (void)append(nullptr, 0);
    if (samples_.empty()) return failed("In der Aufnahme ist kein Ton.");
    if (static_cast<double>(samples_.size()) > longestInSeconds * wanted_.sampleRate * wanted_.channelCount) {
        return failed("Die Aufnahme ist länger als vier Stunden.");
    }
    return DecodedAudio{wanted_, std::move(samples_)};
}

/// A damaged packet is passed over: what follows may be whole.
bool Decoding::feed(const AVPacket* packet) {
    if (avcodec_send_packet(codec_.get(), packet) < 0) return true;
    while (avcodec_receive_frame(codec_.get(), frame_.get()) >= 0) {
        if (!takeFrame()) return false;
    }
    return true;
}

/// The format is that of the frame; what the file's head says may be wrong, and it may change.
bool Decoding::takeFrame() {
    const bool isKnown = resampler_ && sampleFormat_ == frame_->format &&
                         sampleRate_ == frame_->sample_rate &&
                         layout_.nb_channels == frame_->ch_layout.nb_channels;
    if (!isKnown) {
        if (resampler_ && !append(nullptr, 0)) return false;
        layout_ = frame_->ch_layout;
        if (layout_.order != AV_CHANNEL_ORDER_NATIVE) {
            av_channel_layout_default(&layout_, frame_->ch_layout.nb_channels);
        }
        sampleFormat_ = frame_->format;
        sampleRate_ = frame_->sample_rate;
        if (!isReasonable(
                {static_cast<double>(sampleRate_), static_cast<std::uint32_t>(layout_.nb_channels)})) {
            return false;
        }
        resampler_ = makeSwr(layout_, static_cast<AVSampleFormat>(sampleFormat_), sampleRate_, wanted_);
        if (!resampler_) return false;
    }
    return append(const_cast<const std::uint8_t**>(frame_->extended_data), frame_->nb_samples);
}

/// Without samples: what the filter still holds.
bool Decoding::append(const std::uint8_t** samples, int frames) {
    if (!resampler_) return true;
    if (!resample(resampler_.get(), samples, frames, wanted_.channelCount, samples_)) return true;
    return static_cast<double>(samples_.size()) <=
           longestInSeconds * wanted_.sampleRate * wanted_.channelCount;
}

} // namespace

/// The libraries' own words are for nobody.
AvFileReader::AvFileReader() { av_log_set_level(AV_LOG_QUIET); }

std::expected<DecodedAudio, std::string> AvFileReader::read(const fs::path& path, AudioFormat wanted) {
    if (!isReasonable(wanted)) return failed("Dieses Tonformat gibt es nicht.");
    Decoding decoding(wanted);
    if (const auto opened = decoding.open(path); !opened) return std::unexpected(opened.error());
    return decoding.decode();
}

} // namespace querlin
