// SPDX-License-Identifier: Apache-2.0
//
// Writes any sound in any format with any notes through the public interface, reads it back, and
// compares: PCM of 16 bits and the notes come back as they were, whatever notes do not are among
// those that the writer says are lost, and whatever cannot be written is refused.
//
//   scripts/fuzz.sh 60 api_writer
//
// Input: the format, notes, then the sizes and samples of the pieces.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "FuzzInput.h"
#include "MemoryOutput.h"
#include "NotesComeBack.h"
#include "Require.h"
#include "voxplay.hpp"

namespace {

constexpr std::size_t kMostFrames = 700;

voxplay_format TakeFormat(C_FuzzInput& input) {
  constexpr std::array<std::uint32_t, 6> kRates = {8000, 16000, 4000, 48000, 65536, 44100};
  constexpr std::array<std::uint32_t, 6> kCodecs = {VOXPLAY_CODEC_PCM,     VOXPLAY_CODEC_FLOAT,
                                                    VOXPLAY_CODEC_KESTREL, VOXPLAY_CODEC_HERON,
                                                    VOXPLAY_CODEC_PCM,     VOXPLAY_CODEC_MULAW};
  constexpr std::array<std::uint32_t, 8> kBits = {16, 8, 24, 32, 2, 4, 6, 0};
  voxplay_format format{};
  format.container = input.Below(8);
  format.codec = input.OneOf(kCodecs);
  format.bits_per_sample = input.OneOf(kBits);
  format.sample_rate = input.Flag() ? input.OneOf(kRates) : input.U32();
  format.channels = input.Below(8) == 0 ? input.U8() : 1 + input.Below(3);
  if (format.codec == VOXPLAY_CODEC_KESTREL || format.codec == VOXPLAY_CODEC_MULAW) {
    format.bits_per_sample = 0;
  }
  if (input.Below(4) == 0) format.bit_rate = 800U * input.U8();
  if (input.Below(8) == 0) format.flags = input.U8();
  format.frames = input.Below(4) == 0 ? input.U16() : 0;
  return format;
}

std::string TakeText(C_FuzzInput& input) {
  const auto bytes = input.Bytes(input.Below(90));
  std::string strText(bytes.begin(), bytes.end());
  return strText.substr(0, strText.find('\0'));
}

void AddChunk(C_FuzzInput& input, voxplay::Notes& notes, unsigned int dwWhich) {
  // Some are the file's own, or look like padding.
  static constexpr std::array<const char*, 6> kIDs = {"fuzz", "JUNK", "data",
                                                      "vafm", "bext", "fact"};
  const auto bytes = input.Bytes(input.Below(60));
  voxplay::Chunk chunk{{}, bytes.data(), bytes.size()};
  std::copy_n(kIDs[dwWhich % kIDs.size()], sizeof chunk.id, chunk.id);
  notes.add(chunk);
}

void SetSampler(C_FuzzInput& input, voxplay::Notes& notes) {
  const auto bytes = input.Bytes(input.Below(9));
  notes.set_sampler({input.U8(), 2, input.U16(), input.U8(), 5, 6, 7, bytes.data(), bytes.size()});
}

void AddNote(C_FuzzInput& input, voxplay::Notes& notes) {
  const std::uint32_t dwID = input.Below(12);
  const unsigned int dwKind = input.U8();
  switch (dwKind % 8) {
    case 0:
      notes.add(voxplay::Event{input.U16(), input.U16(), input.U16(), input.U8(), nullptr});
      break;
    case 1:
      notes.add_silence({input.U16(), 1U + input.U8()});
      break;
    case 2:
      notes.add_region({input.U16(), 1U + input.U8()});
      break;
    case 3:
      notes.add(voxplay::Cue{dwID, input.U16(), {'d', 'a', 't', 'a'}, 0, 0, input.U16()});
      break;
    case 4: {
      const std::string strText = TakeText(input);
      voxplay::Label label{dwID, {'l', 'a', 'b', 'l'}, strText.c_str()};
      if (dwKind >= 224) std::copy_n("note", sizeof label.type, label.type);
      notes.add(label);
      break;
    }
    case 5: {
      const std::string strText = TakeText(input);
      notes.add(voxplay::RegionText{
          dwID, input.U16(), {'r', 'g', 'n', ' '}, 1, 2, 3, 4, strText.c_str()});
      break;
    }
    case 6:
      if (dwKind >= 200) return SetSampler(input, notes);
      notes.add(voxplay::Loop{dwID, input.Below(3), input.U16(), input.U16(), 0, input.U8()});
      break;
    default:
      AddChunk(input, notes, dwKind / 32);
  }
}

std::vector<std::int16_t> TakeSamples(C_FuzzInput& input, std::size_t nChannels) {
  std::vector<std::int16_t> samples(input.Below(kMostFrames) * nChannels);
  std::uint32_t dwSeed = input.U8();
  const int nGain = input.U8();
  for (auto& nSample : samples) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    nSample = static_cast<std::int16_t>((static_cast<int>(dwSeed >> 24) - 128) * nGain);
  }
  return samples;
}

