// SPDX-License-Identifier: Apache-2.0
//
// Kestrel streams that come without the header that names their format.
#pragma once

#include "TempFile.h"

class C_WavFileFormat;

// For a file that the library does not know. Copies it to a temporary ".kst" name and puts the
// header of a 16 kHz Kestrel stream at the start of the copy. The caller owns the copy. The result
// has no path, and nothing is left, when the file cannot be copied, or when the library knows the
// copy: then the file itself could not be read when the library was asked. `bLoadData` says how it
// was asked.
vcm::C_RemovedAtEnd CopyAsKestrel(C_WavFileFormat& format, const char* pszFileName, bool bLoadData);
