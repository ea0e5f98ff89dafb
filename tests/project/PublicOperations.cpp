// SPDX-License-Identifier: Apache-2.0
#include "PublicOperations.h"

#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include "ReadKinds.h"
#include "voxplay.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<std::int16_t>;

constexpr std::size_t kFrames = 640;
constexpr std::size_t kHeronFrames = 160;  // encoding takes many steps
constexpr std::size_t kPiece = 250;        // frames that are read or written at a time

struct S_Kind {
  voxplay_container eContainer;
  voxplay_codec eCodec;
  std::uint32_t dwBits;
};
constexpr S_Kind kWave{VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16};
constexpr S_Kind kVemd{VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM, 16};
constexpr S_Kind kKestrel{VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0};
constexpr S_Kind kHeron{VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4};
constexpr S_Kind kKestrelVef{VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL, 0};
constexpr S_Kind kHeronVef{VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_HERON, 2};

voxplay::Format FormatOf(const S_Kind& kind) {
  voxplay::Format format{};
  format.container = static_cast<std::uint32_t>(kind.eContainer);
  format.codec = static_cast<std::uint32_t>(kind.eCodec);
  format.sample_rate = 16000;
  format.channels = 1;
  format.bits_per_sample = kind.dwBits;
  return format;
}

Samples Ramp(const S_Kind& kind) {
  Samples samples(kind.eCodec == VOXPLAY_CODEC_HERON ? kHeronFrames : kFrames);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    samples[n] = static_cast<std::int16_t>(n * 97 % 4001 - 2000);
  }
  return samples;
}

voxplay::Notes SomeNotes() {
  voxplay::Notes notes;
  notes.add(voxplay::Event{100, 3, 7, 8, "what no file holds"});
  notes.add_silence({20, 30});
  notes.add(voxplay::Cue{9, 50, {'d', 'a', 't', 'a'}, 0, 0, 50});
  notes.add(voxplay::Label{9, {'l', 'a', 'b', 'l'}, "a mark"});
  notes.add(voxplay::Chunk{{'n', 'o', 't', 'e'}, "abc", 3});
  return notes;
}

// Writes piece by piece.
void Save(const std::string& strPath, const S_Kind& kind, const Samples& samples) {
  voxplay::Writer writer(strPath, FormatOf(kind));
  writer.set_notes(SomeNotes());
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += kPiece) {
    const std::size_t nCount = std::min(kPiece, samples.size() - nAt);
    writer.write(std::span(samples).subspan(nAt, nCount));
  }
  writer.finish();
}

Bytes Saved(const S_Kind& kind) {
  const C_TempFolder folder;
  Save(folder.Path("made"), kind, Ramp(kind));
  return folder.Read("made");
}

Samples ReadAll(const std::string& strPath, std::uint32_t dwFlags) {
  voxplay::Reader reader(strPath, dwFlags);
  return ReadRest(reader, kPiece);
}

// Without memory, the exception goes to the caller.
template <typename Work>
bool Succeeds(Work&& work) {
  try {
    work();
    return true;
  } catch (const voxplay::Error&) {
    return false;
  }
}

class C_PublicReadOperation : public C_SweptOperation {
 public:
  C_PublicReadOperation(const C_TempFolder& folder, Bytes source, std::uint32_t dwFlags)
      : C_SweptOperation(folder), m_dwFlags(dwFlags) {
    m_source = std::move(source);
    Prepare();
    if (!C_PublicReadOperation::Run()) std::abort();
    m_expected = m_read;
  }
  bool Run() override {
    return Succeeds([this] { m_read = ReadAll(Source(), m_dwFlags); });
  }
  bool IsWhole() override { return m_read == m_expected; }

 private:
  void Forget() override { Samples().swap(m_read); }

  std::uint32_t m_dwFlags;
  Samples m_read;
  Samples m_expected;
};

enum class Onto { Nothing, AnotherFile, Itself };

