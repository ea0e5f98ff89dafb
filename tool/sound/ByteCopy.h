// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "base/NewFile.h"
#include "sound/FileBytes.h"

namespace tool {

// An existing file for reading. Throws C_Failure.
C_FileBytes OpenBytes(const std::string& strPath);

// Copies so many bytes from a place of a file to the end of another. Throws C_Failure, also when
// they are not there, and C_Interrupted. strName is the name of the file that is read.
void CopyBytes(C_FileBytes& from, std::uint64_t qwAt, std::uint64_t qwBytes, I_NewFile& to,
               const std::string& strName);

}  // namespace tool
