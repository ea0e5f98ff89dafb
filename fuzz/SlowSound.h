// SPDX-License-Identifier: Apache-2.0
//
// A slow model of the operations on a sound: a record of plain values and bytes, one byte, one
// sample and one range at a time. It follows the description of each operation and shares no code
// with the library.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

namespace slow {

using Bytes = std::vector<std::uint8_t>;

struct S_Range {
  std::uint32_t dwStart = 0;
  std::uint32_t dwEnd = 0;

  friend bool operator==(const S_Range&, const S_Range&) = default;
};

inline std::int32_t Clip(std::int64_t qnValue, std::int64_t qnLow, std::int64_t qnHigh) {
  return static_cast<std::int32_t>(std::min(std::max(qnValue, qnLow), qnHigh));
}
constexpr std::int64_t kIntMin = -2147483648LL;
constexpr std::int64_t kIntMax = 2147483647LL;

// One pass, with at most one merge for each item.
inline void Merge(std::vector<S_Range>& list) {
  for (std::ptrdiff_t i = 0; i < std::ssize(list); ++i) {
    for (std::ptrdiff_t j = 0; j < std::ssize(list); ++j) {
      if (i == j) continue;
      S_Range& a = list[static_cast<std::size_t>(i)];
      S_Range& b = list[static_cast<std::size_t>(j)];
      if (a.dwStart <= b.dwStart && b.dwStart <= a.dwEnd) {
        a.dwEnd = std::max(a.dwEnd, b.dwEnd);
        list.erase(list.begin() + j);
        break;
      }
      if (b.dwStart <= a.dwStart && a.dwStart <= b.dwEnd) {
        b.dwEnd = std::max(a.dwEnd, b.dwEnd);
        if (i < j) {
          a = b;
          list.erase(list.begin() + j);
        } else {
          list.erase(list.begin() + i);
          --i;
        }
        break;
      }
    }
  }
}

struct S_Sound {
  std::uint32_t dwRate = 0;
  std::uint32_t dwClaimed = 0;  // length in bytes, as the format says
  std::uint16_t wChannels = 0;
  std::uint16_t wBits = 0;
  std::uint16_t wStore = 0;
  bool bSigned = true;
  Bytes pcm;
  bool bHeld = false;  // there is a buffer, maybe an empty one
  bool bAttached = false;
  std::vector<S_Range> silence;
  std::vector<S_Range> regions;

  // Sizes.

  [[nodiscard]] unsigned int SampleBytes() const { return wStore / 8U; }
  [[nodiscard]] std::uint32_t SampleSize() const {
    return wChannels == 0 || wStore == 0 ? 0 : dwClaimed * 8U / wStore / wChannels;
  }
  // Frames in memory, as far as the format counts them.
  [[nodiscard]] std::uint32_t HeldFrames() const {
    if (wChannels == 0 || wStore == 0) return 0;
    const std::uint64_t qwBytes = std::min<std::uint64_t>(dwClaimed, pcm.size());
    return static_cast<std::uint32_t>(qwBytes * 8 / (std::uint64_t{wChannels} * wStore));
  }
  [[nodiscard]] std::uint32_t Frames() const { return std::min(SampleSize(), HeldFrames()); }
  [[nodiscard]] bool ClaimsWhatItHolds() const { return dwClaimed <= pcm.size(); }

  // Samples.

  [[nodiscard]] std::uint32_t SignBit() const { return 1U << ((wBits + 31U) % 32U); }
  [[nodiscard]] std::int64_t Highest() const { return std::int64_t{SignBit()} - 1; }
  [[nodiscard]] std::int64_t Lowest() const { return -std::int64_t{SignBit()}; }
  [[nodiscard]] std::uint32_t ValueMask() const {
    return wBits == 0 ? 0 : static_cast<std::uint32_t>((std::uint64_t{SignBit()} << 1) - 1);
  }
  static bool IsUnit(std::uint64_t cbUnit) { return cbUnit == 1 || cbUnit == 2 || cbUnit == 4; }

