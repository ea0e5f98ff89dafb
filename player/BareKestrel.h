// SPDX-License-Identifier: Apache-2.0
//
// Kestrel streams that come without the header in front that names them.
#pragma once

#include "TempFile.h"

// Copies a file to a temporary ".kst" name and puts the header of a 16 kHz Kestrel stream in front
// of the copy, which belongs to the caller. Without a path when the file cannot be copied; then
// nothing was created.
vcm::C_RemovedAtEnd CopyAsKestrel(const char* pszFileName);
