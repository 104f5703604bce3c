// zunPath's name rules, temporary names and file form.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <unistd.h>

#include "MemTesting.h"

namespace
{
    std::string Utf8(const zunPath & path)
    {
        return static_cast<const char *>(path.OSRepresentation8());
    }

    std::string Utf8(const zunStringW & text)
    {
        zunString narrow;
        narrow = text;
        return static_cast<const char *>(narrow);
    }

    // A folder of its own, removed with what it holds.
    class Folder
    {
    public:
        Folder()
        {
            char pattern[] = "/tmp/zun_path_names_XXXXXX";
            if (mkdtemp(pattern) != nullptr)
                m_name = pattern;
        }
        ~Folder() { std::system(("rm -rf '" + m_name + "'").c_str()); }
        zunPath Path() const { return zunPath((m_name + "/").c_str()); }
        const std::string & Name() const { return m_name; }

    private:
        std::string m_name;
    };

    bool IsDigits(const std::string & text)
    {
        return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    }
}

TEST(PathNames, InvalidCharacterLists)
{
    EXPECT_EQ(Utf8(zunPath::GetInvalidFilenameCharacters16(zunPath::UnityPath)), ":");
    EXPECT_EQ(Utf8(zunPath::GetInvalidFilenameCharacters16(zunPath::WinPath)), "<>\"|?*:\\/");
    EXPECT_STREQ(zunPath::GetInvalidFilenameCharacters(zunPath::WinPath), "<>\"|?*:\\/");
    EXPECT_TRUE(zunPath::GetInvalidFilenameCharacters16(static_cast<zunPath::Representation>(2)).IsEmpty());
    EXPECT_TRUE(zunPath::GetInvalidFilenameCharacters(static_cast<zunPath::Representation>(-1)).IsEmpty());
}

TEST(PathNames, FilenameLengths)
{
    EXPECT_FALSE(zunPath::IsValidFilename(zunString(""), zunPath::WinPath));
    EXPECT_FALSE(zunPath::IsValidFilename(zunStringW(), zunPath::UnityPath));
    EXPECT_TRUE(zunPath::IsValidFilename(zunString(std::string(256, 'a').c_str()), zunPath::WinPath));
    EXPECT_FALSE(zunPath::IsValidFilename(zunString(std::string(257, 'a').c_str()), zunPath::WinPath));
    // The narrow form counts bytes, the wide form 16-bit units: 128 two-byte
    // characters are 256 bytes, 129 are too many, though 129 units are fine.
    std::string umlauts;
    for (int i = 0; i < 129; ++i)
        umlauts += "\xC3\xBC";
    EXPECT_FALSE(zunPath::IsValidFilename(zunString(umlauts.c_str()), zunPath::WinPath));
    zunStringW wide;
    wide = umlauts.c_str();
    EXPECT_TRUE(zunPath::IsValidFilename(wide, zunPath::WinPath));
}

TEST(PathNames, FilenameCharacters)
{
    EXPECT_TRUE(zunPath::IsValidFilename(zunString("a.b"), zunPath::WinPath));
    EXPECT_TRUE(zunPath::IsValidFilename(zunString("a/b"), zunPath::UnityPath));
    EXPECT_FALSE(zunPath::IsValidFilename(zunString("a:b"), zunPath::UnityPath));
    for (const char * bad : {"a<", "a>", "a\"", "a|", "a?", "a*", "a:", "a\\", "a/"})
        EXPECT_FALSE(zunPath::IsValidFilename(zunString(bad), zunPath::WinPath)) << bad;
    EXPECT_FALSE(zunPath::IsValidFilename(zunStringW(u"x?y"), zunPath::WinPath));
    EXPECT_FALSE(zunPath::IsValidFilename(zunString("plain"), static_cast<zunPath::Representation>(7)));
}

TEST(PathNames, PathLengthsAndUnity)
{
    EXPECT_FALSE(zunPath::IsValidPath(zunString("a"), zunPath::WinPath));
    EXPECT_TRUE(zunPath::IsValidPath(zunString("ab"), zunPath::WinPath));
    EXPECT_FALSE(zunPath::IsValidPath(zunString("a"), zunPath::UnityPath));
    EXPECT_TRUE(zunPath::IsValidPath(zunString(std::string(256, 'a').c_str()), zunPath::WinPath));
    EXPECT_FALSE(zunPath::IsValidPath(zunString(std::string(257, 'a').c_str()), zunPath::WinPath));
    EXPECT_TRUE(zunPath::IsValidPath(zunString("a/b?*"), zunPath::UnityPath));
    EXPECT_FALSE(zunPath::IsValidPath(zunString("C:/a"), zunPath::UnityPath));
    EXPECT_FALSE(zunPath::IsValidPath(zunString("ab"), static_cast<zunPath::Representation>(2)));
}

