// SPDX-License-Identifier: Apache-2.0
#include "sound/ForeignSound.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/QuietErrors.h"
#include "sound/ForeignEnd.h"
#include "sound/ForeignNotes.h"
#include "sound/ForeignWav.h"
#include "sound/HeldSound.h"

namespace tool {
namespace {

constexpr std::size_t kSkippedFrames = 4096;

struct S_Close {
  void operator()(SNDFILE* pFile) const noexcept {
    const C_QuietErrors quiet;
    sf_close(pFile);
  }
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
  const bool bWav = (nFormat & SF_FORMAT_TYPEMASK) == SF_FORMAT_WAV;
  if (bWav && (nFormat & SF_FORMAT_ENDMASK) == SF_ENDIAN_BIG) strMajor += " (RIFX)";
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

// What is no number becomes silence.
template <typename Sample>
Sample Scaled(float fSample) {
  constexpr double dLeast = std::numeric_limits<Sample>::min();
  constexpr double dMost = std::numeric_limits<Sample>::max();
  if (std::isnan(fSample)) return 0;
  return static_cast<Sample>(
      std::clamp(std::nearbyint(-dLeast * static_cast<double>(fSample)), dLeast, dMost));
}

bool IsMpeg(int nFormat) { return (nFormat & SF_FORMAT_TYPEMASK) == SF_FORMAT_MPEG; }

S_SoundInfo InfoOf(const SF_INFO& foreign) {
  S_SoundInfo info;
  info.dwRate = static_cast<std::uint32_t>(foreign.samplerate);
  info.dwChannels = static_cast<std::uint32_t>(foreign.channels);
  if (foreign.frames >= 0 && foreign.frames < SF_COUNT_MAX) {
    info.qwFrames = static_cast<std::uint64_t>(foreign.frames);
  }
  info.strFormat = FormatText(foreign.format);
  info.dwBits = UsedBits(foreign.format);
  info.bDouble = (foreign.format & SF_FORMAT_SUBMASK) == SF_FORMAT_DOUBLE;
  return info;
}

C_SndfilePtr OpenQuietly(SF_INFO& info, C_FileBytes& bytes) {
  const C_QuietErrors quiet;
  SF_VIRTUAL_IO functions = Functions();
  return C_SndfilePtr(sf_open_virtual(&functions, SFM_READ, &info, &bytes));
}

class C_ForeignSound final : public I_SoundInput {
 public:
  C_ForeignSound(std::unique_ptr<C_FileBytes> bytes, C_SndfilePtr file, S_SoundInfo info,
                 std::string strName, voxplay::Notes notes, const SF_INFO& foreign, bool bCut)
      : m_bytes(std::move(bytes)),
        m_file(std::move(file)),
        m_info(std::move(info)),
        m_strName(std::move(strName)),
        m_notes(std::move(notes)),
        m_bMpeg(IsMpeg(foreign.format)),
        m_bSeekable(foreign.seekable != 0),
        m_bCut(bCut) {}

  [[nodiscard]] const S_SoundInfo& Info() const noexcept override { return m_info; }
  [[nodiscard]] voxplay::NotesView Notes() const noexcept override { return m_notes.view(); }
  [[nodiscard]] std::uint64_t DamagedFrames() const noexcept override { return 0; }

  std::size_t Read(std::span<std::int16_t> samples) override {
    if (m_info.dwBits == 0) return ReadScaled(samples);
    return Frames(
        [&] { return sf_readf_short(m_file.get(), samples.data(), Room(samples.size())); });
  }
  std::size_t Read(std::span<std::int32_t> samples) override {
    static_assert(std::is_same_v<std::int32_t, int>);
    if (m_info.dwBits == 0) return ReadScaled(samples);
    return Frames([&] { return sf_readf_int(m_file.get(), samples.data(), Room(samples.size())); });
  }
  std::size_t Read(std::span<float> samples) override {
    return Frames(
        [&] { return sf_readf_float(m_file.get(), samples.data(), Room(samples.size())); });
  }
  std::size_t Read(std::span<double> samples) override {
    return Frames(
        [&] { return sf_readf_double(m_file.get(), samples.data(), Room(samples.size())); });
  }
  void Seek(std::uint64_t qwFrame) override {
    if (!m_bSeekable) return ReadUpTo(qwFrame);
    const C_QuietErrors quiet;
    if (sf_seek(m_file.get(), static_cast<sf_count_t>(qwFrame), SEEK_SET) >= 0) return;
    throw C_Failure(m_strName, "frame " + std::to_string(qwFrame) + " cannot be reached",
                    sf_strerror(m_file.get()));
  }

  [[nodiscard]] bool IsCut() const noexcept override { return m_bCut; }

