// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "base/JsonText.h"
#include "info/SoundReport.h"

namespace tool {

// A report for programs. Members without a value, such as the bit rate of PCM, are left out.
C_Json InfoJson(const S_SoundReport& report);

// The same of a file that cannot be read: why, and what the tests of our formats say of it.
C_Json InfoJsonOfFailure(const std::string& strPath, const std::string& strWhy);

}  // namespace tool