// Writes a sound, or reads one and writes over it what was read.
class C_PublicSaveOperation : public C_SweptOperation {
 public:
  C_PublicSaveOperation(const C_TempFolder& folder, const S_Kind& kind, Onto eOnto)
      : C_SweptOperation(folder), m_kind(kind), m_eOnto(eOnto), m_samples(Ramp(kind)) {
    if (eOnto == Onto::Itself) m_source = Saved(kWave);
    if (eOnto == Onto::AnotherFile) m_replaced = Bytes(3000, std::uint8_t{'x'});
    Prepare();
    if (!C_PublicSaveOperation::Run()) std::abort();
    m_expected = Written();
  }
  bool Run() override {
    return Succeeds([this] {
      if (m_eOnto == Onto::Itself) {
        Samples samples = ReadAll(Source(), 0);
        samples[100] = 12345;  // so that the new file is another one
        Save(Source(), m_kind, samples);
      } else {
        Save(Target(), m_kind, m_samples);
      }
    });
  }
  bool IsWhole() override { return Written() == m_expected; }
  // A file that was not there must not be there after a failure either.
  [[nodiscard]] bool IsEverythingKept() const override {
    return C_SweptOperation::IsEverythingKept() &&
           (m_eOnto != Onto::Nothing || ReadTarget().empty());
  }

 private:
  [[nodiscard]] Bytes Written() const {
    return m_eOnto == Onto::Itself ? ReadSource() : ReadTarget();
  }

  S_Kind m_kind;
  Onto m_eOnto;
  Samples m_samples;
  Bytes m_expected;
};

C_PublicMaker Read(const S_Kind& kind, std::uint32_t dwFlags = 0) {
  return [=](const auto& folder) {
    return std::make_unique<C_PublicReadOperation>(folder, Saved(kind), dwFlags);
  };
}
// Cut within the samples.
C_PublicMaker ReadCut(const S_Kind& kind) {
  return [=](const auto& folder) {
    Bytes bytes = Saved(kind);
    bytes.resize(kFrames);
    return std::make_unique<C_PublicReadOperation>(folder, std::move(bytes), 0);
  };
}
// What only others write.
std::map<std::string, C_PublicMaker> ReadsOfOthers() {
  std::map<std::string, C_PublicMaker> makers;
  for (const S_PublicKind& kind : ReadOnlyKinds()) {
    makers["PublicRead" + kind.strName] = [kind](const auto& folder) {
      return std::make_unique<C_PublicReadOperation>(folder, SoundBytes(kind, kFrames), 0);
    };
  }
  return makers;
}
C_PublicMaker Write(const S_Kind& kind, Onto eOnto) {
  return [=](const auto& folder) {
    return std::make_unique<C_PublicSaveOperation>(folder, kind, eOnto);
  };
}

}  // namespace

std::map<std::string, C_PublicMaker> PublicOperations() {
  std::map<std::string, C_PublicMaker> makers = {
      {"PublicReadWave", Read(kWave)},
      {"PublicReadCutWave", ReadCut(kWave)},
      {"PublicReadKestrel", Read(kKestrel)},
      {"PublicReadHeron", Read(kHeron)},
      {"PublicReadStreamOfVef", Read(kHeronVef, VOXPLAY_READ_STREAM)},
      {"PublicSaveWave", Write(kWave, Onto::Nothing)},
      {"PublicSaveWaveOntoAnother", Write(kWave, Onto::AnotherFile)},
      {"PublicSaveWaveOntoItself", Write(kWave, Onto::Itself)},
      {"PublicSaveVemdOntoAnother", Write(kVemd, Onto::AnotherFile)},
      {"PublicSaveKestrelOntoAnother", Write(kKestrel, Onto::AnotherFile)},
      {"PublicSaveKestrelVefOntoItself", Write(kKestrelVef, Onto::Itself)},
      {"PublicSaveHeronOntoAnother", Write(kHeron, Onto::AnotherFile)},
  };
  makers.merge(ReadsOfOthers());
  return makers;
}
