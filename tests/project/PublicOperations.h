// SPDX-License-Identifier: Apache-2.0
//
// Reading and writing through the public interface, as operations that are let fail at every step.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "SweptOperations.h"

using C_PublicMaker = std::function<std::unique_ptr<C_SweptOperation>(const C_TempFolder&)>;

// By name. All names begin with "Public".
std::map<std::string, C_PublicMaker> PublicOperations();
