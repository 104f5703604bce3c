// Paths over arbitrary text: normalising from UTF-8 and from 16-bit units,
// GoUp, MakeRelativePath, GetExtension and SetLastComponent. Each ends, and
// each result keeps the canonical form: no forward slash, and no doubled
// separator outside a network name (a text that starts with two separators
// and has three or more units, which is kept whole).
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "FuzzCheck.h"
#include "zunPath.h"

namespace
{
    using Units = std::u16string;

    Units TextOf(const zunPath & path)
    {
        const zunStringW & text = path.WinRepresentation();
        return Units(static_cast<const zunWChar *>(text), text.Length());
    }

    bool IsCanonical(const Units & text)
    {
        if (text.find(u'/') != Units::npos)
            return false;
        const bool networkName = text.size() >= 3 && text[0] == u'\\' && text[1] == u'\\';
        return networkName || text.find(u"\\\\") == Units::npos;
    }

    bool StartsWith(const Units & text, const Units & head)
    {
        return text.compare(0, head.size(), head) == 0;
    }

    bool EndsWith(const Units & text, const Units & tail)
    {
        return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
    }

    bool IsCollapsedTail(const Units & text, const Units & tail)
    {
        for (std::size_t from = 0; from <= text.size(); ++from)
        {
            if (TextOf(zunPath(text.substr(from).c_str())) == tail)
                return true;
        }
        return false;
    }

    zunPath PathFrom(FuzzedDataProvider & input)
    {
        const std::string bytes = input.ConsumeRandomLengthString(64);
        if (input.ConsumeBool())
            return zunPath(bytes.c_str());
        Units units(bytes.size() / 2, u'\0');
        for (std::size_t i = 0; i < units.size(); ++i)
            units[i] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * i]) |
                                             static_cast<unsigned char>(bytes[2 * i + 1]) << 8);
        return zunPath(units.c_str());
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    zunPath path = PathFrom(input);
    const Units text = TextOf(path);
    FUZZ_CHECK(IsCanonical(text));
    // Normalising a canonical text changes nothing.
    FUZZ_CHECK(TextOf(zunPath(path.WinRepresentation())) == text);

    switch (input.ConsumeIntegralInRange(0, 3))
    {
    case 0:
    {
        const unsigned int levels = input.ConsumeIntegralInRange(0u, 6u);
        const bool wasAbsolute = path.IsAbsolute();
        path.GoUp(levels);
        const Units up = TextOf(path);
        FUZZ_CHECK(IsCanonical(up));
        FUZZ_CHECK(up.empty() || up.back() == u'\\');
        FUZZ_CHECK(!wasAbsolute || !up.empty());
        // Only cut, and a separator put behind what is left.
        FUZZ_CHECK(StartsWith(text, up) || StartsWith(text, up.substr(0, up.size() - 1)));
        break;
    }
    case 1:
    {
        const zunPath base = PathFrom(input);
        path.MakeRelativePath(base);
        const Units relative = TextOf(path);
        FUZZ_CHECK(IsCanonical(relative));
        // What is left is a tail of the text (all of it when unchanged,
        // nothing when cleared), collapsed again: `\\a\\b` less `\` is `\a\b`.
        FUZZ_CHECK(IsCollapsedTail(text, relative));
        break;
    }
    case 2:
    {
        const zunStringW extension = path.GetExtension16(input.ConsumeIntegralInRange(0u, 4u));
        const Units dotless(static_cast<const zunWChar *>(extension), extension.Length());
        FUZZ_CHECK(dotless.find(u'\\') == Units::npos);
        FUZZ_CHECK(EndsWith(text, dotless));
        FUZZ_CHECK(path.GetExtension(0).IsEmpty());
        break;
    }
    default:
    {
        const zunPath name = PathFrom(input);
        path.SetLastComponent(name.WinRepresentation());
        // Nothing is normalised after the cut, so the cut of a network name
        // may leave its leading pair alone: `\\\a` with an empty name gives `\\`.
        const Units renamed = TextOf(path);
        FUZZ_CHECK(IsCanonical(renamed) || (StartsWith(renamed, u"\\\\") && renamed.find(u'/') == Units::npos));
        break;
    }
    }
    return 0;
}