  [[nodiscard]] std::uint32_t Unit(std::uint64_t qwAt, unsigned int cbUnit) const {
    std::uint32_t dwUnit = 0;
    for (unsigned int i = 0; i < cbUnit && qwAt + i < pcm.size(); ++i) {
      dwUnit |= std::uint32_t{pcm[qwAt + i]} << (8 * i);
    }
    return dwUnit;
  }
  void PutUnit(std::uint64_t qwAt, unsigned int cbUnit, std::uint32_t dwUnit) {
    for (unsigned int i = 0; i < cbUnit && qwAt + i < pcm.size(); ++i) {
      pcm[qwAt + i] = static_cast<std::uint8_t>(dwUnit >> (8 * i) & 0xFF);
    }
  }
  [[nodiscard]] std::int32_t ToValue(std::uint32_t dwUnit) const {
    if (!bSigned) return static_cast<std::int32_t>(dwUnit - SignBit());
    const bool bNegative = (dwUnit & SignBit()) != 0;
    return static_cast<std::int32_t>(bNegative ? dwUnit | (0U - SignBit()) : dwUnit);
  }

  // Where the accessors find a sample that is held whole, in a width that they know.
  [[nodiscard]] std::optional<std::uint64_t> Place(std::uint32_t dwPos, unsigned int dwCh) const {
    const std::uint64_t qwAt = (std::uint64_t{wChannels} * dwPos + dwCh) * SampleBytes();
    if (wStore % 8 != 0 || !IsUnit(SampleBytes())) return std::nullopt;
    if (qwAt + SampleBytes() > pcm.size()) return std::nullopt;
    return qwAt;
  }
  [[nodiscard]] std::int32_t Get(std::uint32_t dwPos, unsigned int dwCh) const {
    const auto qwAt = Place(dwPos, dwCh);
    return qwAt ? ToValue(Unit(*qwAt, SampleBytes())) : 0;
  }
  void Set(std::uint32_t dwPos, std::int32_t nValue, unsigned int dwCh) {
    const auto qwAt = Place(dwPos, dwCh);
    const auto dwValue = static_cast<std::uint32_t>(nValue);
    if (!qwAt) return;
    PutUnit(*qwAt, SampleBytes(), bSigned ? dwValue & ValueMask() : dwValue + SignBit());
  }

  // The iterator: a unit as wide as a frame.
  [[nodiscard]] unsigned int FrameStep() const { return SampleBytes() * wChannels % 65536U; }
  [[nodiscard]] std::uint64_t WidePlace(std::uint64_t qwPos, unsigned int dwCh) const {
    return dwCh * SampleBytes() + qwPos * FrameStep();
  }
  [[nodiscard]] std::int32_t WideGet(std::uint64_t qwPos, unsigned int dwCh) const {
    if (!IsUnit(FrameStep())) return 0;
    return ToValue(Unit(WidePlace(qwPos, dwCh), FrameStep()));
  }
  void WideSet(std::uint64_t qwPos, unsigned int dwCh, std::int64_t qnValue, bool bExact) {
    if (!IsUnit(FrameStep())) return;
    const std::int32_t nValue = Clip(qnValue, Lowest(), Highest());
    auto dwUnit = static_cast<std::uint32_t>(nValue);
    dwUnit = bSigned ? dwUnit & ValueMask() : dwUnit + SignBit();
    if (bSigned && nValue < 0 && !bExact) --dwUnit;
    // The samples of other channels in the unit stay.
    PutUnit(WidePlace(qwPos, dwCh), wStore == 8 ? 1 : wStore == 16 ? 2 : FrameStep(), dwUnit);
  }

  [[nodiscard]] std::int32_t MaxAbs(std::uint32_t dwStart, std::uint32_t dwEnd,
                                    unsigned int dwFirst, unsigned int dwLast) const {
    if (dwEnd >= SampleSize() || dwLast >= wChannels) return -1;
    std::int64_t qnMost = 0;
    for (std::uint32_t dwPos = dwStart; dwPos < std::min(dwEnd, Frames()); ++dwPos) {
      for (unsigned int dwCh = dwFirst; dwCh <= dwLast; ++dwCh) {
        qnMost = std::max(qnMost, std::abs(std::int64_t{Get(dwPos, dwCh)}));
      }
    }
    return Clip(qnMost, 0, kIntMax);
  }

