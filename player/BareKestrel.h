// SPDX-License-Identifier: Apache-2.0
//
// Kestrel streams that come without the header in front that names them.
#pragma once

#include <string>

// Copies a file to a temporary ".kst" name and puts the header of a 16 kHz Kestrel stream in front
// of the copy. Returns the name; removing the copy is the caller's. Empty when the file cannot be
// copied; then nothing was created.
std::string CopyAsKestrel(const char* pszFileName);
