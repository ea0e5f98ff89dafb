// SPDX-License-Identifier: Apache-2.0
//
// Does any sequence of editing operations on a sound, with arguments that are right and wrong, and
// the same on a slow model (SlowSound.h). After each operation format, samples, segments and
// regions must be equal.
//
//   scripts/fuzz.sh 60 wav_data_ops
//
// Input: operations, one byte each, followed by their arguments.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "FuzzInput.h"
#include "Require.h"
#include "SlowSound.h"
#include "sound/WavData.h"

namespace {

using slow::Bytes;
using slow::S_Range;
using slow::S_Sound;

constexpr int kMostOperations = 24;
// More than two of the blocks that a gain ramp consists of, in the narrowest width.
constexpr unsigned int kMostPcm = 2300;
constexpr int kMostRanges = 40;

// Pseudo-random bytes, loud and quiet, so that a few bytes of input make a sound.
Bytes TakePcm(C_FuzzInput& input) {
  const unsigned int cbPcm = input.Flag() ? input.U8() : input.U16() % kMostPcm;
  std::uint32_t dwSeed = input.U8();
  const std::uint8_t byMask = input.U8();
  Bytes pcm(cbPcm);
  for (std::size_t i = 0; i < pcm.size(); ++i) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    const bool bLoud = (i >> (byMask % 8)) % 2 == 0;
    pcm[i] = static_cast<std::uint8_t>(bLoud ? dwSeed >> 24 : dwSeed >> 24 & byMask);
  }
  return pcm;
}

template <typename List>
std::vector<S_Range> RangesOf(List& list) {
  std::vector<S_Range> ranges;
  for (int i = 0; i < list.GetSize(); ++i) {
    auto& item = *list.GetItemByIndex(i);
    ranges.push_back({item.GetStartSamplePos(), item.GetEndSamplePos()});
  }
  return ranges;
}

void RequireEqual(I_WavData& sound, const S_Sound& model) {
  I_WavInfo& info = *sound.GetWavInfo();
  Require(info.GetSampleRate() == model.dwRate && info.GetByteLength() == model.dwClaimed);
  Require(info.GetChannels() == model.wChannels && info.GetBitsPerSample() == model.wBits);
  Require(info.GetStoreBitsPerSample() == model.wStore && info.IsValueSigned() == model.bSigned);
  Require(info.GetSampleSize() == model.SampleSize());
  Require((sound.GetBuffer() != nullptr) == model.bHeld);
  if (!model.pcm.empty()) {
    Require(std::memcmp(sound.GetBuffer(), model.pcm.data(), model.pcm.size()) == 0);
  }
  Require(RangesOf(*sound.GetSilenceSegmentList()) == model.silence);
  Require(RangesOf(*sound.GetUncompressRegionList()) == model.regions);
}

// A new sound and what the model says of it, or nothing of both.
void RequireMade(I_WavData* pMade, const std::optional<S_Sound>& expected) {
  const C_WavDataPtr made(pMade);
  Require((made != nullptr) == expected.has_value());
  if (made) RequireEqual(*made, *expected);
}

class C_Session {
 public:
  C_Session() : m_sound(new C_WavData) {}

  void Run(C_FuzzInput& input) {
    SetFormat(input);
    SetPcm(input);
    for (int i = 0; i < kMostOperations && !input.Ended(); ++i) {
      Step(input);
      RequireEqual(*m_sound, m_model);
    }
  }

 private:
  struct S_Part {
    std::uint32_t dwStart;
    std::uint32_t dwEnd;
    std::uint16_t wFirst;
    std::uint16_t wLast;
  };

  C_WavData& Sound() { return static_cast<C_WavData&>(*m_sound); }

  S_Part TakePart(C_FuzzInput& input) {
    const std::uint32_t dwStart = input.Near(m_model.HeldFrames());
    const std::uint32_t dwEnd = input.Near(m_model.HeldFrames());
    const auto wFirst = static_cast<std::uint16_t>(input.Below(4));
    return {dwStart, dwEnd, wFirst, static_cast<std::uint16_t>(wFirst + input.Below(4) - 1)};
  }

