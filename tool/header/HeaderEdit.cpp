// SPDX-License-Identifier: Apache-2.0
#include "header/HeaderEdit.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "sound/ByteCopy.h"
#include "sound/FormatText.h"
#include "sound/ShortSound.h"
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

[[noreturn]] void RefuseFormat(const std::string& strFile, const voxplay::Info& info,
                               const char* pszWhy) {
  throw C_Failure(strFile, kUnchanged, pszWhy + FormatText(info));
}

void CopyRest(const S_HeaderEdit& edit, std::uint64_t qwFrom, I_NewFile& target) {
  C_FileBytes bytes = OpenBytes(edit.strFile);
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  CopyBytes(bytes, qwFrom, qwLength - std::min(qwLength, qwFrom), target, edit.strFile);
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
std::optional<voxplay::Reader> OpenBareStream(const std::string& strFile, bool bKestrel) {
  if (const auto other = TryToOpen(strFile, VOXPLAY_READ_NO_BARE)) {
    RefuseFormat(strFile, other->info(), "it is no stream without a header, but ");
  }
  if (!bKestrel) return {};
  return voxplay::Reader(strFile);
}

}  // namespace

void AddHeader(const S_HeaderEdit& edit, const std::string& strCodec, std::uint32_t dwRate) {
  const voxplay::Format format = FormatOf(strCodec, dwRate);
  if (const std::string strProblem = voxplay::problem(format); !strProblem.empty()) {
    throw C_UsageFailure(edit.strFile, kUnchanged, strProblem);
  }
  auto stream = OpenBareStream(edit.strFile, format.codec == VOXPLAY_CODEC_KESTREL);
  const auto target = MakeEdited(edit.strFile, edit.target);
  const S_ShortSound sample = WriteShortSound(format);
  target->Write(std::span(sample.bytes).first(kHeaderBytes));
  CopyRest(edit, 0, *target);
  std::optional<voxplay::Reader> result = TryToOpen(target->NewPath(), VOXPLAY_READ_NO_BARE);
  if (!result || result->info().codec != format.codec) {
    throw C_Failure(edit.strFile, kUnchanged, "it is no stream of this codec");
  }
  if (stream && !AreSameSound(*stream, *result)) {
    throw C_Failure(edit.strFile, kUnchanged, "with the header the sound would be another one");
  }
  target->TakePlace();
}

void StripHeader(const S_HeaderEdit& edit) {
  voxplay::Reader reader(edit.strFile, VOXPLAY_READ_NO_BARE);
  if (reader.headers().has_sp == 0) {
    RefuseFormat(edit.strFile, reader.info(), "there is no SP header: it is ");
  }
  const auto target = MakeEdited(edit.strFile, edit.target);
  CopyRest(edit, kHeaderBytes, *target);
  const std::string strWhyNot =
      edit.target.bAnyway ? "" : WhyNotStripped(reader, target->NewPath());
  if (!strWhyNot.empty()) {
    throw C_Failure(edit.strFile, kUnchanged, strWhyNot + "; --anyway strips it nevertheless");
  }
  target->TakePlace();
}

}  // namespace tool
