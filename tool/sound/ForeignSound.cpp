// SPDX-License-Identifier: Apache-2.0
#include "sound/ForeignSound.h"

#include <sndfile.h>

#include <algorithm>
#include <type_traits>
#include <utility>

#include "base/Failure.h"
#include "sound/ForeignNotes.h"

namespace tool {
namespace {

struct S_Close {
  void operator()(SNDFILE* pFile) const noexcept { sf_close(pFile); }
};
using C_SndfilePtr = std::unique_ptr<SNDFILE, S_Close>;

sf_count_t Seek(C_FileBytes& file, sf_count_t nOffset, int nWhence) {
  sf_count_t nFrom = 0;
  if (nWhence == SEEK_CUR) nFrom = static_cast<sf_count_t>(file.Position());
  if (nWhence == SEEK_END) nFrom = file.Length();
  // Offsets come from the file. Where they lead out of it, nothing is read.
  sf_count_t nTo = 0;
  if (__builtin_add_overflow(nFrom, nOffset, &nTo) || nTo < 0) return -1;
  file.Seek(static_cast<std::uint64_t>(nTo));
  return nTo;
}

SF_VIRTUAL_IO Functions() {
  SF_VIRTUAL_IO functions{};
  functions.get_filelen = [](void* pUser) -> sf_count_t {
    return static_cast<C_FileBytes*>(pUser)->Length();
  };
  functions.seek = [](sf_count_t nOffset, int nWhence, void* pUser) {
    return Seek(*static_cast<C_FileBytes*>(pUser), nOffset, nWhence);
  };
  functions.read = [](void* pBytes, sf_count_t nBytes, void* pUser) -> sf_count_t {
    auto& file = *static_cast<C_FileBytes*>(pUser);
    return std::max<sf_count_t>(file.Read(pBytes, static_cast<std::size_t>(nBytes)), 0);
  };
  functions.tell = [](void* pUser) {
    return static_cast<sf_count_t>(static_cast<C_FileBytes*>(pUser)->Position());
  };
  return functions;
}

std::string NameOfFormat(int nCommand, int nFormat) {
  SF_FORMAT_INFO info{};
  info.format = nFormat;
  if (sf_command(nullptr, nCommand, &info, sizeof info) != 0) return "";
  return info.name == nullptr ? "" : info.name;
}

// "FLAC (Free Lossless Audio Codec)" is known by its first word.
std::string FormatText(int nFormat) {
  std::string strMajor = NameOfFormat(SFC_GET_FORMAT_INFO, nFormat & SF_FORMAT_TYPEMASK);
  strMajor.erase(std::min(strMajor.find(" ("), strMajor.size()));
  const std::string strMinor = NameOfFormat(SFC_GET_FORMAT_INFO, nFormat & SF_FORMAT_SUBMASK);
  return strMinor.empty() ? strMajor : strMajor + ", " + strMinor;
}

// As far as samples are integers.
std::uint32_t UsedBits(int nFormat) {
  switch (nFormat & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_DPCM_8:
      return 8;
    case SF_FORMAT_PCM_24:
    case SF_FORMAT_ALAC_24:
    case SF_FORMAT_DWVW_24:
    case SF_FORMAT_DWVW_N:
      return 24;
    case SF_FORMAT_ALAC_20:
      return 20;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_ALAC_32:
      return 32;
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE:
    case SF_FORMAT_VORBIS:
    case SF_FORMAT_OPUS:
    case SF_FORMAT_MPEG_LAYER_I:
    case SF_FORMAT_MPEG_LAYER_II:
    case SF_FORMAT_MPEG_LAYER_III:
      return 0;
    default:
      return 16;
  }
}

S_SoundInfo InfoOf(const SF_INFO& foreign) {
  S_SoundInfo info;
  info.dwRate = static_cast<std::uint32_t>(foreign.samplerate);
  info.dwChannels = static_cast<std::uint32_t>(foreign.channels);
  if (foreign.frames >= 0 && foreign.frames < SF_COUNT_MAX) {
    info.qwFrames = static_cast<std::uint64_t>(foreign.frames);
  }
  info.strFormat = FormatText(foreign.format);
  info.dwBits = UsedBits(foreign.format);
  return info;
}

class C_ForeignSound final : public I_SoundInput {
 public:
  C_ForeignSound(std::unique_ptr<C_FileBytes> bytes, C_SndfilePtr file, S_SoundInfo info,
                 std::string strName)
      : m_bytes(std::move(bytes)),
        m_file(std::move(file)),
        m_info(std::move(info)),
        m_strName(std::move(strName)),
        m_notes(ForeignNotes(m_file.get())) {}

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_notes.view(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }

  std::size_t Read(std::span<std::int16_t> samples) override {
    return Frames(sf_readf_short(m_file.get(), samples.data(), Room(samples.size())));
  }
  std::size_t Read(std::span<std::int32_t> samples) override {
    static_assert(std::is_same_v<std::int32_t, int>);
    return Frames(sf_readf_int(m_file.get(), samples.data(), Room(samples.size())));
  }
  std::size_t Read(std::span<float> samples) override {
    return Frames(sf_readf_float(m_file.get(), samples.data(), Room(samples.size())));
  }
  void Seek(std::uint64_t qwFrame) override {
    if (sf_seek(m_file.get(), static_cast<sf_count_t>(qwFrame), SEEK_SET) >= 0) return;
    throw C_Failure(m_strName, "frame " + std::to_string(qwFrame) + " cannot be reached",
                    sf_strerror(m_file.get()));
  }

 private:
  [[nodiscard]] sf_count_t Room(std::size_t nSamples) const {
    return static_cast<sf_count_t>(nSamples / m_info.dwChannels);
  }
  // A file that ends early is a shorter sound; one that cannot be read is a failure.
  std::size_t Frames(sf_count_t nRead) {
    if (m_bytes->Error() != 0) {
      throw C_Failure(m_strName, "cannot be read", SystemReason(m_bytes->Error()));
    }
    return static_cast<std::size_t>(std::max<sf_count_t>(nRead, 0));
  }

  std::unique_ptr<C_FileBytes> m_bytes;
  C_SndfilePtr m_file;
  S_SoundInfo m_info;
  std::string m_strName;
  voxplay::Notes m_notes;
};

}  // namespace

C_SoundInputPtr OpenForeignSound(C_FileBytes file, const std::string& strName,
                                 std::string* pstrWhy) {
  auto bytes = std::make_unique<C_FileBytes>(std::move(file));
  SF_VIRTUAL_IO functions = Functions();
  SF_INFO foreign{};
  C_SndfilePtr sndfile(sf_open_virtual(&functions, SFM_READ, &foreign, bytes.get()));
  if (!sndfile || foreign.channels < 1 || foreign.samplerate < 1) {
    *pstrWhy = sf_strerror(sndfile.get());
    return nullptr;
  }
  // Samples of floating point keep to the range when they become integers.
  sf_command(sndfile.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  sf_command(sndfile.get(), SFC_SET_SCALE_FLOAT_INT_READ, nullptr, SF_TRUE);
  return std::make_unique<C_ForeignSound>(std::move(bytes), std::move(sndfile), InfoOf(foreign),
                                          strName);
}

}  // namespace tool
