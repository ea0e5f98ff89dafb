// SPDX-License-Identifier: Apache-2.0
#include "output/CubebLibrary.h"

#include "object/SharedLibrary.h"

namespace toolbox {
namespace {

// The version of the interface that <cubeb/cubeb.h> describes.
#ifdef __APPLE__
constexpr const char* kName = "libcubeb.dylib";
#else
constexpr const char* kName = "libcubeb.so.0";
#endif

bool FindAll(const C_SharedLibrary& library, S_CubebFunctions& functions) noexcept {
  return library.Find(functions.init, "cubeb_init") &&
         library.Find(functions.destroy, "cubeb_destroy") &&
         library.Find(functions.enumerate_devices, "cubeb_enumerate_devices") &&
         library.Find(functions.device_collection_destroy, "cubeb_device_collection_destroy") &&
         library.Find(functions.stream_init, "cubeb_stream_init") &&
         library.Find(functions.stream_destroy, "cubeb_stream_destroy") &&
         library.Find(functions.stream_start, "cubeb_stream_start") &&
         library.Find(functions.stream_stop, "cubeb_stream_stop");
}

}  // namespace

const S_CubebFunctions* CubebFunctions() noexcept {
  static const auto functions = LoadFunctions<S_CubebFunctions>(kName, &FindAll);
  return functions ? &*functions : nullptr;
}

}  // namespace toolbox
