// zunChunk and zunChunkHF: chunk headers written, patched, entered and left.
#include <type_traits>

#include "zunChunk.h"

zunChunk::zunChunk(zunFile * file)
    : m_pFile(file), m_nFCC(0), m_nSize(0), m_nHeaderPos(0), m_nNextPos(0), m_nSavedLimit(zunFile::NoLimit),
      m_eSizeBits(zunFile::ChunkSize32)
{
}

std::uint64_t zunChunk::HeaderSize() const
{
    return m_eSizeBits == zunFile::ChunkSize64 ? 12 : 8;
}

void zunChunk::Create(unsigned int fcc)
{
    m_nFCC = fcc;
    m_nHeaderPos = m_pFile->GetCurrPos();
    m_pFile->Write_UInt32(fcc);
    m_eSizeBits = m_pFile->GetChunkSizeBits();
    // The placeholder: in 64-bit mode the present size, stale on a reused
    // chunk and harmless, as Close writes over it.
    if (m_eSizeBits == zunFile::ChunkSize64)
        m_pFile->Write_UInt64(m_nSize);
    else
        m_pFile->Write_Int32(0);
}

void zunChunk::Close()
{
    const std::uint64_t end = m_pFile->GetCurrPos();
    m_nSize = end - m_nHeaderPos - HeaderSize();
    m_pFile->SetCurrPos(static_cast<std::int64_t>(m_nHeaderPos + 4), zunFile::FromStart);
    if (m_eSizeBits == zunFile::ChunkSize64)
        m_pFile->Write_UInt64(m_nSize);
    else
        m_pFile->Write_UInt32(static_cast<unsigned int>(m_nSize));
    m_pFile->SetCurrPos(static_cast<std::int64_t>(end), zunFile::FromStart);
}

void zunChunk::Descend()
{
    m_nHeaderPos = m_pFile->GetCurrPos();
    m_nFCC = 0;
    m_nSize = 0;
    m_pFile->Read_UInt32(m_nFCC);
    m_eSizeBits = m_pFile->GetChunkSizeBits();
    if (m_eSizeBits == zunFile::ChunkSize64)
        m_pFile->Read_UInt64(m_nSize);
    else
    {
        unsigned int size = 0;
        m_pFile->Read_UInt32(size);
        m_nSize = size;
    }
    m_nNextPos = m_nHeaderPos + HeaderSize() + m_nSize;
    m_nSavedLimit = m_pFile->GetLimit();
    // No comparison with the enclosing limit: a child that claims to run past
    // its parent is read to its own end.
    m_pFile->SetLimit(m_nSize, zunFile::LimitFromCurrent);
}

void zunChunk::Ascend()
{
    m_pFile->SetCurrPos(static_cast<std::int64_t>(m_nNextPos), zunFile::FromStart);
    m_pFile->SetLimit(m_nSavedLimit, zunFile::LimitAbsolute);
}

void zunChunk::UnDescend()
{
    m_pFile->SetCurrPos(static_cast<std::int64_t>(m_nHeaderPos), zunFile::FromStart);
    m_pFile->SetLimit(m_nSavedLimit, zunFile::LimitAbsolute);
}

// ---- zunChunkHF.
//
// A handle holds one pointer to its zunChunk. The chunk lives in a node that
// also counts the handles sharing it, so that a copied handle and its
// original may both be destroyed: the last one frees the chunk.

namespace
{
    struct SharedChunk
    {
        zunChunk chunk; // first: the handle's pointer is the node's address
        unsigned int handles;
    };
    static_assert(std::is_standard_layout<SharedChunk>::value, "the chunk pointer must give back its node");

    SharedChunk * NodeOf(zunChunk * chunk)
    {
        return reinterpret_cast<SharedChunk *>(chunk);
    }

    zunChunk * Share(zunChunk * chunk)
    {
        if (chunk != nullptr)
            ++NodeOf(chunk)->handles;
        return chunk;
    }

    void Release(zunChunk * chunk)
    {
        if (chunk != nullptr && --NodeOf(chunk)->handles == 0)
            delete NodeOf(chunk);
    }
}

zunChunkHF::zunChunkHF() : m_pChunk(nullptr) {}

zunChunkHF::zunChunkHF(zunFile * file, unsigned int fcc) : m_pChunk(nullptr)
{
    Create(file, fcc);
}

zunChunkHF::zunChunkHF(const zunChunkHF & other) : m_pChunk(Share(other.m_pChunk)) {}

zunChunkHF & zunChunkHF::operator=(const zunChunkHF & other)
{
    if (this == &other)
        return *this;
    zunChunk * shared = Share(other.m_pChunk);
    Release(m_pChunk);
    m_pChunk = shared;
    return *this;
}

zunChunkHF::~zunChunkHF()
{
    Release(m_pChunk);
}

void zunChunkHF::RealizeChunkPtr(zunFile * file)
{
    if (m_pChunk == nullptr)
        m_pChunk = &(new SharedChunk{zunChunk(file), 1})->chunk;
}

void zunChunkHF::Create(zunFile * file, unsigned int fcc)
{
    RealizeChunkPtr(file);
    m_pChunk->Create(fcc);
}

void zunChunkHF::Close(zunFile * file)
{
    RealizeChunkPtr(file);
    m_pChunk->Close();
}

void zunChunkHF::Descend(zunFile * file)
{
    RealizeChunkPtr(file);
    m_pChunk->Descend();
}

void zunChunkHF::Ascend(zunFile * file)
{
    RealizeChunkPtr(file);
    m_pChunk->Ascend();
}

void zunChunkHF::UnDescend(zunFile * file)
{
    RealizeChunkPtr(file);
    m_pChunk->UnDescend();
}

unsigned char * zunChunkHF::DescendReadAscend(zunFile * file)
{
    Descend(file);
    auto * buffer = new unsigned char[m_pChunk->GetSize()];
    file->Read_Block(buffer, m_pChunk->GetSize());
    m_pChunk->Ascend();
    return buffer;
}

void zunChunkHF::DescendReadAscend(zunFile * file, zunFastMesh<unsigned char> & mesh)
{
    Descend(file);
    const std::uint64_t size = m_pChunk->GetSize();
    // The count is 32 bits: a size it can't hold, or a heap that can't give
    // it, leaves nothing to read into, rather than reading past the array.
    const bool fits = mesh.SetCount(static_cast<unsigned int>(size), false) && size == mesh.Count();
    if (fits && size != 0)
        file->Read_Block(mesh.Data(), size);
    m_pChunk->Ascend();
}

bool zunChunkHF::operator==(unsigned int fcc) const
{
    // A handle never used compares as the tag 0 instead of reading through null.
    return GetFCC() == fcc;
}

bool zunChunkHF::operator!=(unsigned int fcc) const
{
    return GetFCC() != fcc;
}

unsigned int zunChunkHF::GetFCC() const
{
    return m_pChunk != nullptr ? m_pChunk->GetFCC() : 0;
}

unsigned int zunChunkHF::GetSize() const
{
    return m_pChunk != nullptr ? static_cast<unsigned int>(m_pChunk->GetSize()) : 0;
}