  // Buffers.

  [[nodiscard]] bool SetBuffer(const Bytes& bytes) {
    if (bAttached) return false;
    pcm = bytes;
    bHeld = true;
    dwClaimed = static_cast<std::uint32_t>(bytes.size());
    return true;
  }
  void TakeFormat(const S_Sound& other) {
    dwRate = other.dwRate;
    dwClaimed = other.dwClaimed;
    wChannels = other.wChannels;
    wBits = other.wBits;
    wStore = other.wStore;
    bSigned = other.bSigned;
  }
  [[nodiscard]] bool CopyFrom(const S_Sound& other) {
    if (!other.ClaimsWhatItHolds()) return false;
    const Bytes bytes(other.pcm.begin(), other.pcm.begin() + other.dwClaimed);
    if (!SetBuffer(bytes)) return false;
    TakeFormat(other);
    return true;
  }
  // The format and so many zeros.
  [[nodiscard]] S_Sound Silent(std::uint16_t wNewChannels, std::uint64_t cbNew) const {
    S_Sound made;
    made.TakeFormat(*this);
    made.wChannels = wNewChannels;
    made.pcm.resize(cbNew);
    made.dwClaimed = static_cast<std::uint32_t>(cbNew);
    made.bHeld = true;
    return made;
  }

  // Widths.

  static bool IsSupported(unsigned int dwBits, unsigned int dwStore) {
    return (dwStore == 8 || dwStore == 16 || dwStore == 32) && dwBits <= dwStore;
  }
  [[nodiscard]] std::optional<S_Sound> Converted(std::uint16_t wNewBits, std::uint16_t wNewStore,
                                                 bool bNewSigned, bool bExact) const {
    if (!IsSupported(wNewBits, wNewStore) || !IsSupported(wBits, wStore)) return std::nullopt;
    S_Sound made = Silent(wChannels, (std::uint64_t{Frames()} * wChannels * wNewStore + 1) / 8);
    made.wBits = wNewBits;
    made.wStore = wNewStore;
    made.bSigned = bNewSigned;
    for (unsigned int dwCh = 0; dwCh < wChannels; ++dwCh) {
      for (std::uint32_t i = 0; i < std::min(made.Frames(), Frames()); ++i) {
        const std::int64_t qnValue = WideGet(i, dwCh);
        std::int64_t qnSize = std::abs(qnValue);
        if (wNewBits > wBits) qnSize <<= wNewBits - wBits;
        if (wNewBits < wBits) qnSize >>= wBits - wNewBits;
        made.WideSet(i, dwCh, qnValue < 0 ? -qnSize : qnSize, bExact);
      }
    }
    return made;
  }

  // Channels.

