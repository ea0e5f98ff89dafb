// SPDX-License-Identifier: Apache-2.0
#include "CLString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "VTable.h"

using namespace std::string_literals;

namespace {

// Upper-cases only 'x'.
class C_OnlyX : public std::ctype<char> {
 protected:
  const char* do_toupper(char* pFirst, const char* pLast) const override {
    for (; pFirst != pLast; ++pFirst) {
      if (*pFirst == 'x') *pFirst = 'X';
    }
    return pLast;
  }
};

class C_GlobalLocale {
 public:
  explicit C_GlobalLocale(const std::locale& loc) : m_before(std::locale::global(loc)) {}
  ~C_GlobalLocale() { std::locale::global(m_before); }
  C_GlobalLocale(const C_GlobalLocale&) = delete;
  C_GlobalLocale& operator=(const C_GlobalLocale&) = delete;

 private:
  std::locale m_before;
};

}  // namespace

TEST(Ssasn, Null_ErasesTheText) {
  std::string s = "abc";
  ssasn(s, nullptr);
  EXPECT_EQ(s, "");
}

TEST(Ssasn, OtherText_ReplacesUpToItsTerminator) {
  std::string s = "a much longer text than the new one";
  ssasn(s, "xy\0z");
  EXPECT_EQ(s, "xy");
}

TEST(Ssasn, OwnTail_BecomesTheText) {
  for (const std::string& text : {"abcdef"s, std::string(100, 'q') + "abcdef"}) {
    std::string s = text;
    ssasn(s, s.c_str() + 2);
    EXPECT_EQ(s, text.substr(2));
    ssasn(s, s.c_str());
    EXPECT_EQ(s, text.substr(2));
    ssasn(s, s.c_str() + s.size());
    EXPECT_EQ(s, "");
  }
}

TEST(Ssasn, OwnTail_IsTakenByLengthSoThatEmbeddedNulsSurvive) {
  std::string s("ab\0cd", 5);
  ssasn(s, s.c_str() + 1);
  EXPECT_EQ(s, std::string("b\0cd", 4));
}

TEST(Ssadd, Null_ChangesNothing) {
  std::string s = "abc";
  ssadd(s, nullptr);
  EXPECT_EQ(s, "abc");
}

TEST(Ssadd, OtherText_IsAppended) {
  std::string s = "abc";
  ssadd(s, "de");
  ssadd(s, "");
  EXPECT_EQ(s, "abcde");
}

TEST(Ssadd, OwnText_DoublesWhateverTheCapacity) {
  for (const std::size_t nReserve : {0u, 45u, 89u, 90u, 91u, 400u}) {
    std::string s(45, 'a');
    s.shrink_to_fit();
    s.reserve(nReserve);
    ssadd(s, s.c_str());
    EXPECT_EQ(s, std::string(90, 'a')) << nReserve;
    s = "tail";
    ssadd(s, s.c_str() + 2);
    EXPECT_EQ(s, "tailil") << nReserve;
  }
}

TEST(Ssadd, OwnTextWithEmbeddedNul_AppendsUpToTheNul) {
  std::string s("ab\0cd", 5);
  ssadd(s, s.c_str());
  EXPECT_EQ(s, std::string("ab\0cdab", 7));
  ssadd(s, s.c_str() + s.size());
  EXPECT_EQ(s.size(), 7u);
}

TEST(StdStr, Type_IsAStdStringThatConvertsToACString) {
  EXPECT_TRUE((std::is_base_of_v<std::string, CStdStr<char>>));
  EXPECT_TRUE((std::is_convertible_v<CStdStr<char>, const char*>));
  const CStdStr<char> s("abc");
  const char* psz = s;
  EXPECT_EQ(psz, s.c_str());
  EXPECT_EQ(std::strlen(psz), 3u);
}

TEST(StdStr, GetBuf_GrowsWithNulsAndRelBufTakesTheTextBack) {
  CStdStr<char> s("abc");
  char* pszBuf = s.GetBuf(10);
  EXPECT_EQ(s, std::string("abc\0\0\0\0\0\0\0", 10));
  EXPECT_EQ(pszBuf, s.data());
  s.RelBuf(-1);
  EXPECT_EQ(s, "abc");
}

TEST(StdStr, GetBuf_NeverShrinks) {
  CStdStr<char> s("abc");
  s.GetBuf(2);
  EXPECT_EQ(s, "abc");
  s.GetBuf(3);
  EXPECT_EQ(s.size(), 3u);
  s.GetBuf(-1);
  EXPECT_EQ(s, "abc");
}