  void Step(C_FuzzInput& input) {
    switch (input.Below(20)) {
      case 0:
        return SetFormat(input);
      case 1:
        return SetPcm(input);
      case 2:
        return Attach(input);
      case 3:
        return Access(input);
      case 4:
        return MaxAbs(input);
      case 5:
        return ConvertBits(input);
      case 6:
        return Copies(input);
      case 7:
        return TakeChannel(input);
      case 8:
        return PutChannel(input);
      case 9:
        return ToMono();
      case 10:
        return ToStereo(input);
      case 11:
        return Detect(input);
      case 12:
        return AddRange(input);
      case 13:
        return ChangeRange(input);
      case 14:
        return Gain(input);
      case 15:
        return Normalize(input);
      case 16:
        return Offset(input);
      case 17:
        return Mute();
      case 18:
        return SetLists();
      default:
        return Encoded(input);
    }
  }

  void SetFormat(C_FuzzInput& input) {
    static constexpr std::array<std::pair<std::uint16_t, std::uint16_t>, 12> kWidths = {{{8, 8},
                                                                                         {16, 16},
                                                                                         {12, 16},
                                                                                         {24, 32},
                                                                                         {32, 32},
                                                                                         {24, 24},
                                                                                         {4, 8},
                                                                                         {13, 16},
                                                                                         {1, 8},
                                                                                         {20, 32},
                                                                                         {16, 8},
                                                                                         {31, 32}}};
    static constexpr std::array<std::uint16_t, 8> kChannels = {1, 1, 2, 2, 3, 4, 6, 0};
    const auto& [wBits, wStore] = kWidths[input.Below(12)];
    m_model.dwRate = 1 + input.U16();
    m_model.wChannels = input.OneOf(kChannels);
    m_model.wBits = wBits;
    m_model.wStore = wStore;
    const std::uint8_t byChoice = input.U8();
    m_model.bSigned = byChoice % 2 == 0;
    // Most formats tell the truth about the length.
    m_model.dwClaimed = byChoice < 0xE0
                            ? static_cast<std::uint32_t>(m_model.pcm.size())
                            : input.Near(static_cast<std::uint32_t>(m_model.pcm.size()));
    Sound().SetWavInfoData(m_model.dwRate, m_model.dwClaimed, m_model.wChannels, wBits, wStore,
                           m_model.bSigned);
  }
  void SetPcm(C_FuzzInput& input) {
    const Bytes pcm = TakePcm(input);
    const auto cbPcm = static_cast<unsigned int>(pcm.size());
    if (input.Below(4) == 0) {
      unsigned char* pbyBuffer = Sound().AllocBuffer(cbPcm);
      Require(pbyBuffer != nullptr && pbyBuffer == Sound().GetBuffer());
      std::copy(pcm.begin(), pcm.end(), pbyBuffer);
      m_model.bAttached = false;
      Require(m_model.SetBuffer(pcm));
      return;
    }
    if (cbPcm > 0) Require(!Sound().SetBuffer(nullptr, cbPcm));
    Require(Sound().SetBuffer(pcm.data(), cbPcm) == m_model.SetBuffer(pcm));
  }
  // Attached memory is the caller's: here that of the session.
  void Attach(C_FuzzInput& input) {
    if (m_model.bAttached) {
      Require(Sound().DetachBuffer() == m_memory.data());
      m_model.bAttached = false;
      m_model.bHeld = false;
      m_model.pcm.clear();
      return;
    }
    Require(Sound().DetachBuffer() == nullptr);
    if (input.Flag()) return;
    Bytes pcm = TakePcm(input);
    pcm.resize(pcm.size() + 1);
    m_memory = pcm;
    Sound().AttachBuffer(m_memory.data(), static_cast<unsigned int>(m_memory.size()));
    m_model.bAttached = false;
    Require(m_model.SetBuffer(pcm));
    m_model.bAttached = true;
  }

