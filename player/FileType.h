// SPDX-License-Identifier: Apache-2.0
//
// What the player does with a file. Only the name of the file decides.
#pragma once

// Returns the text after the last dot of pszFileName. With a buffer (of 1024 characters) the text
// is copied there and the buffer is returned; without one (null) the result points into
// pszFileName. Returns null when the name is null or empty or has no dot, and with a buffer also
// when the name has 1024 characters or more.
//
// Kept: a path separator does not end the search, so "dir.x/file" gives "x/file". No such text is a
// known extension, so the answer of CheckFileType stays right. Pinned by
// DotInAFolderName_GivesTheRestOfThePath.
const char* GetFileExt(const char* pszFileName, char* pszExt);

// True when the file exists and its extension (in any case) is one that the player handles. Only
// then is *pbyNeedsDecoding written: 0 for files that the platform plays as they are, 1 for files
// that are first decoded to a temporary WAV file. The content is not read, and anything that can be
// reached counts as existing, including folders. Names of 1024 characters or more are refused.
bool CheckFileType(const char* pszFileName, unsigned char* pbyNeedsDecoding);
