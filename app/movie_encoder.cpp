#include "movie_encoder.h"

#include <QPainter>
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "document/output_file.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace {

// The encoders by name: a plain codec lookup could pick a hardware encoder
// that needs a device this machine may not have.
const char* encoderName(MovieCodec codec) {
  return codec == MovieCodec::H264 ? "libx264" : "libvpx-vp9";
}

const char* codecTitle(MovieCodec codec) {
  return codec == MovieCodec::H264 ? "H.264" : "VP9";
}

// FFmpeg hands the muxed bytes over in pieces of this size.
constexpr int kIoBufferSize = 1 << 16;

QString ffmpegErrorText(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(code, text, sizeof text);
  return QString::fromUtf8(text);
}

// The frame as four bytes a pixel, red, green, blue and one unused, at the
// movie's picture size. A view resized during the recording is first scaled
// into the size it had at the start, keeping its shape, on black. An odd
// width or height then gains a column or row that repeats its neighbour:
// the colour sample of the last two by two pixels then sees only the
// picture's own colour, not the dark the converter would assume beyond it.
QImage asMovieFrame(const QImage& frame, QSize frameSize, QSize pictureSize) {
  QImage image = frame.convertToFormat(QImage::Format_RGBX8888);
  image.setDevicePixelRatio(1.0);
  if (image.size() != frameSize) {
    const QImage scaled = image.scaled(frameSize, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    image = QImage(frameSize, QImage::Format_RGBX8888);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.drawImage((frameSize.width() - scaled.width()) / 2,
                      (frameSize.height() - scaled.height()) / 2, scaled);
  }
  if (frameSize == pictureSize) {
    return image;
  }
  QImage padded(pictureSize, QImage::Format_RGBX8888);
  const int w = frameSize.width();
  const auto rowBytes = static_cast<std::size_t>(4 * w);
  for (int y = 0; y < pictureSize.height(); ++y) {
    const uchar* source = image.constScanLine(std::min(y, frameSize.height() - 1));
    uchar* target = padded.scanLine(y);
    std::memcpy(target, source, rowBytes);
    if (pictureSize.width() > w) {
      std::memcpy(target + rowBytes, source + rowBytes - 4, 4);
    }
  }
  return padded;
}

}  // namespace

std::optional<MovieCodec> preferredMovieCodec() {
  for (MovieCodec codec : {MovieCodec::H264, MovieCodec::VP9}) {
    if (avcodec_find_encoder_by_name(encoderName(codec)) != nullptr) {
      return codec;
    }
  }
  return std::nullopt;
}

QString movieSuffix(MovieCodec codec) {
  return codec == MovieCodec::H264 ? QStringLiteral("mp4") : QStringLiteral("webm");
}

QSize moviePictureSize(QSize frameSize) {
  return {(frameSize.width() + 1) / 2 * 2, (frameSize.height() + 1) / 2 * 2};
}

// Everything one movie needs, released in reverse order of creation; the
// file goes last, and without a commit its new file is removed.
struct MovieEncoder::State {
  OutputFile file;
  // Set when the file refused bytes or a seek: its errno explains the
  // failure better than FFmpeg's "I/O error".
  bool fileFailed = false;
  AVIOContext* io = nullptr;
  AVFormatContext* format = nullptr;
  AVCodecContext* codec = nullptr;
  AVStream* stream = nullptr;
  AVFrame* picture = nullptr;
  AVPacket* packet = nullptr;
  SwsContext* convert = nullptr;
  QSize frameSize;
  int64_t nextTime = 0;

