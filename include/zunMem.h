// zunMem.h - the library's uniform layer over the heap and over block operations.
//
// Every dynamic buffer of the library's strings and arrays goes through
// zunMemAlloc and zunMemFree: one call allocates, grows, shrinks and releases,
// and one failure convention holds everywhere: a false result with the
// caller's pointer and its block left as they were. Byte counts are 32-bit.
//
//   void * block = nullptr;
//   if (!zunMemAlloc(block, 100, true)) return false;   // 100 zero bytes
//   zunMemAlloc(block, 200, true);                      // grows, new tail zeroed
//   zunMemFree(block);                                  // block is null again
//
// Blocks carry a small header that remembers the size last requested (the
// platform's own size query rounds up), so a block of zunMemAlloc must be
// released with zunMemAlloc(ptr, 0, ...) or zunMemFree, never with free(), and
// only blocks of zunMemAlloc may be handed to zunMemAlloc, zunMemFree and
// zunMemGetSize.
//
// Nothing here throws or logs. All of it is as thread-safe as the heap.
#ifndef ZUN_MEM_H
#define ZUN_MEM_H

#include "zunConfig.h"

/// Allocates (null `ptr`), resizes (live `ptr`, `size` > 0) or frees (`size` 0)
/// the block in `ptr`. With `zero` set, bytes beyond the old size are zeroed.
/// A shrink moves to a fresh block when `size` is below 4,096 and below the old
/// size, or when `size` rounded up to a multiple of 4,096 is below the old size;
/// everything else goes through realloc. False on failure, `ptr` untouched.
ZUN_API bool zunMemAlloc(void *& ptr, unsigned int size, bool zero);
/// Frees the block, if any, and nulls `ptr`. Always true.
ZUN_API bool zunMemFree(void *& ptr);
/// The size last requested for the block, cut to 32 bits. `ptr` must not be null.
ZUN_API unsigned int zunMemGetSize(void * ptr);
/// Null `ptr`: `size` = 0 and true. Otherwise the block's size; a size of 0
/// gives false and leaves `size` alone.
ZUN_API bool zunMemGetSize(void * ptr, unsigned int & size);
/// The hook for a heap check; performs none and answers true.
ZUN_API bool zunMemValidate();

/// Block copy; safe when `dst` lies below `src` in the same buffer.
ZUN_API void zunMemCopy(void * dst, const void * src, unsigned int bytes);
/// Copies `words` 32-bit words; the byte count is computed in 32 bits and wraps
/// from 2^30 words up.
ZUN_API void zunMemCopy32(void * dst, const void * src, unsigned int words);
/// Overlap-safe block move.
ZUN_API void zunMemMove(void * dst, const void * src, unsigned int bytes);
/// Sets `bytes` bytes to 0, or to `value`; a count of 0 touches nothing.
///@{
ZUN_API void zunMemZero(void * dst, unsigned int bytes);
ZUN_API void zunMemFill(void * dst, unsigned char value, unsigned int bytes);
///@}
/// Fills `words` 32-bit words with `value`.
ZUN_API void zunMemFill32(void * dst, unsigned int value, unsigned int words);
/// Order of two blocks as unsigned bytes, as memcmp.
ZUN_API int zunMemCmp(const void * a, const void * b, unsigned int bytes);
/// True when the blocks are equal; a length of 0 is equal without reading.
ZUN_API bool zunMemCmpEq8(const void * a, const void * b, unsigned int bytes);
/// The same over 32-bit words.
ZUN_API bool zunMemCmpEq32(const void * a, const void * b, unsigned int words);
/// Address of the first 32-bit word equal to `value`, or null (also for 0 words).
ZUN_API void * zunMemFind32(const void * start, unsigned int words, unsigned int value);
/// Address of the first pointer-sized entry equal to `value`, or null (also for a count of 0).
ZUN_API void * zunMemFindPtr(const void * start, unsigned int count, const void * value);

#endif // ZUN_MEM_H
