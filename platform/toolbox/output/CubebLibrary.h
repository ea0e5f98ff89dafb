// SPDX-License-Identifier: Apache-2.0
//
// The library that plays. It brings some thirty others with it, which take longer to load than a
// file's length takes to find, so it is loaded when a device is opened.
#pragma once

#include <cubeb/cubeb.h>

namespace toolbox {

// Its functions, under the names of its header without their "cubeb_".
struct S_CubebFunctions {
  decltype(&cubeb_init) init = nullptr;
  decltype(&cubeb_destroy) destroy = nullptr;
  decltype(&cubeb_enumerate_devices) enumerate_devices = nullptr;
  decltype(&cubeb_device_collection_destroy) device_collection_destroy = nullptr;
  decltype(&cubeb_stream_init) stream_init = nullptr;
  decltype(&cubeb_stream_destroy) stream_destroy = nullptr;
  decltype(&cubeb_stream_start) stream_start = nullptr;
  decltype(&cubeb_stream_stop) stream_stop = nullptr;
};

// Null when this machine does not have the library.
[[nodiscard]] const S_CubebFunctions* CubebFunctions() noexcept;

}  // namespace toolbox