  State() = default;
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    sws_freeContext(convert);
    av_packet_free(&packet);
    av_frame_free(&picture);
    avcodec_free_context(&codec);
    avformat_free_context(format);
    if (io != nullptr) {
      av_freep(&io->buffer);
      avio_context_free(&io);
    }
  }

  // FFmpeg's output goes through OutputFile, so that the movie is written
  // beside its name and renamed only when complete. MP4 and WebM both go
  // back to fill in sizes and indexes at the end, hence the seek.
  static int writeBytes(void* opaque, uint8_t* bytes, int size) {
    auto* s = static_cast<State*>(opaque);
    if (!s->file.write(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size))) {
      s->fileFailed = true;
      return AVERROR(EIO);
    }
    return size;
  }
  static int64_t seekBytes(void* opaque, int64_t offset, int whence) {
    auto* s = static_cast<State*>(opaque);
    whence &= ~AVSEEK_FORCE;
    // The size is optional to know; writing never needs it.
    if (whence == AVSEEK_SIZE) {
      return AVERROR(ENOSYS);
    }
    const qint64 position = s->file.seek(offset, whence);
    if (position < 0) {
      s->fileFailed = true;
      return AVERROR(EIO);
    }
    return position;
  }
};

MovieEncoder::MovieEncoder() = default;
MovieEncoder::~MovieEncoder() = default;

bool MovieEncoder::fail(const QString& reason) {
  error_ = reason;
  s_.reset();
  return false;
}

bool MovieEncoder::failWithCode(int code) {
  return fail(s_ != nullptr && s_->fileFailed ? s_->file.errorString() : ffmpegErrorText(code));
}

bool MovieEncoder::open(const QString& path, QSize frameSize, int framesPerSecond,
                        MovieCodec codec) {
  s_ = std::make_unique<State>();
  error_.clear();
  // The encoders' statistics and notes would fill the terminal the program
  // was started from; failures are reported by the program itself.
  av_log_set_level(AV_LOG_ERROR);
  const AVCodec* encoder = avcodec_find_encoder_by_name(encoderName(codec));
  if (encoder == nullptr) {
    return fail(QStringLiteral("the FFmpeg libraries have no %1 encoder (%2)")
                    .arg(codecTitle(codec), encoderName(codec)));
  }
  if (frameSize.isEmpty() || framesPerSecond < 1) {
    return fail(
        QStringLiteral("a movie needs frames of at least one pixel and one frame a second"));
  }
  State& s = *s_;
  s.frameSize = frameSize;
  if (!s.file.open(path, FifoOpen::FailWithoutReader)) {
    return fail(s.file.errorString());
  }
  const QByteArray container = movieSuffix(codec).toLatin1();
  int code = avformat_alloc_output_context2(&s.format, nullptr, container.constData(), nullptr);
  if (code < 0) {
    return failWithCode(code);
  }
  auto* buffer = static_cast<unsigned char*>(av_malloc(kIoBufferSize));
  if (buffer != nullptr) {
    s.io = avio_alloc_context(buffer, kIoBufferSize, 1, &s, nullptr, &State::writeBytes,
                              &State::seekBytes);
  }
  if (s.io == nullptr) {
    av_free(buffer);
    return failWithCode(AVERROR(ENOMEM));
  }
  s.format->pb = s.io;

  s.codec = avcodec_alloc_context3(encoder);
  s.stream = avformat_new_stream(s.format, nullptr);
  s.picture = av_frame_alloc();
  s.packet = av_packet_alloc();
  if (s.codec == nullptr || s.stream == nullptr || s.picture == nullptr || s.packet == nullptr) {
    return failWithCode(AVERROR(ENOMEM));
  }
  const QSize picture = moviePictureSize(frameSize);
  AVCodecContext& c = *s.codec;
  c.width = picture.width();
  c.height = picture.height();
  c.pix_fmt = AV_PIX_FMT_YUV420P;
  c.time_base = AVRational{1, framesPerSecond};
  c.framerate = AVRational{framesPerSecond, 1};
  // A key frame every two seconds: a player can jump anywhere quickly.
  c.gop_size = 2 * framesPerSecond;
  // The view's pixels are sRGB, whose primaries are those of BT.709; the
  // conversion below uses BT.709's matrix and limited range, and the movie
  // says so, so that players turn it back into the same colours.
  c.color_primaries = AVCOL_PRI_BT709;
  c.color_trc = AVCOL_TRC_BT709;
  c.colorspace = AVCOL_SPC_BT709;
  c.color_range = AVCOL_RANGE_MPEG;
  if ((s.format->oformat->flags & AVFMT_GLOBALHEADER) != 0) {
    c.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  }
  AVDictionary* options = nullptr;
  if (codec == MovieCodec::H264) {
    // Quality 18 shows no loss to the eye on the views' sharp lines and
    // points; "veryfast" keeps the encoding well under a frame's time.
    av_dict_set(&options, "preset", "veryfast", 0);
    av_dict_set(&options, "crf", "18", 0);
  } else {
    // Constant quality (a bit rate of 0), at libvpx's fastest settings: VP9
    // is several times slower to encode than H.264 otherwise.
    c.bit_rate = 0;
    av_dict_set(&options, "crf", "30", 0);
    av_dict_set(&options, "deadline", "realtime", 0);
    av_dict_set(&options, "cpu-used", "8", 0);
    av_dict_set(&options, "row-mt", "1", 0);
  }
  code = avcodec_open2(s.codec, encoder, &options);
  av_dict_free(&options);
  if (code < 0) {
    return failWithCode(code);
  }
  code = avcodec_parameters_from_context(s.stream->codecpar, s.codec);
  if (code < 0) {
    return failWithCode(code);
  }
  s.stream->time_base = c.time_base;
  s.stream->avg_frame_rate = c.framerate;

  s.picture->format = c.pix_fmt;
  s.picture->width = c.width;
  s.picture->height = c.height;
  code = av_frame_get_buffer(s.picture, 0);
  if (code < 0) {
    return failWithCode(code);
  }
  s.convert =
      sws_getContext(c.width, c.height, AV_PIX_FMT_RGB0, c.width, c.height, AV_PIX_FMT_YUV420P,
                     SWS_BILINEAR | SWS_ACCURATE_RND, nullptr, nullptr, nullptr);
  if (s.convert == nullptr) {
    return failWithCode(AVERROR(ENOMEM));
  }
  const int* bt709 = sws_getCoefficients(SWS_CS_ITU709);
  sws_setColorspaceDetails(s.convert, bt709, 1, bt709, 0, 0, 1 << 16, 1 << 16);

  code = avformat_write_header(s.format, nullptr);
  return code >= 0 || failWithCode(code);
}

