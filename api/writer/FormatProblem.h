// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "voxplay.h"

namespace api {

// Why a sound of this format cannot be written, by the table at voxplay_format_check: one sentence,
// empty when it can be.
std::string FormatProblem(const voxplay_format& format);

}  // namespace api
