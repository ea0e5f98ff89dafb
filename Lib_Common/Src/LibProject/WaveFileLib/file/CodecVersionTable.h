// SPDX-License-Identifier: Apache-2.0
//
// Where the version in the head of a stream file (CodecHead.h) comes from, by file type code.
#pragma once

#include <algorithm>
#include <array>

struct S_CodecVersionRow {
  unsigned int dwFirstType;
  unsigned int dwLastType;     // inclusive
  const char* pszLibraryName;  // the library that has the version; null: kFixedCodecVersion
};

inline constexpr unsigned short kFixedCodecVersion = 4096;

// The names are keys, spelt as the makers of the codecs spell them: some with "DLL", some with
// "dll".
inline constexpr std::array<S_CodecVersionRow, 21> kCodecVersions = {{
    {1, 1, nullptr},           {3, 3, "Lark.DLL"},    {5, 6, "Plover.DLL"},
    {7, 7, "Ibis.DLL"},        {8, 8, "Egret.DLL"},   {9, 9, "Ibis.DLL"},
    {11, 11, "Robin.DLL"},     {12, 12, "Crane.DLL"}, {13, 13, "Plover.DLL"},
    {14, 14, "Kestrel.DLL"},   {15, 15, "Wren.DLL"},  {16, 16, "Tern.DLL"},
    {18, 18, "Finch_ENC.DLL"}, {19, 19, "Lark.DLL"},  {32, 38, "HeronP.dll"},
    {48, 48, "Rook.DLL"},      {64, 64, nullptr},     {80, 84, "Gannet.dll"},
    {129, 130, "Petrel.DLL"},  {131, 132, nullptr},   {257, 257, nullptr},
}};
// The rows are in ascending order and do not overlap.
static_assert(std::adjacent_find(kCodecVersions.begin(), kCodecVersions.end(),
                                 [](const S_CodecVersionRow& row, const S_CodecVersionRow& next) {
                                   return row.dwFirstType > row.dwLastType ||
                                          row.dwLastType >= next.dwFirstType;
                                 }) == kCodecVersions.end());