  void Access(C_FuzzInput& input) {
    if (m_model.wChannels == 0) return;
    I_WavDataBuffer& buffer = *Sound().GetIWaveDataBuffer();
    const std::uint32_t dwPos = input.Near(m_model.HeldFrames());
    const auto wChannel = static_cast<std::uint16_t>(input.U8() % m_model.wChannels);
    const auto nValue = static_cast<std::int32_t>(input.U32());
    Require(buffer.GetSampleValueInt(dwPos, wChannel) == m_model.Get(dwPos, wChannel));
    buffer.SetSampleValueInt(dwPos, nValue, wChannel);
    m_model.Set(dwPos, nValue, wChannel);
    // The iterator walks forth and back.
    I_WavDataBufferIterator& it = *Sound().GetIWaveDataBuffer()->CreateIterator(dwPos, wChannel);
    Require(it.GetDataValue() == m_model.WideGet(dwPos, wChannel));
    it.NextData();
    Require(it.GetDataValue() == m_model.WideGet(std::uint64_t{dwPos} + 1, wChannel));
    it.PrevData();
    it.SetDataValue(nValue);
    m_model.WideSet(dwPos, wChannel, nValue, true);
    it.SetDataPos(input.U8());
  }
  void MaxAbs(C_FuzzInput& input) {
    const S_Part part = TakePart(input);
    I_WavDataBuffer& buffer = *Sound().GetIWaveDataBuffer();
    Require(buffer.GetMaxAbsValue(part.dwStart, part.dwEnd, part.wFirst, part.wLast) ==
            m_model.MaxAbs(part.dwStart, part.dwEnd, part.wFirst, part.wLast));
  }

  void ConvertBits(C_FuzzInput& input) {
    static constexpr std::array<std::pair<std::uint16_t, std::uint16_t>, 8> kWidths = {
        {{8, 8}, {16, 16}, {12, 16}, {24, 32}, {32, 32}, {24, 24}, {16, 8}, {5, 8}}};
    const auto& [wBits, wStore] = kWidths[input.Below(8)];
    const bool bSigned = input.Flag();
    const bool bExact = input.Flag();
    const auto expected = m_model.Converted(wBits, wStore, bSigned, bExact);
    RequireMade(Sound().CreateBitsConvertedData(wBits, wStore, bSigned, bExact), expected);
    if (input.Flag()) return;
    bool bDone = !m_model.bAttached;
    const bool bSame =
        wBits == m_model.wBits && wStore == m_model.wStore && bSigned == m_model.bSigned;
    if (bDone && !bSame) bDone = expected && m_model.CopyFrom(*expected);
    Require(Sound().ConvertBits(wBits, wStore, bSigned, bExact) == bDone);
  }
  void Copies(C_FuzzInput& input) {
    std::optional<S_Sound> expected;
    if (m_model.ClaimsWhatItHolds()) {
      expected.emplace();
      Require(expected->CopyFrom(m_model));
    }
    RequireMade(Sound().Clone(), expected);
    Require(!Sound().CopyWavData(nullptr));
    if (input.Flag()) return;
    // The sound takes its own copy, too.
    S_Sound self = m_model;
    Require(Sound().CopyWavData(&Sound()) == m_model.CopyFrom(self));
  }
  void TakeChannel(C_FuzzInput& input) {
    const S_Part part = TakePart(input);
    RequireMade(Sound().CreateChannelData(part.wFirst, part.dwStart, part.dwEnd),
                m_model.Channel(part.wFirst, part.dwStart, part.dwEnd));
  }
  void PutChannel(C_FuzzInput& input) {
    const S_Part part = TakePart(input);
    const Bytes bytes = TakePcm(input);
    const C_WavDataPtr source(new C_WavData);
    source->SetBuffer(bytes.data(), static_cast<unsigned int>(bytes.size()));
    Require(Sound().SetChannelData(source.get(), part.wFirst, part.dwStart, 0) ==
            m_model.PutChannel(bytes, part.wFirst, part.dwStart));
    Require(!Sound().SetChannelData(nullptr, part.wFirst, part.dwStart, 0));
  }
  void ToMono() {
    Sound().ConvertToMono();
    m_model.ToMono();
  }
  void ToStereo(C_FuzzInput& input) {
    const int nSecond = m_model.SecondChannel();
    switch (input.Below(3)) {
      case 0:
        Sound().ConvertToStereo();
        if (m_model.wChannels != 2) m_model.ToStereo(0, nSecond);
        break;
      case 1:
        Sound().ConvertToStereoWithSilence(0);
        m_model.ToStereo(0, -1);
        break;
      default:
        Sound().ConvertToStereoWithSilence(7);
        m_model.ToStereo(-1, nSecond);
    }
  }