TEST(PathNames, WindowsPathColonsAndRoots)
{
    const auto valid = [](const char * text) { return zunPath::IsValidPath(zunString(text), zunPath::WinPath); };
    EXPECT_TRUE(valid("C:\\a"));
    EXPECT_FALSE(valid("C:\\a:b"));
    EXPECT_FALSE(valid("a\\b:c"));
    EXPECT_TRUE(valid("\\\\srv\\s"));
    EXPECT_TRUE(valid("C:/a"));
    EXPECT_TRUE(valid("a/b"));
    EXPECT_TRUE(valid("a:b"));    // a first colon stands anywhere before a separator
    EXPECT_FALSE(valid("a:b:c")); // but a second one never
    EXPECT_FALSE(valid("a/b:c"));
    // A colon first and a backslash next skips the backslash, so the root
    // isn't behind yet and one more colon is allowed.
    EXPECT_TRUE(valid(":\\a:b"));
    EXPECT_FALSE(valid(":\\a\\b:c"));
    // A leading pair of backslashes keeps the root open; a single one closes it.
    EXPECT_TRUE(valid("\\\\a:b"));
    EXPECT_FALSE(valid("\\a:b"));
    for (const char * bad : {"a\"b", "a*b", "a<b", "a>b", "a?b", "a|b"})
        EXPECT_FALSE(valid(bad)) << bad;
    EXPECT_FALSE(zunPath::IsValidPath(zunStringW(u"C:\\a:b"), zunPath::WinPath));
    EXPECT_TRUE(zunPath::IsValidPath(zunStringW(u"\\\\srv\\s"), zunPath::WinPath));
}

TEST(PathNames, MakeValidFilenameWide)
{
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"a:b?c"), u'_', zunPath::WinPath)), "a_b_c");
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"a:b?c"), u'_', zunPath::UnityPath)), "a_b?c");
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"<>\"|?*:\\/"), u'-', zunPath::WinPath)), "---------");
    // A replacement of 0 and an empty name give a copy.
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"a:b"), 0, zunPath::WinPath)), "a:b");
    EXPECT_TRUE(zunPath::MakeValidFilename(zunStringW(), u'_', zunPath::WinPath).IsEmpty());
    // The replacement is not examined, and an unsupported syntax replaces nothing.
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"a:b"), u'?', zunPath::WinPath)), "a?b");
    EXPECT_EQ(Utf8(zunPath::MakeValidFilename(zunStringW(u"a:b"), u'_', static_cast<zunPath::Representation>(3))),
              "a:b");
}

TEST(PathNames, MakeValidFilenameNarrowReplacesByTheFirstDigitOfTheCode)
{
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("a:b?c"), '_', zunPath::WinPath), "a9b9c");
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("a:b?c"), '-', zunPath::WinPath), "a4b4c");
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("a:b?c"), '_', zunPath::UnityPath), "a9b?c");
    // Even 0 has a digit: the narrow form never keeps its name for it.
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("a:b"), '\0', zunPath::WinPath), "a0b");
    // A char above 0x7F is negative here: its first "digit" is the sign.
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("a:b"), static_cast<char>(0xC3), zunPath::WinPath), "a-b");
    EXPECT_STREQ(zunPath::MakeValidFilename(zunString("Gr\xC3\xBC:n"), '_', zunPath::WinPath), "Gr\xC3\xBC"
                                                                                               "9n");
    EXPECT_TRUE(zunPath::MakeValidFilename(zunString(""), '_', zunPath::WinPath).IsEmpty());
}

TEST(PathNames, TemporaryFilenameForm)
{
    Folder folder;
    const zunPath name = zunPath::GetTemporaryFilename(zunString("data.tmp"), folder.Path());
    const std::string text = Utf8(name);
    const std::string prefix = folder.Name() + "/data";
    ASSERT_EQ(text.compare(0, prefix.size(), prefix), 0) << text;
    ASSERT_GT(text.size(), prefix.size() + 4);
    EXPECT_EQ(text.substr(text.size() - 4), ".tmp");
    EXPECT_TRUE(IsDigits(text.substr(prefix.size(), text.size() - prefix.size() - 4))) << text;
    // Nothing is created.
    EXPECT_FALSE(name.ExistsAs(zunPath::AnyObject));
}