template <typename T>
std::vector<T> Converted(const std::vector<std::int16_t>& samples, T scale) {
  std::vector<T> all(samples.size());
  std::ranges::transform(samples, all.begin(),
                         [scale](std::int16_t nSample) { return static_cast<T>(nSample) * scale; });
  return all;
}

// One piece, as any kind of samples.
voxplay_status WritePiece(voxplay_writer* pWriter, std::uint8_t byKind,
                          const std::vector<std::int16_t>& piece, std::size_t nChannels) {
  const std::size_t nFrames = piece.size() / nChannels;
  if (byKind % 3 == 0) return voxplay_writer_write_s16(pWriter, piece.data(), nFrames);
  if (byKind % 3 == 1) {
    return voxplay_writer_write_s32(pWriter, Converted(piece, std::int32_t{65536}).data(), nFrames);
  }
  return voxplay_writer_write_f32(pWriter, Converted(piece, 1.0F / 32768.0F).data(), nFrames);
}

std::vector<std::string> LostOf(const voxplay_writer* pWriter) {
  std::vector<std::string> lost;
  for (std::size_t n = 0; n < voxplay_writer_lost_count(pWriter); ++n) {
    lost.emplace_back(voxplay_writer_lost(pWriter, n));
  }
  return lost;
}

// What a writer was given, and what it made of that.
struct S_Written {
  voxplay_format format;
  voxplay::Notes notes;
  std::vector<std::int16_t> samples;
  std::vector<std::string> lost;
};

void CheckReadBack(const std::vector<std::uint8_t>& bytes, const S_Written& written) {
  const auto& [format, notes, samples, lost] = written;
  const bool bStream = format.container == VOXPLAY_CONTAINER_VEF &&
                       format.codec != VOXPLAY_CODEC_PCM && samples.size() % 2 == 0;
  voxplay::Reader reader(std::as_bytes(std::span(bytes)), bStream ? VOXPLAY_READ_STREAM : 0);
  const voxplay::Info info = reader.info();
  Require(info.container == format.container);
  Require(info.sample_rate == format.sample_rate || info.container == VOXPLAY_CONTAINER_BARE);
  std::vector<std::int16_t> read(samples.size() + 1000);
  read.resize(reader.read(std::span(read)) * info.channels);
  const bool bPcm = format.codec == VOXPLAY_CODEC_PCM || format.codec == VOXPLAY_CODEC_FLOAT ||
                    (format.container == VOXPLAY_CONTAINER_VEF && !bStream);
  if (bPcm && format.bits_per_sample != 8) Require(read == samples);
  RequireNotesComeBack(notes, reader.notes(), lost);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  S_Written written{TakeFormat(input), {}, {}, {}};
  auto& [format, notes, samples, lost] = written;
  C_MemoryOutput output(!input.Flag(), input.Below(4) == 0 ? 1 + input.U8() : 1 << 30);
  const voxplay_output record = output.Record();
  const bool bAllowed = voxplay_format_check(&format, sizeof format, nullptr, 0) == VOXPLAY_OK;
  voxplay_writer* const pWriter = voxplay_writer_new();
  voxplay_status eStatus = voxplay_writer_open_output(pWriter, &record, &format, sizeof format);
  Require(bAllowed || eStatus == VOXPLAY_UNSUPPORTED);
  for (unsigned int n = input.Below(8); n > 0; --n) AddNote(input, notes);
  if (eStatus == VOXPLAY_OK) {
    Require(voxplay_writer_set_notes(pWriter, notes.view().get()) == VOXPLAY_OK);
    for (unsigned int n = 1 + input.Below(3); n > 0 && eStatus == VOXPLAY_OK; --n) {
      const std::uint8_t byKind = input.U8();
      const auto piece = TakeSamples(input, format.channels);
      eStatus = WritePiece(pWriter, byKind, piece, format.channels);
      samples.insert(samples.end(), piece.begin(), piece.end());
    }
    if (eStatus == VOXPLAY_OK) eStatus = voxplay_writer_finish(pWriter);
  }
  Require((eStatus == VOXPLAY_OK) == (*voxplay_writer_message(pWriter) == '\0'));
  lost = LostOf(pWriter);
  voxplay_writer_free(pWriter);
  const bool bBareHeron =
      format.container == VOXPLAY_CONTAINER_BARE && format.codec == VOXPLAY_CODEC_HERON;
  if (eStatus == VOXPLAY_OK && !bBareHeron && !samples.empty()) {
    CheckReadBack(output.Bytes(), written);
  }
  return 0;
}
