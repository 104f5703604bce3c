// FileTestSupport.h - a recording back-end for the stream tests.
//
// RecordingBackEnd keeps the file in a byte vector and logs every call the
// stream makes, with its arguments, so that tests can state exactly what
// reaches storage. It can be told to throw or to write short.
#ifndef ZUN_FILE_TEST_SUPPORT_H
#define ZUN_FILE_TEST_SUPPORT_H

#include <zunFoundation.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace filetest
{
    enum class Op
    {
        Write,
        Read,
        SetFilePointer,
        GetFilePointer,
        GetFileSize,
        Close
    };

    struct Call
    {
        Op op;
        std::uint64_t at;    ///< the back-end's pointer (or the target of SetFilePointer)
        std::uint64_t count; ///< bytes asked for by Write and Read
        bool operator==(const Call & other) const { return op == other.op && at == other.at && count == other.count; }
    };

    inline std::string Describe(const Call & call)
    {
        static const char * const names[] = {"Write",          "Read",        "SetFilePointer",
                                             "GetFilePointer", "GetFileSize", "Close"};
        return std::string(names[static_cast<int>(call.op)]) + "(" + std::to_string(call.at) + ", " +
               std::to_string(call.count) + ")";
    }

    /// What a RecordingBackEnd leaves behind, shared with the test.
    struct Storage
    {
        std::vector<unsigned char> bytes;
        std::vector<Call> calls;
        bool destroyed = false;
        bool throwOnWrite = false;
        bool throwOnClose = false;
        bool throwOnSetFilePointer = false;
        /// Writes stop at this many bytes in total: later writes come back short.
        std::uint64_t writeCapacity = ~std::uint64_t(0);
        /// Reads give at most this many bytes each.
        std::uint64_t readCap = ~std::uint64_t(0);
        /// GetFileSize answers this when set, whatever the bytes.
        std::uint64_t reportedSize = ~std::uint64_t(0);

        std::size_t CountOf(Op op) const
        {
            return static_cast<std::size_t>(
                std::count_if(calls.begin(), calls.end(), [op](const Call & c) { return c.op == op; }));
        }
        /// The Write and Read calls, the traffic of interest.
        std::vector<Call> Transfers() const
        {
            std::vector<Call> out;
            for (const Call & c : calls)
                if (c.op == Op::Write || c.op == Op::Read)
                    out.push_back(c);
            return out;
        }
    };

    [[noreturn]] inline void ThrowStorageFailure(const char * what)
    {
        throw zunException("tests/FileTestSupport.h", "storage").SetDebugDescription("%s", what);
    }

    class RecordingBackEnd : public zunFile::CallBacks
    {
    public:
        RecordingBackEnd(std::shared_ptr<Storage> storage, std::uint64_t pointer)
            : m_storage(std::move(storage)), m_pointer(pointer)
        {
        }
        ~RecordingBackEnd() override { m_storage->destroyed = true; }

        std::uint64_t Write(const void * data, std::uint64_t count) const override
        {
            m_storage->calls.push_back({Op::Write, m_pointer, count});
            if (m_storage->throwOnWrite)
                ThrowStorageFailure("write refused");
            const std::uint64_t room = m_storage->writeCapacity > m_written ? m_storage->writeCapacity - m_written : 0;
            const std::uint64_t written = std::min(count, room);
            if (written != 0 && m_storage->bytes.size() < m_pointer + written)
                m_storage->bytes.resize(m_pointer + written, 0);
            if (written != 0)
                std::memcpy(m_storage->bytes.data() + m_pointer, data, written);
            m_pointer += written;
            m_written += written;
            return written;
        }

        std::uint64_t Read(void * data, std::uint64_t count) override
        {
            m_storage->calls.push_back({Op::Read, m_pointer, count});
            const std::uint64_t size = m_storage->bytes.size();
            std::uint64_t n = m_pointer < size ? std::min(count, size - m_pointer) : 0;
            n = std::min(n, m_storage->readCap);
            if (n != 0)
                std::memcpy(data, m_storage->bytes.data() + m_pointer, n);
            m_pointer += n;
            return n;
        }

        std::uint64_t SetFilePointer(std::uint64_t position) override
        {
            m_storage->calls.push_back({Op::SetFilePointer, position, 0});
            if (m_storage->throwOnSetFilePointer)
                ThrowStorageFailure("seek refused");
            m_pointer = position;
            return position;
        }

        std::uint64_t GetFilePointer() override
        {
            m_storage->calls.push_back({Op::GetFilePointer, m_pointer, 0});
            return m_pointer;
        }

        std::uint64_t GetFileSize() override
        {
            m_storage->calls.push_back({Op::GetFileSize, m_pointer, 0});
            return m_storage->reportedSize != ~std::uint64_t(0) ? m_storage->reportedSize : m_storage->bytes.size();
        }

        void Close() override
        {
            m_storage->calls.push_back({Op::Close, m_pointer, 0});
            if (m_storage->throwOnClose)
                ThrowStorageFailure("close refused");
        }

    private:
        std::shared_ptr<Storage> m_storage;
        mutable std::uint64_t m_pointer;
        mutable std::uint64_t m_written = 0;
    };

    /// Recorded storage that already holds `bytes`.
    inline std::shared_ptr<Storage> StorageHolding(std::vector<unsigned char> bytes)
    {
        auto storage = std::make_shared<Storage>();
        storage->bytes = std::move(bytes);
        return storage;
    }

    /// A stream over recorded storage holding `initial`, its back-end's pointer
    /// at `pointer`. The construction calls are cleared from the log.
    inline std::unique_ptr<zunFile> MakeRecordedFile(const std::shared_ptr<Storage> & storage,
                                                     std::uint64_t pointer = 0, bool keepConstructionCalls = false)
    {
        auto file = std::make_unique<zunFile>(std::make_unique<RecordingBackEnd>(storage, pointer));
        if (!keepConstructionCalls)
            storage->calls.clear();
        return file;
    }

    inline std::vector<unsigned char> Bytes(std::initializer_list<int> values)
    {
        std::vector<unsigned char> out;
        for (int v : values)
            out.push_back(static_cast<unsigned char>(v));
        return out;
    }

    /// The whole content of a memory file.
    inline std::vector<unsigned char> Contents(const zunFastMesh<unsigned char> & mesh)
    {
        return std::vector<unsigned char>(mesh.Data(), mesh.Data() + mesh.Count());
    }

    /// A zunFastMesh holding `bytes`.
    inline zunFastMesh<unsigned char> MeshOf(const std::vector<unsigned char> & bytes)
    {
        zunFastMesh<unsigned char> mesh;
        if (!bytes.empty())
            mesh.InsertRange(0, bytes.data(), static_cast<unsigned int>(bytes.size()));
        return mesh;
    }

    /// Runs `action`, which must throw a zunException, and returns the exception.
    template <typename Action> zunException CaughtFrom(Action && action)
    {
        try
        {
            action();
        }
        catch (const zunException & e)
        {
            return e;
        }
        return zunException("no exception", "no exception");
    }
}

#endif // ZUN_FILE_TEST_SUPPORT_H
