// SPDX-License-Identifier: Apache-2.0
#include "file/WavLabels.h"

#include <gtest/gtest.h>

#include <string>

#include "annotation/EventTagMgr.h"
#include "sound/WavData.h"

using wavlabels::EventLabel;
using wavlabels::ParseLabel;
using wavlabels::S_LabelMeaning;

namespace {

S_LabelMeaning Event(unsigned short wMain, unsigned short wSub) {
  return {S_LabelMeaning::Kind::Event, wMain, wSub};
}
const S_LabelMeaning kOther;

struct S_Case {
  const char* pszText;
  S_LabelMeaning expected;
};

}  // namespace

namespace wavlabels {
void PrintTo(const S_LabelMeaning& label, std::ostream* pStream) {
  *pStream << "kind " << static_cast<int>(label.eKind) << " (" << label.wMain << ", " << label.wSub
           << ")";
}
}  // namespace wavlabels

TEST(WavLabels, LabelTexts_MeanWhatTheirLettersSay) {
  const S_Case cases[] = {
      {"u_3_7", Event(3, 7)},        {"_u_3_7", Event(3, 7)},
      {"Queue_1_2", Event(1, 2)},    {"quiet_start_9", Event(0, 9)},
      {"buzz_up_down", Event(0, 0)}, {"u_3_", Event(3, 0)},
      {"u__7", Event(0, 7)},         {"u__", Event(0, 0)},
      {"u_70000_1", Event(4464, 1)}, {"u_-1_65536", Event(65535, 0)},
      {"u_ 12_+3", Event(12, 3)},    {"u_0x10_7", Event(0, 7)},
      {"u_5_6_7", Event(5, 6)},      {"u_65535_65535", Event(65535, 65535)},
  };
  for (const S_Case& c : cases) EXPECT_EQ(ParseLabel(c.pszText), c.expected) << c.pszText;
}

TEST(WavLabels, OlderSingleNumber_IsRead) {
  const S_Case cases[] = {
      {"e_196615", Event(3, 7)},
      {"chapter_one", Event(0, 0)},
      {"verse_12", Event(0, 12)},
      {"me_5", Event(0, 5)},
      {"e_u_1_2", Event(0, 0)},
      {"e_-1", Event(65535, 65535)},
      {"e_", Event(0, 0)},
      {"e_2147483647", Event(32767, 65535)},
      {"e_-2147483648", Event(32768, 0)},
      {"e_4294967297", Event(0, 1)},
      {"hello_3", Event(0, 3)},
  };
  for (const S_Case& c : cases) EXPECT_EQ(ParseLabel(c.pszText), c.expected) << c.pszText;
}

TEST(WavLabels, Ranges_AreNamedExactly) {
  EXPECT_EQ(ParseLabel("VX_Silence").eKind, S_LabelMeaning::Kind::Silence);
  EXPECT_EQ(ParseLabel("VX_PCM").eKind, S_LabelMeaning::Kind::Region);
  for (const char* pszText : {"VX_silence", "vx_PCM", "VX_PCM ", " VX_PCM", "VX_Silenc", "VX_PC"}) {
    EXPECT_EQ(ParseLabel(pszText), kOther) << pszText;
  }
}

TEST(WavLabels, AnyOtherText_MeansNothing) {
  for (const char* pszText :
       {"", "u_3", "u", "_", "__", "_e", "(65538,7)", "hello", "U_3_7", "E_5", "1_2_3", "_3_7u"}) {
    EXPECT_EQ(ParseLabel(pszText), kOther) << pszText;
  }
}

TEST(WavLabels, CompletedEvent_WinsOverWhatFollows) {
  EXPECT_EQ(ParseLabel("u_1_2e_9"), Event(1, 2));
  EXPECT_EQ(ParseLabel("e_9u_1_2"), Event(0, 9));
}

TEST(WavLabels, UnderscoresOfTwoNumbers_AreTakenFirst) {
  // Once a "u" has been seen, the next two underscores belong to it, although an "e" is waiting for
  // one.
  EXPECT_EQ(ParseLabel("ue_4_5"), Event(4, 5));
  // One underscore is not enough for the "u", and the "e" gets none.
  EXPECT_EQ(ParseLabel("ue_4"), kOther);
  // The "e" comes first and takes the first underscore, so the scan ends there.
  EXPECT_EQ(ParseLabel("e_u"), Event(0, 0));
}

