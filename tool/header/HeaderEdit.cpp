// SPDX-License-Identifier: Apache-2.0
#include "header/HeaderEdit.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "sound/ByteCopy.h"
#include "sound/FormatText.h"
#include "sound/ShortSound.h"
#include "sound/SoundInput.h"
#include "sound/StandardInput.h"
#include "voxplay.hpp"

namespace tool {
namespace {

constexpr std::size_t kHeaderBytes = 48;
constexpr std::size_t kPieceSamples = 16384;
constexpr std::uint32_t kUsualRate = 16000;
constexpr const char* kUnchanged = "nothing is changed";

voxplay::Format FormatOf(const std::string& strCodec, std::uint32_t dwRate) {
  voxplay::Format format{};
  format.container = VOXPLAY_CONTAINER_SP;
  format.channels = 1;
  format.sample_rate = dwRate == 0 ? kUsualRate : dwRate;
  format.codec = strCodec == "kestrel" ? VOXPLAY_CODEC_KESTREL : VOXPLAY_CODEC_HERON;
  if (format.codec == VOXPLAY_CODEC_HERON) {
    format.bits_per_sample = static_cast<std::uint32_t>(strCodec.back() - '0');
  }
  return format;
}

// Empty when the bytes are none of our formats.
std::optional<voxplay::Reader> TryToOpen(const std::string& strPath, std::uint32_t dwFlags) {
  try {
    return voxplay::Reader(strPath, dwFlags);
  } catch (const voxplay::Error& error) {
    if (error.status() == VOXPLAY_CANNOT_OPEN || error.status() == VOXPLAY_CANNOT_READ) throw;
    return {};
  }
}

// Both are mono, and read from their beginning.
bool AreSameSound(voxplay::Reader& a, voxplay::Reader& b) {
  std::vector<std::int16_t> ofA(kPieceSamples);
  std::vector<std::int16_t> ofB(kPieceSamples);
  while (true) {
    ThrowIfInterrupted();
    const std::size_t nRead = a.read(std::span(ofA));
    if (b.read(std::span(ofB)) != nRead) return false;
    if (!std::equal(ofA.begin(), ofA.begin() + static_cast<std::ptrdiff_t>(nRead), ofB.begin())) {
      return false;
    }
    if (nRead == 0) return true;
  }
}

// What is read: standard input by a name of the system, so that it can be opened again and again.
class C_Edited {
 public:
  explicit C_Edited(const S_HeaderEdit& edit)
      : m_strName(NameOf(edit.strFile)),
        m_lock(LockEdited(edit.strFile, edit.target)),
        m_input(edit.strFile == kStandardStream ? Take(edit) : C_Descriptor(-1)),
        m_strPath(m_input.Get() < 0 ? edit.strFile : "/dev/fd/" + std::to_string(m_input.Get())) {}

  [[nodiscard]] const std::string& Name() const noexcept { return m_strName; }
  [[nodiscard]] const std::string& Path() const noexcept { return m_strPath; }
  // Lets what is made of it take its place.
  void Replace(I_NewFile& made) const { TakePlaceOf(m_lock, made); }
  // Does the work, whose failures then have the name that the user knows.
  template <typename Work>
  void Named(Work&& work) const {
    try {
      work();
    } catch (const voxplay::Error& error) {
      const std::string_view sentence = error.what();
      if (m_input.Get() < 0 || !sentence.starts_with(m_strPath)) throw;
      throw C_Failure(m_strName + std::string(sentence.substr(m_strPath.size())));
    }
  }

 private:
  static C_Descriptor Take(const S_HeaderEdit& edit) {
    if (!edit.target.strOutput.empty()) return TakeStandardInput();
    throw C_UsageFailure(NameOf(edit.strFile), "cannot be changed in place",
                         "name an output with -o");
  }

