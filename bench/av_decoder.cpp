#include "bench/peer_decoders.h"

#ifdef MARVOLEN_BENCH_LIBAV

#include <algorithm>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libswscale/swscale.h>
}

namespace marvolen::bench {
namespace {

class AvDecoder final : public PeerDecoder {
public:
    AvDecoder() {
        av_log_set_level(AV_LOG_QUIET);
        const AVCodec* const codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
        decoder = avcodec_alloc_context3(codec);
        decoder->thread_count = 1;
        opened = avcodec_open2(decoder, codec, nullptr) == 0;
    }
    ~AvDecoder() override {
        sws_freeContext(scaler);
        av_frame_free(&frame);
        av_packet_free(&packet);
        avcodec_free_context(&decoder);
    }
    AvDecoder(const AvDecoder&) = delete;
    AvDecoder& operator=(const AvDecoder&) = delete;

    const char* Name() const override { return "libavcodec"; }
    bool Decode(std::span<const std::uint8_t> jpeg) override {
        // The decoder may read a little beyond the end; a program keeps its packets that long.
        padded.resize(jpeg.size() + AV_INPUT_BUFFER_PADDING_SIZE);
        std::copy(jpeg.begin(), jpeg.end(), padded.begin());
        packet->data = padded.data();
        packet->size = static_cast<int>(jpeg.size());
        return opened && avcodec_send_packet(decoder, packet) == 0 &&
               avcodec_receive_frame(decoder, frame) == 0 && Convert();
    }

private:
    bool Convert() {
        const auto format = static_cast<AVPixelFormat>(frame->format);
        scaler = sws_getCachedContext(scaler, frame->width, frame->height, format, frame->width,
                                      frame->height, AV_PIX_FMT_BGR24, SWS_FAST_BILINEAR, nullptr,
                                      nullptr, nullptr);
        const int stride = (frame->width * 3 + 3) / 4 * 4;
        pixels.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(frame->height));
        std::uint8_t* const rows[] = {pixels.data() + std::ptrdiff_t{stride} * (frame->height - 1)};
        const int strides[] = {-stride};
        return scaler && sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, rows,
                                   strides) == frame->height;
    }

    AVCodecContext* decoder = nullptr;
    bool opened = false;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    SwsContext* scaler = nullptr;
    std::vector<std::uint8_t> padded;
    std::vector<std::uint8_t> pixels;
};

}  // namespace

std::unique_ptr<PeerDecoder> MakeAvDecoder() {
    return std::make_unique<AvDecoder>();
}

}  // namespace marvolen::bench

#else

std::unique_ptr<marvolen::bench::PeerDecoder> marvolen::bench::MakeAvDecoder() {
    return nullptr;
}

#endif
