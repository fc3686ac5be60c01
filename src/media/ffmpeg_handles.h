#pragma once
// Owning handles for FFmpeg objects: each frees its object with the library's own function.

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace quillory::media {

struct FormatContextDeleter {
  void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
};
struct CodecContextDeleter {
  void operator()(AVCodecContext* context) const noexcept { avcodec_free_context(&context); }
};
struct PacketDeleter {
  void operator()(AVPacket* packet) const noexcept { av_packet_free(&packet); }
};
struct FrameDeleter {
  void operator()(AVFrame* frame) const noexcept { av_frame_free(&frame); }
};
struct ScaleContextDeleter {
  void operator()(SwsContext* context) const noexcept { sws_freeContext(context); }
};

using FormatContext = std::unique_ptr<AVFormatContext, FormatContextDeleter>;
using CodecContext = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using Packet = std::unique_ptr<AVPacket, PacketDeleter>;
using Frame = std::unique_ptr<AVFrame, FrameDeleter>;
using ScaleContext = std::unique_ptr<SwsContext, ScaleContextDeleter>;

}  // namespace quillory::media
