// SPDX-License-Identifier: Apache-2.0
//
// Prefix codes in the two shapes that the frame needs: a list of code words for writing, a tree for
// reading. The predicates prove a pair of tables valid at compile time; DecodeSymbol relies on
// them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace kestrel {

// The low byBits bits of wWord, written most significant bit first.
struct S_Code {
  std::uint8_t byBits;
  std::uint16_t wWord;
};

// Where bit 0 and bit 1 lead: a value above 0 is the next node; any other value is minus the
// symbol. Node 0 is the root.
using S_TreeNode = std::array<std::int16_t, 2>;

// nextBit: () -> 0 or 1. Decoding ends for every sequence of bits, because children come after
// their parents (IsValidTree).
template <typename NextBit>
constexpr int DecodeSymbol(const auto& tree, NextBit nextBit) {
  int nNode = 0;
  do {
    nNode = tree[static_cast<std::size_t>(nNode)][static_cast<std::size_t>(nextBit())];
  } while (nNode > 0);
  return -nNode;
}

// Children come after their parents and lie inside the table; leaves are symbols below nSymbols.
constexpr bool IsValidTree(const auto& tree, int nSymbols) {
  const int nNodes = static_cast<int>(tree.size());
  for (int n = 0; n < nNodes; ++n) {
    for (const int nNext : tree[static_cast<std::size_t>(n)]) {
      if (nNext > 0 ? nNext <= n || nNext >= nNodes : -nNext >= nSymbols) return false;
    }
  }
  return true;
}

// The bits of one code word, followed by zeros.
class C_CodeWordBits {
 public:
  explicit constexpr C_CodeWordBits(S_Code code) : m_code(code) {}
  constexpr int operator()() {
    const int nBehind = m_code.byBits - ++m_nTaken;
    return nBehind < 0 ? 0 : m_code.wWord >> nBehind & 1;
  }
  [[nodiscard]] constexpr bool AreUsedUp() const { return m_nTaken == m_code.byBits; }

 private:
  S_Code m_code;
  int m_nTaken = 0;
};

// Every code word leads to a leaf, exactly with its last bit.
constexpr bool TreeDecodesEveryCode(const auto& tree, const auto& codes) {
  if (!IsValidTree(tree, static_cast<int>(codes.size()))) return false;
  for (const S_Code& code : codes) {
    C_CodeWordBits bits(code);
    DecodeSymbol(tree, [&bits] { return bits(); });
    if (!bits.AreUsedUp()) return false;
  }
  return true;
}

// In addition, the tree decodes every code word to its own symbol.
constexpr bool TreeMatchesItsCode(const auto& tree, const auto& codes) {
  for (std::size_t nSymbol = 0; nSymbol < codes.size(); ++nSymbol) {
    const int nDecoded = DecodeSymbol(tree, C_CodeWordBits(codes[nSymbol]));
    if (nDecoded != static_cast<int>(nSymbol)) return false;
  }
  return TreeDecodesEveryCode(tree, codes);
}

constexpr bool AllTreesMatchTheirCodes(const auto& trees, const auto& codes) {
  for (std::size_t i = 0; i < trees.size(); ++i) {
    if (!TreeMatchesItsCode(trees[i], codes[i])) return false;
  }
  return trees.size() == codes.size();
}

// The words use up the code space exactly (the sum of 2^-length is 1).
constexpr bool AllCodesAreComplete(const auto& codes) {
  for (const auto& code : codes) {
    long nSpace = 0;
    for (const S_Code& word : code) nSpace += 0x10000L >> word.byBits;
    if (nSpace != 0x10000L) return false;
  }
  return true;
}

}  // namespace kestrel
