// SPDX-License-Identifier: Apache-2.0
#include "file/SoxrLibrary.h"

#include <optional>

#include "object/SharedLibrary.h"

namespace toolbox {
namespace {

// The version of the interface that <soxr.h> describes.
#ifdef __APPLE__
constexpr const char* kName = "libsoxr.0.dylib";
#else
constexpr const char* kName = "libsoxr.so.0";
#endif

std::optional<S_SoxrFunctions> Load() noexcept {
  const C_SharedLibrary library(kName);
  S_SoxrFunctions functions;
  const bool bAll = library.Find(functions.io_spec, "soxr_io_spec") &&
                    library.Find(functions.quality_spec, "soxr_quality_spec") &&
                    library.Find(functions.create, "soxr_create") &&
                    library.Find(functions.set_input_fn, "soxr_set_input_fn") &&
                    library.Find(functions.output, "soxr_output") &&
                    library.Find(functions.remove, "soxr_delete");
  if (!bAll) return std::nullopt;
  return functions;
}

}  // namespace

const S_SoxrFunctions* SoxrFunctions() noexcept {
  static const std::optional<S_SoxrFunctions> functions = Load();
  return functions ? &*functions : nullptr;
}

}  // namespace toolbox
