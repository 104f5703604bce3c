// SettingsArena.h - the memory that the records of one settings file live in.
//
// Internal. Reading a file makes one record per line; taking each from the
// heap and giving each back costs more than the reading itself. An arena
// hands out blocks from large chunks and frees the chunks only when it is
// released, so a record read from a file costs a pointer bump. Blocks are not
// given back one by one: a record deleted earlier keeps its block until the
// arena goes, which bounds the waste by the size of what was read.
#ifndef ZUN_SETTINGS_ARENA_H
#define ZUN_SETTINGS_ARENA_H

#include <cstddef>

#include "zunConfig.h"

namespace zunSettingsPrivate
{
    class ZUN_API RecordArena
    {
    public:
        RecordArena() = default;
        ~RecordArena() { Release(); }
        RecordArena(const RecordArena &) = delete;
        RecordArena & operator=(const RecordArena &) = delete;

        /// `size` bytes aligned to `alignment` (a power of two up to 8),
        /// valid until Release; null when the heap has no room for a new
        /// chunk.
        void * Allocate(std::size_t size, std::size_t alignment) noexcept;
        /// Frees all chunks: every block handed out goes with them.
        void Release() noexcept;

        /// The size of the first chunk, its header included (64 KiB); each
        /// later chunk is as large as all before it together, up to the
        /// largest (16 MiB), and always large enough for its block. Tests set
        /// both to 1 so that each block takes a chunk of its own.
        static std::size_t ms_nFirstChunkBytes;
        static std::size_t ms_nLargestChunkBytes;

    private:
        struct Chunk
        {
            Chunk * next;
        };

        Chunk * m_pChunks = nullptr;
        char * m_pNext = nullptr;
        char * m_pEnd = nullptr;
        std::size_t m_nReserved = 0; ///< bytes of all chunks
    };
}

#endif // ZUN_SETTINGS_ARENA_H