  [[nodiscard]] std::optional<S_Sound> Channel(unsigned int dwCh, std::uint32_t dwStart,
                                               std::uint32_t dwCount) const {
    if (dwCh >= wChannels || std::uint64_t{dwStart} + dwCount > HeldFrames()) return std::nullopt;
    S_Sound made = Silent(1, std::uint64_t{dwCount} * SampleBytes());
    for (std::uint32_t i = 0; i < dwCount; ++i) {
      for (unsigned int n = 0; n < SampleBytes(); ++n) {
        const std::uint64_t qwFrame = std::uint64_t{dwStart} + i;
        made.pcm[std::size_t{i} * SampleBytes() + n] =
            pcm[(qwFrame * wChannels + dwCh) * SampleBytes() + n];
      }
    }
    return made;
  }
  // The bytes of the source are taken as samples of this sound's width.
  [[nodiscard]] bool PutChannel(const Bytes& source, unsigned int dwCh, std::uint32_t dwStart) {
    if (dwCh >= wChannels) return false;
    if (source.empty()) return true;
    if (wChannels == 1) {
      const std::uint64_t qwFrom = std::uint64_t{wStore} * dwStart / 8;
      if (qwFrom + source.size() > pcm.size()) return false;
      for (std::size_t i = 0; i < source.size(); ++i) pcm[qwFrom + i] = source[i];
      return true;
    }
    if (!IsSupported(wStore, wStore)) return false;
    const std::uint64_t qwSamples = source.size() / SampleBytes();
    const std::uint64_t qwFirst = std::uint64_t{dwStart} * 2 + (dwCh == 0 ? 0 : 1);
    if (qwSamples == 0) return true;
    if ((qwFirst + 2 * (qwSamples - 1) + 1) * SampleBytes() > pcm.size()) return false;
    for (std::uint64_t i = 0; i < qwSamples * SampleBytes(); ++i) {
      pcm[(qwFirst + i / SampleBytes() * 2) * SampleBytes() + i % SampleBytes()] = source[i];
    }
    return true;
  }
  [[nodiscard]] bool CanMix() const { return wChannels > 0 && !bAttached && ClaimsWhatItHolds(); }
  [[nodiscard]] std::uint64_t BytesOfOneChannel() const {
    return (std::uint64_t{dwClaimed} + wChannels - 1) / wChannels;
  }
  void Install(const S_Sound& mixed) {
    pcm = mixed.pcm;
    dwClaimed = mixed.dwClaimed;
    wChannels = mixed.wChannels;
    bHeld = true;
  }
  // Every frame counts as two samples.
  void ToMono() {
    if (wChannels <= 1 || !CanMix()) return;
    S_Sound mono = Silent(1, BytesOfOneChannel());
    for (std::uint32_t dwFrame = 0; dwFrame < Frames(); ++dwFrame) {
      std::uint32_t dwSum = 0;
      for (unsigned int dwCh = 0; dwCh < wChannels; ++dwCh) {
        const std::uint64_t qwSample = std::uint64_t{dwFrame} * 2 + dwCh;
        if (!IsUnit(SampleBytes())) continue;
        dwSum += static_cast<std::uint32_t>(ToValue(Unit(qwSample * SampleBytes(), SampleBytes())));
      }
      mono.WideSet(dwFrame, 0, static_cast<std::int32_t>(dwSum) / wChannels, true);
    }
    Install(mono);
  }
  // Each side has a channel, or silence for -1.
  void ToStereo(int nLeft, int nRight) {
    if (!CanMix()) return;
    S_Sound stereo = Silent(2, BytesOfOneChannel() * 2);
    const std::uint64_t qwSilence = bSigned ? 0 : std::uint64_t{1} << (wBits - 1);
    for (std::uint64_t i = 0; i < HeldFrames(); ++i) {
      for (unsigned int n = 0; n < SampleBytes(); ++n) {
        const auto bySilent = static_cast<std::uint8_t>(qwSilence >> (8 * n) & 0xFF);
        const std::uint64_t qwFrom = i * wChannels * SampleBytes() + n;
        const std::uint64_t qwTo = i * 2 * SampleBytes() + n;
        stereo.pcm[qwTo] =
            nLeft < 0 ? bySilent : pcm[qwFrom + static_cast<unsigned int>(nLeft) * SampleBytes()];
        stereo.pcm[qwTo + SampleBytes()] =
            nRight < 0 ? bySilent : pcm[qwFrom + static_cast<unsigned int>(nRight) * SampleBytes()];
      }
    }
    Install(stereo);
  }
  [[nodiscard]] int SecondChannel() const { return wChannels == 1 ? 0 : 1; }

  // Loudness.

