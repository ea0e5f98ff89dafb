// SPDX-License-Identifier: Apache-2.0
//
// Predicates that the constant tables assert about themselves at compile time.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <numeric>

namespace kestrel {

constexpr bool NeverFalls(const auto& table) { return std::is_sorted(table.begin(), table.end()); }

constexpr bool NeverRises(const auto& table) {
  return std::is_sorted(table.begin(), table.end(), std::greater<>());
}

constexpr bool StrictlyRises(const auto& table) {
  return std::adjacent_find(table.begin(), table.end(), std::greater_equal<>()) == table.end();
}

constexpr bool StrictlyFalls(const auto& table) {
  return std::adjacent_find(table.begin(), table.end(), std::less_equal<>()) == table.end();
}

constexpr int Sum(const auto& table) { return std::accumulate(table.begin(), table.end(), 0); }

constexpr bool AllWithin(const auto& table, int nLowest, int nHighest) {
  return std::all_of(table.begin(), table.end(),
                     [=](int nValue) { return nValue >= nLowest && nValue <= nHighest; });
}

constexpr bool IsSymmetric(const auto& matrix) {
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t k = 0; k < i; ++k) {
      if (matrix[i][k] != matrix[k][i]) return false;
    }
  }
  return true;
}

constexpr bool AllProductsAre(const auto& left, const auto& right, int nProduct) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [=](int nA, int nB) { return nA * nB == nProduct; });
}

// From entry nFirst to nLast, each entry is twice the one two places before it, to within rounding.
constexpr bool DoublesEveryOtherEntry(const auto& table, std::size_t nFirst, std::size_t nLast) {
  for (std::size_t i = nFirst + 2; i <= nLast; ++i) {
    const int nMiss = table[i] - 2 * table[i - 2];
    if (nMiss < -1 || nMiss > 1) return false;
  }
  return true;
}

constexpr std::size_t Power(int nBase, int nExponent) {
  return nExponent == 0 ? 1 : static_cast<std::size_t>(nBase) * Power(nBase, nExponent - 1);
}

// The angle never shrinks: the cosine falls, the sine rises, and neither changes sign.
constexpr bool AllRotationsTurn(const auto& passes) {
  for (const auto& pass : passes) {
    for (std::size_t i = 1; i < pass.size(); ++i) {
      if (pass[i].nCosine > pass[i - 1].nCosine) return false;
      if (pass[i].nMinusSine > pass[i - 1].nMinusSine) return false;
    }
    if (pass.front().nMinusSine >= 0 || pass.back().nCosine <= 0) return false;
  }
  return true;
}

// Row k rises from 0 over the bins that category k has, and is 0 above them.
constexpr bool AllCentroidsRise(const auto& centroids, const auto& maxBins) {
  for (std::size_t k = 0; k < centroids.size(); ++k) {
    const auto& row = centroids[k];
    const auto behind = row.begin() + maxBins[k] + 1;
    if (row.front() != 0) return false;
    if (std::adjacent_find(row.begin(), behind, std::greater_equal<>()) != behind) return false;
    if (std::any_of(behind, row.end(), [](int nValue) { return nValue != 0; })) return false;
  }
  return true;
}

}  // namespace kestrel
