// SPDX-License-Identifier: Apache-2.0
//
// Does any sequence of operations on an event tag manager and its tags, and the same on a plain
// vector: after each operation both must hold the same tags with the same values.
//
//   scripts/fuzz.sh 60 event_tags
//
// Input: operations, one byte each, followed by their arguments.
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "FuzzInput.h"
#include "Require.h"
#include "annotation/EventTagMgr.h"

namespace {

// A list that grows without end makes later operations slow and shows nothing new.
constexpr std::size_t kMostTags = 64;
constexpr int kMostOperations = 64;

struct S_SlowTag {
  I_EventTag* pTag = nullptr;
  std::uint32_t dwCommand = 0;
  std::uint32_t dwMoment = 0;
  bool bInSamples = false;
  std::string strText;
  std::uint32_t dwData = 0;
};

std::uint32_t Truncated(double dValue) {
  return dValue >= 4294967295.0 ? 0xFFFFFFFF : static_cast<std::uint32_t>(dValue);
}

class C_SlowManager {
 public:
  std::vector<S_SlowTag> tags;
  std::uint32_t dwRate = 0;

  [[nodiscard]] std::uint32_t TimeOf(const S_SlowTag& tag) const {
    return tag.bInSamples ? Truncated(tag.dwMoment * 1000.0 / dwRate) : tag.dwMoment;
  }
  [[nodiscard]] std::uint32_t SampleOf(const S_SlowTag& tag) const {
    return tag.bInSamples ? tag.dwMoment : Truncated(double{1} * tag.dwMoment * dwRate / 1000.0);
  }
  [[nodiscard]] std::uint32_t KeyOf(const S_SlowTag& tag, bool bSamples) const {
    return bSamples ? SampleOf(tag) : TimeOf(tag);
  }
  // Without a sample rate, asking a tag for the moment that it was not set in stops the program.
  [[nodiscard]] bool MayAsk(bool bSamples) const {
    if (dwRate > 0) return true;
    for (const S_SlowTag& tag : tags) {
      if (tag.bInSamples != bSamples) return false;
    }
    return true;
  }

  void Insert(const S_SlowTag& tag, bool bSamples) {
    tags.insert(tags.begin() + static_cast<std::ptrdiff_t>(Place(KeyOf(tag, bSamples), bSamples)),
                tag);
  }
  [[nodiscard]] std::vector<I_EventTag*> Found(
      const std::function<bool(const S_SlowTag&)>& fnMatch) const {
    std::vector<I_EventTag*> found;
    for (const S_SlowTag& tag : tags) {
      if (fnMatch(tag)) found.push_back(tag.pTag);
    }
    return found;
  }
  // Takes out all matches, or only one of them, and returns what was taken out.
  std::vector<I_EventTag*> TakeOut(const std::function<bool(const S_SlowTag&)>& fnMatch,
                                   int nOnly = -1) {
    std::vector<I_EventTag*> out;
    std::vector<S_SlowTag> left;
    int nMatch = 0;
    for (const S_SlowTag& tag : tags) {
      const bool bTaken = fnMatch(tag) && (nOnly < 0 || nMatch++ == nOnly);
      if (bTaken) out.push_back(tag.pTag);
      if (!bTaken) left.push_back(tag);
    }
    tags = left;
    return out;
  }

 private:
  // The search looks at certain tags, which matters when the list is not in order.
  [[nodiscard]] std::size_t Place(std::uint32_t dwKey, bool bSamples) const {
    if (tags.empty() || KeyOf(tags.back(), bSamples) <= dwKey) return tags.size();
    std::size_t nLow = 0;
    std::size_t nHigh = tags.size() - 1;
    while (nLow != nHigh) {
      const std::size_t nMiddle = (nLow + nHigh) / 2;
      const std::uint32_t dwMiddle = KeyOf(tags[nMiddle], bSamples);
      if (dwMiddle == dwKey) {
        nLow = nMiddle;
        break;
      }
      if (dwKey < dwMiddle) nHigh = nMiddle;
      if (dwKey > dwMiddle) nLow = nMiddle + 1;
    }
    while (nLow != nHigh && KeyOf(tags[nLow], bSamples) == dwKey) ++nLow;
    return nLow;
  }
};

class C_Session {
 public:
  void Run(C_FuzzInput& input) {
    for (int i = 0; i < kMostOperations && !input.Ended(); ++i) {
      Step(input);
      Compare();
    }
  }

 private:
  struct S_Arguments {
    std::uint16_t wMain;
    std::uint16_t wSub;
    std::uint32_t dwMoment;
    std::uint32_t dwData;
    const char* pszText;
  };

  // Few different commands and moments, so that tags meet.
  static S_Arguments Arguments(C_FuzzInput& input) {
    static constexpr std::array<const char*, 4> kTexts = {"", "one", "a longer description text",
                                                          nullptr};
    S_Arguments arguments{};
    arguments.wMain = static_cast<std::uint16_t>(input.Below(3) * 0x7FFF);
    arguments.wSub = static_cast<std::uint16_t>(input.Below(3));
    arguments.dwMoment = Moment(input);
    arguments.dwData = arguments.dwMoment ^ 0x5A5A5A5A;
    arguments.pszText = input.OneOf(kTexts);
    return arguments;
  }
  static std::uint32_t Moment(C_FuzzInput& input) {
    const std::uint8_t byChoice = input.U8();
    if (byChoice < 0xF0) return byChoice % 16U * 10U;
    return byChoice < 0xF8 ? input.U32() : 0xFFFFFFFF;
  }

