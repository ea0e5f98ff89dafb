// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/CopyTo.h"
#include "base/Failure.h"
#include "source/ByteSource.h"

namespace api {
namespace {

// Small reads ask the caller for this many bytes. More would make a reader of a live input wait.
constexpr std::size_t kWindow = 4096;
// For measuring an input that does not tell its length.
constexpr std::size_t kMeasuringStep = 65536;

// The sentences name no place: they stand behind the name of the sound, which is "input".
[[noreturn]] void FailToRead(const char* pszReason) {
  throw C_Failure(VOXPLAY_CANNOT_READ, pszReason);
}

// All positions here are counted from where the sound begins, which is at m_qwBase of the input.
class C_InputSource final : public I_ByteSource {
 public:
  explicit C_InputSource(const voxplay_input& input) : m_input(input) {
    if (m_input.read == nullptr) {
      throw C_Failure(VOXPLAY_BAD_ARGUMENT, "it has no function that reads");
    }
    if (m_input.tell != nullptr) m_qwBase = AskForBase();
    // Without tell, the input need not be at its beginning now.
    if (m_input.seek == nullptr || m_input.tell != nullptr) m_qwNext = 0;
    m_qwLength = AskForLength();
    if (CanGoBack() && !m_qwLength) m_qwLength = Measure();
  }

  [[nodiscard]] std::optional<std::uint64_t> Length() const noexcept override { return m_qwLength; }
  [[nodiscard]] bool CanGoBack() const noexcept override { return m_input.seek != nullptr; }

  [[nodiscard]] bool CanReadFrom(std::uint64_t qwPosition) const noexcept override {
    if (CanGoBack()) return true;
    while (qwPosition < *m_qwNext) {
      const auto held = Held(qwPosition);
      if (held.empty()) return false;
      qwPosition += held.size();
    }
    return true;
  }

  std::size_t ReadSome(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    std::size_t cbDone = 0;
    ReadOn(qwPosition, bytes, cbDone);
    return cbDone;
  }
  S_BytesRead ReadToFailure(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) override {
    S_BytesRead result;
    try {
      ReadOn(qwPosition, bytes, result.cbRead);
    } catch (const C_Failure& failure) {
      result.failure = failure;
    }
    return result;
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
    while (Fetch(piece) > 0) continue;
    return *m_qwNext;
  }

  // cbDone counts what is read, also before a failure.
  void ReadOn(std::uint64_t qwPosition, std::span<std::uint8_t> bytes, std::size_t& cbDone) {
    if (m_qwLength) bytes = bytes.first(Limit(qwPosition, bytes.size()));
    while (cbDone < bytes.size()) {
      const std::size_t cbPart = ReadPart(qwPosition + cbDone, bytes.subspan(cbDone));
      if (cbPart == 0) break;
      cbDone += cbPart;
    }
  }
  // What comes with one call of the input; 0 only at the end. Inputs that only go forward are read
  // through the window, which holds what has to be read again after a failure.
  std::size_t ReadPart(std::uint64_t qwPosition, std::span<std::uint8_t> bytes) {
    auto held = Held(qwPosition);
    if (held.empty()) {
      if (!MoveTo(qwPosition)) return 0;
      if (CanGoBack() && bytes.size() >= kWindow) return Fetch(bytes);
      held = FillWindow(kWindow);
    }
    const auto part = held.first(std::min(held.size(), bytes.size()));
    CopyTo(part, bytes);
    return part.size();
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
      throw C_Failure(VOXPLAY_CANNOT_SEEK, "it only goes forward, and byte " +
                                               std::to_string(qwPosition) + " has gone by");
    }
    while (*m_qwNext < qwPosition) {
      const std::uint64_t qwLeft = qwPosition - *m_qwNext;
      const auto cbMost = static_cast<std::size_t>(std::min<std::uint64_t>(qwLeft, kWindow));
      if (FillWindow(cbMost).empty()) return false;
    }
    return true;
  }

  // Moves the window to what comes next, as much as one call gives. It stays when that fails.
  std::span<const std::uint8_t> FillWindow(std::size_t cbMost) {
    const std::uint64_t qwAt = *m_qwNext;
    const bool bKeep = IsKeeping();
    const std::size_t cbRead = Fetch(std::span(m_spare).first(cbMost));
    std::swap(m_window, m_spare);
    m_qwWindow = qwAt;
    m_cbWindow = cbRead;
    const auto filled = std::span<const std::uint8_t>(m_window).first(cbRead);
    if (bKeep) {
      const auto kept = filled.first(std::min(filled.size(), kKeptBytes - m_kept.size()));
      m_kept.insert(m_kept.end(), kept.begin(), kept.end());
    }
    return filled;
  }
  // The only place that reads.
  std::size_t Fetch(std::span<std::uint8_t> bytes) {
    const std::uint64_t qwAt = *m_qwNext;
    // Where an input that can seek is after a failure is not known. Its function may also throw.
    if (CanGoBack()) m_qwNext.reset();
    const std::int64_t nRead = m_input.read(m_input.user, bytes.data(), bytes.size());
    if (nRead < 0) FailToRead("it cannot be read");
    if (static_cast<std::uint64_t>(nRead) > bytes.size()) {
      FailToRead("it gives more bytes than it was asked for");
    }
    m_qwNext = qwAt + static_cast<std::uint64_t>(nRead);
    return static_cast<std::size_t>(nRead);
  }

  voxplay_input m_input;
  std::uint64_t m_qwBase = 0;
  std::optional<std::uint64_t> m_qwLength;
  std::optional<std::uint64_t> m_qwNext;  // what the input reads next
  std::vector<std::uint8_t> m_kept;
  std::vector<std::uint8_t> m_window = std::vector<std::uint8_t>(kWindow);
  std::vector<std::uint8_t> m_spare = std::vector<std::uint8_t>(kWindow);  // the next window
  std::uint64_t m_qwWindow = 0;  // the position of m_window
  std::size_t m_cbWindow = 0;
};

}  // namespace

C_ByteSourcePtr OpenInputSource(const voxplay_input& input) {
  return std::make_unique<C_InputSource>(input);
}

}  // namespace api