  // A last channel that does not exist stops the program when samples are read.
  void Detect(C_FuzzInput& input) {
    S_Part part = TakePart(input);
    if (part.wLast >= m_model.wChannels && part.wFirst <= part.wLast) return;
    const std::uint32_t dwThreshold = input.U16() % 2060U;
    // The model merges ranges one by one: no more are found than it can merge in a moment.
    const std::uint32_t dwLeast = m_model.HeldFrames() / kMostRanges;
    const std::uint32_t dwMin =
        std::max(dwLeast, input.Flag() ? input.U8() % 8U : input.Near(m_model.HeldFrames()));
    const bool bReplace = input.Flag();
    const bool bWhole = input.Below(4) == 0;
    if (bWhole) {
      if (m_model.wChannels == 0) return;
      part = {0, m_model.Frames() - 1, 0, static_cast<std::uint16_t>(m_model.wChannels - 1)};
    }
    if (m_model.silence.size() > kMostRanges && !bReplace) return;
    I_WavData::SilenceList* pList =
        bWhole ? Sound().DetectSilence(dwThreshold, dwMin, bReplace)
               : Sound().DetectSilenceRange(dwThreshold, dwMin, part.dwStart, part.dwEnd,
                                            part.wFirst, part.wLast, bReplace);
    Require((pList != nullptr) == m_model.Detect(dwThreshold, dwMin, part.dwStart, part.dwEnd,
                                                 part.wFirst, part.wLast, bReplace));
    Require(pList == nullptr || pList == Sound().GetSilenceSegmentList());
  }
  // Short ranges around few places, so that they meet.
  static S_Range TakeRange(C_FuzzInput& input) {
    const std::uint8_t byChoice = input.U8();
    if (byChoice == 0xFF) return {input.U32(), input.U32()};
    return {byChoice % 64U, byChoice % 64U + input.U8() % 12U - 1};
  }
  void AddRange(C_FuzzInput& input) {
    for (unsigned int i = input.Below(6); i > 0; --i) {
      const bool bSilence = input.Flag();
      std::vector<S_Range>& list = bSilence ? m_model.silence : m_model.regions;
      const S_Range range = TakeRange(input);
      if (list.size() > kMostRanges) return;
      list.push_back(range);
      slow::Merge(list);
      if (bSilence) Sound().AddSilenceSegment(range.dwStart, range.dwEnd);
      if (!bSilence) Sound().AddUncompressRegion(range.dwStart, range.dwEnd);
    }
  }
  template <typename List>
  static void Change(C_FuzzInput& input, List& list, std::vector<S_Range>& model) {
    if (model.empty()) return;
    const std::size_t nItem = input.U8() % model.size();
    const int nIndex = static_cast<int>(nItem);
    const S_Range range = TakeRange(input);
    switch (input.Below(3)) {
      case 0:
        list.GetItemByIndex(nIndex)->SetStartSamplePos(range.dwStart);
        model[nItem].dwStart = range.dwStart;
        break;
      case 1:
        list.GetItemByIndex(nIndex)->SetEndSamplePos(range.dwEnd);
        model[nItem].dwEnd = range.dwEnd;
        break;
      default:
        list.RemoveItemByIndex(nIndex);
        model.erase(model.begin() + nIndex);
    }
  }
  void ChangeRange(C_FuzzInput& input) {
    Change(input, *Sound().GetSilenceSegmentList(), m_model.silence);
    Change(input, *Sound().GetUncompressRegionList(), m_model.regions);
    if (input.Flag()) return;
    Sound().MergeSilenceSegments();
    Sound().MergeUncompressRegions();
    slow::Merge(m_model.silence);
    slow::Merge(m_model.regions);
  }
  // Another sound takes the lists and gives them back.
  void SetLists() {
    C_WavData other;
    other.SetSilenceSegmentList(Sound().GetSilenceSegmentList());
    other.SetUncompressRegionList(Sound().GetUncompressRegionList());
    Sound().SetSilenceSegmentList(nullptr);
    Require(Sound().GetSilenceSegmentList()->GetSize() == 0);
    Sound().SetSilenceSegmentList(other.GetSilenceSegmentList());
    Sound().SetUncompressRegionList(other.GetUncompressRegionList());
  }

