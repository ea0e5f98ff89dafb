// SPDX-License-Identifier: Apache-2.0
#include "file/SoxrLibrary.h"

#include "object/SharedLibrary.h"

namespace toolbox {
namespace {

// The version of the interface that <soxr.h> describes.
#ifdef __APPLE__
constexpr const char* kName = "libsoxr.0.dylib";
#else
constexpr const char* kName = "libsoxr.so.0";
#endif

bool FindAll(const C_SharedLibrary& library, S_SoxrFunctions& functions) noexcept {
  return library.Find(functions.io_spec, "soxr_io_spec") &&
         library.Find(functions.quality_spec, "soxr_quality_spec") &&
         library.Find(functions.create, "soxr_create") &&
         library.Find(functions.set_input_fn, "soxr_set_input_fn") &&
         library.Find(functions.output, "soxr_output") &&
         library.Find(functions.remove, "soxr_delete");
}

}  // namespace

const S_SoxrFunctions* SoxrFunctions() noexcept {
  static const auto functions = LoadFunctions<S_SoxrFunctions>(kName, &FindAll);
  return functions ? &*functions : nullptr;
}

}  // namespace toolbox
