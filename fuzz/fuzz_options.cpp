// SPDX-License-Identifier: Apache-2.0
//
// What the fuzzers ask of the sanitizers. ASAN_OPTIONS still has the last word.
//
//   malloc_context_size  how many callers are noted at each allocation. Noting thirty, as usual,
//                        would cost more than the code under test does. A finding is run again
//                        with ASAN_OPTIONS=malloc_context_size=30 to see all of them.
//   max_malloc_fill_size how much of new memory is filled with a pattern. Streams have buffers of
//                        4 KiB, most of which is never looked at.
//   quarantine_size_mb   how much freed memory is watched. An input frees a few kilobytes, and
//                        touching new memory all the time takes longer than using some of it again.

// The sanitizers look for these names.
// NOLINTBEGIN(bugprone-reserved-identifier,clang-diagnostic-reserved-identifier)
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "malloc_context_size=4:max_malloc_fill_size=256:quarantine_size_mb=4";
}

// The system's library for Ogg sounds forgets its memory when the head of a sound is damaged. What
// is ours is freed.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libvorbis\n"; }
// NOLINTEND(bugprone-reserved-identifier,clang-diagnostic-reserved-identifier)
