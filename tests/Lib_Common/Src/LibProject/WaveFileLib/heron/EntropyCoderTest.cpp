// SPDX-License-Identifier: Apache-2.0
//
// Round trips of symbols and raw bits, in as few bytes as their probabilities allow.
#include <gtest/gtest.h>

#include <cmath>

#include "Codes.h"
#include "Signals.h"

namespace heron {
namespace {

using test::C_CodeReader;
using test::C_CodeWriter;
using test::C_Random;
using test::ReadSymbol;
using test::S_Bytes;
using test::S_Frequencies;
using test::WriteSymbol;
using test::Written;

// The most one-sided tables possible, at either end, and some others.
constexpr S_Frequencies<16> kFirstLikely = {32753, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
constexpr S_Frequencies<16> kLastLikely = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 32753};
constexpr S_Frequencies<2> kEven = {16384, 16384};
constexpr S_Frequencies<3> kThirds = {10923, 10922, 10923};
constexpr S_Frequencies<5> kMixed = {1, 30000, 2, 2000, 765};
constexpr S_Frequencies<1> kCertain = {32768};

// Draws a symbol with the probability that the table gives it.
template <std::size_t nSymbols>
std::size_t Draw(C_Random& random, const S_Frequencies<nSymbols>& frequencies) {
  std::uint32_t nAt = random.Below(kFrequencyTotal);
  std::size_t nSymbol = 0;
  while (nAt >= frequencies[nSymbol]) nAt -= frequencies[nSymbol++];
  return nSymbol;
}

// Writes nCount symbols and reads them back. They are drawn with the probabilities of the table, or
// all with equal chance. They must come back and take no more bytes than necessary.
template <std::size_t nSymbols>
void CheckRoundTrip(const S_Frequencies<nSymbols>& frequencies, std::size_t nCount,
                    bool bAsLikely) {
  C_Random random(nSymbols);
  std::vector<std::uint8_t> symbols(nCount);
  double dBits = 0;
  for (std::uint8_t& nSymbol : symbols) {
    nSymbol = static_cast<std::uint8_t>(bAsLikely ? Draw<nSymbols>(random, frequencies)
                                                  : random.Below(nSymbols));
    dBits += kFrequencyBits - std::log2(frequencies[nSymbol]);
  }
  const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
    for (const std::uint8_t nSymbol : symbols) WriteSymbol(writer, frequencies, nSymbol);
  });
  EXPECT_LE(static_cast<double>(bytes.size()), dBits / 8 * 1.00001 + 3);
  EXPECT_GE(static_cast<double>(bytes.size()), dBits / 8 - 8);
  C_CodeReader reader(bytes);
  for (std::size_t n = 0; n < nCount; ++n) {
    ASSERT_EQ(ReadSymbol(reader, frequencies), symbols[n]) << n;
  }
  EXPECT_GE(reader.Unread(), 0);
}

TEST(HeronRangeCoder, ManyLikelySymbols_ComeBackAndTakeTheirEntropy) {
  CheckRoundTrip(kFirstLikely, 200000, true);
  CheckRoundTrip(kLastLikely, 200000, true);
  CheckRoundTrip(kEven, 200000, true);
  CheckRoundTrip(kThirds, 200000, true);
  CheckRoundTrip(kMixed, 200000, true);
}

TEST(HeronRangeCoder, UnlikelySymbols_ComeBackAndTakeFifteenBits) {
  CheckRoundTrip(kFirstLikely, 50000, false);
  CheckRoundTrip(kLastLikely, 50000, false);
  CheckRoundTrip(kMixed, 50000, false);
}

TEST(HeronRangeCoder, ACertainSymbol_TakesNothing) { CheckRoundTrip(kCertain, 50000, true); }

// The symbols of a sequence whose interval always contains the number that the bytes of `number`
// stand for. The bytes that are written stay as close below that number as they can, and only the
// symbols that follow decide whether a carry turns them over.
template <std::size_t nSymbols>
std::vector<std::size_t> SymbolsAround(S_Bytes number, const S_Frequencies<nSymbols>& frequencies,
                                       std::size_t nCount) {
  number.resize(400);
  C_CodeReader reader(number);
  std::vector<std::size_t> symbols(nCount);
  for (std::size_t& nSymbol : symbols) nSymbol = ReadSymbol(reader, frequencies);
  return symbols;
}

