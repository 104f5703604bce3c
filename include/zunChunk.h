// zunChunk.h - tagged, sized runs of bytes: the structure of the library's files.
//
// A chunk is a 32-bit tag (FCC), the size of its contents, and the contents,
// which may hold further chunks. Nothing else: no magic, no padding, no mark of
// the mode. The header is 8 bytes (4-byte size) or 12 bytes (8-byte size, when
// the stream's SetChunkSizeBits(ChunkSize64) is on); writer and reader agree on
// the mode. Both fields follow the stream's byte order: the tag is a number.
//
//   zunChunk scene(file);                  // writing
//   scene.Create(0x454E4353);
//   file->Write_Int32(count);
//   scene.Close();                         // patches the size
//
//   while (!file->IsLimitReached()) {      // reading a run of chunks
//       zunChunk chunk(file);
//       chunk.Descend();
//       if (chunk.GetFCC() == 0x454E4353)
//           file->Read_Int32(count);
//       chunk.Ascend();                    // lands behind it
//   }
//
// Descend fences the reader in with the stream's limit: a field the writer
// didn't put in keeps the reader's default, and Ascend lands behind the chunk
// whatever was read, so an unknown chunk costs a Descend and an Ascend. That is
// how old and new readers share files. Each chunk keeps the limit it replaced,
// so limits nest with the chunks. Descend at the limit or at the end reads a
// tag of 0 and a size of 0: check IsLimitReached first, or compare the tag and
// UnDescend. Closing a chunk whose header lies in the stream's cached block
// costs no storage access.
#ifndef ZUN_CHUNK_H
#define ZUN_CHUNK_H

#include <cstdint>

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunFile.h"

/// A chunk as a plain value over a stream fixed at construction. Copies copy
/// every field.
struct ZUN_API zunChunk
{
    /// Over `file` (not owned); tag and size 0.
    zunChunk(zunFile * file);

    /// Writes the header at the current position: the tag and a size
    /// placeholder in the stream's present mode, which the chunk keeps.
    void Create(unsigned int fcc);
    /// Patches the size to the bytes written since the header, and comes back.
    /// A chunk of 4 GiB or more in 32-bit mode keeps the low 32 bits of its
    /// size: set 64-bit mode for such chunks. Close inner chunks first.
    void Close();
    /// Reads the header at the current position in the stream's present mode
    /// and sets the limit to the end of the contents, keeping the old limit.
    void Descend();
    /// Lands behind the contents and puts the old limit back.
    void Ascend();
    /// Goes back to the tag and puts the old limit back, as if the chunk had
    /// not been entered.
    void UnDescend();

    /// The tag: 0 before Create or Descend, and after a Descend at the limit
    /// or the end.
    unsigned int GetFCC() const { return m_nFCC; }
    /// The size of the contents, header excluded.
    std::uint64_t GetSize() const { return m_nSize; }

private:
    std::uint64_t HeaderSize() const;

    zunFile * m_pFile;
    unsigned int m_nFCC;
    std::uint64_t m_nSize;
    std::uint64_t m_nHeaderPos;  ///< position of the tag
    std::uint64_t m_nNextPos;    ///< position just behind the contents
    std::uint64_t m_nSavedLimit; ///< the stream's limit at Descend
    zunFile::ChunkSizeBits m_eSizeBits;
};

/// A one-pointer handle that makes its zunChunk on the heap at first use. The
/// stream given to the first operation is the chunk's for good; the ones given
/// later are ignored, except as the source of DescendReadAscend's bytes. A copy
/// shares the chunk with the original.
class ZUN_API zunChunkHF
{
public:
    zunChunkHF();
    /// zunChunkHF(), then Create(file, fcc).
    zunChunkHF(zunFile * file, unsigned int fcc);
    /// Shares `other`'s chunk.
    zunChunkHF(const zunChunkHF & other);
    /// Shares `other`'s chunk. The chunk goes with the last handle to let it go.
    zunChunkHF & operator=(const zunChunkHF & other);
    /// Frees the chunk; writes nothing (a chunk not closed keeps size 0).
    ~zunChunkHF();

    /// The zunChunk operations of the same names, on the handle's chunk;
    /// the first call makes the chunk over `file`.
    ///@{
    void Create(zunFile * file, unsigned int fcc);
    void Close(zunFile * file);
    void Descend(zunFile * file);
    void Ascend(zunFile * file);
    void UnDescend(zunFile * file);
    ///@}

    /// Descend, read the whole contents from `file` into a new buffer, Ascend.
    /// The caller owns the buffer and frees it with delete[].
    unsigned char * DescendReadAscend(zunFile * file);
    /// Descend, read the whole contents from `file` into `mesh` (resized to
    /// the size), Ascend. A mesh that can't hold the size is left as
    /// SetCount left it and nothing is read into it.
    void DescendReadAscend(zunFile * file, zunFastMesh<unsigned char> & mesh);

    /// The chunk's tag against `fcc`. A handle never used has the tag 0.
    ///@{
    bool operator==(unsigned int fcc) const;
    bool operator!=(unsigned int fcc) const;
    ///@}
    /// The tag; 0 with no chunk.
    unsigned int GetFCC() const;
    /// The size cut to 32 bits; 0 with no chunk. zunChunk::GetSize has all 64.
    unsigned int GetSize() const;

private:
    void RealizeChunkPtr(zunFile * file);

    zunChunk * m_pChunk;
};

#endif // ZUN_CHUNK_H