TEST(PathNames, TemporaryFilenameSplitsAtTheFirstDot)
{
    Folder folder;
    const std::string text = Utf8(zunPath::GetTemporaryFilename(zunStringW(u"a.b.c"), folder.Path()));
    const std::string leaf = text.substr(folder.Name().size() + 1);
    ASSERT_GT(leaf.size(), 5u);
    EXPECT_EQ(leaf.substr(0, 1), "a");
    EXPECT_EQ(leaf.substr(leaf.size() - 4), ".b.c");
    EXPECT_TRUE(IsDigits(leaf.substr(1, leaf.size() - 5))) << leaf;
}

TEST(PathNames, TemporaryFilenameWithAnEmptyStemIsDigitsAlone)
{
    Folder folder;
    const std::string text = Utf8(zunPath::GetTemporaryFilename(zunString(""), folder.Path()));
    EXPECT_TRUE(IsDigits(text.substr(folder.Name().size() + 1))) << text;
}

TEST(PathNames, TemporaryFilenameNeedsAFolder)
{
    Folder folder;
    EXPECT_TRUE(zunPath::GetTemporaryFilename(zunString("x"), zunPath((folder.Name() + "/missing").c_str())).IsEmpty());
    const std::string file = folder.Name() + "/file";
    std::fclose(std::fopen(file.c_str(), "w"));
    EXPECT_TRUE(zunPath::GetTemporaryFilename(zunString("x"), zunPath(file.c_str())).IsEmpty());
    EXPECT_TRUE(zunPath::GetTemporaryFilename(zunString("x"), zunPath()).IsEmpty());
}

TEST(PathNames, TemporaryFilenameGivesUpAfterFiftyTakenNames)
{
    // The seed is the time, so within one second every call tries the same
    // fifty numbers: take them all and the next call finds none.
    Folder folder;
    for (int attempt = 0; attempt < 5; ++attempt)
    {
        const std::time_t second = std::time(nullptr);
        std::srand(static_cast<unsigned int>(second));
        for (int i = 0; i < 50; ++i)
        {
            const std::string name = folder.Name() + "/t" + std::to_string(std::rand());
            std::fclose(std::fopen(name.c_str(), "w"));
        }
        const zunPath found = zunPath::GetTemporaryFilename(zunString("t"), folder.Path());
        if (std::time(nullptr) != second)
            continue; // the second turned meanwhile: try again
        EXPECT_TRUE(found.IsEmpty()) << Utf8(found);
        return;
    }
    FAIL() << "no second was long enough to take fifty names";
}

TEST(PathFile, WrittenAsItsCanonicalWideText)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        zunPath("/tmp/a").Write(file.get());
    }
    const std::vector<unsigned char> expected{6, 0, 0, 0, '\\', 't', 'm', 'p', '\\', 'a', 0};
    EXPECT_EQ(std::vector<unsigned char>(mesh.Data(), mesh.Data() + mesh.Count()), expected);
}

TEST(PathFile, ReadTakesTheTextWithoutNormalising)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        file->Write_String(zunString("a//b/\xC3\xBC"));
        zunPath("\\x\\y").Write(file.get());
    }
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    zunPath read;
    read.Read(file.get());
    // Stored as written: the slashes stay, which the path's constructors
    // would have turned into one backslash.
    EXPECT_EQ(Utf8(read.WinRepresentation()), "a//b/\xC3\xBC");
    const zunPath second(file.get(), zunPath("unused"));
    EXPECT_EQ(Utf8(second.WinRepresentation()), "\\x\\y");
}

TEST(PathFile, ReadAtALimitGivesTheEmptyPathNotTheDefault)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        zunChunk chunk(file.get());
        chunk.Create(0x48544150);
        chunk.Close();
    }
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    zunChunk chunk(file.get());
    chunk.Descend();
    const zunPath read(file.get(), zunPath("/kept/by/numbers/only"));
    EXPECT_TRUE(read.IsEmpty());
}

TEST(PathFile, RoundTripInBigEndianKeepsTheBytes)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(zunSystem::Big);
        zunPath("C:\\Gr\xC3\xBC\xC3\x9F"
                "e")
            .Write(file.get());
    }
    ASSERT_GE(mesh.Count(), 4u);
    EXPECT_EQ(mesh[3], 10); // the length is ordered, the bytes aren't
    auto file = zunFileMem::Create(static_cast<const zunFastMesh<unsigned char> &>(mesh));
    file->SetEndianness(zunSystem::Big);
    zunPath read;
    read.Read(file.get());
    EXPECT_TRUE(read == zunPath("C:\\Gr\xC3\xBC\xC3\x9F"
                                "e"));
}
