// SPDX-License-Identifier: Apache-2.0
//
// The only assertion of the system. It is always on, in every build.
//
// A failed assertion prints function, source, line and expression on standard error and aborts. The
// place that asserts passes all four. Function and source are fixed names that support tools and
// users' logs know, so they must survive every edit of the source. The line is fixed only where a
// number is passed: callers know these lines by number, so they must not change either. All other
// places pass __LINE__, which changes with the source.
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

// The function and source that assertions print in steps shared by several functions.
struct S_AssertSite {
  const char* pszFunction;
  const char* pszSource;
};

}  // namespace vcm
