// SPDX-License-Identifier: Apache-2.0
#pragma once

// What most tests spend their compile time on, compiled once for all of them. Only the build reads
// this: each test still includes what it uses. Builds with a compiler cache, as for everyday work,
// do not use this header and make sure of that.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <vector>
