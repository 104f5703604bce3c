// The byte tables of docs/file-format.md against the library.
//
// Each table of the guide that follows a line "<!-- bytes: NAME -->" is read
// from the guide itself, and the test named after it writes the same values
// and compares: the guide cannot drift from what the library writes. A table's
// offsets must also add up, row by row.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{
    using Bytes = std::vector<unsigned char>;

    const char * const kGuidePath = ZUN_TEST_SOURCE_DIR "/../docs/file-format.md";
    const char * const kMarker = "<!-- bytes: ";

    std::vector<std::string> Split(const std::string & row)
    {
        std::vector<std::string> cells;
        std::string cell;
        for (std::size_t i = 1; i < row.size(); ++i)
        {
            if (row[i] == '|')
            {
                cells.push_back(cell);
                cell.clear();
            }
            else
                cell += row[i];
        }
        return cells;
    }

    // The tables of the guide by name. A malformed table is a test failure,
    // and its name maps to what could be read of it.
    std::map<std::string, Bytes> ReadGuideTables()
    {
        std::ifstream in(kGuidePath);
        EXPECT_TRUE(in.good()) << "cannot open " << kGuidePath;
        std::map<std::string, Bytes> tables;
        std::string line;
        while (std::getline(in, line))
        {
            if (line.compare(0, std::strlen(kMarker), kMarker) != 0)
                continue;
            const std::string name = line.substr(std::strlen(kMarker), line.find(" -->") - std::strlen(kMarker));
            EXPECT_EQ(tables.count(name), 0u) << "two tables named " << name;
            Bytes & bytes = tables[name];
            int row = 0;
            while (std::getline(in, line) && !line.empty() && line[0] == '|')
            {
                if (row++ < 2)
                    continue; // the heading and the |---| line
                const std::vector<std::string> cells = Split(line);
                EXPECT_EQ(cells.size(), 3u) << name << ": " << line;
                if (cells.size() != 3)
                    break;
                EXPECT_EQ(std::stoul(cells[0]), bytes.size()) << name << ": the offset of " << line;
                std::istringstream hex(cells[1]);
                std::string pair;
                while (hex >> pair)
                {
                    EXPECT_EQ(pair.size(), 2u) << name << ": " << line;
                    bytes.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
                }
            }
            EXPECT_GT(row, 2) << name << " has no rows";
        }
        return tables;
    }

    const std::map<std::string, Bytes> & GuideTables()
    {
        static const std::map<std::string, Bytes> tables = ReadGuideTables();
        return tables;
    }

    // What `write` puts into a fresh memory stream.
    Bytes Written(const std::function<void(zunFile *)> & write)
    {
        zunFastMesh<unsigned char> mesh;
        {
            std::unique_ptr<zunFile> file = zunFileMem::Create(mesh);
            write(file.get());
            file->Close();
        }
        return Bytes(mesh.Data(), mesh.Data() + mesh.Count());
    }

    std::string Hex(const Bytes & bytes)
    {
        std::string text;
        char pair[4];
        for (unsigned char byte : bytes)
        {
            std::snprintf(pair, sizeof pair, "%02X ", byte);
            text += pair;
        }
        return text;
    }

    void WritePrimitives(zunFile * file)
    {
        file->Write_Bool(true);
        file->Write_Char('A');
        file->Write_Int16(static_cast<short>(-2));
        file->Write_Int32(7);
        file->Write_Int64(0x0102030405060708);
        file->Write_Float(2.5);
        file->Write_FloatSP(0.5f);
    }

    void WriteNestedChunks(zunFile * file)
    {
        zunChunk parent(file);
        parent.Create(0x41424344);
        zunChunk child(file);
        child.Create(0x45464748);
        file->Write_Int32(7);
        child.Close();
        parent.Close();
        zunChunk sibling(file);
        sibling.Create(0x494A4B4C);
        sibling.Close();
    }

    const zunGUID kId("00112233-4455-6677-8899-aabbccddeeff");

    struct Seven : zunUserDataManager::UserData
    {
        bool IsTransferable() const override { return true; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Seven>(); }
        void Write(zunFile & file) const override { file.Write_Int32(7); }
    };

    using Writer = std::function<void(zunFile *)>;

    // In a big-endian stream.
    Writer Big(const Writer & write)
    {
        return [write](zunFile * file)
        {
            file->SetEndianness(zunSystem::Big);
            write(file);
        };
    }

    // The writes behind each table of bytes the guide shows.
    const std::map<std::string, Writer> & TableWriters()
    {
        static const std::map<std::string, Writer> writers = {
            {"primitives", WritePrimitives},
            {"primitives-big", Big(WritePrimitives)},
            {"string-abc", [](zunFile * file) { file->Write_String(zunString("abc")); }},
            {"string-empty", [](zunFile * file) { file->Write_String(zunString()); }},
            {"string-abc-big", Big([](zunFile * file) { file->Write_String(zunString("abc")); })},
            {"string-wide", [](zunFile * file) { file->Write_String16(zunStringW(ZUN_W("\u00E9"))); }},
            {"block-padded",
             [](zunFile * file)
             {
                 const unsigned char block[] = {1, 2, 3, 4, 5};
                 file->Write_BlockPadding(block, sizeof block);
             }},
            {"guid", [](zunFile * file) { kId.Write(file); }},
            {"guid-big", Big([](zunFile * file) { kId.Write(file); })},
            {"feature-id-big", Big(
                                   [](zunFile * file)
                                   {
                                       const unsigned int ids[] = {1, 2};
                                       zunFeatureID(ids, 2).Write(file);
                                   })},
            {"chunk-nested-32", WriteNestedChunks},
            {"chunk-nested-64",
             [](zunFile * file)
             {
                 file->SetChunkSizeBits(zunFile::ChunkSize64);
                 WriteNestedChunks(file);
             }},
            {"chunk-big", Big(
                              [](zunFile * file)
                              {
                                  zunChunk chunk(file);
                                  chunk.Create(0x45464748);
                                  file->Write_Int32(7);
                                  chunk.Close();
                              })},
            {"chunk-placeholder",
             [](zunFile * file)
             {
                 zunChunk chunk(file);
                 chunk.Create(0x45464748); // never closed
             }},
            {"user-data",
             [](zunFile * file)
             {
                 // Registered once for the process; a second call changes nothing.
                 zunUserDataManager::RegisterSerializableUserData(kId, [] { return std::make_unique<Seven>(); });
                 zunUserDataManager userData;
                 ASSERT_EQ(userData.SetUserData(kId, std::make_unique<Seven>()), zunUserDataManager::NoError);
                 userData.Write(*file);
             }},
        };
        return writers;
    }

    // The tables of forms that Read_String reads, one per option.
    const std::map<std::string, zunFile::ReadStringOption> kReadForms = {
        {"read-NoTerminator", zunFile::NoTerminator},
        {"read-Terminated", zunFile::Terminated},
        {"read-TerminatorCounted", zunFile::TerminatorCounted},
    };
}