template <std::size_t nSymbols>
void CheckCarries(const S_Bytes& number, const S_Frequencies<nSymbols>& frequencies) {
  const auto around = SymbolsAround(number, frequencies, 160);
  bool bTurned = false;
  bool bStayed = false;
  for (std::size_t nRun = 1; nRun < around.size(); ++nRun) {
    for (std::size_t nAfter = 0; nAfter < nSymbols; ++nAfter) {
      std::vector<std::size_t> symbols(around.begin(), around.begin() + static_cast<int>(nRun));
      symbols.push_back(nAfter);
      const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
        for (const std::size_t nSymbol : symbols) WriteSymbol(writer, frequencies, nSymbol);
      });
      if (!bytes.empty()) (bytes[0] == number[0] ? bTurned : bStayed) = true;
      C_CodeReader reader(bytes);
      for (const std::size_t nSymbol : symbols) {
        ASSERT_EQ(ReadSymbol(reader, frequencies), nSymbol) << nRun << ' ' << nAfter;
      }
    }
  }
  EXPECT_TRUE(bTurned);
  EXPECT_TRUE(bStayed);
}

TEST(HeronRangeCoder, ACarry_TurnsRunsOfFFOver) {
  for (const S_Bytes& number : {S_Bytes{0x80}, S_Bytes{0x40}, S_Bytes{0xC0}}) {
    CheckCarries(number, kEven);
    CheckCarries(number, kThirds);
  }
  CheckCarries({0x80}, kMixed);
}

TEST(HeronRangeCoder, RawBitsOfEveryWidth_ComeBackAndTakeTheirBits) {
  for (int nBits = 1; nBits <= kMaxRawBits; ++nBits) {
    C_Random random(static_cast<std::uint64_t>(nBits));
    const std::uint32_t nMost = (1u << nBits) - 1;
    std::vector<std::uint32_t> values = {0, nMost, nMost, 0, nMost};
    while (values.size() < 3000) values.push_back(random.Below(nMost + 1));
    const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
      for (const std::uint32_t nValue : values) writer.WriteRaw(nValue, nBits);
    });
    EXPECT_LE(bytes.size(), values.size() * static_cast<std::size_t>(nBits) / 8 + 2);
    C_CodeReader reader(bytes);
    for (const std::uint32_t nValue : values) ASSERT_EQ(reader.ReadRaw(nBits), nValue) << nBits;
    EXPECT_GE(reader.Unread(), 0);
  }
}

// Calls one of the operations for each of 200,000 symbols and raw values in a mixture.
template <typename Likely, typename Mixed, typename Raw>
void ForEachOfAMixture(Likely fnLikely, Mixed fnMixed, Raw fnRaw) {
  C_Random random(4);
  for (int n = 0; n < 200000; ++n) {
    const std::uint32_t nKind = random.Below(3);
    if (nKind == 0) fnLikely(Draw<16>(random, kFirstLikely));
    if (nKind == 1) fnMixed(random.Below(5));
    if (nKind != 2) continue;
    const int nBits = static_cast<int>(random.Below(kMaxRawBits)) + 1;
    fnRaw(random.Below(1u << nBits), nBits);
  }
}

TEST(HeronRangeCoder, SymbolsAndRawBitsMixed_ComeBack) {
  const S_Bytes bytes = Written([](C_CodeWriter& writer) {
    ForEachOfAMixture([&](std::size_t n) { WriteSymbol(writer, kFirstLikely, n); },
                      [&](std::size_t n) { WriteSymbol(writer, kMixed, n); },
                      [&](std::uint32_t nValue, int nBits) { writer.WriteRaw(nValue, nBits); });
  });
  C_CodeReader reader(bytes);
  int nWrong = 0;
  ForEachOfAMixture(
      [&](std::size_t n) { nWrong += ReadSymbol(reader, kFirstLikely) != n ? 1 : 0; },
      [&](std::size_t n) { nWrong += ReadSymbol(reader, kMixed) != n ? 1 : 0; },
      [&](std::uint32_t nValue, int nBits) { nWrong += reader.ReadRaw(nBits) != nValue ? 1 : 0; });
  EXPECT_EQ(nWrong, 0);
  EXPECT_GE(reader.Unread(), 0);
}

TEST(HeronRangeCoder, AnEmptySequence_TakesAByteAtMost) {
  EXPECT_LE(Written([](C_CodeWriter&) {}).size(), 1u);
  EXPECT_GE(C_CodeReader({}).Unread(), 0);
}

TEST(HeronRangeCoder, ReadingOn_IsPastTheEndSoonAfterIt) {
  for (std::size_t nBytes = 0; nBytes < 40; ++nBytes) {
    const S_Bytes bytes(nBytes, 0xA5);
    C_CodeReader reader(bytes);
    std::size_t nRead = 0;
    for (; reader.Unread() >= 0; ++nRead) {
      reader.ReadRaw(8);
      ASSERT_LT(nRead, nBytes + 16);
    }
    EXPECT_GE(nRead, nBytes) << nBytes;
  }
}

