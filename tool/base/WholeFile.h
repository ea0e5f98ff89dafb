// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Writes a file that appears under its name whole or not at all: until then it stands beside that
// name. What had the name stays as it was when anything fails. A link to a file stays a link.
//
// Without bReplace, a name that is taken is a failure, even if it was free a moment ago. A name of
// something that is no regular file, such as a device, is always one. Throws C_Failure and
// C_Interrupted.
void WriteWholeFile(const std::string& strPath, std::string_view bytes, bool bReplace);

// Throws what WriteWholeFile would throw now for a name that is taken.
void RefuseTakenName(const std::string& strPath, bool bReplace);

}  // namespace tool