TEST(FileFormatGuide, EveryTableIsWhatTheLibraryWrites)
{
    for (const auto & writer : TableWriters())
    {
        const auto table = GuideTables().find(writer.first);
        if (table == GuideTables().end())
            ADD_FAILURE() << "the guide has no table " << writer.first;
        else
            EXPECT_EQ(Hex(Written(writer.second)), Hex(table->second)) << "table " << writer.first;
    }
}

TEST(FileFormatGuide, EveryTableIsChecked)
{
    EXPECT_EQ(GuideTables().size(), TableWriters().size() + kReadForms.size());
    for (const auto & table : GuideTables())
        EXPECT_TRUE(TableWriters().count(table.first) == 1 || kReadForms.count(table.first) == 1)
            << "no test checks the table " << table.first;
}

TEST(FileFormatGuide, EachReadOptionReadsItsForm)
{
    for (const auto & form : kReadForms)
    {
        const auto table = GuideTables().find(form.first);
        ASSERT_NE(table, GuideTables().end()) << form.first;
        zunFastMesh<unsigned char> mesh;
        for (unsigned char byte : table->second)
            mesh.Add(byte);
        mesh.Add(0x55); // what follows the string stays unread
        std::unique_ptr<zunFile> file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
        zunString text("old");
        file->Read_String(text, form.second);
        EXPECT_TRUE(text == "abc") << form.first << " read \"" << static_cast<const char *>(text) << "\"";
        EXPECT_EQ(file->GetCurrPos(), table->second.size()) << form.first;
    }
    // The table of what Write_String writes is the Terminated form.
    EXPECT_EQ(Hex(GuideTables().at("read-Terminated")), Hex(GuideTables().at("string-abc")));
}
