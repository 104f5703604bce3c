// Storage faults under the stream: a back-end that throws, as the disk
// back-end does, at the Nth call of one of its operations, for every N, while
// a nested chunked document is written or read. Whatever the call, the
// failure reaches the caller as a zunException, the stream's destructor
// silences what its own flush raises on the way out, the bytes handed to
// storage before the fault stay as they were, and nothing leaks (the back-end
// is always destroyed; the sanitizer build checks the rest).
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "zunChunk.h"
#include "zunColor.h"
#include "zunException.h"
#include "zunFile.h"
#include "zunMatrix44.h"
#include "zunString.h"

namespace
{
    enum Operation
    {
        OpWrite,
        OpRead,
        OpSetFilePointer,
        OpGetFilePointer,
        OpGetFileSize,
        OpClose,
        OperationCount
    };
    const char * const kOperationNames[OperationCount] = {"Write",          "Read",        "SetFilePointer",
                                                          "GetFilePointer", "GetFileSize", "Close"};

    struct Transfer
    {
        std::uint64_t at;
        std::vector<unsigned char> bytes;
        bool operator==(const Transfer & other) const { return at == other.at && bytes == other.bytes; }
    };

    /// What a back-end leaves behind, shared with the test.
    struct Storage
    {
        std::vector<unsigned char> bytes;
        std::vector<Transfer> writes; ///< every Write that went through, in order
        std::array<unsigned int, OperationCount> calls{};
        Operation faultOn = OpWrite;
        unsigned int faultAt = 0; ///< 0: never
        bool persistent = false;  ///< the fault stays for every later call
        bool faulted = false;
        bool destroyed = false;
    };

    /// Keeps the file in memory and throws at the chosen call.
    class FaultyBackEnd : public zunFile::CallBacks
    {
    public:
        explicit FaultyBackEnd(std::shared_ptr<Storage> storage) : m_storage(std::move(storage)) {}
        ~FaultyBackEnd() override { m_storage->destroyed = true; }

        std::uint64_t Write(const void * data, std::uint64_t count) const override
        {
            Enter(OpWrite);
            std::vector<unsigned char> & bytes = m_storage->bytes;
            if (bytes.size() < m_pointer + count)
                bytes.resize(m_pointer + count, 0);
            std::memcpy(bytes.data() + m_pointer, data, count);
            m_storage->writes.push_back(
                {m_pointer, std::vector<unsigned char>(bytes.data() + m_pointer, bytes.data() + m_pointer + count)});
            m_pointer += count;
            return count;
        }
        std::uint64_t Read(void * data, std::uint64_t count) override
        {
            Enter(OpRead);
            const std::uint64_t size = m_storage->bytes.size();
            const std::uint64_t n = m_pointer < size ? std::min(count, size - m_pointer) : 0;
            if (n != 0)
                std::memcpy(data, m_storage->bytes.data() + m_pointer, n);
            m_pointer += n;
            return n;
        }
        std::uint64_t SetFilePointer(std::uint64_t position) override
        {
            Enter(OpSetFilePointer);
            m_pointer = position;
            return position;
        }
        std::uint64_t GetFilePointer() override
        {
            Enter(OpGetFilePointer);
            return m_pointer;
        }
        std::uint64_t GetFileSize() override
        {
            Enter(OpGetFileSize);
            return m_storage->bytes.size();
        }
        void Close() override { Enter(OpClose); }

    private:
        void Enter(Operation operation) const
        {
            const unsigned int n = ++m_storage->calls[operation];
            if (operation != m_storage->faultOn || m_storage->faultAt == 0)
                return;
            if (n == m_storage->faultAt || (m_storage->persistent && n > m_storage->faultAt))
            {
                m_storage->faulted = true;
                throw zunException("tests/test_file_faults.cpp", "injected storage fault")
                    .SetDebugDescription("%s call %u refused", kOperationNames[operation], n);
            }
        }

        std::shared_ptr<Storage> m_storage;
        mutable std::uint64_t m_pointer = 0;
    };

    const unsigned int kOuter = 0x444F4331, kHeader = 0x48454144, kBody = 0x424F4459, kPaint = 0x5041494E;

    std::vector<unsigned char> Payload(std::size_t n)
    {
        std::vector<unsigned char> out(n);
        for (std::size_t i = 0; i < n; ++i)
            out[i] = static_cast<unsigned char>((i * 131 + 7) & 0xFF);
        return out;
    }

