// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "base/Descriptor.h"
#include "base/NewFile.h"

namespace tool {

// A file that goes to standard output when it is whole. Until then it is a private file without a
// name.
class C_SentFile : public I_NewFile {
 public:
  // Throws C_UsageFailure where standard output is a terminal, which would show bytes as characters
  // and obey some of them; and C_Failure.
  C_SentFile();

  void Write(std::span<const std::byte> bytes) override;
  [[nodiscard]] const std::string& NewPath() const noexcept override { return m_strPath; }
  void BringToDisk() override {}
  void TakePlace() override;

 private:
  C_Descriptor m_file;
  std::string m_strPath;
};

}  // namespace tool
