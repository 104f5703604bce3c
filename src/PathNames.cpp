// zunPath's name rules and temporary names: the characters a file name may
// not hold, the judging and repair of names and paths, and a fresh name for a
// temporary file. None of these reads a path object's own text.
#include <cstdlib>
#include <ctime>
#include <string>

#include "zunException.h"
#include "zunPath.h"

namespace
{
    // Names and paths longer than this many units are refused.
    const unsigned int kLongestName = 256;

    // Tries for a temporary name before giving up.
    const int kTemporaryNameTries = 50;

    const char * const kUnsupportedRepresentation = "unsupported path representation";

    bool IsSupported(zunPath::Representation representation)
    {
        if (representation == zunPath::UnityPath || representation == zunPath::WinPath)
            return true;
        zunFixMe(kUnsupportedRepresentation);
        return false;
    }

    template <typename C> bool IsWinFilenameForbidden(C c)
    {
        switch (c)
        {
        case '"':
        case '*':
        case '/':
        case ':':
        case '<':
        case '>':
        case '?':
        case '\\':
        case '|':
            return true;
        default:
            return false;
        }
    }

    template <typename C> bool HasColon(const C * text, unsigned int length)
    {
        for (unsigned int i = 0; i < length; ++i)
            if (text[i] == ':')
                return true;
        return false;
    }

    template <typename C> bool IsValidFilenameOf(const C * text, unsigned int length, zunPath::Representation rep)
    {
        if (length < 1 || length > kLongestName)
            return false;
        if (!IsSupported(rep))
            return false;
        if (rep == zunPath::UnityPath)
            return !HasColon(text, length);
        for (unsigned int i = 0; i < length; ++i)
            if (IsWinFilenameForbidden(text[i]))
                return false;
        return true;
    }

    template <typename C> bool IsValidPathOf(const C * text, unsigned int length, zunPath::Representation rep)
    {
        if (length < 2 || length > kLongestName)
            return false;
        if (!IsSupported(rep))
            return false;
        if (rep == zunPath::UnityPath)
            return !HasColon(text, length);
        // `pastRoot`: a separator or a colon has been met, so the root of the
        // path lies behind and a colon can no longer stand.
        bool pastRoot = false;
        for (unsigned int i = 0; i < length; ++i)
        {
            switch (text[i])
            {
            case '"':
            case '*':
            case '<':
            case '>':
            case '?':
            case '|':
                return false;
            case '/':
                pastRoot = true;
                break;
            case ':':
                if (pastRoot)
                    return false;
                if (i == 0 && i + 1 < length && text[i + 1] == '\\')
                    ++i;
                else
                    pastRoot = true;
                break;
            case '\\':
                // A leading pair (a network name) doesn't end the root.
                if (i == 0 && i + 1 < length && text[i + 1] == '\\')
                    ++i;
                else
                    pastRoot = true;
                break;
            default:
                break;
            }
        }
        return true;
    }
}

zunStringW zunPath::GetInvalidFilenameCharacters16(zunPath::Representation representation)
{
    if (representation == UnityPath)
        return zunStringW(u":");
    if (representation == WinPath)
        return zunStringW(u"<>\"|?*:\\/");
    zunFixMe(kUnsupportedRepresentation);
    return zunStringW();
}

zunString zunPath::GetInvalidFilenameCharacters(zunPath::Representation representation)
{
    zunString narrow;
    narrow = GetInvalidFilenameCharacters16(representation);
    return narrow;
}

bool zunPath::IsValidFilename(const zunString & name, zunPath::Representation representation)
{
    return IsValidFilenameOf<char>(name, name.Length(), representation);
}

bool zunPath::IsValidFilename(const zunStringW & name, zunPath::Representation representation)
{
    return IsValidFilenameOf<zunWChar>(name, name.Length(), representation);
}

bool zunPath::IsValidPath(const zunString & path, zunPath::Representation representation)
{
    return IsValidPathOf<char>(path, path.Length(), representation);
}

bool zunPath::IsValidPath(const zunStringW & path, zunPath::Representation representation)
{
    return IsValidPathOf<zunWChar>(path, path.Length(), representation);
}

zunStringW zunPath::MakeValidFilename(const zunStringW & name, zunWChar replacement,
                                      zunPath::Representation representation)
{
    zunStringW result(name);
    if (name.IsEmpty() || replacement == 0)
        return result;
    const zunStringW invalid = GetInvalidFilenameCharacters16(representation);
    for (unsigned int i = 0; i < invalid.Length(); ++i)
        result.Replace(invalid.GetAt(i), replacement);
    return result;
}

zunString zunPath::MakeValidFilename(const zunString & name, char replacement, zunPath::Representation representation)
{
    if (name.IsEmpty())
        return zunString(name);
    zunStringW wide;
    wide = name;
    // The replacement goes through the number conversion, so the wide
    // replacement is the first decimal digit of its code: '_' (95) gives '9'.
    // Stored names depend on it.
    const zunCharHelper<zunWChar>::NumberText digits = zunCharHelper<zunWChar>::Convert(static_cast<int>(replacement));
    if (!digits || digits.get()[0] == 0)
        return zunString(name);
    zunString result;
    result = MakeValidFilename(wide, digits.get()[0], representation);
    return result;
}

zunPath zunPath::GetTemporaryFilename(zunStringW stem, const zunPath & folder)
{
    zunPath::Info info;
    if (!folder.GetInfo(info) || (info.attributes & Info::Folder) == 0)
        return zunPath(Empty);

    // `a.b.c` has the stem `a` and the suffix `.b.c`.
    zunStringW suffix;
    for (unsigned int i = 0; i < stem.Length(); ++i)
    {
        if (stem.GetAt(i) == '.')
        {
            suffix = stem.SubString(i, 0xFFFFFFFF);
            stem.Remove(i, 0xFFFFFFFF);
            break;
        }
    }

    // Reseeded by every call: two calls in the same second try the same names.
    std::srand(static_cast<unsigned int>(std::time(nullptr)));
    for (int attempt = 0; attempt < kTemporaryNameTries; ++attempt)
    {
        zunStringW name(stem);
        name << std::to_string(std::rand()).c_str() << suffix;
        zunPath candidate = folder + zunPath(name);
        // Nothing is created or reserved: another process may take the name
        // before the caller opens it.
        if (!candidate.GetInfo(info))
            return candidate;
    }
    return zunPath(Empty);
}

zunPath zunPath::GetTemporaryFilename(const zunString & stem, const zunPath & folder)
{
    zunStringW wide;
    wide = stem;
    return GetTemporaryFilename(wide, folder);
}