  [[nodiscard]] bool Gain(double dFrom, double dTo, std::uint32_t dwStart, std::uint32_t dwEnd,
                          unsigned int dwFirst, unsigned int dwLast) {
    if (dwEnd >= Frames() || dwLast >= wChannels) return false;
    const std::int64_t qnCount = std::int64_t{dwEnd} - dwStart + 1;
    const double dStep = qnCount > 1 ? (dTo - dFrom) / static_cast<double>(qnCount - 1) : 0.0;
    for (unsigned int dwCh = dwFirst; dwCh <= dwLast; ++dwCh) {
      double dGain = dFrom;
      for (std::int64_t i = 0; i < qnCount; ++i) {
        if (i > 0 && i % 1024 == 0) dGain += dStep;
        const std::uint64_t qwPos = dwStart + static_cast<std::uint64_t>(i);
        const double dValue = WideGet(qwPos, dwCh) * dGain;
        const auto dLow = static_cast<double>(Lowest());
        const auto dHigh = static_cast<double>(Highest());
        double dClipped = std::isnan(dValue) ? 0.0 : std::trunc(dValue);
        if (dClipped < dLow) dClipped = dLow;
        if (dClipped > dHigh) dClipped = dHigh;
        WideSet(qwPos, dwCh, static_cast<std::int64_t>(dClipped), true);
      }
    }
    return true;
  }
  [[nodiscard]] bool Normalize(std::uint32_t dwStart, std::uint32_t dwEnd, unsigned int dwFirst,
                               unsigned int dwLast) {
    const std::int32_t nPeak = MaxAbs(dwStart, dwEnd, dwFirst, dwLast);
    if (nPeak < 0) return false;
    if (nPeak == 0) return true;
    const double dGain = static_cast<double>(SignBit()) / nPeak;
    return Gain(dGain, dGain, dwStart, dwEnd, dwFirst, dwLast);
  }
  [[nodiscard]] std::int32_t Offset() const {
    std::uint32_t dwSum = 0;
    for (std::uint32_t i = 0; i < Frames(); ++i) dwSum += static_cast<std::uint32_t>(WideGet(i, 0));
    return Frames() == 0 ? 0
                         : static_cast<std::int32_t>(dwSum) / static_cast<std::int32_t>(Frames());
  }
  void RemoveOffset() {
    const std::int32_t nOffset = Offset();
    for (unsigned int dwCh = 0; dwCh < wChannels; ++dwCh) {
      for (std::uint32_t i = 0; i < Frames(); ++i) {
        WideSet(i, dwCh, Clip(std::int64_t{WideGet(i, dwCh)} - nOffset, kIntMin, kIntMax), true);
      }
    }
  }

  // Silence.

  [[nodiscard]] bool Detect(std::uint32_t dwThreshold, std::uint32_t dwMin, std::uint32_t dwStart,
                            std::uint32_t dwEnd, unsigned int dwFirst, unsigned int dwLast,
                            bool bReplace) {
    if (dwThreshold > 2047 || dwFirst > dwLast) return false;
    const auto Inside = [&](std::uint32_t dwPos) { return dwStart <= dwPos && dwPos <= dwEnd; };
    if (bReplace) {
      std::erase_if(silence,
                    [&](const S_Range& r) { return Inside(r.dwStart) || Inside(r.dwEnd); });
    }
    const auto nThreshold = static_cast<std::int32_t>(
        wBits < 12 ? dwThreshold >> (12 - wBits) : dwThreshold << ((wBits - 12) % 32));
    std::optional<std::uint32_t> dwRun;
    for (std::uint64_t i = dwStart; i <= dwEnd && i < HeldFrames(); ++i) {
      const auto dwPos = static_cast<std::uint32_t>(i);
      std::uint32_t dwSum = 0;
      for (unsigned int dwCh = dwFirst; dwCh <= dwLast; ++dwCh) {
        dwSum += static_cast<std::uint32_t>(Get(dwPos, dwCh));
      }
      const auto nMean = static_cast<std::int32_t>(dwSum) / static_cast<int>(dwLast - dwFirst + 1);
      const bool bQuiet = nMean >= -nThreshold - 1 && nMean <= nThreshold;
      if (!bQuiet && dwRun && dwPos - *dwRun >= dwMin) silence.push_back({*dwRun, dwPos - 1});
      if (!bQuiet) dwRun.reset();
      if (bQuiet && !dwRun) dwRun = dwPos;
    }
    const std::uint32_t dwLastPos = HeldFrames() == 0 ? 0 : std::min(dwEnd, HeldFrames() - 1);
    if (dwRun && dwLastPos - *dwRun >= dwMin) silence.push_back({*dwRun, dwLastPos});
    Merge(silence);
    return true;
  }
  void Mute() {
    for (const S_Range& range : silence) {
      for (std::uint64_t i = range.dwStart; i <= range.dwEnd && i < HeldFrames(); ++i) {
        for (unsigned int dwCh = 0; dwCh < wChannels; ++dwCh) {
          Set(static_cast<std::uint32_t>(i), 0, dwCh);
        }
      }
    }
  }
};

}  // namespace slow
