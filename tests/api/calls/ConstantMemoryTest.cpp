// SPDX-License-Identifier: Apache-2.0
//
// Long sounds are read and written in the memory of short ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "LiveMemory.h"
#include "PublicSounds.h"
#include "ReadKinds.h"
#include "TempFolder.h"

namespace {

constexpr std::size_t kMost = 8U << 20;

void WriteLong(const std::string& strPath, const voxplay_format& format, std::size_t nSeconds) {
  const auto second = PublicSamples(format.sample_rate, format.channels);
  voxplay::Writer writer(strPath, format);
  for (std::size_t n = 0; n < nSeconds; ++n) writer.write(std::span(second));
  writer.finish();
}

std::size_t CountFrames(voxplay::Reader& reader) {
  std::vector<std::int16_t> piece(4096 * reader.info().channels);
  std::size_t nFrames = 0;
  while (const std::size_t nRead = reader.read(std::span(piece))) nFrames += nRead;
  return nFrames;
}

// The most memory that was in use at a time while the work ran, above what was in use before.
std::size_t PeakOf(const std::function<void()>& fnWork) {
  const std::size_t cbBefore = LiveMemory();
  ResetMostMemory();
  fnWork();
  return MostMemory() - cbBefore;
}

class ConstantMemoryTest : public testing::TestWithParam<S_PublicKind> {
 protected:
  C_TempFolder m_folder;
  std::string m_strPath = m_folder.Path("long");
};

TEST_P(ConstantMemoryTest, TenMinutes_TakeLessThan8MiB) {
  const auto& kind = GetParam();
  const auto fnMake = [&](std::size_t nSeconds) {
    if (!IsReadOnly(kind)) return PeakOf([&] { WriteLong(m_strPath, kind.format, nSeconds); });
    m_folder.Write("long", SoundBytes(kind, nSeconds * kind.format.sample_rate));
    return std::size_t{0};
  };
  std::size_t nFrames = 0;
  const auto fnRead = [&] {
    return PeakOf([&] {
      voxplay::Reader reader(m_strPath, kind.dwReadFlags);
      nFrames = CountFrames(reader);
    });
  };
  const std::size_t cbShortWrite = fnMake(20);
  const std::size_t cbShortRead = fnRead();
  const std::size_t cbLongWrite = fnMake(600);
  const std::size_t cbLongRead = fnRead();
  EXPECT_GE(nFrames, std::size_t{600} * kind.format.sample_rate);
  EXPECT_LT(cbLongWrite, kMost);
  EXPECT_LT(cbLongRead, kMost);
  // What grows is the index of a Heron stream and the states that Kestrel seeks from.
  EXPECT_LT(cbLongWrite, cbShortWrite + 600'000);
  EXPECT_LT(cbLongRead, cbShortRead + 600'000);
}

std::vector<S_PublicKind> Kinds() {
  auto kinds = ReadKinds();
  std::erase_if(kinds, [](const S_PublicKind& kind) {
    return kind.strName.find("Head") == 0 || kind.strName.find("Bare") == 0;
  });
  return kinds;
}
INSTANTIATE_TEST_SUITE_P(All, ConstantMemoryTest, testing::ValuesIn(Kinds()),
                         [](const auto& parameters) { return parameters.param.strName; });

}  // namespace
