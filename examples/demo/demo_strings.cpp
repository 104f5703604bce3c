// Demo sections of the text types: units, the checksum, the two encodings.
#include <zunFoundation.h>

#include <cstdio>

#include "DemoSection.h"

namespace
{
    void Show(const char * label, const zunString & s)
    {
        std::printf("%-28s \"%s\"  length %u, checksum %llu, block %s\n", label, static_cast<const char *>(s),
                    s.Length(), static_cast<unsigned long long>(s.m_nChecksum), s.m_pData ? "yes" : "none");
    }
}

ZUN_DEMO_SECTION(20, "Strings count code units")
{
    zunString word("caf\xC3\xA9");
    Show("UTF-8 text", word);
    std::printf("4 characters, %u bytes; the 4th character starts at byte %u\n", word.Length(),
                zunCharHelper<char>::GetByteOffset(word, 3));

    zunStringW wide;
    wide = word;
    std::printf("as UTF-16: %u units\n", wide.Length());

    zunString path("models/ship/Hull.OBJ");
    const unsigned int slash = path.FindLast('/', 0xFFFFFFFF);
    zunString name = path.SubString(slash + 1, 0xFFFFFFFF);
    name.ToLower();
    Show("file name, lower case", name);
    path.Keep(0, slash - 1);
    Show("folder (Keep)", path);
    path.Insert(0, "./", 0xFFFFFFFF);
    path.Remove(8, 0xFFFFFFFF); // everything from unit 8 on
    Show("Insert, then Remove", path);
}

ZUN_DEMO_SECTION(21, "Empty forms and equality")
{
    zunString none;
    zunString empty("");
    Show("default", none);
    Show("assigned \"\"", empty);
    std::printf("they compare %s\n", none == empty ? "equal" : "unequal");

    zunStringW a(ZUN_W("x\u0141")), b(ZUN_W("x\u0241"));
    std::printf("wide texts differing in a high byte: checksums %llu and %llu, equal: %s\n",
                static_cast<unsigned long long>(a.m_nChecksum), static_cast<unsigned long long>(b.m_nChecksum),
                a == b ? "yes" : "no");

    std::printf("Compare(\"abc\", \"ABC\"): sensitive %d, insensitive %d (1 is equal)\n",
                zunCharHelper<char>::Compare("abc", "ABC", StringCompareMode_Sensitive),
                zunCharHelper<char>::Compare("abc", "ABC", StringCompareMode_Insensitive));
}

ZUN_DEMO_SECTION(22, "Formatting and concatenation")
{
    zunString line;
    line.Printf("%s has %d vertices, %.2f%% done", "hull", 1204, 37.5);
    Show("Printf", line);

    zunStringW wide;
    wide.Printf(ZUN_W("%s from %S, %5d|%-4c|"), ZUN_W("wide"), "UTF-8", 42, u'x');
    zunString back;
    back = wide;
    Show("wide Printf, back to UTF-8", back);

    zunString joined = zunString("left ") + ZUN_W("wide ") + "narrow";
    Show("operator+", joined);
    std::printf("Printf with an empty result leaves %s\n", line.Printf("") == 0 && !line.m_pData ? "no block" : "?");
}
