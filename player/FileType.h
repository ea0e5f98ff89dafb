// SPDX-License-Identifier: Apache-2.0
//
// What the player does with a file, decided by its name alone.
#pragma once

// The text after the last dot of pszFileName. With a buffer (1024 characters) it is copied there
// and the buffer is returned; without one (null) the result points into pszFileName. Null when the
// name is null or empty or has no dot; with a buffer also for a name of 1024 characters or more.
//
// Kept: a path separator does not end the search, so "dir.x/file" gives "x/file"; no such text is a
// known extension, so the answer of CheckFileType stays right. Pinned by
// DotInAFolderName_GivesTheRestOfThePath.
const char* GetFileExt(const char* pszFileName, char* pszExt);

// True when the file exists and its extension (in any case) is one that the player handles. Only
// then *pbyNeedsDecoding is written: 0 for files that the platform plays as they are, 1 for those
// that are decoded to a temporary WAV file first. The content is not read, and whatever can be
// reached counts as existing, folders included. Names of 1024 characters or more are refused.
bool CheckFileType(const char* pszFileName, unsigned char* pbyNeedsDecoding);
