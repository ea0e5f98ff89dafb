// SPDX-License-Identifier: Apache-2.0
//
// Seeds for the codecs: streams, frames and samples.
#include <array>
#include <cstddef>
#include <memory>

#include "ExampleSound.h"
#include "FuzzFile.h"
#include "Seeds.h"
#include "codec/HeronCodec.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

using Bytes = C_SeedBytes;

constexpr std::array<unsigned int, 8> kEncodedRates = {7200,  9600,  12000, 14400,
                                                       16000, 20000, 24000, 32000};

constexpr unsigned int kLowestRate = 4800;
constexpr unsigned int kRateStep = 800;

Bytes KestrelStream(unsigned int dwBitRate, std::size_t nFrames) {
  const C_SoundPtr sound = ExampleSound({}, nFrames * 320);
  C_KestrelCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  if (!codec.LoadCodec(dwBitRate) ||
      !codec.Encode(sound.get(), dwBitRate, &pbyStream, &dwLength, nullptr)) {
    std::abort();
  }
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return {pbyStream, pbyStream + dwLength};
}

Bytes WithHeader(const Bytes& stream, tagAudioFileType eType = AUDIO_FILE_KESTREL) {
  C_SpHeader header;
  header.SetID(static_cast<unsigned short>(eType));
  header.SetFreq(16000);
  const C_FuzzFile source(stream);
  const C_FuzzFile target;
  if (!CopyWithSpHeader(source.Path(), target.Path(), header)) std::abort();
  return target.Bytes();
}

// In the input of the coder's fuzzers, the first byte chooses a rate, and the rest is what they
// code.
Bytes Chosen(std::size_t nChoice, std::span<const std::uint8_t> rest) {
  Bytes bytes = {static_cast<std::uint8_t>(nChoice)};
  bytes.insert(bytes.end(), rest.begin(), rest.end());
  return bytes;
}

void AddStreams(C_Seeds& seeds) {
  constexpr std::size_t cbHead = 6;  // length and bit rate
  for (std::size_t i = 0; i < kEncodedRates.size(); ++i) {
    const Bytes stream = KestrelStream(kEncodedRates[i], 4);
    const std::size_t nChoice = (kEncodedRates[i] - kLowestRate) / kRateStep;
    seeds.Add({"kestrel_stream"}, stream);
    seeds.Add({"factory", "file_kind", "sp_header"}, WithHeader(stream));
    seeds.Add({"kestrel_frame"}, Chosen(nChoice, std::span(stream).subspan(cbHead)));
    seeds.Add({"kestrel_encode_decode"}, Chosen(i, ExamplePcm({}, 700)));
  }
}

Bytes HeronStream(I_WavData& sound, tagAudioFileType eType) {
  C_HeronCodec codec;
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  if (!codec.Encode(&sound, eType, nullptr, nullptr, &pbyStream, &dwLength)) std::abort();
  const std::unique_ptr<unsigned char[]> owner(pbyStream);
  return {pbyStream, pbyStream + dwLength};
}

// The first byte chooses one of these sample rates, in this order.
void AddHeronStreams(C_Seeds& seeds) {
  constexpr std::array<unsigned int, 6> kRates = {4000, 8000, 11025, 16000, 44100, 48000};
  for (std::size_t i = 0; i < kRates.size(); ++i) {
    const C_SoundPtr sound = ExampleSound({.dwSampleRate = kRates[i]}, 400);
    for (unsigned int dwType = kHeronTypes.dwFirst; dwType <= kHeronTypes.dwLast; ++dwType) {
      const Bytes stream = HeronStream(*sound, static_cast<tagAudioFileType>(dwType));
      seeds.Add({"heron_stream"}, Chosen(i, stream));
      if (kHeronSpTypes.Has(dwType) && kRates[i] == 16000) {
        seeds.Add({"factory", "file_kind", "sp_header"},
                  WithHeader(stream, static_cast<tagAudioFileType>(dwType)));
      }
    }
    AddAnnotations(*sound);
    seeds.Add({"heron_stream"}, Chosen(i, HeronStream(*sound, AUDIO_FILE_HERON_2BIT)));
  }
}

// Signals of each kind at each depth: rate, depth, kind, then samples or the shape of a signal.
void AddHeronSignals(C_Seeds& seeds) {
  for (std::uint8_t byDepth = 0; byDepth < 7; ++byDepth) {
    for (const int nRate : {0x00, 0x0A, 0xC0, 0xF8, 0xF9}) {
      Bytes samples = {static_cast<std::uint8_t>(nRate)};
      if (nRate >= 0xC0) samples.insert(samples.end(), {0x40, 0x9C});
      Bytes signal = samples;
      samples.insert(samples.end(), {byDepth, 0});
      const Bytes pcm = ExamplePcm({}, 170);
      samples.insert(samples.end(), pcm.begin(), pcm.end());
      seeds.Add({"heron_encode_decode"}, samples);
      for (const std::uint8_t byKind : {std::uint8_t{1}, std::uint8_t{3}}) {
        Bytes made = signal;
        made.insert(made.end(), {byDepth, byKind, 0x00, 0x04});
        for (int i = 0; i < 40; ++i) made.push_back(static_cast<std::uint8_t>(i * 37 + byKind));
        seeds.Add({"heron_encode_decode"}, made);
      }
    }
  }
}

}  // namespace

void AddCodecs(C_Seeds& seeds) {
  AddStreams(seeds);
  AddHeronStreams(seeds);
  AddHeronSignals(seeds);
}
