// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "SweepFile.h"
#include "WavFileObject.h"

// Loads, writes and loads again. True when the file loads.
inline bool RoundTrip(const std::string& strPath, const C_SweepFile& target) {
  const C_WavObjectPtr file = MakeWav();
  if (!file->LoadByName(strPath.c_str(), true, nullptr, nullptr)) return false;
  // A false length may be just small enough to be accepted. The sound has then loaded, but is too
  // big to copy around.
  if (file->GetWavData()->GetBufferLength() > 1u << 20) return true;
  // The writer refuses only widths that no conversion supports.
  if (!Write(*file, target.Path())) {
    EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), 12);
    return true;
  }
  const C_WavObjectPtr again = LoadWav(target.Path());
  EXPECT_EQ(PcmOf(*again), PcmOf(*file));
  EXPECT_EQ(EventsOf(*again), EventsOf(*file));
  EXPECT_EQ(SilenceOf(*again), SilenceOf(*file));
  EXPECT_EQ(RegionsOf(*again), RegionsOf(*file));
  static_cast<void>(file->GetWavInfo()->GetTimeLength());
  return true;
}