TEST(WavLabels, LongNumbers_AreReadUpTo31Characters) {
  const std::string strZeros(30, '0');
  EXPECT_EQ(ParseLabel(("u_" + strZeros + "12_5").c_str()), Event(1, 5));
  EXPECT_EQ(ParseLabel(("u_5_" + strZeros + "12").c_str()), Event(5, 1));
  EXPECT_EQ(ParseLabel(("e_" + strZeros + "12").c_str()), Event(0, 1));
  EXPECT_EQ(ParseLabel(("u_" + strZeros + "7_5").c_str()), Event(7, 5));
}

TEST(WavLabels, NumbersBeyondEveryWidth_AreDefined) {
  // Numbers stop at 2^63 - 1, whose low bits are all set.
  EXPECT_EQ(ParseLabel("u_9999999999999999999999999999999_1"), Event(65535, 1));
  EXPECT_EQ(ParseLabel("u_-9999999999999999999999999999999_1"), Event(0, 1));
  EXPECT_EQ(ParseLabel("e_9999999999999999999999999999999"), Event(65535, 65535));
  EXPECT_EQ(ParseLabel("e_99999999999"), Event(18550, 59391));  // low half of 0x17_4876E7FF
}

TEST(WavLabels, BytesAboveAscii_AreOrdinaryText) {
  EXPECT_EQ(ParseLabel("\xC3\xBC_1_2"), kOther);
  EXPECT_EQ(ParseLabel("\xFFu\xFE_1\x80_2"), Event(1, 2));
}

TEST(WavLabels, EventLabels_ReadBackAsWritten) {
  EXPECT_EQ(EventLabel(3, 7), "u_3_7");
  EXPECT_EQ(EventLabel(65535, 0), "u_65535_0");
  for (const unsigned int dwValue : {0u, 1u, 9u, 10u, 255u, 256u, 32767u, 32768u, 65535u}) {
    const auto wValue = static_cast<unsigned short>(dwValue);
    EXPECT_EQ(ParseLabel(EventLabel(wValue, 7).c_str()), Event(wValue, 7));
    EXPECT_EQ(ParseLabel(EventLabel(7, wValue).c_str()), Event(7, wValue));
  }
}

namespace {

class C_ListWithoutText : public C_WavDataListInfo {
 public:
  const char* GetLabelByIndex(int, unsigned int* pdwID) override {
    *pdwID = 1;
    return nullptr;
  }
};

}  // namespace

TEST(WavLabelsDeathTest, LabelWithoutText_StopsTheProgram) {
  C_WavData data;
  C_ListWithoutText list;
  C_WavDataCueInfo cues(data.GetWavInfo());
  list.AddLabel(1, "u_1_2");
  EXPECT_DEATH(wavlabels::LoadAnnotations(data, list, cues, false),
               "WaveFileLib/WavFile.*NULL != pszLabel");
}

namespace {

// A manager that is not the library's own but forwards every call to one that is.
class C_ForeignEventTagMgr : public I_EventTagMgr {
 public:
  using Tags = I_CLArray<I_EventTag*>;
  using Word = unsigned short;
  I_EventTag* AddEvent(Word wMain, Word wSub, unsigned int dwTime, const char* pszDescription,
                       unsigned int dwData) override {
    return m_mgr.AddEvent(wMain, wSub, dwTime, pszDescription, dwData);
  }
  void RemoveAllEvents() override { m_mgr.RemoveAllEvents(); }
  Tags* GetEventsByTime(unsigned int dwTime) override { return m_mgr.GetEventsByTime(dwTime); }
  Tags* GetEventsByCommand(Word wMain, Word wSub) override {
    return m_mgr.GetEventsByCommand(wMain, wSub);
  }
  Tags* GetEventList() override { return m_mgr.GetEventList(); }
  bool AddEvents(Tags* pList) override { return m_mgr.AddEvents(pList); }
  I_EventTag* AddEventBySamplePos(Word wMain, Word wSub, unsigned int dwSamplePos,
                                  const char* pszDescription, unsigned int dwData) override {
    return m_mgr.AddEventBySamplePos(wMain, wSub, dwSamplePos, pszDescription, dwData);
  }
  Tags* GetEventsBySamplePos(unsigned int dwPos) override {
    return m_mgr.GetEventsBySamplePos(dwPos);
  }
  void SetSampleRate(unsigned int dwRate) override { m_mgr.SetSampleRate(dwRate); }
  unsigned int GetSampleRate() override { return m_mgr.GetSampleRate(); }
  bool RemoveEvent(int nIndex) override { return m_mgr.RemoveEvent(nIndex); }
  void RemoveEventsByTime(unsigned int dwTime) override { m_mgr.RemoveEventsByTime(dwTime); }
  void RemoveEventsBySamplePos(unsigned int dwPos) override {
    m_mgr.RemoveEventsBySamplePos(dwPos);
  }
  void RemoveEventsByCommand(Word wMain, Word wSub) override {
    m_mgr.RemoveEventsByCommand(wMain, wSub);
  }
  bool RemoveEventByTime(unsigned int dwTime, int nOccurrence) override {
    return m_mgr.RemoveEventByTime(dwTime, nOccurrence);
  }
  bool RemoveEventBySamplePos(unsigned int dwPos, int nOccurrence) override {
    return m_mgr.RemoveEventBySamplePos(dwPos, nOccurrence);
  }
  bool RemoveEventByCommand(Word wMain, Word wSub, int nOccurrence) override {
    return m_mgr.RemoveEventByCommand(wMain, wSub, nOccurrence);
  }

