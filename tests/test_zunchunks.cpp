// The chunk inspector run on files that the library wrote, and on broken ones.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{
    constexpr unsigned int kScene = 0x454E4353; // "SCNE"
    constexpr unsigned int kMesh = 0x4853454D;  // "MESH"
    constexpr unsigned int kName = 0x454D414E;  // "NAME"
    constexpr unsigned int kUserData = 0x61746164;

    struct Result
    {
        int status = -1;
        std::string out;
        std::string err;
    };

    class Inspector : public ::testing::Test
    {
    protected:
        void SetUp() override
        {
            char folder[] = "/tmp/zunchunks-XXXXXX";
            ASSERT_NE(mkdtemp(folder), nullptr);
            m_folder = folder;
        }
        void TearDown() override { std::system(("rm -rf '" + m_folder + "'").c_str()); }

        std::string Save(const zunFastMesh<unsigned char> & bytes, const char * name = "doc.bin")
        {
            std::string path = m_folder + "/" + name;
            std::ofstream out(path, std::ios::binary);
            out.write(reinterpret_cast<const char *>(bytes.Data()), bytes.Count());
            return path;
        }
        std::string Save(const std::vector<unsigned char> & bytes)
        {
            zunFastMesh<unsigned char> mesh;
            for (unsigned char byte : bytes)
                mesh.Add(byte);
            return Save(mesh);
        }

        Result Run(const std::string & arguments)
        {
            const std::string out = m_folder + "/out.txt", err = m_folder + "/err.txt";
            const std::string command = std::string(ZUN_ZUNCHUNKS) + " " + arguments + " >" + out + " 2>" + err;
            Result result;
            const int raw = std::system(command.c_str());
            result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : 128 + WTERMSIG(raw);
            result.out = Slurp(out);
            result.err = Slurp(err);
            return result;
        }

        static std::string Slurp(const std::string & path)
        {
            std::ifstream in(path);
            std::stringstream text;
            text << in.rdbuf();
            return text.str();
        }

        std::string m_folder;
    };

    // A scene holding a named mesh and a user-data block of two records.
    void WriteScene(zunFastMesh<unsigned char> & bytes, zunSystem::Endianness order, zunFile::ChunkSizeBits bits)
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
        file->SetEndianness(order);
        file->SetChunkSizeBits(bits);
        zunChunk scene(file.get());
        scene.Create(kScene);
        {
            zunChunk mesh(file.get());
            mesh.Create(kMesh);
            zunChunk name(file.get());
            name.Create(kName);
            file->Write_String(zunString("hull"));
            name.Close();
            mesh.Close();
        }
        {
            zunChunk extras(file.get());
            extras.Create(0x52545845); // "EXTR"
            file->Write_Int32(2);
            for (int record = 0; record < 2; ++record)
            {
                zunChunk data(file.get());
                data.Create(kUserData);
                file->Write_Int32(0x00112233 + record);
                file->Write_Int16(static_cast<short>(0x4455));
                file->Write_Int16(static_cast<short>(0x6677));
                const unsigned char tail[8] = {0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
                file->Write_Block(tail, 8);
                file->Write_Int32(7);
                data.Close();
            }
            extras.Close();
        }
        scene.Close();
        file->Close();
    }

    TEST_F(Inspector, PrintsTheTreeWithOffsetsDepthsTagsAndSizes)
    {
        zunFastMesh<unsigned char> bytes;
        WriteScene(bytes, zunSystem::Little, zunFile::ChunkSize32);
        const Result result = Run(Save(bytes));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("32-bit sizes, little-endian"), std::string::npos) << result.out;
        // SCNE at 0 holds MESH (8 + 8 + 9: the string's length, text and
        // terminator) and EXTR (8 + 4 + 2 * (8 + 20)).
        EXPECT_NE(result.out.find("         0      0  0x454E4353 'SCNE'   93\n"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("         8      1    0x4853454D 'MESH'   17\n"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("        16      2      0x454D414E 'NAME'   9\n"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("        33      1    0x52545845 'EXTR'   60  user-data block, 2 records\n"),
                  std::string::npos)
            << result.out;
        EXPECT_NE(result.out.find(
                      "        45      2      0x61746164 'data'   20  record 00112233-4455-6677-8899-aabbccddeeff"),
                  std::string::npos)
            << result.out;
        EXPECT_NE(result.out.find("record 00112234-4455-6677-8899-aabbccddeeff"), std::string::npos) << result.out;
    }

    TEST_F(Inspector, ReadsWideSizesInBigEndianOrder)
    {
        zunFastMesh<unsigned char> bytes;
        WriteScene(bytes, zunSystem::Big, zunFile::ChunkSize64);
        const std::string path = Save(bytes);
        const Result result = Run("--64 --big-endian " + path);
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("64-bit sizes, big-endian"), std::string::npos);
        EXPECT_NE(result.out.find("0x454E4353 'SCNE'"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("record 00112233-4455-6677-8899-aabbccddeeff"), std::string::npos) << result.out;

        // Read in the wrong mode, the same bytes are no chunk tree.
        EXPECT_EQ(Run(path).status, 1);
    }

    TEST_F(Inspector, DumpsTheContentsOfOneChunk)
    {
        zunFastMesh<unsigned char> bytes;
        WriteScene(bytes, zunSystem::Little, zunFile::ChunkSize32);
        const Result result = Run("--hex 16 " + Save(bytes));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find(std::string("contents of the chunk at offset 16, 9 bytes:\n") +
                                  "        24  04 00 00 00 68 75 6c 6c 00" + std::string(7 * 3 + 2, ' ') +
                                  "....hull.\n"),
                  std::string::npos)
            << result.out;
        EXPECT_EQ(Run("--hex 17 " + Save(bytes)).status, 2);
    }

    TEST_F(Inspector, ATopLevelUserDataBlockIsRecognised)
    {
        const Result result =
            Run(Save({1,    0,    0,    0,    0x64, 0x61, 0x74, 0x61, 0x14, 0,    0,    0,    0x33, 0x22, 0x11, 0x00,
                      0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF, 7,    0,    0,    0}));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("user-data block, 1 records\n"), std::string::npos) << result.out;
        EXPECT_NE(result.out.find("record 00112233-4455-6677-8899-aabbccddeeff"), std::string::npos) << result.out;
    }

    TEST_F(Inspector, ASizePastTheEndOfTheFileIsMalformed)
    {
        const Result result = Run(Save({'S', 'C', 'N', 'E', 9, 0, 0, 0, 1, 2, 3}));
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(
            result.err.find("is malformed: the chunk at offset 0 (tag 0x454E4353) claims 9 bytes, past the end of "
                            "its file at offset 11"),
            std::string::npos)
            << result.err;
        EXPECT_TRUE(result.out.empty());
    }

    TEST_F(Inspector, ASizePastTheEndOfItsParentIsMalformed)
    {
        // SCNE (24 bytes) holds MESH (0 bytes) and NAME, which claims 100.
        const Result result = Run(Save({'S', 'C', 'N', 'E', 24,  0, 0, 0, 'M', 'E', 'S', 'H', 0, 0, 0, 0,
                                        'N', 'A', 'M', 'E', 100, 0, 0, 0, 1,   2,   3,   4,   5, 6, 7, 8}));
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(
            result.err.find("the chunk at offset 16 (tag 0x454D414E) claims 100 bytes, past the end of its parent "
                            "at offset 32"),
            std::string::npos)
            << result.err;
    }

    TEST_F(Inspector, ContentsThatAreNoChunksAreData)
    {
        // 8 bytes of contents: an int 7 and an int 0 would read as tag 7, size 0,
        // but not as a well-formed run filling the chunk.
        const Result result = Run(Save({'S', 'C', 'N', 'E', 9, 0, 0, 0, 7, 0, 0, 0, 0, 0, 0, 0, 1}));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("0x454E4353 'SCNE'   9\n"), std::string::npos) << result.out;
    }

    TEST_F(Inspector, AnEmptyFileHasNoChunks)
    {
        const Result result = Run(Save(std::vector<unsigned char>{}));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("0 bytes"), std::string::npos);
    }

    TEST_F(Inspector, UsageAndReadErrorsExitWithTwo)
    {
        EXPECT_EQ(Run("").status, 2);
        EXPECT_EQ(Run("--bogus " + m_folder + "/x").status, 2);
        EXPECT_EQ(Run("--hex nothing " + m_folder + "/x").status, 2);
        const Result missing = Run(m_folder + "/missing.bin");
        EXPECT_EQ(missing.status, 2);
        EXPECT_NE(missing.err.find("cannot read"), std::string::npos);
    }

    TEST_F(Inspector, ArbitraryBytesNeverCrashIt)
    {
        std::mt19937 random(20261121);
        for (int round = 0; round < 60; ++round)
        {
            std::vector<unsigned char> bytes(random() % 96);
            for (unsigned char & byte : bytes)
                byte = static_cast<unsigned char>(random() % 4 == 0 ? random() : random() % 24);
            const Result result = Run(Save(bytes));
            EXPECT_TRUE(result.status == 0 || result.status == 1) << "status " << result.status << "\n" << result.err;
        }
    }

    TEST_F(Inspector, DeeplyNestedHeadersEndQuickly)
    {
        // 5,000 chunks each holding the next: shown down to depth 64, the rest as data.
        const unsigned int depth = 5000;
        std::vector<unsigned char> bytes;
        for (unsigned int level = 0; level < depth; ++level)
        {
            const unsigned int size = (depth - level - 1) * 8;
            const unsigned char header[8] = {'N',
                                             'E',
                                             'S',
                                             'T',
                                             static_cast<unsigned char>(size),
                                             static_cast<unsigned char>(size >> 8),
                                             static_cast<unsigned char>(size >> 16),
                                             0};
            bytes.insert(bytes.end(), header, header + 8);
        }
        const Result result = Run(Save(bytes));
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NE(result.out.find("     64  "), std::string::npos);
        EXPECT_EQ(result.out.find("     65  "), std::string::npos);
    }
} // namespace