  void Step(C_FuzzInput& input) {
    switch (input.Below(14)) {
      case 0:
        return Add(input, false);
      case 1:
        return Add(input, true);
      case 2:
        return SetRate(input);
      case 3:
        return Query(input);
      case 4:
        return RemoveByMoment(input, false);
      case 5:
        return RemoveByMoment(input, true);
      case 6:
        return RemoveByCommand(input);
      case 7:
        return RemoveByIndex(input);
      case 8:
        return ChangeTag(input);
      case 9:
        return AddOwnList();
      case 10:
        return AddMany(input);
      case 11:
        return RemoveAll(input);
      default:
        return Add(input, input.Flag());
    }
  }

  void Add(C_FuzzInput& input, bool bSamples) {
    const S_Arguments a = Arguments(input);
    if (m_slow.tags.size() >= kMostTags || !m_slow.MayAsk(bSamples)) return;
    if (bSamples && m_slow.dwRate == 0) return;
    I_EventTag* pTag =
        bSamples ? m_manager.AddEventBySamplePos(a.wMain, a.wSub, a.dwMoment, a.pszText, a.dwData)
                 : m_manager.AddEvent(a.wMain, a.wSub, a.dwMoment, a.pszText, a.dwData);
    Require(pTag != nullptr);
    Note(a, pTag, bSamples);
  }
  void Note(const S_Arguments& a, I_EventTag* pTag, bool bSamples) {
    m_slow.Insert({pTag, std::uint32_t{a.wMain} << 16 | a.wSub, a.dwMoment, bSamples,
                   a.pszText == nullptr ? "" : a.pszText, a.dwData},
                  bSamples);
  }
  void SetRate(C_FuzzInput& input) {
    static constexpr std::array<std::uint32_t, 8> kRates = {0,     1,     3,      1000,
                                                            16000, 44100, 192000, 0xFFFFFFFF};
    m_slow.dwRate = input.OneOf(kRates);
    m_manager.SetSampleRate(m_slow.dwRate);
  }

  static void RequireList(I_CLArray<I_EventTag*>& list, const std::vector<I_EventTag*>& expected) {
    Require(list.GetSize() == static_cast<int>(expected.size()));
    for (int i = 0; i < list.GetSize(); ++i) {
      Require(list.GetItemByIndex(i) == expected[static_cast<std::size_t>(i)]);
    }
  }
  void Query(C_FuzzInput& input) {
    const S_Arguments a = Arguments(input);
    RequireList(*m_manager.GetEventsByCommand(a.wMain, a.wSub), m_slow.Found(HasCommand(a)));
    for (const bool bSamples : {false, true}) {
      if (!m_slow.MayAsk(bSamples)) continue;
      RequireList(*(bSamples ? m_manager.GetEventsBySamplePos(a.dwMoment)
                             : m_manager.GetEventsByTime(a.dwMoment)),
                  m_slow.Found(IsAt(a.dwMoment, bSamples)));
    }
  }

  void RemoveByMoment(C_FuzzInput& input, bool bSamples) {
    const std::uint32_t dwMoment = Moment(input);
    const int nOnly = static_cast<int>(input.Below(4)) - 1;
    if (!m_slow.MayAsk(bSamples)) return;
    bool bFound = false;
    if (nOnly < 0 && bSamples) m_manager.RemoveEventsBySamplePos(dwMoment);
    if (nOnly < 0 && !bSamples) m_manager.RemoveEventsByTime(dwMoment);
    if (nOnly >= 0) {
      bFound = bSamples ? m_manager.RemoveEventBySamplePos(dwMoment, nOnly)
                        : m_manager.RemoveEventByTime(dwMoment, nOnly);
    }
    Take(m_slow.TakeOut(IsAt(dwMoment, bSamples), nOnly), nOnly >= 0, bFound);
  }
  void RemoveByCommand(C_FuzzInput& input) {
    const S_Arguments a = Arguments(input);
    const int nOnly = static_cast<int>(input.Below(4)) - 1;
    bool bFound = false;
    if (nOnly < 0) m_manager.RemoveEventsByCommand(a.wMain, a.wSub);
    if (nOnly >= 0) bFound = m_manager.RemoveEventByCommand(a.wMain, a.wSub, nOnly);
    Take(m_slow.TakeOut(HasCommand(a), nOnly), nOnly >= 0, bFound);
  }
  void RemoveByIndex(C_FuzzInput& input) {
    const auto nIndex = static_cast<int>(input.Below(kMostTags + 2)) - 1;
    const bool bInside = nIndex >= 0 && static_cast<std::size_t>(nIndex) < m_slow.tags.size();
    Require(m_manager.RemoveEvent(nIndex) == bInside);
    if (!bInside) return;
    const auto position = m_slow.tags.begin() + nIndex;
    m_taken.emplace_back(position->pTag);
    m_slow.tags.erase(position);
  }
  // What was taken out belongs to the caller.
  void Take(const std::vector<I_EventTag*>& out, bool bOnlyOne, bool bFound) {
    if (bOnlyOne) Require(bFound == (out.size() == 1));
    for (I_EventTag* pTag : out) m_taken.emplace_back(pTag);
  }
  void RemoveAll(C_FuzzInput& input) {
    if (input.Below(4) != 0) return;
    m_manager.RemoveAllEvents();
    m_slow.tags.clear();
  }

