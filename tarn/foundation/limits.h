#pragma once

// The bounds that keep hostile or damaged input from exhausting the stack,
// memory or time of the process that loads it. Every reader of the library
// goes through the shared helpers that apply them; docs/limits.md says why each
// has the value it has.

#include <cstddef>
#include <cstdint>

namespace tarn {

// The deepest nesting the library accepts in anything it walks: elements of
// a document, keys of the configuration store (in a file or in a key path
// given to a setter), nested printer options. Real files stay below 15; the
// bound keeps every recursive reader far inside a 1 MB thread stack.
inline constexpr int kMaxNestingDepth = 100;

// The largest file a reader loads. Print mode files are kilobytes and the
// largest printer definitions a few hundred; anything far beyond is not one
// of ours, and refusing it keeps a stray video or disk image out of memory.
inline constexpr std::uint64_t kMaxFileSize = 64ull * 1024 * 1024;

// How far a folder walk descends below its starting folder.
inline constexpr int kMaxFolderDepth = 32;

}  // namespace tarn
