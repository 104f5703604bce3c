// UTF-8 -> UTF-16 -> UTF-8 on arbitrary bytes, and UTF-16 -> UTF-8 -> UTF-16
// on arbitrary units, each direction checked against ICU with U+FFFD
// substitution (the independent reference of the test suite). Both the
// explicit-length form and the terminated form (length 0xFFFFFFFF) run, as
// do ToNew16 and ToNew8.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "FuzzCheck.h"
#include "UTFReference.h"
#include "zunUTF.h"

namespace
{
    using U16 = std::u16string;

    U16 ReferenceUTF16(const std::string & bytes)
    {
        U16 result;
        FUZZ_CHECK(utfReference::ToUTF16(bytes, result));
        return result;
    }

    std::string ReferenceUTF8(const U16 & units)
    {
        std::string result;
        FUZZ_CHECK(utfReference::ToUTF8(units, result));
        return result;
    }

    U16 ToUTF16(const std::string & bytes)
    {
        zunUTF16 wide(bytes.data(), static_cast<unsigned int>(bytes.size()));
        if (wide.Get16() == nullptr)
        {
            FUZZ_CHECK(wide.Length() == 0);
            return U16();
        }
        FUZZ_CHECK(wide.Get16()[wide.Length()] == 0); // always terminated behind the count
        return U16(wide.Get16(), wide.Length());
    }

    std::string ToUTF8(const U16 & units)
    {
        zunUTF8 narrow(units.data(), static_cast<unsigned int>(units.size()));
        if (narrow.Get8() == nullptr)
        {
            FUZZ_CHECK(narrow.Length() == 0);
            return std::string();
        }
        FUZZ_CHECK(narrow.Get8()[narrow.Length()] == 0);
        return std::string(narrow.Get8(), narrow.Length());
    }

    void FromBytes(const std::string & bytes)
    {
        const U16 wide = ToUTF16(bytes);
        FUZZ_CHECK(wide == ReferenceUTF16(bytes));
        const std::string back = ToUTF8(wide);
        FUZZ_CHECK(back == ReferenceUTF8(wide));
        // Valid text comes back as it was; the reference tells validity.
        if (ReferenceUTF8(ReferenceUTF16(bytes)) == bytes)
            FUZZ_CHECK(back == bytes);

        // The terminated form converts up to the first zero and counts it.
        const std::string head(bytes.c_str());
        zunUTF16 terminated(head.c_str(), 0xFFFFFFFFu);
        const U16 expected = ReferenceUTF16(head);
        FUZZ_CHECK(terminated.Length() == expected.size() + 1);
        FUZZ_CHECK(U16(terminated.Get16(), expected.size()) == expected);
        FUZZ_CHECK(terminated.Get16()[expected.size()] == 0 && terminated.Get16()[expected.size() + 1] == 0);

        auto fresh = zunUTF8::ToNew16(head.c_str());
        FUZZ_CHECK(fresh != nullptr);
        FUZZ_CHECK(U16(fresh.get()) == expected);
    }

    void FromUnits(const U16 & units)
    {
        const std::string narrow = ToUTF8(units);
        FUZZ_CHECK(narrow == ReferenceUTF8(units));
        const U16 back = ToUTF16(narrow);
        FUZZ_CHECK(back == ReferenceUTF16(narrow));
        if (ReferenceUTF16(ReferenceUTF8(units)) == units)
            FUZZ_CHECK(back == units);

        const U16 head(units.c_str());
        const std::string expected = ReferenceUTF8(head);
        zunUTF8 terminated(head.c_str(), 0xFFFFFFFFu);
        FUZZ_CHECK(terminated.Length() == expected.size() + 1);
        FUZZ_CHECK(std::string(terminated.Get8(), expected.size()) == expected);
        FUZZ_CHECK(terminated.Get8()[expected.size()] == 0 && terminated.Get8()[expected.size() + 1] == 0);

        auto fresh = zunUTF16::ToNew8(head.c_str());
        FUZZ_CHECK(fresh != nullptr);
        FUZZ_CHECK(std::string(fresh.get()) == expected);
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    // The first byte picks the direction; the rest is the text.
    if (size == 0)
        return 0;
    const std::string bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
    if ((data[0] & 1) == 0)
        FromBytes(bytes);
    else
    {
        U16 units(bytes.size() / 2, u'\0');
        std::memcpy(units.data(), bytes.data(), units.size() * 2);
        FromUnits(units);
    }
    return 0;
}