TEST(HeronRangeCoder, ATruncatedSequence_IsPastTheEndInTime) {
  const S_Bytes bytes = Written([](C_CodeWriter& writer) {
    C_Random random(5);
    for (int n = 0; n < 200; ++n) writer.WriteRaw(random.Below(1 << 12), 12);
  });
  for (std::size_t nKept = 0; nKept + 9 < bytes.size(); ++nKept) {
    C_CodeReader reader{std::span(bytes).first(nKept)};
    for (int n = 0; n < 200; ++n) reader.ReadRaw(12);
    EXPECT_LT(reader.Unread(), 0) << nKept;
  }
}

// ---- the end

// True when the bytes give these symbols of kThirds, whatever follows them.
bool GiveThirds(S_Bytes bytes, const std::vector<std::size_t>& symbols) {
  const std::size_t nBytes = bytes.size();
  for (const std::uint8_t byAfter : S_Bytes{0x00, 0xFF}) {
    bytes.resize(nBytes);
    bytes.resize(nBytes + 16, byAfter);
    C_CodeReader reader(bytes);
    for (const std::size_t nSymbol : symbols) {
      if (ReadSymbol(reader, kThirds) != nSymbol) return false;
    }
  }
  return true;
}

// The number that the bytes stand for, made larger by one in the last of them.
S_Bytes NextNumber(S_Bytes bytes) {
  for (std::size_t n = bytes.size(); n-- > 0 && ++bytes[n] == 0;) continue;
  return bytes;
}

TEST(HeronRangeCoder, TheEnd_TakesTheFewestBytes) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 2000; ++qwSeed) {
    C_Random random(qwSeed);
    std::vector<std::size_t> symbols(1 + qwSeed % 120);
    for (std::size_t& nSymbol : symbols) nSymbol = random.Below(3);
    // The last symbol has neighbours on both sides, so any number outside its interval gives
    // others.
    symbols.back() = 1;
    S_Bytes bytes = Written([&](C_CodeWriter& writer) {
      for (const std::size_t nSymbol : symbols) WriteSymbol(writer, kThirds, nSymbol);
    });
    ASSERT_TRUE(GiveThirds(bytes, symbols)) << qwSeed;
    // Of numbers with a byte less, only the two around this one could do.
    bytes.pop_back();
    ASSERT_FALSE(GiveThirds(bytes, symbols)) << qwSeed;
    ASSERT_FALSE(GiveThirds(NextNumber(bytes), symbols)) << qwSeed;
  }
}

TEST(HeronRangeCoder, AfterAllWasRead_FewBytesAreUnread) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 2000; ++qwSeed) {
    C_Random random(qwSeed);
    const std::size_t nSymbols = random.Below(60);
    const std::size_t nRaw = random.Below(60);
    const int nBits = 1 + static_cast<int>(random.Below(kMaxRawBits));
    const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
      for (std::size_t n = 0; n < nSymbols; ++n) WriteSymbol(writer, kMixed, n % 5);
      for (std::size_t n = 0; n < nRaw; ++n) writer.WriteRaw(0, nBits);
    });
    C_CodeReader reader(bytes);
    for (std::size_t n = 0; n < nSymbols; ++n) ASSERT_EQ(ReadSymbol(reader, kMixed), n % 5);
    for (std::size_t n = 0; n < nRaw; ++n) ASSERT_EQ(reader.ReadRaw(nBits), 0u);
    EXPECT_GE(reader.Unread(), 0) << qwSeed;
    EXPECT_LE(reader.Unread(), std::ptrdiff_t{C_CodeReader::kAhead}) << qwSeed;
  }
}

TEST(HeronRangeCoder, SymbolsThatAreCut_ArePastTheEnd) {
  const std::vector<std::size_t> symbols(400, 1);
  const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
    for (const std::size_t nSymbol : symbols) WriteSymbol(writer, kThirds, nSymbol);
  });
  // Eight bytes are read ahead and may be missing at the end.
  for (std::size_t nKept = 0; nKept + C_CodeReader::kAhead < bytes.size(); ++nKept) {
    C_CodeReader reader{std::span(bytes).first(nKept)};
    std::size_t nRight = 0;
    for (const std::size_t nSymbol : symbols) nRight += ReadSymbol(reader, kThirds) == nSymbol;
    EXPECT_TRUE(reader.Unread() < 0 || nRight < symbols.size()) << nKept;
  }
}

// ---- copies

// Writes a symbol or a raw value that depends only on its number and the seed.
void WriteNumber(C_CodeWriter& writer, std::uint64_t qwSeed, std::size_t n) {
  C_Random random(qwSeed * 100000 + n);
  const std::uint32_t nKind = random.Below(4);
  if (nKind < 2) WriteSymbol(writer, kMixed, random.Below(5));
  if (nKind == 2) WriteSymbol(writer, kThirds, random.Below(3));
  if (nKind == 3) writer.WriteRaw(random.Below(1 << 11), 11);
}