 private:
  // libsndfile reads some codecs of WAV files only forward.
  void ReadUpTo(std::uint64_t qwFrame) {
    SF_INFO info{};
    m_bytes->Seek(0);
    m_file = OpenQuietly(info, *m_bytes);
    if (!m_file) throw C_Failure(m_strName, "cannot be read again", sf_strerror(nullptr));
    std::vector<std::int16_t> piece(kSkippedFrames * m_info.dwChannels);
    while (qwFrame > 0) {
      ThrowIfInterrupted();
      const auto nWanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(qwFrame, kSkippedFrames));
      const std::size_t nRead = Read(std::span(piece).first(nWanted * m_info.dwChannels));
      if (nRead == 0) return;
      qwFrame -= nRead;
    }
  }
  [[nodiscard]] sf_count_t Room(std::size_t nSamples) const {
    return static_cast<sf_count_t>(nSamples / m_info.dwChannels);
  }
  // libsndfile would make the loudest sample of the file full scale, and decode all of it for that.
  template <typename Sample>
  std::size_t ReadScaled(std::span<Sample> samples) {
    m_floats.resize(samples.size());
    const std::size_t nFrames = Read(std::span(m_floats));
    const auto read = std::span(m_floats).first(nFrames * m_info.dwChannels);
    std::ranges::transform(read, samples.begin(), &Scaled<Sample>);
    return nFrames;
  }
  // A file that ends early is a shorter sound; one that cannot be read is a failure.
  template <typename Work>
  std::size_t Frames(Work&& fnRead) {
    const sf_count_t nRead = m_bMpeg ? Quietly(fnRead) : fnRead();
    if (m_bytes->Error() != 0) {
      throw C_Failure(m_strName, "cannot be read", SystemReason(m_bytes->Error()));
    }
    // An MPEG decoder that finds no way on ends the sound.
    if (nRead <= 0 && m_bMpeg && sf_error(m_file.get()) != SF_ERR_NO_ERROR) m_bCut = true;
    return static_cast<std::size_t>(std::max<sf_count_t>(nRead, 0));
  }
  template <typename Work>
  static sf_count_t Quietly(Work&& fnRead) {
    const C_QuietErrors quiet;
    return fnRead();
  }

  std::unique_ptr<C_FileBytes> m_bytes;
  C_SndfilePtr m_file;
  S_SoundInfo m_info;
  std::string m_strName;
  voxplay::Notes m_notes;
  std::vector<float> m_floats;
  bool m_bMpeg;
  bool m_bSeekable;
  bool m_bCut;
};

}  // namespace

C_SoundInputPtr OpenForeignSound(C_FileBytes file, const std::string& strName,
                                 std::string* pstrWhy) {
  auto bytes = std::make_unique<C_FileBytes>(std::move(file));
  const auto qwGsmFrames = GsmFrames(*bytes);
  bytes->Seek(0);
  SF_INFO foreign{};
  C_SndfilePtr sndfile = OpenQuietly(foreign, *bytes);
  if (!sndfile || foreign.channels < 1 || foreign.samplerate < 1) {
    *pstrWhy = sf_strerror(sndfile.get());
    return nullptr;
  }
  const std::uint64_t qwBefore = bytes->Position();
  S_SoundInfo info = InfoOf(foreign);
  info.bFramesGuessed = IsMpeg(foreign.format) && !TellsMpegLength(*bytes);
  std::optional<S_WavMarks> marks = ReadWavMarks(*bytes);
  if (marks) info.dwNotesContainer = VOXPLAY_CONTAINER_WAV;
  if (!marks) marks = {ForeignNotes(sndfile.get()), LacksItsEnd(*bytes)};
  bytes->Seek(qwBefore);
  C_SoundInputPtr sound =
      std::make_unique<C_ForeignSound>(std::move(bytes), std::move(sndfile), std::move(info),
                                       strName, std::move(marks->notes), foreign, marks->bCut);
  return qwGsmFrames ? FirstFrames(std::move(sound), *qwGsmFrames) : std::move(sound);
}

C_SoundInputPtr OpenLawCodes(C_FileBytes codes, const std::string& strName, bool bALaw,
                             std::uint32_t dwChannels) {
  constexpr int kAnyRate = 8000;
  auto bytes = std::make_unique<C_FileBytes>(std::move(codes));
  SF_INFO law{};
  law.format = SF_FORMAT_RAW | (bALaw ? SF_FORMAT_ALAW : SF_FORMAT_ULAW);
  law.channels = static_cast<int>(dwChannels);
  law.samplerate = kAnyRate;
  C_SndfilePtr sndfile = OpenQuietly(law, *bytes);
  if (!sndfile) throw C_Failure(strName, "cannot be decoded", sf_strerror(nullptr));
  return std::make_unique<C_ForeignSound>(std::move(bytes), std::move(sndfile), InfoOf(law),
                                          strName, voxplay::Notes(), law, false);
}

}  // namespace tool
