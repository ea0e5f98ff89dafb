// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>

namespace tool {

// Reads the names in a file, or on standard input for "-", and hands them on in their order. Each
// name ends with a line end, or with a zero; the last one may go without. Empty names are passed
// over, and a carriage return before a line end where a file has the name without it. Throws
// C_Failure.
void ReadListedNames(const std::string& strList, bool bZeros,
                     const std::function<void(std::string strName)>& fnName);

}  // namespace tool
