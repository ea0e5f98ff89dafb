// SPDX-License-Identifier: Apache-2.0
//
// The public interface: what it writes through an output in each container and codec, and what it
// reads of that.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Outputs.h"
#include "Voice.h"
#include "voxplay.h"

namespace {

constexpr std::size_t kFrames = 3001;

struct S_Format {
  const char* pszName;
  std::uint32_t dwContainer;
  std::uint32_t dwCodec;
  std::uint32_t dwBits;
  std::uint32_t dwChannels;
};

constexpr auto kFormats = std::to_array<S_Format>({
    {"wav 8", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 8, 1},
    {"wav 16", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 2},
    {"wav 24", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 24, 1},
    {"wav 32", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 32, 3},
    {"wav float", VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_FLOAT, 32, 2},
    {"vemd 16", VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM, 16, 1},
    {"vef 24", VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 24, 2},
    {"vef kestrel", VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL, 0, 2},
    {"vef heron 3", VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_HERON, 3, 1},
    {"sp kestrel", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0, 1},
    {"sp heron 4", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 2},
    {"sp heron 5", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 5, 1},
    {"sp heron 6", VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 6, 1},
    {"head kestrel", VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_KESTREL, 0, 3},
    {"head heron 2", VOXPLAY_CONTAINER_HEAD, VOXPLAY_CODEC_HERON, 2, 1},
    {"bare kestrel", VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_KESTREL, 0, 1},
    {"bare heron 4", VOXPLAY_CONTAINER_BARE, VOXPLAY_CODEC_HERON, 4, 1},
});

void Expect(voxplay_status eStatus, const char* pszMessage) {
  if (eStatus != VOXPLAY_OK) throw std::runtime_error(pszMessage);
}

using C_Bytes = std::vector<std::uint8_t>;

// An output in memory.
class C_Output {
 public:
  voxplay_output Record() { return {Write, Seek, this}; }
  [[nodiscard]] const C_Bytes& Bytes() const { return m_bytes; }

 private:
  static int Write(void* pUser, const void* pBytes, std::size_t cbCount) {
    auto& output = *static_cast<C_Output*>(pUser);
    if (output.m_nAt + cbCount > output.m_bytes.size()) {
      output.m_bytes.resize(output.m_nAt + cbCount);
    }
    std::memcpy(output.m_bytes.data() + output.m_nAt, pBytes, cbCount);
    output.m_nAt += cbCount;
    return 0;
  }
  static int Seek(void* pUser, std::uint64_t qwPosition) {
    static_cast<C_Output*>(pUser)->m_nAt = static_cast<std::size_t>(qwPosition);
    return 0;
  }

  C_Bytes m_bytes;
  std::size_t m_nAt = 0;
};

using C_NotesPtr = std::unique_ptr<voxplay_notes, decltype(&voxplay_notes_free)>;
using C_WriterPtr = std::unique_ptr<voxplay_writer, decltype(&voxplay_writer_free)>;
using C_ReaderPtr = std::unique_ptr<voxplay_reader, decltype(&voxplay_reader_free)>;

// One of each kind.
C_NotesPtr Notes() {
  C_NotesPtr notes(voxplay_notes_new(), voxplay_notes_free);
  const auto add = [&notes](auto fnAdd, const auto& record) {
    Expect(fnAdd(notes.get(), &record, sizeof record), "notes");
  };
  const voxplay_range range{300, 40};
  Expect(voxplay_notes_add_range(notes.get(), VOXPLAY_NOTE_SILENCE, &range, sizeof range), "notes");
  Expect(voxplay_notes_add_range(notes.get(), VOXPLAY_NOTE_REGION, &range, sizeof range), "notes");
  add(voxplay_notes_add_event, voxplay_event{1234, 0x0102, 0x0304, 0x05060708, nullptr});
  add(voxplay_notes_add_cue, voxplay_cue{7, 500, {'d', 'a', 't', 'a'}, 1, 2, 500});
  add(voxplay_notes_add_label, voxplay_label{7, {'l', 'a', 'b', 'l'}, "Verse"});
  add(voxplay_notes_add_region_text,
      voxplay_region_text{7, 60, {'r', 'g', 'n', ' '}, 49, 9, 1, 1252, "text"});
  add(voxplay_notes_set_sampler, voxplay_sampler{1, 2, 62500, 60, 3, 4, 5, "abc", 3});
  add(voxplay_notes_add_loop, voxplay_loop{7, 1, 10, 200, 5, 6});
  add(voxplay_notes_add_chunk, voxplay_chunk{{'p', 'r', 'i', 'v'}, "12345", 5});
  return notes;
}

C_Bytes Written(const S_Format& format) {
  voxplay_format record{};
  record.container = format.dwContainer;
  record.codec = format.dwCodec;
  record.sample_rate = 16000;
  record.channels = format.dwChannels;
  record.bits_per_sample = format.dwBits;
  C_Output output;
  const voxplay_output target = output.Record();
  const C_WriterPtr writer(voxplay_writer_new(), voxplay_writer_free);
  const auto expect = [&](voxplay_status eStatus) {
    Expect(eStatus, voxplay_writer_message(writer.get()));
  };
  expect(voxplay_writer_open_output(writer.get(), &target, &record, sizeof record));
  expect(voxplay_writer_set_notes(writer.get(), Notes().get()));
  const auto voice = Voice(kFrames * format.dwChannels);
  expect(voxplay_writer_write_s16(writer.get(), voice.data(), kFrames));
  expect(voxplay_writer_finish(writer.get()));
  return output.Bytes();
}

void AddRead(const std::string& strName, const C_Bytes& file, std::uint32_t dwFlags,
             C_Outputs& outputs) {
  const C_ReaderPtr reader(voxplay_reader_new(), voxplay_reader_free);
  const auto expect = [&](voxplay_status eStatus) {
    Expect(eStatus, voxplay_reader_message(reader.get()));
  };
  expect(voxplay_reader_open_memory(reader.get(), file.data(), file.size(), dwFlags));
  voxplay_info info{};
  expect(voxplay_reader_info(reader.get(), &info, sizeof info));
  std::vector<std::int16_t> samples(static_cast<std::size_t>(info.frames * info.channels));
  std::size_t nDone = 0;
  expect(voxplay_reader_read_s16(reader.get(), samples.data(),
                                 static_cast<std::size_t>(info.frames), &nDone));
  if (nDone != info.frames) throw std::runtime_error(strName);
  outputs.AddWords(strName, samples);
}

}  // namespace

void AddApiOutputs(C_Outputs& outputs) {
  for (const S_Format& format : kFormats) {
    const std::string strName = std::string("interface ") + format.pszName;
    const C_Bytes file = Written(format);
    outputs.Add(strName + " written", file);
    const bool bBareHeron =
        format.dwContainer == VOXPLAY_CONTAINER_BARE && format.dwCodec == VOXPLAY_CODEC_HERON;
    if (!bBareHeron) AddRead(strName + " read", file, 0, outputs);
    if (format.dwContainer == VOXPLAY_CONTAINER_VEF && format.dwCodec != VOXPLAY_CODEC_PCM) {
      AddRead(strName + " stream read", file, VOXPLAY_READ_STREAM, outputs);
    }
  }
}
