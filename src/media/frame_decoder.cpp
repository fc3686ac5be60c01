#include "media/frame_decoder.h"

#include <mutex>

#include "media/ffmpeg_handles.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace quillory::media {
namespace {

std::string error_text(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(code, text, sizeof text);
  return text;
}

void check(int code, const char* doing) {
  if (code < 0) throw MediaError(std::string(doing) + ": " + error_text(code));
}

// The library's own diagnostics would reach standard error behind the caller's back; each
// failure comes back as a MediaError instead.
void quiet_library_log() {
  static std::once_flag once;
  std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

FormatContext open_input(const std::string& path) {
  AVFormatContext* raw = nullptr;
  check(avformat_open_input(&raw, path.c_str(), nullptr, nullptr), "cannot open");
  FormatContext format(raw);
  check(avformat_find_stream_info(format.get(), nullptr), "cannot read its streams");
  return format;
}

CodecContext open_decoder(const AVStream& stream) {
  const AVCodec* codec = avcodec_find_decoder(stream.codecpar->codec_id);
  if (codec == nullptr) throw MediaError("no decoder for its video");
  CodecContext decoder(avcodec_alloc_context3(codec));
  if (!decoder) throw MediaError("out of memory");
  check(avcodec_parameters_to_context(decoder.get(), stream.codecpar), "cannot read its video");
  decoder->thread_count = 1;  // one picture at a time needs no more, and the machine is shared
  check(avcodec_open2(decoder.get(), codec, nullptr), "cannot open its video");
  return decoder;
}

// How long one frame of `at` lasts; the stream's own rate when `at` names none.
AVRational frame_duration(const FramePosition& at, const AVStream& stream) {
  if (at.rate && at.rate->timebase() > 0) {
    const TimeScale per_second = at.rate->per_second();
    return AVRational{static_cast<int>(per_second.seconds()), static_cast<int>(per_second.units())};
  }
  const AVRational rate = stream.avg_frame_rate.num > 0 ? stream.avg_frame_rate : stream.r_frame_rate;
  if (rate.num <= 0 || rate.den <= 0) return {1, 25};
  return av_inv_q(rate);
}

// Decodes from the key frame before `target` (in the stream's time base) and keeps the
// frame that is showing at `target`.
Frame frame_at(AVFormatContext& format, AVCodecContext& decoder, int stream_index,
               std::int64_t target, std::int64_t leeway) {
  if (av_seek_frame(&format, stream_index, target, AVSEEK_FLAG_BACKWARD) >= 0) {
    avcodec_flush_buffers(&decoder);
  }
  Packet packet(av_packet_alloc());
  Frame decoded(av_frame_alloc());
  Frame kept(av_frame_alloc());
  if (!packet || !decoded || !kept) throw MediaError("out of memory");
  bool have = false;
  // Takes every frame the decoder holds; true once a frame after `target` shows up.
  const auto drain = [&] {
    while (avcodec_receive_frame(&decoder, decoded.get()) >= 0) {
      const std::int64_t time = decoded->best_effort_timestamp;
      const bool past = time != AV_NOPTS_VALUE && time > target + leeway;
      if (past && have) return true;
      av_frame_unref(kept.get());
      av_frame_move_ref(kept.get(), decoded.get());
      have = true;
      if (past) return true;  // `target` lies before the first frame
    }
    return false;
  };
  bool done = false;
  while (!done && av_read_frame(&format, packet.get()) >= 0) {
    if (packet->stream_index == stream_index && avcodec_send_packet(&decoder, packet.get()) >= 0) {
      done = drain();
    }
    av_packet_unref(packet.get());
  }
  if (!done && avcodec_send_packet(&decoder, nullptr) >= 0) drain();
  if (!have) throw MediaError("no picture decodes there");
  return kept;
}

RgbImage to_rgb(const AVFrame& frame) {
  RgbImage image{frame.width, frame.height, {}};
  ScaleContext scale(sws_getContext(frame.width, frame.height, static_cast<AVPixelFormat>(frame.format),
                                    frame.width, frame.height, AV_PIX_FMT_RGB24, SWS_BILINEAR,
                                    nullptr, nullptr, nullptr));
  if (!scale || frame.width <= 0 || frame.height <= 0) throw MediaError("cannot convert its picture");
  image.pixels.resize(static_cast<std::size_t>(frame.width) * 3 * static_cast<std::size_t>(frame.height));
  std::uint8_t* rows[4] = {image.pixels.data(), nullptr, nullptr, nullptr};
  const int row_bytes[4] = {frame.width * 3, 0, 0, 0};
  sws_scale(scale.get(), frame.data, frame.linesize, 0, frame.height, rows, row_bytes);
  return image;
}

}  // namespace

RgbImage decode_frame(const std::string& path, const FramePosition& at) {
  quiet_library_log();
  FormatContext format = open_input(path);
  const int index = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (index < 0) throw MediaError("it holds no video");
  const AVStream& stream = *format->streams[index];
  CodecContext decoder = open_decoder(stream);
  const AVRational duration = frame_duration(at, stream);
  const std::int64_t start = stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time;
  const std::int64_t target = start + av_rescale_q(at.frame, duration, stream.time_base);
  const std::int64_t leeway = av_rescale_q(1, duration, stream.time_base) / 2;
  const Frame frame = frame_at(*format, *decoder, index, target, leeway);
  return to_rgb(*frame);
}

}  // namespace quillory::media