    zunMatrix44 SomeMatrix()
    {
        zunMatrix44 m;
        for (int i = 0; i < 16; ++i)
            m.m[i] = i * 0.25 - 1.0;
        return m;
    }

    /// A document of three levels: a header with a name and a matrix, a body
    /// whose payload runs over several cache blocks, and a color nested in
    /// the body, then the outer chunk closed last.
    void WriteDocument(zunFile & file)
    {
        zunChunk outer(&file), header(&file), body(&file), paint(&file);
        outer.Create(kOuter);
        header.Create(kHeader);
        file.Write_String(zunString("a nested document"));
        SomeMatrix().Write(&file);
        header.Close();
        body.Create(kBody);
        const std::vector<unsigned char> payload = Payload(150000);
        file.Write_Int64(static_cast<std::int64_t>(payload.size()));
        file.Write_Block(payload.data(), payload.size());
        paint.Create(kPaint);
        zunColor(0.25, 0.5, 0.75, 1.0, zunColor::RGB).Write(&file);
        paint.Close();
        body.Close();
        outer.Close();
    }

    /// Reads the document back and checks every field.
    void ReadDocument(zunFile & file)
    {
        zunChunk outer(&file), header(&file), body(&file), paint(&file);
        outer.Descend();
        ASSERT_EQ(outer.GetFCC(), kOuter);
        header.Descend();
        ASSERT_EQ(header.GetFCC(), kHeader);
        zunString name;
        file.Read_String(name);
        EXPECT_STREQ(static_cast<const char *>(name), "a nested document");
        zunMatrix44 m;
        m.Read(&file);
        EXPECT_TRUE(m == SomeMatrix());
        header.Ascend();
        body.Descend();
        ASSERT_EQ(body.GetFCC(), kBody);
        std::int64_t size = 0;
        file.Read_Int64(size);
        std::vector<unsigned char> payload(static_cast<std::size_t>(size));
        EXPECT_EQ(file.Read_Block(payload.data(), payload.size()), payload.size());
        EXPECT_EQ(payload, Payload(payload.size()));
        paint.Descend();
        ASSERT_EQ(paint.GetFCC(), kPaint);
        zunColor color;
        color.Read(&file);
        EXPECT_TRUE(color == zunColor(0.25, 0.5, 0.75, 1.0, zunColor::RGB));
        paint.Ascend();
        body.Ascend();
        outer.Ascend();
    }

    enum class Direction
    {
        Writing,
        Reading
    };

    struct Outcome
    {
        bool completed = false;
        bool caught = false;
        std::string debugDescription;
    };

    /// One run over a fresh back-end: construction, the document, Close, and
    /// the stream's destruction, all inside the caller's try.
    Outcome RunDocument(const std::shared_ptr<Storage> & storage, Direction direction, std::uint64_t cacheSize)
    {
        Outcome outcome;
        try
        {
            auto file = std::make_unique<zunFile>(std::make_unique<FaultyBackEnd>(storage));
            file->SetCacheSize(cacheSize);
            if (direction == Direction::Writing)
                WriteDocument(*file);
            else
                ReadDocument(*file);
            file->Close();
            outcome.completed = true;
        }
        catch (const zunException & failure)
        {
            outcome.caught = true;
            outcome.debugDescription = failure.GetDebugDescription();
        }
        EXPECT_FALSE(zunException::IsAnyBeingHandled()) << "an exception object was left behind";
        return outcome;
    }

