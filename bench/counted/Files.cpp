// SPDX-License-Identifier: Apache-2.0
//
// Files of one second of sound, a sample or a frame a unit.
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "CompressedBytes.h"
#include "ExampleSound.h"
#include "Subjects.h"
#include "WavFileFormat.h"
#include "file/SpHeader.h"

namespace counted {
namespace {

constexpr std::size_t kSamples = 16000;
constexpr std::size_t kFrames = 50;

// A file that is deleted at the end.
class C_ScratchFile {
 public:
  C_ScratchFile() {
    const int nFile = mkstemp(m_strPath.data());
    if (nFile < 0) throw std::runtime_error("no temporary file");
    close(nFile);
  }
  explicit C_ScratchFile(const C_Bytes& bytes) : C_ScratchFile() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pFile(
        std::fopen(Path(), "wb"), [](std::FILE* p) { return std::fclose(p); });
    if (!pFile || std::fwrite(bytes.data(), 1, bytes.size(), pFile.get()) != bytes.size()) {
      throw std::runtime_error("cannot write " + m_strPath);
    }
  }
  ~C_ScratchFile() { std::remove(Path()); }
  C_ScratchFile(const C_ScratchFile&) = delete;
  C_ScratchFile& operator=(const C_ScratchFile&) = delete;

  [[nodiscard]] const char* Path() const { return m_strPath.c_str(); }

 private:
  std::string m_strPath = "/tmp/voxplay-counted-XXXXXX";
};

struct S_Releaser {
  void operator()(I_WavFile* pFile) const { pFile->Release(); }
};
using C_FilePtr = std::unique_ptr<I_WavFile, S_Releaser>;

C_FilePtr Load(const C_ScratchFile& file) {
  C_WavFileFormat format;
  C_FilePtr pFile(format.CreateWavFile(file.Path(), true, true, nullptr, nullptr));
  if (pFile == nullptr) throw std::runtime_error("a file does not load");
  return pFile;
}

void Save(I_WavData& sound, tagAudioFileType eType, const C_ScratchFile& file) {
  if (!sound.Convert(eType, file.Path(), true, false, nullptr, true, 0)) {
    throw std::runtime_error("a file cannot be written");
  }
}

void LoadTimes(const C_ScratchFile& file, std::size_t nTimes) {
  for (std::size_t n = 0; n < nTimes; ++n) Use(Load(file)->GetWavDataBuffer());
}

void LoadPcm(std::size_t nTimes) {
  const C_ScratchFile file;
  Save(*ExampleSound({}, kSamples), AUDIO_FILE_WAVE, file);
  LoadTimes(file, nTimes);
}

void SavePcm(std::size_t nTimes) {
  const C_SoundPtr sound = ExampleSound({}, kSamples);
  const C_ScratchFile file;
  for (std::size_t n = 0; n < nTimes; ++n) Save(*sound, AUDIO_FILE_WAVE, file);
}

// Opening alone; a sound of one sample costs next to nothing to load.
void OpenPcm(std::size_t nTimes) {
  const C_ScratchFile file;
  Save(*ExampleSound({}, 1), AUDIO_FILE_WAVE, file);
  LoadTimes(file, nTimes);
}

// Codes of all values.
C_Bytes AnyBytes(std::size_t cbCount) {
  C_Bytes bytes(cbCount);
  std::uint32_t dwRandom = 1;
  for (auto& by : bytes) {
    dwRandom = dwRandom * 1664525U + 1013904223U;
    by = static_cast<std::uint8_t>(dwRandom >> 24);
  }
  return bytes;
}

void LoadMuLaw(std::size_t nTimes) {
  const C_ScratchFile file(CompressedWav({WAVE_TAG_MULAW, 1, 1, 0, 8}, AnyBytes(kSamples)).Take());
  LoadTimes(file, nTimes);
}
void LoadALaw(std::size_t nTimes) {
  const C_ScratchFile file(CompressedWav({WAVE_TAG_ALAW, 1, 1, 0, 8}, AnyBytes(kSamples)).Take());
  LoadTimes(file, nTimes);
}

// Blocks of 256 bytes, each with a head that says where it begins.
C_Bytes AdpcmBlocks(std::size_t nBlocks, const C_Bytes& head) {
  C_Bytes bytes = AnyBytes(nBlocks * 256);
  for (std::size_t n = 0; n < nBlocks; ++n) {
    std::copy(head.begin(), head.end(), bytes.begin() + static_cast<std::ptrdiff_t>(n * 256));
  }
  return bytes;
}
constexpr std::size_t kBlocks = 32;
constexpr std::size_t kDviBlock = 505;  // samples
constexpr std::size_t kMsBlock = 500;

void LoadDviAdpcm(std::size_t nTimes) {
  const C_ScratchFile file(
      CompressedWav({WAVE_TAG_DVI_ADPCM, 1, 256, kDviBlock, 4}, AdpcmBlocks(kBlocks, {0, 0, 20, 0}))
          .Take());
  LoadTimes(file, nTimes);
}
void LoadMsAdpcm(std::size_t nTimes) {
  const C_ScratchFile file(CompressedWav({WAVE_TAG_MS_ADPCM, 1, 256, kMsBlock, 4},
                                         AdpcmBlocks(kBlocks, {1, 64, 0, 0, 0, 0, 0}))
                               .Take());
  LoadTimes(file, nTimes);
}

void WavToKestrel(std::size_t nTimes) {
  const C_ScratchFile from;
  const C_ScratchFile to;
  Save(*ExampleSound({}, kSamples), AUDIO_FILE_WAVE, from);
  for (std::size_t n = 0; n < nTimes; ++n) {
    if (!Load(from)->Convert(AUDIO_FILE_KESTREL, to.Path(), true, false, nullptr, false, 0)) {
      throw std::runtime_error("a file cannot be converted");
    }
  }
}
void KestrelToWav(std::size_t nTimes) {
  const C_ScratchFile from;
  const C_ScratchFile to;
  Save(*ExampleSound({}, kSamples), AUDIO_FILE_KESTREL, from);
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(kSamples);
  if (!PrependSpHeader(header, from.Path())) throw std::runtime_error("no header");
  for (std::size_t n = 0; n < nTimes; ++n) {
    if (!Load(from)->Convert(AUDIO_FILE_WAVE, to.Path(), true, false, nullptr, false, 0)) {
      throw std::runtime_error("a file cannot be converted");
    }
  }
}

constexpr std::array kSubjects = {
    S_Subject{"wav-open", "file", 1, 20, 120, &OpenPcm},
    S_Subject{"wav-load-16", "sample", kSamples, 2, 12, &LoadPcm},
    S_Subject{"wav-save-16", "sample", kSamples, 2, 12, &SavePcm},
    S_Subject{"wav-load-mulaw", "sample", kSamples, 2, 12, &LoadMuLaw},
    S_Subject{"wav-load-alaw", "sample", kSamples, 2, 12, &LoadALaw},
    S_Subject{"wav-load-dvi4", "sample", kBlocks* kDviBlock, 2, 12, &LoadDviAdpcm},
    S_Subject{"wav-load-ms", "sample", kBlocks* kMsBlock, 2, 12, &LoadMsAdpcm},
    S_Subject{"wav-to-kestrel", "frame", kFrames, 2, 12, &WavToKestrel},
    S_Subject{"kestrel-to-wav", "frame", kFrames, 2, 12, &KestrelToWav},
};

}  // namespace

std::span<const S_Subject> FileSubjects() { return kSubjects; }

}  // namespace counted