  void ChangeTag(C_FuzzInput& input) {
    const S_Arguments a = Arguments(input);
    const unsigned int dwKind = input.Below(5);
    if (m_slow.tags.empty()) return;
    S_SlowTag& tag = m_slow.tags[input.Below(kMostTags) % m_slow.tags.size()];
    switch (dwKind) {
      case 0:
        tag.pTag->SetTime(a.dwMoment);
        tag.dwMoment = a.dwMoment;
        tag.bInSamples = false;
        break;
      case 1:
        tag.pTag->SetSamplePos(a.dwMoment);
        tag.dwMoment = a.dwMoment;
        tag.bInSamples = true;
        break;
      case 2:
        tag.pTag->SetCommandIndex(a.wMain, a.wSub);
        tag.dwCommand = std::uint32_t{a.wMain} << 16 | a.wSub;
        break;
      case 3:
        tag.pTag->SetDescription(a.pszText);
        tag.strText = a.pszText == nullptr ? "" : a.pszText;
        break;
      default:
        tag.pTag->SetData(a.dwData);
        tag.dwData = a.dwData;
    }
  }

  // Copies every tag by its time; the list may be the manager's own.
  void AddOwnList() {
    if (m_slow.tags.size() * 2 > kMostTags || !m_slow.MayAsk(false)) return;
    const std::vector<S_SlowTag> before = m_slow.tags;
    Require(m_manager.AddEvents(m_manager.GetEventList()));
    for (const S_SlowTag& tag : before) {
      S_SlowTag copy = tag;
      copy.pTag = nullptr;
      copy.dwMoment = m_slow.TimeOf(tag);
      copy.bInSamples = false;
      m_slow.Insert(copy, false);
    }
    Learn();
  }
  void AddMany(C_FuzzInput& input) {
    std::vector<C_EventTagMgr::S_SampleEvent> events(input.Below(6));
    for (auto& event : events) event = {Moment(input), input.U8(), input.U8(), 7};
    if (m_slow.tags.size() + events.size() > kMostTags) return;
    if (m_slow.dwRate == 0) return;
    m_manager.AddEventsBySamplePos(events);
    for (const auto& event : events) {
      Note({event.wMain, event.wSub, event.dwSamplePos, event.dwData, ""}, nullptr, true);
    }
    Learn();
  }
  // Learns which objects stand for the tags that the manager made out of sight.
  void Learn() {
    I_CLArray<I_EventTag*>& list = *m_manager.GetEventList();
    Require(list.GetSize() == static_cast<int>(m_slow.tags.size()));
    for (int i = 0; i < list.GetSize(); ++i) {
      I_EventTag*& pTag = m_slow.tags[static_cast<std::size_t>(i)].pTag;
      if (pTag == nullptr) pTag = list.GetItemByIndex(i);
    }
  }

  [[nodiscard]] std::function<bool(const S_SlowTag&)> IsAt(std::uint32_t dwMoment,
                                                           bool bSamples) const {
    return [this, dwMoment, bSamples](const S_SlowTag& tag) {
      return m_slow.KeyOf(tag, bSamples) == dwMoment;
    };
  }
  static std::function<bool(const S_SlowTag&)> HasCommand(const S_Arguments& a) {
    return [dwCommand = std::uint32_t{a.wMain} << 16 | a.wSub](const S_SlowTag& tag) {
      return tag.dwCommand == dwCommand;
    };
  }

  void Compare() {
    Require(m_manager.GetSampleRate() == m_slow.dwRate);
    RequireList(*m_manager.GetEventList(), m_slow.Found([](const S_SlowTag&) { return true; }));
    for (const S_SlowTag& tag : m_slow.tags) {
      Require(tag.pTag->GetMainCommandIndex() == tag.dwCommand >> 16);
      Require(tag.pTag->GetSubCommandIndex() == (tag.dwCommand & 0xFFFF));
      Require(tag.pTag->GetDescription() == tag.strText && tag.pTag->GetData() == tag.dwData);
      if (!tag.bInSamples || m_slow.dwRate > 0) Require(tag.pTag->GetTime() == m_slow.TimeOf(tag));
      if (tag.bInSamples || m_slow.dwRate > 0) {
        Require(tag.pTag->GetSamplePos() == m_slow.SampleOf(tag));
      }
    }
  }

  C_EventTagMgr m_manager;
  C_SlowManager m_slow;
  std::vector<std::unique_ptr<I_EventTag>> m_taken;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  return RunSession<C_Session>(pData, cbData);
}
