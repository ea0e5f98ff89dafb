// SPDX-License-Identifier: Apache-2.0
//
// What the names of files tell about their contents.
#pragma once

#include <string>
#include <string_view>

namespace tool {

// The last part of a path.
[[nodiscard]] std::string_view NameIn(std::string_view path);
// With its dot, as it is written; "" where there is none. ".profile" has none.
[[nodiscard]] std::string_view ExtensionOf(std::string_view path);
// The same in lower case.
[[nodiscard]] std::string LowerExtensionOf(std::string_view path);

// Whether files with the extension are sounds that this program may know. With its dot, in any
// case.
[[nodiscard]] bool IsSoundExtension(std::string_view extension);

// The path with another extension. An extension that no sound has belongs to the name and stays.
[[nodiscard]] std::string WithExtension(std::string_view path, std::string_view extension);

}  // namespace tool