bool MovieEncoder::addFrame(const QImage& frame) {
  if (s_ == nullptr) {
    return fail(QStringLiteral("no movie is open"));
  }
  State& s = *s_;
  const QImage rgb = asMovieFrame(frame, s.frameSize, QSize(s.picture->width, s.picture->height));
  // The codec may still hold the previous picture's buffers.
  const int code = av_frame_make_writable(s.picture);
  if (code < 0) {
    return failWithCode(code);
  }
  const uint8_t* const source[] = {rgb.constBits()};
  const int sourceStride[] = {static_cast<int>(rgb.bytesPerLine())};
  sws_scale(s.convert, source, sourceStride, 0, rgb.height(), s.picture->data, s.picture->linesize);
  s.picture->pts = s.nextTime++;
  return encode(s.picture);
}

bool MovieEncoder::encode(AVFrame* picture) {
  State& s = *s_;
  int code = avcodec_send_frame(s.codec, picture);
  if (code < 0) {
    return failWithCode(code);
  }
  while ((code = avcodec_receive_packet(s.codec, s.packet)) >= 0) {
    av_packet_rescale_ts(s.packet, s.codec->time_base, s.stream->time_base);
    s.packet->stream_index = s.stream->index;
    // Takes the packet's data, leaving the packet empty for the next one.
    code = av_interleaved_write_frame(s.format, s.packet);
    if (code < 0) {
      return failWithCode(code);
    }
  }
  return code == AVERROR(EAGAIN) || code == AVERROR_EOF || failWithCode(code);
}

bool MovieEncoder::finish() {
  if (s_ == nullptr) {
    return fail(QStringLiteral("no movie is open"));
  }
  if (!encode(nullptr)) {
    return false;
  }
  State& s = *s_;
  int code = av_write_trailer(s.format);
  if (code < 0) {
    return failWithCode(code);
  }
  avio_flush(s.io);
  if (s.io->error < 0) {
    return failWithCode(s.io->error);
  }
  if (!s.file.commit()) {
    return fail(s.file.errorString());
  }
  s_.reset();
  return true;
}