TEST(StdStr, GetBuf_OnEmptyText_GivesAValidPointer) {
  CStdStr<char> s;
  char* pszBuf = s.GetBuf(0);
  ASSERT_NE(pszBuf, nullptr);
  EXPECT_EQ(*pszBuf, '\0');
  EXPECT_TRUE(s.empty());
}

TEST(StdStr, RelBuf_SetsTheLength) {
  CStdStr<char> s("abc");
  std::memcpy(s.GetBuf(10), "abcdefghij", 10);
  s.RelBuf(5);
  EXPECT_EQ(s, "abcde");
  s.RelBuf(0);
  EXPECT_EQ(s, "");
  s.RelBuf(2);
  EXPECT_EQ(s, std::string(2, '\0'));
}

TEST(StdStr, RelBufNegative_StopsAtTheFirstNulWritten) {
  CStdStr<char> s;
  std::memcpy(s.GetBuf(5), "ab\0cd", 5);
  s.RelBuf(-1);
  EXPECT_EQ(s, "ab");
}

TEST(StdStr, RelBufNegative_OnAFullBuffer_KeepsItAll) {
  CStdStr<char> s;
  std::memcpy(s.GetBuf(4), "wxyz", 4);
  s.RelBuf(-1);
  EXPECT_EQ(s, "wxyz");
}

TEST(StdStr, Empty_ErasesTheText) {
  CStdStr<char> s("abc");
  s.Empty();
  EXPECT_TRUE(s.empty());
}

TEST(StdStr, MakeUpper_FollowsTheGlobalLocale) {
  CStdStr<char> s("axz");
  const C_GlobalLocale global(std::locale(std::locale::classic(), new C_OnlyX));
  s.MakeUpper();
  EXPECT_EQ(s, "aXz");
}

TEST(StdStr, MakeUpper_InTheClassicLocale_LeavesBytesOutsideAsciiAlone) {
  CStdStr<char> s("a\xC9z\xE9");
  s.MakeUpper();
  EXPECT_EQ(s, "A\xC9Z\xE9");
}

TEST(StdStr, ToUpper_ChangesInPlaceAndReturnsItself) {
  CStdStr<char> s("axz");
  EXPECT_EQ(&s.ToUpper(std::locale(std::locale::classic(), new C_OnlyX)), &s);
  EXPECT_EQ(s, "aXz");
}

TEST(CLString, NewText_IsEmptyAndNeverNull) {
  EXPECT_STREQ(C_CLString().GetContent(), "");
  EXPECT_STREQ(C_CLString(nullptr).GetContent(), "");
  EXPECT_STREQ(C_CLString("abc").GetContent(), "abc");
}

TEST(CLString, Null_EmptiesOnEveryWayOfSetting) {
  C_CLString s("abc");
  s.SetContent(nullptr);
  EXPECT_STREQ(s.GetContent(), "");
  s.SetContent("def");
  EXPECT_STREQ(s.GetContent(), "def");
  s = static_cast<const char*>(nullptr);
  EXPECT_STREQ(s.GetContent(), "");
}

TEST(CLString, OwnTail_MayBeSet) {
  C_CLString s("abcdef");
  s.SetContent(s.GetContent() + 3);
  EXPECT_STREQ(s.GetContent(), "def");
}

TEST(CLString, AssignmentFromACString_ReturnsItself) {
  C_CLString s;
  EXPECT_EQ(&(s = "abc"), &s);
  EXPECT_STREQ(s.GetContent(), "abc");
}

TEST(CLString, Copy_HasATextOfItsOwn) {
  C_CLString s("abc");
  const C_CLString copy(s);
  s.SetContent("xyz");
  EXPECT_STREQ(copy.GetContent(), "abc");
}

TEST(CLString, Empty_ErasesTheText) {
  C_CLString s("abc");
  s.Empty();
  EXPECT_STREQ(s.GetContent(), "");
}

TEST(CLString, Operations_StandInTheirSlots) {
  auto* pString = new C_CLString("abc");
  I_CLString* pIString = pString;
  EXPECT_STREQ(CallSlot<const char*>(pIString, 0), "abc");
  CallSlot<void>(pIString, 1, "def");
  EXPECT_STREQ(pString->GetContent(), "def");
  CallSlot<void>(pIString, 2);
  EXPECT_STREQ(pString->GetContent(), "");
  CallSlot<void>(pIString, 4);
}