  std::string m_strName;
  std::optional<C_FileLock> m_lock;
  C_Descriptor m_input;
  std::string m_strPath;
};

[[noreturn]] void RefuseFormat(const std::string& strFile, const voxplay::Info& info,
                               const char* pszWhy) {
  throw C_Failure(strFile, kUnchanged, pszWhy + FormatText(info));
}

void CopyRest(const C_Edited& file, std::uint64_t qwFrom, I_NewFile& target) {
  C_FileBytes bytes = OpenBytes(file.Path());
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  CopyBytes(bytes, qwFrom, qwLength - std::min(qwLength, qwFrom), target, file.Name());
}

// Why the file should keep its header; empty when nothing is lost without it.
std::string WhyNotStripped(voxplay::Reader& reader, const std::string& strStripped) {
  std::optional<voxplay::Reader> stripped = TryToOpen(strStripped, 0);
  const voxplay::Info info = reader.info();
  if (!stripped || stripped->info().codec != info.codec) {
    return "without the header no program would know the stream again";
  }
  if (!AreSameSound(reader, *stripped)) return "without the header the sound would be another one";
  if (stripped->info().sample_rate == info.sample_rate) return "";
  return "its sample rate of " + std::to_string(info.sample_rate) + " Hz would be lost";
}

// The stream as it is without a header. A Heron stream alone is known to nobody.
std::optional<voxplay::Reader> OpenBareStream(const C_Edited& file, bool bKestrel) {
  if (const auto other = TryToOpen(file.Path(), VOXPLAY_READ_NO_BARE)) {
    RefuseFormat(file.Name(), other->info(), "it is no stream without a header, but ");
  }
  if (!bKestrel) return {};
  return voxplay::Reader(file.Path());
}

// The failure for what is nothing at all tells of all tests.
voxplay::Reader OpenWithHeader(const C_Edited& file) {
  auto reader = TryToOpen(file.Path(), VOXPLAY_READ_NO_BARE);
  if (!reader) reader = voxplay::Reader(file.Path());
  if (reader->headers().has_sp != 0) return std::move(*reader);
  RefuseFormat(file.Name(), reader->info(), "there is no SP header: it is ");
}

void Add(const C_Edited& file, const S_EditTarget& target, const voxplay::Format& format) {
  auto stream = OpenBareStream(file, format.codec == VOXPLAY_CODEC_KESTREL);
  const auto made = MakeEdited(file.Path(), target);
  const S_ShortSound sample = WriteShortSound(format);
  made->Write(std::span(sample.bytes).first(kHeaderBytes));
  CopyRest(file, 0, *made);
  std::optional<voxplay::Reader> result = TryToOpen(made->NewPath(), VOXPLAY_READ_NO_BARE);
  if (!result || result->info().codec != format.codec) {
    const std::string strRate = format.codec == VOXPLAY_CODEC_KESTREL
                                    ? ""
                                    : " at " + std::to_string(format.sample_rate) + " Hz";
    throw C_Failure(file.Name(), kUnchanged, "it is no stream of this codec" + strRate);
  }
  if (stream && !AreSameSound(*stream, *result)) {
    throw C_Failure(file.Name(), kUnchanged, "with the header the sound would be another one");
  }
  file.Replace(*made);
}

void Strip(const C_Edited& file, const S_EditTarget& target) {
  voxplay::Reader reader = OpenWithHeader(file);
  const auto made = MakeEdited(file.Path(), target);
  CopyRest(file, kHeaderBytes, *made);
  const std::string strWhyNot = target.bAnyway ? "" : WhyNotStripped(reader, made->NewPath());
  if (!strWhyNot.empty()) {
    throw C_Failure(file.Name(), kUnchanged, strWhyNot + "; --anyway strips it nevertheless");
  }
  file.Replace(*made);
}

}  // namespace

void AddHeader(const S_HeaderEdit& edit, const std::string& strCodec, std::uint32_t dwRate) {
  const voxplay::Format format = FormatOf(strCodec, dwRate);
  if (const std::string strProblem = voxplay::problem(format); !strProblem.empty()) {
    throw C_UsageFailure(NameOf(edit.strFile), kUnchanged, strProblem);
  }
  const C_Edited file(edit);
  file.Named([&] { Add(file, edit.target, format); });
}

void StripHeader(const S_HeaderEdit& edit) {
  const C_Edited file(edit);
  file.Named([&] { Strip(file, edit.target); });
}

}  // namespace tool