  static double TakeGain(C_FuzzInput& input) {
    static constexpr std::array<double, 10> kGains = {
        0.0, 1.0, -1.0, 0.5, 2.0, 0.999, 1e9, -3.7, 1e300, std::numeric_limits<double>::infinity()};
    return input.OneOf(kGains);
  }
  void Gain(C_FuzzInput& input) {
    S_Part part = TakePart(input);
    const double dFrom = TakeGain(input);
    const double dTo = TakeGain(input);
    if (input.Below(4) != 0) {
      Require(
          Sound().ApplyGainRange(dFrom, dTo, part.dwStart, part.dwEnd, part.wFirst, part.wLast) ==
          m_model.Gain(dFrom, dTo, part.dwStart, part.dwEnd, part.wFirst, part.wLast));
      return;
    }
    const auto wLast = static_cast<std::uint16_t>(m_model.wChannels - 1);
    Require(Sound().ApplyGain(dFrom, dTo) ==
            m_model.Gain(dFrom, dTo, 0, m_model.Frames() - 1, 0, wLast));
  }
  void Normalize(C_FuzzInput& input) {
    const S_Part part = TakePart(input);
    if (input.Below(4) != 0) {
      Require(Sound().NormalizeRange(part.dwStart, part.dwEnd, part.wFirst, part.wLast) ==
              m_model.Normalize(part.dwStart, part.dwEnd, part.wFirst, part.wLast));
      return;
    }
    const auto wLast = static_cast<std::uint16_t>(m_model.wChannels - 1);
    Require(Sound().Normalize() == m_model.Normalize(0, m_model.Frames() - 1, 0, wLast));
  }
  void Offset(C_FuzzInput& input) {
    Require(Sound().GetDCOffset() == m_model.Offset());
    if (input.Flag()) return;
    Sound().RemoveDCOffset();
    m_model.RemoveOffset();
  }
  void Mute() {
    Sound().MakeSilenceSegmentsMute();
    m_model.Mute();
  }
  // The encoded form leaves the PCM alone.
  void Encoded(C_FuzzInput& input) {
    const auto bytes = input.Bytes(input.U8() % 16U);
    const auto cbBytes = static_cast<unsigned int>(bytes.size());
    Require(Sound().SetEncBuffer(bytes.data(), cbBytes) == (cbBytes == 0 || !bytes.empty()));
    Require(Sound().GetEncBufferLen() == cbBytes);
    Require(!Sound().SetEncBuffer(nullptr, 1));
    const auto eType = static_cast<tagAudioFileType>(input.U16());
    Sound().SetEncType(eType);
    Require(Sound().GetEncType() == eType && Sound().Reserved45(1, 2));
    void* pInfo = &pInfo;
    const int nType = static_cast<int>(input.Below(8));
    Require(Sound().GetInfo(nType, &pInfo) == (nType >= 1 && nType <= 5));
    Require((pInfo != nullptr) == (nType >= 1 && nType <= 5));
  }

  Bytes m_memory;  // of an attached buffer; outlives the sound
  C_WavDataPtr m_sound;
  S_Sound m_model;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  return RunSession<C_Session>(pData, cbData);
}
