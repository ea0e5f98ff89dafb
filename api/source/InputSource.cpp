// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "base/Failure.h"
#include "source/ByteSource.h"

namespace api {
namespace {

// Small reads ask the caller for this many bytes. More would make a reader of a live input wait.
constexpr std::size_t kWindow = 4096;
// For measuring an input that does not tell its length.
constexpr std::size_t kMeasuringStep = 65536;

[[noreturn]] void FailToRead(const char* pszReason) {
  throw C_Failure(VOXPLAY_CANNOT_READ, std::string("input: ") + pszReason);
}

// All positions here are counted from where the sound begins, which is at m_qwBase of the input.
class C_InputSource final : public I_ByteSource {
 public:
  explicit C_InputSource(const voxplay_input& input) : m_input(input) {
    if (m_input.read == nullptr) {
      throw C_Failure(VOXPLAY_BAD_ARGUMENT, "input: it has no function that reads");
    }
    if (m_input.tell != nullptr) m_qwBase = AskForBase();
    // Without tell, the input need not be at its beginning now.
    if (m_input.seek == nullptr || m_input.tell != nullptr) m_qwNext = 0;
    m_qwLength = AskForLength();
    if (CanGoBack() && !m_qwLength) m_qwLength = Measure();
  }

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return m_qwLength; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return m_input.seek != nullptr; }

  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    if (m_qwLength) bytes = bytes.first(Limit(qwPosition, bytes.size()));
    std::size_t cbDone = 0;
    while (cbDone < bytes.size()) {
      const auto rest = bytes.subspan(cbDone);
      auto held = Held(qwPosition + cbDone);
      if (held.empty()) {
        if (!MoveTo(qwPosition + cbDone)) break;
        if (rest.size() >= kWindow && !IsKeeping()) return cbDone + Fetch(rest, rest.size());
        held = FillWindow(rest.size());
        if (held.empty()) break;
      }
      const auto part = held.first(std::min(held.size(), rest.size()));
      std::ranges::copy(part, rest.begin());
      cbDone += part.size();
    }
    return cbDone;
  }

 private:
  [[nodiscard]] std::uint64_t AskForBase() const {
    const std::int64_t nBase = m_input.tell(m_input.user);
    if (nBase < 0) FailToRead("it does not tell its position");
    return static_cast<std::uint64_t>(nBase);
  }
  [[nodiscard]] std::optional<std::uint64_t> AskForLength() const {
    if (m_input.size == nullptr) return std::nullopt;
    const std::int64_t nSize = m_input.size(m_input.user);
    if (nSize < 0) return std::nullopt;
    const auto qwSize = static_cast<std::uint64_t>(nSize);
    return qwSize - std::min(qwSize, m_qwBase);
  }
  // Reads to the end: a seek beyond it may fail, and would look like any other failure.
  [[nodiscard]] std::uint64_t Measure() {
    MoveTo(0);
    std::vector<std::uint8_t> piece(kMeasuringStep);
    while (Fetch(piece, piece.size()) == piece.size()) continue;
    return *m_qwNext;
  }

  // How many of cbWanted bytes from qwPosition on the length allows.
  [[nodiscard]] std::size_t Limit(std::uint64_t qwPosition, std::size_t cbWanted) const noexcept {
    const std::uint64_t qwLeft = *m_qwLength - std::min(*m_qwLength, qwPosition);
    return static_cast<std::size_t>(std::min<std::uint64_t>(qwLeft, cbWanted));
  }
  [[nodiscard]] std::span<const std::uint8_t> Held(std::uint64_t qwPosition) const noexcept {
    if (qwPosition < m_kept.size()) {
      return std::span(m_kept).subspan(static_cast<std::size_t>(qwPosition));
    }
    if (qwPosition < m_qwWindow || qwPosition - m_qwWindow >= m_cbWindow) return {};
    return std::span(m_window)
        .first(m_cbWindow)
        .subspan(static_cast<std::size_t>(qwPosition - m_qwWindow));
  }
  // Whether what is read next belongs to the first bytes of an input that only goes forward.
  [[nodiscard]] bool IsKeeping() const noexcept {
    return !CanGoBack() && m_kept.size() < kKeptBytes && m_qwNext == m_kept.size();
  }

  // False when the input ends before.
  bool MoveTo(std::uint64_t qwPosition) {
    if (m_qwNext == qwPosition) return true;
    if (!CanGoBack()) return SkipTo(qwPosition);
    m_qwNext.reset();
    if (m_input.seek(m_input.user, m_qwBase + qwPosition) != 0) FailToRead("it cannot seek");
    m_qwNext = qwPosition;
    return true;
  }
  bool SkipTo(std::uint64_t qwPosition) {
    if (qwPosition < *m_qwNext) {
      throw C_Failure(VOXPLAY_CANNOT_SEEK, "input: it only goes forward, and byte " +
                                               std::to_string(qwPosition) + " has gone by");
    }
    while (*m_qwNext < qwPosition) {
      const std::uint64_t qwLeft = qwPosition - *m_qwNext;
      const auto cbMost = static_cast<std::size_t>(std::min<std::uint64_t>(qwLeft, kWindow));
      if (FillWindow(cbMost, cbMost).empty()) return false;
    }
    return true;
  }

  // Reads cbNeeded bytes, or more where they come anyway; fewer only at the end.
  std::span<const std::uint8_t> FillWindow(std::size_t cbNeeded, std::size_t cbMost = kWindow) {
    m_cbWindow = 0;
    m_qwWindow = *m_qwNext;
    const bool bKeep = IsKeeping();
    const auto room = std::span(m_window).first(cbMost);
    m_cbWindow = Fetch(room, std::min(cbNeeded, cbMost));
    const auto filled = room.first(m_cbWindow);
    if (bKeep) {
      const auto kept = filled.first(std::min(filled.size(), kKeptBytes - m_kept.size()));
      m_kept.insert(m_kept.end(), kept.begin(), kept.end());
    }
    return filled;
  }
  // The only place that reads.
  std::size_t Fetch(std::span<std::uint8_t> bytes, std::size_t cbNeeded) {
    std::size_t cbDone = 0;
    while (cbDone < cbNeeded) {
      const auto rest = bytes.subspan(cbDone);
      const std::int64_t nRead = m_input.read(m_input.user, rest.data(), rest.size());
      if (nRead < 0 || static_cast<std::uint64_t>(nRead) > rest.size()) {
        ForgetPosition(cbDone);
        FailToRead(nRead < 0 ? "it cannot be read" : "it gives more bytes than it was asked for");
      }
      if (nRead == 0) break;
      cbDone += static_cast<std::size_t>(nRead);
    }
    *m_qwNext += cbDone;
    return cbDone;
  }
  // Where an input that can seek is after a failure is not known.
  void ForgetPosition(std::size_t cbDone) {
    if (CanGoBack()) {
      m_qwNext.reset();
    } else {
      *m_qwNext += cbDone;
    }
  }

  voxplay_input m_input;
  std::uint64_t m_qwBase = 0;
  std::optional<std::uint64_t> m_qwLength;
  std::optional<std::uint64_t> m_qwNext;  // what the input reads next
  std::vector<std::uint8_t> m_kept;
  std::array<std::uint8_t, kWindow> m_window;
  std::uint64_t m_qwWindow = 0;  // the position of m_window
  std::size_t m_cbWindow = 0;
};

}  // namespace

C_ByteSourcePtr OpenInputSource(const voxplay_input& input) {
  return std::make_unique<C_InputSource>(input);
}

}  // namespace api
