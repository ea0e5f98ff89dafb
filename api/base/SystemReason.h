// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace api {

// Why the system refused something, in a few words: "the disk is full". nError is an errno value.
std::string SystemReason(int nError);

}  // namespace api