TEST(HeronRangeCoder, ACopy_GoesOnFromWhereTheOriginalWas) {
  constexpr std::size_t kNumbers = 300;
  for (std::size_t nCopied = 0; nCopied <= kNumbers; nCopied += 7) {
    C_CodeWriter original;
    for (std::size_t n = 0; n < nCopied; ++n) WriteNumber(original, 1, n);
    C_CodeWriter same = original;
    C_CodeWriter other = original;
    EXPECT_EQ(same.Bits(), original.Bits());
    for (std::size_t n = nCopied; n < kNumbers; ++n) WriteNumber(other, 2, n);
    for (std::size_t n = nCopied; n < kNumbers; ++n) WriteNumber(same, 1, n);
    for (std::size_t n = nCopied; n < kNumbers; ++n) WriteNumber(original, 1, n);
    const S_Bytes run = original.Finish();
    EXPECT_EQ(same.Finish(), run) << nCopied;
    EXPECT_EQ(other.Finish(), Written([&](C_CodeWriter& writer) {
                for (std::size_t n = 0; n < kNumbers; ++n) {
                  WriteNumber(writer, n < nCopied ? 1 : 2, n);
                }
              }))
        << nCopied;
  }
}

TEST(HeronRangeCoder, ACarryAfterACopy_TurnsItsOwnBytesOver) {
  bool bTurned = false;
  bool bStayed = false;
  const S_Bytes number = {0x80};
  const auto around = SymbolsAround(number, kThirds, 160);
  C_CodeWriter original;
  for (std::size_t nBefore = 0; nBefore < around.size(); ++nBefore) {
    for (std::size_t nAfter = 0; nAfter < 3; ++nAfter) {
      C_CodeWriter copy = original;
      WriteSymbol(copy, kThirds, nAfter);
      const S_Bytes run = copy.Finish();
      ASSERT_EQ(run, Written([&](C_CodeWriter& writer) {
                  for (std::size_t n = 0; n < nBefore; ++n) WriteSymbol(writer, kThirds, around[n]);
                  WriteSymbol(writer, kThirds, nAfter);
                }))
          << nBefore << ' ' << nAfter;
      // By then, the original has written its first bytes.
      if (nBefore > 60) (run[0] == number[0] ? bTurned : bStayed) = true;
    }
    WriteSymbol(original, kThirds, around[nBefore]);
  }
  EXPECT_TRUE(bTurned);
  EXPECT_TRUE(bStayed);
}

TEST(HeronRangeCoder, Bits_AreAboutThoseOfTheRun) {
  C_CodeWriter writer;
  std::uint64_t qwBefore = writer.Bits();
  EXPECT_EQ(qwBefore, 0u);
  for (std::size_t n = 0; n < 1000; ++n) {
    WriteNumber(writer, 3, n);
    EXPECT_GE(writer.Bits(), qwBefore) << n;
    qwBefore = writer.Bits();
    C_CodeWriter copy = writer;
    const double dBits = 8.0 * static_cast<double>(copy.Finish().size());
    EXPECT_NEAR(static_cast<double>(qwBefore), dBits, 24) << n;
  }
}

TEST(HeronRangeCoder, RawBits_ArePackedFromTheLastByteOn) {
  const S_Bytes bytes = Written([](C_CodeWriter& writer) {
    writer.WriteRaw(0b101, 3);
    writer.WriteRaw(0, 0);
    writer.WriteRaw(0b11001, 5);
    writer.WriteRaw(0x3, 2);
  });
  ASSERT_GE(bytes.size(), 2u);
  EXPECT_EQ(bytes[bytes.size() - 1], 0b11001101);
  EXPECT_EQ(bytes[bytes.size() - 2], 0b11);
}

TEST(HeronRangeCoder, EmptyBytes_GiveTheFirstSymbolsAndZeros) {
  C_CodeReader reader({});
  EXPECT_EQ(reader.ReadRaw(24), 0u);
  EXPECT_LT(reader.Unread(), 0);
  for (int n = 0; n < 100; ++n) ASSERT_EQ(ReadSymbol(reader, kMixed), 0u);
}

TEST(HeronRangeCoder, AnyBytes_GiveSymbolsOfTheTable) {
  for (const int nFill : {0x00, 0xFF, -1}) {
    C_Random random(6);
    S_Bytes bytes(10000);
    for (std::uint8_t& byByte : bytes) {
      byByte = nFill < 0 ? random.Byte() : static_cast<std::uint8_t>(nFill);
    }
    C_CodeReader reader(bytes);
    for (int n = 0; n < 20000; ++n) {
      ASSERT_LT(ReadSymbol(reader, kMixed), 5u);
      ASSERT_LT(reader.ReadRaw(3), 8u);
    }
  }
}

}  // namespace
}  // namespace heron
