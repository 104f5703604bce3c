// zunFile: construction, closing, positions, limits and the stored settings.
// The typed reads and writes are in File.cpp, the cache in FileCache.cpp.
#include "FileState.h"
#include "zunDebugPrint.h"
#include "zunException.h"

zunFile::CallBacks::~CallBacks() = default;

zunFile::zunFile(std::unique_ptr<CallBacks> callBacks) : m_pState(new zunFileState(std::move(callBacks))) {}

zunFile::~zunFile() noexcept(false)
{
    std::unique_ptr<zunFileState> state(m_pState);
    m_pState = nullptr;
    if (state->closed)
        return;
    state->closed = true;
    try
    {
        state->CacheFlush();
        state->callBacks->Close();
    }
    catch (const zunException & e)
    {
        // The count includes the exception just caught, so this is the path
        // taken: a failure while destroying is reported and dropped. Callers
        // who must know call Close first.
        if (!zunException::IsAnyBeingHandled())
            throw;
        zunDprintf("Silencing an exception originally thrown by %s.\nDescription: %s\nDebug description: %s\n",
                   e.GetFileAndLine(), e.GetDescription(), e.GetDebugDescription());
    }
}

void zunFile::Close()
{
    if (m_pState->closed)
        return;
    m_pState->closed = true;
    m_pState->CacheFlush();
    m_pState->callBacks->Close();
}

std::uint64_t zunFile::GetCurrPos() const
{
    return m_pState->position;
}

std::uint64_t zunFile::SetCurrPos(std::int64_t offset, PositionRelativeTo relativeTo)
{
    std::uint64_t target = static_cast<std::uint64_t>(offset);
    if (relativeTo == FromCurrent)
        target += m_pState->position;
    else if (relativeTo == FromEnd)
        target += m_pState->fileSize;
    m_pState->CacheSeek(target);
    return m_pState->position;
}

std::uint64_t zunFile::GetCacheSize()
{
    return m_pState->blockSize;
}

void zunFile::SetCacheSize(std::uint64_t size)
{
    m_pState->SetCacheSize(size);
}

void zunFile::SetLimit(std::uint64_t value, LimitRelativeTo relativeTo)
{
    m_pState->limit = relativeTo == LimitAbsolute ? value : m_pState->position + value;
}

std::uint64_t zunFile::GetLimit()
{
    return m_pState->limit;
}

bool zunFile::IsLimitReached()
{
    return m_pState->position >= m_pState->limit;
}

void zunFile::ReachLimit()
{
    if (m_pState->limit != NoLimit)
        m_pState->CacheSeek(m_pState->limit);
}

bool zunFile::IsEOF()
{
    return m_pState->position >= m_pState->fileSize;
}

zunFile::ChunkSizeBits zunFile::GetChunkSizeBits()
{
    return m_pState->chunkSizeBits;
}

void zunFile::SetChunkSizeBits(ChunkSizeBits bits)
{
    m_pState->chunkSizeBits = bits;
}

zunSystem::Endianness zunFile::GetEndianness() const
{
    return m_pState->endianness;
}

void zunFile::SetEndianness(zunSystem::Endianness endianness)
{
    m_pState->endianness = endianness;
}

void zunFile::SetEncodingForStringRead(StringEncoding encoding)
{
    m_pState->stringEncoding = encoding;
}
