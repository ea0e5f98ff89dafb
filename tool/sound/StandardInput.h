// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "base/Descriptor.h"

namespace tool {

// Standard input as something that can be read at any position. What is not a file, such as a pipe,
// is copied to a private temporary file. Only one operand can be standard input, so this works once
// in the life of the program; throws C_UsageFailure then, and C_Failure.
C_Descriptor TakeStandardInput();

// The same for a pipe with a name, such as shells give for "<(...)".
C_Descriptor TakePipe(const std::string& strPath);

}  // namespace tool
