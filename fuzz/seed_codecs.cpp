// SPDX-License-Identifier: Apache-2.0
//
// Seeds for the codecs: streams, frames and samples.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "ExampleSound.h"
#include "FuzzFile.h"
#include "Seeds.h"
#include "codec/HeronCodec.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"
#include "heron/Block.h"
#include "heron/Decoder.h"
#include "heron/SampleCount.h"
#include "heron/SoundCoder.h"

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

// The runs of the blocks of a sound at 4 kHz: what a piece is (a block in its order), length,
// bytes. This fuzzer makes heads and checks of its own.
Bytes HeronPieces(const std::vector<std::int16_t>& samples, int nBitDepth) {
  constexpr int kRate = 4000;
  constexpr std::size_t kChoice = 12;  // this rate, and a sound of several blocks
  Bytes coded;
  if (!heron::EncodeSamples(samples, kRate, nBitDepth, &coded, {})) std::abort();
  const auto decoder = heron::C_Decoder::Open(coded, kRate);
  if (!decoder) std::abort();
  const std::size_t nAfterFirst = samples.size() - decoder->Length();
  Bytes pieces = Chosen(kChoice, std::array{static_cast<std::uint8_t>(nAfterFirst & 0xFF),
                                            static_cast<std::uint8_t>(nAfterFirst >> 8)});
  for (std::size_t n = 0; n < decoder->BlockCount(); ++n) {
    const auto run = *decoder->Run(n);
    if (run.size() > 0xFF) std::abort();
    pieces.insert(pieces.end(), {3, static_cast<std::uint8_t>(run.size())});
    pieces.insert(pieces.end(), run.begin(), run.end());
  }
  return pieces;
}

// Sounds of several blocks that are nearly all silence, so that they take few bytes.
void AddHeronBlocks(C_Seeds& seeds) {
  constexpr std::size_t kBlock = heron::BlockLength(4000);
  for (std::size_t nMore = 1; nMore <= 3; ++nMore) {
    std::vector<std::int16_t> samples(nMore * kBlock + 100 * nMore);
    seeds.Add({"heron_stream"}, HeronPieces(samples, 2));
    for (std::size_t n = 0; n < samples.size(); n += kBlock - 700) samples[n] = 1000;
    Bytes pieces = HeronPieces(samples, 2);
    seeds.Add({"heron_stream"}, pieces);
    Bytes numbered = pieces;
    numbered[3] = 0;
    numbered.insert(numbered.begin() + 4, 2);
    seeds.Add({"heron_stream"}, numbered);
    Bytes endless = pieces;
    endless[1] = endless[2] = 0xFF;
    seeds.Add({"heron_stream"}, endless);
    // The same with bytes that are no block, and with a wrong check.
    for (const std::uint8_t byWhat : {std::uint8_t{1}, std::uint8_t{2}}) {
      pieces[3] = byWhat;
      seeds.Add({"heron_stream"}, pieces);
    }
  }
  // Two blocks at 48 kHz with the numbers 127 and 255, so that 127 others are missing before each:
  // more than may be. Then one with the number 255, which seems to be there for the second time.
  seeds.Add({"heron_stream"}, Bytes{17, 0xFF, 0xFF, 0, 127, 3, 1, 2, 3, 0, 255, 3, 1, 2, 3});
  seeds.Add({"heron_stream"}, Bytes{17, 0xFF, 0xFF, 0, 255, 3, 1, 2, 3});
}

// The runs of sounds of one block: rate and shape, mode, sample count, run.
void AddHeronRuns(C_Seeds& seeds) {
  constexpr std::array<int, 6> kRates = {4000, 8000, 11025, 16000, 44100, 48000};
  for (std::size_t i = 0; i < kRates.size(); ++i) {
    for (const std::size_t nSamples : {std::size_t{30}, std::size_t{400}, std::size_t{1500}}) {
      const C_SoundPtr sound = ExampleSound({}, nSamples);
      std::vector<std::int16_t> samples(nSamples);
      vcm::C_ByteReader reader({sound->GetBuffer(), sound->GetBufferLength()});
      for (std::int16_t& nSample : samples) nSample = reader.I16();
      if (nSamples == 1500) std::fill(samples.begin() + 300, samples.end() - 300, std::int16_t{0});
      Bytes coded;
      if (!heron::EncodeSamples(samples, kRates[i], 2, &coded, {})) std::abort();
      const std::size_t nRunAt = heron::ReadCount(coded)->nBytes + heron::kCheckBytes;
      Bytes input = Chosen(6 + i, std::array{std::uint8_t{0}, static_cast<std::uint8_t>(nSamples),
                                             static_cast<std::uint8_t>(nSamples >> 8)});
      input.insert(input.end(), coded.begin() + static_cast<std::ptrdiff_t>(nRunAt), coded.end());
      seeds.Add({"heron_stream"}, input);
    }
  }
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
    // Sounds of several sections and of several blocks. The last byte has them coded again.
    seeds.Add({"heron_encode_decode"}, Bytes{0, byDepth, 0xC3, 0x84, 0x03, 0x10, 0x20, 0x31, 0x50});
    seeds.Add({"heron_encode_decode"}, Bytes{0, byDepth, 0xF3, 0x10, 0x20, 0x08, 0x40, 0x31, 0x50});
  }
}

}  // namespace

void AddCodecs(C_Seeds& seeds) {
  AddStreams(seeds);
  AddHeronStreams(seeds);
  AddHeronBlocks(seeds);
  AddHeronRuns(seeds);
  AddHeronSignals(seeds);
}
