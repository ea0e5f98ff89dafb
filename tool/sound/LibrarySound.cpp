// SPDX-License-Identifier: Apache-2.0
#include "sound/LibrarySound.h"

#include <string_view>
#include <utility>

#include "base/Failure.h"
#include "sound/FormatText.h"
#include "sound/WidenedSamples.h"

namespace tool {
namespace {

constexpr double kFullScale = 2147483648.0;

// The library calls every input by the same name.
std::string Renamed(std::string_view sentence, const std::string& strName) {
  constexpr std::string_view kInput = "input: ";
  if (sentence.starts_with(kInput)) sentence.remove_prefix(kInput.size());
  return strName + ": " + std::string(sentence);
}

voxplay_input InputOf(C_FileBytes& file) {
  voxplay_input input{};
  input.read = [](void* pUser, void* pBytes, std::size_t cbBytes) {
    return static_cast<C_FileBytes*>(pUser)->Read(pBytes, cbBytes);
  };
  input.seek = [](void* pUser, std::uint64_t qwPosition) {
    static_cast<C_FileBytes*>(pUser)->Seek(qwPosition);
    return 0;
  };
  input.size = [](void* pUser) { return static_cast<C_FileBytes*>(pUser)->Length(); };
  input.user = &file;
  return input;
}

S_SoundInfo InfoOf(const voxplay::Reader& reader) {
  const voxplay::Info ours = reader.info();
  S_SoundInfo info;
  info.dwRate = ours.sample_rate;
  info.dwChannels = ours.channels;
  info.qwFrames = ours.frames;
  info.strFormat = FormatText(ours);
  info.dwBits = UsedBits(ours);
  info.bDouble = ours.codec == VOXPLAY_CODEC_FLOAT && ours.bits_per_sample > 32;
  info.dwNotesContainer = ours.container;
  info.ours = ours;
  info.headers = reader.headers();
  info.chunks = reader.chunk_places();
  return info;
}

class C_LibrarySound final : public I_SoundInput {
 public:
  C_LibrarySound(const std::string& strPath, std::uint32_t dwFlags)
      : m_reader(strPath, dwFlags), m_info(InfoOf(m_reader)) {}
  C_LibrarySound(std::unique_ptr<C_FileBytes> file, const std::string& strName,
                 std::uint32_t dwFlags)
      : m_file(std::move(file)),
        m_strName(strName),
        m_reader(InputOf(*m_file), dwFlags),
        m_info(InfoOf(m_reader)) {}

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_reader.notes(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override {
    return InfoNow().damaged_frames;
  }
  [[nodiscard]] bool IsCut() const noexcept override { return InfoNow().is_cut != 0; }

  std::size_t Read(std::span<std::int16_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<std::int32_t> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<float> samples) override { return ReadAny(samples); }
  std::size_t Read(std::span<double> samples) override {
    if (m_info.dwBits == 0) return ReadWidened(*this, m_floats, samples, 1.0);
    return ReadWidened(*this, m_integers, samples, kFullScale);
  }
  void Seek(std::uint64_t qwFrame) override {
    Named([&] { m_reader.seek(qwFrame); });
  }

 private:
  [[nodiscard]] voxplay::Info InfoNow() const noexcept {
    voxplay::Info info{};
    voxplay_reader_info(m_reader.get(), &info, sizeof info);
    return info;
  }
  template <typename Sample>
  std::size_t ReadAny(std::span<Sample> samples) {
    std::size_t nDone = 0;
    Named([&] { nDone = m_reader.read(samples); });
    return nDone;
  }
  // The library knows the name of a file that it has opened itself.
  template <typename Work>
  void Named(Work&& work) {
    try {
      work();
    } catch (const voxplay::Error& error) {
      if (m_strName.empty()) throw;
      throw C_Failure(Renamed(error.what(), m_strName));
    }
  }

  std::unique_ptr<C_FileBytes> m_file;
  std::string m_strName;
  voxplay::Reader m_reader;
  S_SoundInfo m_info;
  std::vector<float> m_floats;
  std::vector<std::int32_t> m_integers;
};

}  // namespace

C_SoundInputPtr OpenLibrarySound(const std::string& strPath, std::uint32_t dwFlags) {
  return std::make_unique<C_LibrarySound>(strPath, dwFlags);
}

C_SoundInputPtr OpenLibrarySound(C_FileBytes file, const std::string& strName,
                                 std::uint32_t dwFlags) {
  try {
    return std::make_unique<C_LibrarySound>(std::make_unique<C_FileBytes>(std::move(file)), strName,
                                            dwFlags);
  } catch (const voxplay::Error& error) {
    throw voxplay::Error(error.status(), Renamed(error.what(), strName).c_str());
  }
}

}  // namespace tool