    /// The document run with a fault at every call of every operation, once
    /// and persistent, against the run with no fault.
    void FaultEveryCall(Direction direction, std::uint64_t cacheSize)
    {
        const std::vector<unsigned char> document = []
        {
            auto storage = std::make_shared<Storage>();
            EXPECT_TRUE(RunDocument(storage, Direction::Writing, 65536).completed);
            return storage->bytes;
        }();

        auto clean = std::make_shared<Storage>();
        if (direction == Direction::Reading)
            clean->bytes = document;
        ASSERT_TRUE(RunDocument(clean, direction, cacheSize).completed);
        ASSERT_TRUE(clean->destroyed);
        if (direction == Direction::Writing)
        {
            ASSERT_EQ(clean->bytes, document);
        }

        unsigned int tried = 0;
        for (int operation = 0; operation < OperationCount; ++operation)
            for (bool persistent : {false, true})
                for (unsigned int n = 1; n <= clean->calls[operation]; ++n)
                {
                    SCOPED_TRACE(std::string(kOperationNames[operation]) + " call " + std::to_string(n) +
                                 (persistent ? " and later" : " once"));
                    auto storage = std::make_shared<Storage>();
                    if (direction == Direction::Reading)
                        storage->bytes = document;
                    storage->faultOn = static_cast<Operation>(operation);
                    storage->faultAt = n;
                    storage->persistent = persistent;
                    const Outcome outcome = RunDocument(storage, direction, cacheSize);
                    ++tried;

                    // The fault reached the caller, with its own description.
                    ASSERT_TRUE(storage->faulted);
                    ASSERT_TRUE(outcome.caught);
                    EXPECT_EQ(outcome.debugDescription,
                              std::string(kOperationNames[operation]) + " call " + std::to_string(n) + " refused");
                    // The back-end went with the stream.
                    EXPECT_TRUE(storage->destroyed);

                    if (direction == Direction::Reading)
                        // Reading never writes: the file is as it was.
                        EXPECT_EQ(storage->bytes, document);
                    else if (persistent || operation != OpWrite)
                    {
                        // Every write that went through is the one the clean
                        // run made at that point, bytes and place alike.
                        const std::size_t through = storage->writes.size();
                        ASSERT_LE(through, clean->writes.size() + (persistent ? 0 : 1));
                        for (std::size_t i = 0; i < through && i < clean->writes.size(); ++i)
                            if (!(storage->writes[i] == clean->writes[i]))
                            {
                                // Only the destructor's last flush may differ
                                // from the clean run, and only in what it
                                // adds: bytes written earlier stay.
                                ASSERT_EQ(i + 1, through) << "write " << i << " differs";
                            }
                        // What the writes before the fault put in place is there.
                        std::vector<unsigned char> expected;
                        for (std::size_t i = 0; i < through && i < clean->writes.size(); ++i)
                        {
                            const Transfer & t = storage->writes[i];
                            if (expected.size() < t.at + t.bytes.size())
                                expected.resize(t.at + t.bytes.size(), 0);
                            std::memcpy(expected.data() + t.at, t.bytes.data(), t.bytes.size());
                        }
                        EXPECT_EQ(storage->bytes, expected);
                    }
                }
        // The count of faults for the record of what was tried.
        std::printf("storage faults injected: %u\n", tried);
        ::testing::Test::RecordProperty("faults", static_cast<int>(tried));
    }
}

// The clean runs first: the document itself reads back.
TEST(FileFaults, DocumentRoundTrips)
{
    auto storage = std::make_shared<Storage>();
    ASSERT_TRUE(RunDocument(storage, Direction::Writing, 65536).completed);
    auto reading = std::make_shared<Storage>();
    reading->bytes = storage->bytes;
    EXPECT_TRUE(RunDocument(reading, Direction::Reading, 65536).completed);
    EXPECT_GT(storage->bytes.size(), 150000u);
}

// Every call of every operation, over the default cache, a small one (many
// block transfers) and none (every field a back-end call).
class FileFaultsEveryCall : public ::testing::TestWithParam<std::tuple<Direction, std::uint64_t>>
{
};

TEST_P(FileFaultsEveryCall, ReachTheCallerAndKeepWhatWasWritten)
{
    FaultEveryCall(std::get<0>(GetParam()), std::get<1>(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(WritingAndReading, FileFaultsEveryCall,
                         ::testing::Combine(::testing::Values(Direction::Writing, Direction::Reading),
                                            ::testing::Values(std::uint64_t(65536), std::uint64_t(4096),
                                                              std::uint64_t(0))),
                         [](const ::testing::TestParamInfo<FileFaultsEveryCall::ParamType> & info)
                         {
                             const std::uint64_t cache = std::get<1>(info.param);
                             return std::string(std::get<0>(info.param) == Direction::Writing ? "Writing" : "Reading") +
                                    (cache == 0 ? "Uncached" : "Cache" + std::to_string(cache));
                         });

// A failure inside the destructor itself, with no Close before it: silenced,
// the back-end released.
TEST(FileFaults, DestructorSilencesItsOwnFlushFailure)
{
    auto storage = std::make_shared<Storage>();
    storage->faultOn = OpWrite;
    storage->faultAt = 1;
    {
        zunFile file(std::make_unique<FaultyBackEnd>(storage));
        file.Write_Int32(42);
    }
    EXPECT_TRUE(storage->faulted);
    EXPECT_TRUE(storage->destroyed);
    EXPECT_TRUE(storage->bytes.empty());
}
