#include "AacFile.h"

#include <algorithm>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
}

namespace querlin {

namespace {

void check(int outcome) {
    if (outcome < 0) throw std::runtime_error("no AAC file");
}

} // namespace

void writeAacFile(const std::filesystem::path& path, std::span<const float> samples) {
    AVFormatContext* file = nullptr;
    check(avformat_alloc_output_context2(&file, nullptr, "ipod", path.c_str()));
    const AVCodec* encoder = avcodec_find_encoder(AV_CODEC_ID_AAC);
    AVCodecContext* codec = avcodec_alloc_context3(encoder);
    codec->sample_rate = 48000;
    codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    codec->bit_rate = 128'000;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    av_channel_layout_default(&codec->ch_layout, 1);
    check(avcodec_open2(codec, encoder, nullptr));
    AVStream* stream = avformat_new_stream(file, nullptr);
    check(avcodec_parameters_from_context(stream->codecpar, codec));
    check(avio_open(&file->pb, path.c_str(), AVIO_FLAG_WRITE));
    check(avformat_write_header(file, nullptr));

    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    const auto encode = [&](const AVFrame* next) {
        check(avcodec_send_frame(codec, next));
        while (avcodec_receive_packet(codec, packet) >= 0) {
            av_packet_rescale_ts(packet, {1, codec->sample_rate}, stream->time_base);
            check(av_interleaved_write_frame(file, packet));
        }
    };
    const auto step = static_cast<std::size_t>(codec->frame_size);
    for (std::size_t at = 0; at + step <= samples.size(); at += step) {
        frame->nb_samples = codec->frame_size;
        frame->format = AV_SAMPLE_FMT_FLTP;
        frame->pts = static_cast<std::int64_t>(at);
        check(av_channel_layout_copy(&frame->ch_layout, &codec->ch_layout));
        check(av_frame_get_buffer(frame, 0));
        std::ranges::copy(samples.subspan(at, step), reinterpret_cast<float*>(frame->extended_data[0]));
        encode(frame);
        av_frame_unref(frame);
    }
    encode(nullptr);
    check(av_write_trailer(file));
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&codec);
    avio_closep(&file->pb);
    avformat_free_context(file);
}

} // namespace querlin
