// Chunked memory for the records of a settings file.
#include "SettingsArena.h"

#include <climits>
#include <cstdint>

#include "zunMem.h"

namespace zunSettingsPrivate
{
    std::size_t RecordArena::ms_nFirstChunkBytes = 64 * 1024;
    std::size_t RecordArena::ms_nLargestChunkBytes = 16 * 1024 * 1024;

    void * RecordArena::Allocate(std::size_t size, std::size_t alignment) noexcept
    {
        const std::uintptr_t next = reinterpret_cast<std::uintptr_t>(m_pNext);
        std::size_t padding = static_cast<std::size_t>((alignment - (next & (alignment - 1))) & (alignment - 1));
        if (m_pNext == nullptr || static_cast<std::size_t>(m_pEnd - m_pNext) < padding + size)
        {
            // Chunks grow with the arena (each as large as all before it, up
            // to a cap), so a large file takes few of them.
            std::size_t chunkBytes = m_nReserved < ms_nLargestChunkBytes ? m_nReserved : ms_nLargestChunkBytes;
            if (chunkBytes < ms_nFirstChunkBytes)
                chunkBytes = ms_nFirstChunkBytes;
            if (chunkBytes < sizeof(Chunk) + size)
                chunkBytes = sizeof(Chunk) + size;
            void * block = nullptr;
            if (chunkBytes > UINT_MAX || !zunMemAlloc(block, static_cast<unsigned int>(chunkBytes), false))
                return nullptr;
            Chunk * chunk = static_cast<Chunk *>(block);
            chunk->next = m_pChunks;
            m_pChunks = chunk;
            m_pNext = reinterpret_cast<char *>(chunk + 1); // 8-byte aligned behind the header
            m_pEnd = static_cast<char *>(block) + chunkBytes;
            m_nReserved += chunkBytes;
            padding = 0;
        }
        void * result = m_pNext + padding;
        m_pNext += padding + size;
        return result;
    }

    void RecordArena::Release() noexcept
    {
        while (m_pChunks != nullptr)
        {
            void * block = m_pChunks;
            m_pChunks = m_pChunks->next;
            zunMemFree(block);
        }
        m_pNext = m_pEnd = nullptr;
        m_nReserved = 0;
    }
}
