// SPDX-License-Identifier: Apache-2.0
#include "info/FormatTests.h"

#include <fcntl.h>

#include <array>
#include <cstddef>
#include <span>
#include <sstream>

#include "sound/FileBytes.h"
#include "sound/SoundInput.h"
#include "voxplay.hpp"

namespace tool {
namespace {

constexpr std::size_t kTestedBytes = 4096;

}  // namespace

std::vector<std::string> FormatTests(const std::string& strPath) {
  if (IsReadOnce(strPath)) return {};
  C_Descriptor file(open(strPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.Get() < 0) return {};
  C_FileBytes bytes(std::move(file));
  std::array<std::byte, kTestedBytes> first{};
  const std::int64_t nRead = bytes.Read(first.data(), first.size());
  if (nRead < 0) return {};
  const auto tested = std::span(first).first(static_cast<std::size_t>(nRead));
  std::istringstream text(voxplay::probe(tested).text);
  std::vector<std::string> lines;
  for (std::string strLine; std::getline(text, strLine);) lines.push_back(strLine);
  return lines;
}

}  // namespace tool
