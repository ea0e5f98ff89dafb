// SPDX-License-Identifier: Apache-2.0
#include "reader/Reader.h"

#include <array>
#include <string>
#include <utility>

#include "base/Failure.h"
#include "reader/Detection.h"

namespace api {
namespace {

// Enough for all tests but those of RIFF files. More is not asked of an input that only goes
// forward: it may be live, and its first samples would wait for what is tested.
constexpr std::size_t kMarkBytes = 64;

bool MayBeRiff(std::span<const std::uint8_t> first) {
  return first.size() >= 2 && first[0] == 'R' && (first[1] == 'I' || first[1] == 'F');
}

// Whether a failure says that the bytes are not what they were taken for.
bool IsAboutTheBytes(const C_Failure& failure) {
  return failure.Status() == VOXPLAY_UNKNOWN || failure.Status() == VOXPLAY_UNSUPPORTED ||
         failure.Status() == VOXPLAY_DAMAGED || failure.Status() == VOXPLAY_TOO_LARGE;
}

// A mark that only its own files have. What has one is not taken for anything else.
bool HasMark(voxplay_container eContainer) {
  return eContainer != VOXPLAY_CONTAINER_HEAD && eContainer != VOXPLAY_CONTAINER_BARE;
}

// Opens the source with the first test that it passes.
class C_Opener {
 public:
  C_Opener(I_ByteSource& source, std::uint32_t dwFlags) : m_source(source), m_dwFlags(dwFlags) {
    m_first = FirstBytes(source.CanGoBack() ? kTestedBytes : kMarkBytes);
    if (!source.CanGoBack() && MayBeRiff(m_first)) m_first = FirstBytes(kTestedBytes);
  }

  S_Opened Open() {
    S_Opened opened;
    for (std::size_t i = 0; i < kTests.size(); ++i) {
      const bool bBare = kOpeners[i] == &OpenBare;
      if (bBare && (m_dwFlags & VOXPLAY_READ_NO_BARE) != 0) continue;
      if (Try(kTests[i], kOpeners[i], opened)) return opened;
    }
    throw C_Failure(VOXPLAY_UNKNOWN, "none of the known formats: " + m_strTests);
  }

 private:
  std::span<const std::uint8_t> FirstBytes(std::size_t cbMost) {
    return std::span(m_bytes).first(m_source.ReadSome(0, std::span(m_bytes).first(cbMost)));
  }
  bool Try(PFN_Test pfnTest, PFN_Open pfnOpen, S_Opened& opened) {
    const S_TestResult test = pfnTest(m_first);
    if (!m_strTests.empty()) m_strTests += "; ";
    m_strTests += test.strLine;
    if (!test.bFound) return false;
    try {
      opened = pfnOpen(m_source, m_dwFlags);
      return true;
    } catch (const C_Failure& failure) {
      if (HasMark(test.eContainer) || !IsAboutTheBytes(failure)) throw;
      m_strTests += ", but " + failure.Text();
      return false;
    }
  }

  I_ByteSource& m_source;
  std::uint32_t m_dwFlags;
  std::array<std::uint8_t, kTestedBytes> m_bytes;
  std::span<const std::uint8_t> m_first;
  std::string m_strTests;
};

}  // namespace

std::unique_ptr<C_Reader> C_Reader::Open(C_ByteSourcePtr source, std::uint32_t dwFlags) {
  return std::unique_ptr<C_Reader>(new C_Reader(std::move(source), dwFlags));
}

C_Reader::C_Reader(C_ByteSourcePtr source, std::uint32_t dwFlags)
    : m_source(std::move(source)), m_opened(C_Opener(*m_source, dwFlags).Open()) {}

voxplay_info C_Reader::Info() const {
  voxplay_info info = m_opened.info;
  info.frames = m_opened.stream->FrameCount().value_or(UINT64_MAX);
  if (info.frames < info.claimed_frames) info.is_cut = 1;
  info.damaged_frames = m_opened.stream->DamagedFrames();
  return info;
}

}  // namespace api
