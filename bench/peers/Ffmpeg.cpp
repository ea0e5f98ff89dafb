// SPDX-License-Identifier: Apache-2.0
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

#include <algorithm>

#include "Peers.h"

namespace peers {
namespace {

constexpr std::size_t kPiece = 32768;  // samples

struct S_Deleter {
  void operator()(AVFormatContext* pFile) const {
    if (pFile->iformat != nullptr) {
      avformat_close_input(&pFile);
    } else {
      avio_closep(&pFile->pb);
      avformat_free_context(pFile);
    }
  }
  void operator()(AVCodecContext* pDecoder) const { avcodec_free_context(&pDecoder); }
  void operator()(AVPacket* pPacket) const { av_packet_free(&pPacket); }
  void operator()(AVFrame* pFrame) const { av_frame_free(&pFrame); }
};
template <typename T>
using C_Owned = std::unique_ptr<T, S_Deleter>;

// A WAV file's head says everything, so nothing is decoded to find out more.
C_Owned<AVFormatContext> OpenToRead(const char* pszPath) {
  AVFormatContext* pFile = nullptr;
  Require(avformat_open_input(&pFile, pszPath, nullptr, nullptr) == 0);
  C_Owned<AVFormatContext> file(pFile);
  Require(file->nb_streams == 1);
  return file;
}

C_Owned<AVCodecContext> DecoderOf(const AVCodecParameters& parameters) {
  const AVCodec* const pCodec = avcodec_find_decoder(parameters.codec_id);
  Require(pCodec != nullptr);
  C_Owned<AVCodecContext> decoder(avcodec_alloc_context3(pCodec));
  Require(decoder && avcodec_parameters_to_context(decoder.get(), &parameters) == 0 &&
          avcodec_open2(decoder.get(), pCodec, nullptr) == 0);
  return decoder;
}

// Takes what the decoder has ready, as far as there is room. Mono sounds are the same in planes.
void Take(AVCodecContext& decoder, AVFrame& frame, std::span<short>* pRoom) {
  while (avcodec_receive_frame(&decoder, &frame) == 0) {
    Require(frame.format == AV_SAMPLE_FMT_S16 || frame.format == AV_SAMPLE_FMT_S16P);
    const auto* const pnSamples = static_cast<const short*>(static_cast<void*>(frame.data[0]));
    const auto nCount = std::min(static_cast<std::size_t>(frame.nb_samples), pRoom->size());
    std::copy_n(pnSamples, nCount, pRoom->data());
    *pRoom = pRoom->subspan(nCount);
  }
}

// More than the samples of the file; a head need not say how many there are.
std::size_t MostSamples(const AVFormatContext& file) {
  const AVCodecParameters& parameters = *file.streams[0]->codecpar;
  return static_cast<std::size_t>(avio_size(file.pb)) * 8 /
         static_cast<std::size_t>(parameters.bits_per_coded_sample);
}

S_Samples Load(const char* pszPath) {
  const auto file = OpenToRead(pszPath);
  const auto decoder = DecoderOf(*file->streams[0]->codecpar);
  const C_Owned<AVPacket> packet(av_packet_alloc());
  const C_Owned<AVFrame> frame(av_frame_alloc());
  S_Samples samples(MostSamples(*file));
  std::span<short> room(samples.values.get(), samples.nCount);
  while (av_read_frame(file.get(), packet.get()) == 0) {
    Require(avcodec_send_packet(decoder.get(), packet.get()) == 0);
    av_packet_unref(packet.get());
    Take(*decoder, *frame, &room);
  }
  avcodec_send_packet(decoder.get(), nullptr);
  Take(*decoder, *frame, &room);
  samples.nCount -= room.size();
  return samples;
}

void Describe(AVCodecParameters& parameters) {
  parameters.codec_type = AVMEDIA_TYPE_AUDIO;
  parameters.codec_id = AV_CODEC_ID_PCM_S16LE;
  parameters.format = AV_SAMPLE_FMT_S16;
  parameters.sample_rate = 16000;
  parameters.bits_per_coded_sample = 16;
  parameters.block_align = 2;
  av_channel_layout_default(&parameters.ch_layout, 1);
}

// The samples are those of the file as they are, so no encoder is needed.
void Save(std::span<const short> samples, const char* pszPath) {
  AVFormatContext* pFile = nullptr;
  Require(avformat_alloc_output_context2(&pFile, nullptr, "wav", pszPath) >= 0);
  const C_Owned<AVFormatContext> file(pFile);
  AVStream* const pStream = avformat_new_stream(file.get(), nullptr);
  Require(pStream != nullptr);
  Describe(*pStream->codecpar);
  Require(avio_open(&file->pb, pszPath, AVIO_FLAG_WRITE) >= 0 &&
          avformat_write_header(file.get(), nullptr) >= 0);
  const C_Owned<AVPacket> packet(av_packet_alloc());
  while (!samples.empty()) {
    const auto now = samples.first(std::min(kPiece, samples.size()));
    // The packet only lends its bytes, which are not changed.
    packet->data = static_cast<unsigned char*>(static_cast<void*>(const_cast<short*>(now.data())));
    packet->size = static_cast<int>(now.size_bytes());
    Require(av_write_frame(file.get(), packet.get()) >= 0);
    samples = samples.subspan(now.size());
  }
  Require(av_write_trailer(file.get()) == 0);
}

void Look(const char* pszPath) {
  const auto file = OpenToRead(pszPath);
  const AVCodecParameters& parameters = *file->streams[0]->codecpar;
  Require(parameters.sample_rate == 16000 && parameters.ch_layout.nb_channels == 1);
}

[[maybe_unused]] const bool g_bQuiet = (av_log_set_level(AV_LOG_QUIET), true);

}  // namespace

const S_Peer kFfmpeg{"FFmpeg", Load, Save, Look};

}  // namespace peers