 private:
  C_EventTagMgr m_mgr;
};

class C_SoundWithForeignEvents : public C_WavData {
 public:
  I_EventTagMgr* GetEventTagMgr() override { return &m_foreignMgr; }

 private:
  C_ForeignEventTagMgr m_foreignMgr;
};

std::string EventsIn(C_WavData& data) {
  std::string strEvents;
  I_CLArray<I_EventTag*>* pList = data.GetEventTagMgr()->GetEventList();
  for (int i = 0; i < pList->GetSize(); ++i) {
    I_EventTag* pTag = pList->GetItemByIndex(i);
    strEvents += EventLabel(pTag->GetMainCommandIndex(), pTag->GetSubCommandIndex()) + "@" +
                 std::to_string(pTag->GetSamplePos()) + " ";
  }
  return strEvents;
}

void LoadTwoAmongThree(C_WavData& data) {
  C_WavDataCueInfo cues(data.GetWavInfo());
  cues.AddCuePoint(1, 20, 0, 0, 0, 20);
  cues.AddCuePoint(2, 10, 0, 0, 0, 10);
  C_WavDataListInfo list;
  list.AddLabel(1, "u_1_1");
  list.AddLabel(2, "u_2_2");
  I_EventTagMgr* pEvents = data.GetEventTagMgr();
  pEvents->SetSampleRate(8000);
  for (const unsigned int dwPos : {5u, 10u, 30u}) pEvents->AddEventBySamplePos(9, 9, dwPos, "", 0);
  wavlabels::LoadAnnotations(data, list, cues, false);
}

}  // namespace

TEST(WavLabels, EventsOfAFile_GoAfterThoseOfTheSameMoment) {
  constexpr const char* kExpected = "u_9_9@5 u_9_9@10 u_2_2@10 u_1_1@20 u_9_9@30 ";
  C_WavData data;
  LoadTwoAmongThree(data);
  EXPECT_EQ(EventsIn(data), kExpected);
  C_SoundWithForeignEvents foreign;
  LoadTwoAmongThree(foreign);
  EXPECT_EQ(EventsIn(foreign), kExpected);
}

TEST(WavLabels, HundredsOfThousandsOfEventsAtOneMoment_JoinALaterOneInNoTime) {
  constexpr int kEvents = 200000;
  C_WavData data;
  I_EventTagMgr* pEvents = data.GetEventTagMgr();
  pEvents->SetSampleRate(8000);
  pEvents->AddEventBySamplePos(9, 9, 8, "", 0);
  C_WavDataCueInfo cues(data.GetWavInfo());
  cues.AddCuePoint(1, 7, 0, 0, 0, 7);
  C_WavDataListInfo list;
  for (int i = 0; i < kEvents; ++i) list.AddLabel(1, "u_1_2");
  wavlabels::LoadAnnotations(data, list, cues, false);
  ASSERT_EQ(pEvents->GetEventList()->GetSize(), kEvents + 1);
  EXPECT_EQ(pEvents->GetEventList()->GetItemByIndex(kEvents - 1)->GetSamplePos(), 7u);
  EXPECT_EQ(pEvents->GetEventList()->GetItemByIndex(kEvents)->GetSamplePos(), 8u);
}
