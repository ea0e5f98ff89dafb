// SPDX-License-Identifier: Apache-2.0
//
// The one assertion of the system: always on, in every build.
//
// A failed assertion prints function, source, line and expression on standard error and aborts. All
// four are passed as data, because support tools and users' logs know these sites by fixed names
// and line numbers that must survive every edit of the source.
#pragma once

// Prints one line, "<function>: <source>:<line>: assertion failed: <text>", and aborts.
[[noreturn]] void VCM_AssertFailed(const char* pszFunction, const char* pszSource, int nLine,
                                   const char* pszText) noexcept;

// Checks `bHolds`. Example:
//   VCM_ASSERT(wChannelNo < wChannels, "GetSampleValueInt", "WaveFileLib/WavDataBuffer", 96,
//              "wChannelNo < wChannels");
#define VCM_ASSERT(bHolds, pszFunction, pszSource, nLine, pszText) \
  ((bHolds) ? static_cast<void>(0)                                 \
            : VCM_AssertFailed((pszFunction), (pszSource), (nLine), (pszText)))

namespace vcm {

// Function and source of assertions in steps that several functions share.
struct S_AssertSite {
  const char* pszFunction;
  const char* pszSource;
};

}  // namespace vcm
