// The library's self-test of its container walks (zunSelfTest.h), and
// zunFeatureID (zunFeatureID.h).
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "FileArrayAccess.h"
#include "SelfTestReport.h"
#include "ThrowSite.h"
#include "zunDebugLog.h"
#include "zunFastMesh.h"
#include "zunFeatureID.h"
#include "zunFile.h"
#include "zunMem.h"
#include "zunSelfTest.h"
#include "zunStringList.h"

namespace
{
    constexpr unsigned int kNone = 0xFFFFFFFFu;

    struct RangeCheck
    {
        unsigned int first, last;
        const char * expected;
    };

    const RangeCheck kUpward[] = {
        {0, kNone, "01234"}, {0, 4, "01234"}, {1, 3, "123"}, {1, 7, ""}, {5, 7, ""}, {5, kNone, ""},
    };
    const RangeCheck kDownward[] = {
        {kNone, 0, "43210"}, {4, 0, "43210"}, {3, 1, "321"}, {7, 1, ""}, {7, 5, ""}, {kNone, 5, ""},
    };

    struct CircleCheck
    {
        unsigned int start;
        bool reverse, skipStart;
        const char * expected;
    };

    const CircleCheck kCircles[] = {
        {0, false, false, "01234"},    {0, false, true, "1234"},       {0, true, false, "04321"},
        {0, true, true, "4321"},       {kNone, false, false, "01234"}, {kNone, false, true, "01234"},
        {kNone, true, false, "43210"}, {kNone, true, true, "43210"},   {2, false, false, "23401"},
        {2, false, true, "3401"},      {2, true, false, "21043"},      {2, true, true, "1043"},
    };

    void Collect(zunString & text, char c)
    {
        text.Insert(kNone, &c, 1);
    }

    void Collect(zunString & text, const char * entry)
    {
        text << entry;
    }

    // Runs `walk`, which collects what it visits, on `container` and then
    // through a const reference, and reports each pass.
    template <typename Container, typename Walk>
    void CheckTwice(Container & container, const char * name, const char * expected, Walk walk)
    {
        zunString visited;
        walk(container, visited);
        zunSelfTestReport::Check(name, expected, visited, false);
        zunString visitedConst;
        walk(static_cast<const Container &>(container), visitedConst);
        zunSelfTestReport::Check(name, expected, visitedConst, true);
    }

    // One heading and the six range checks of ForEach or FindIf.
    template <typename Walk>
    void CheckRanges(zunFastMesh<char> & mesh, const char * heading, const char * checkName,
                     const RangeCheck (&checks)[6], Walk walk)
    {
        std::puts(heading);
        for (unsigned int i = 0; i < 6; ++i)
        {
            char name[64];
            std::snprintf(name, sizeof name, "%s %u", checkName, i + 1);
            const RangeCheck & check = checks[i];
            CheckTwice(mesh, name, check.expected,
                       [&](auto & walked, zunString & visited) { walk(walked, check, visited); });
        }
    }

    void CheckDeprecatedWalks()
    {
        std::puts("\nDeprecated_FastMesh\n");
        zunFastMesh<char> mesh;
        for (char c = '0'; c <= '4'; ++c)
            mesh.Add(c);

        auto forEach = [](auto & walked, const RangeCheck & check, zunString & visited)
        { walked.ForEach(check.first, check.last, [&](char c) { Collect(visited, c); }); };
        auto findIf = [](auto & walked, const RangeCheck & check, zunString & visited)
        {
            walked.FindIf(check.first, check.last,
                          [&](char c)
                          {
                              Collect(visited, c);
                              return false;
                          });
        };
        CheckRanges(mesh, "Test ForEach", "ForEach test", kUpward, forEach);
        CheckRanges(mesh, "Test Reverse ForEach", "Reverse ForEach test", kDownward, forEach);
        CheckRanges(mesh, "Test FindIf", "FindIf test", kUpward, findIf);
        CheckRanges(mesh, "Test Reverse FindIf", "Reverse FindIf test", kDownward, findIf);

        std::puts("Test CircularFindIf");
        for (unsigned int i = 0; i < 12; ++i)
        {
            char name[64];
            std::snprintf(name, sizeof name, "CircularFindIf test %u", i + 1);
            const CircleCheck & check = kCircles[i];
            CheckTwice(mesh, name, check.expected,
                       [&](auto & walked, zunString & visited)
                       {
                           walked.CircularFindIf(check.start, check.reverse, check.skipStart,
                                                 [&](char c)
                                                 {
                                                     Collect(visited, c);
                                                     return false;
                                                 });
                       });
        }
    }

    // The iterator checks, the same for the array and the list.
    template <typename Container> void CheckIteratorWalks(Container & container)
    {
        std::puts("Test for loop and for_each");
        CheckTwice(container, "ForLoop", "01234",
                   [](auto & walked, zunString & visited)
                   {
                       for (unsigned int i = 0; i < walked.Count(); ++i)
                           Collect(visited, walked[i]);
                   });
        CheckTwice(container, "For_Each", "01234",
                   [](auto & walked, zunString & visited)
                   { std::for_each(walked.begin(), walked.end(), [&](auto element) { Collect(visited, element); }); });
        std::puts("Test Reverse ForEach");
        CheckTwice(container, "For_Each_Reverse", "43210",
                   [](auto & walked, zunString & visited) {
                       std::for_each(walked.rbegin(), walked.rend(), [&](auto element) { Collect(visited, element); });
                   });
    }
}

void zunFoundation_UnitTest()
{
    CheckDeprecatedWalks();

    std::puts("\nSTD_FastMesh\n");
    zunFastMesh<char> mesh;
    for (char c = '0'; c <= '4'; ++c)
        mesh.Add(c);
    CheckIteratorWalks(mesh);

    std::puts("\nSTD_StringList\n");
    zunStringListT<char> list{"0", "1", "2", "3", "4"};
    CheckIteratorWalks(list);
}

// ---- zunFeatureID: a path of 32-bit ids in one array, and its file form.

const zunFeatureID zunFeatureID::Empty;

zunFeatureID::zunFeatureID() = default;

zunFeatureID::zunFeatureID(const zunFeatureID & other) = default;

zunFeatureID::zunFeatureID(const unsigned int * ids, unsigned int count)
{
    // Set only reads through the pointer.
    Set(const_cast<unsigned int *>(ids), count);
}

zunFeatureID::zunFeatureID(zunFile * file, const zunFeatureID & defaultValue) : m_aIds(defaultValue.m_aIds)
{
    Read(file);
}

zunFeatureID & zunFeatureID::operator=(const zunFeatureID & other) = default;

bool zunFeatureID::New()
{
    m_aIds.Clear();
    return true;
}

bool zunFeatureID::IsEmpty() const
{
    return m_aIds.Count() == 0;
}

const unsigned int * zunFeatureID::DataPtrGet() const
{
    return m_aIds.Data();
}

unsigned int zunFeatureID::DataCountGet() const
{
    return m_aIds.Count();
}

bool zunFeatureID::Push(unsigned int id)
{
    return m_aIds.Add(id);
}

bool zunFeatureID::Push(const unsigned int * ids, unsigned int count)
{
    return m_aIds.InsertRange(kNone, ids, count);
}

bool zunFeatureID::Push(const zunGUID & guid)
{
    unsigned int words[4];
    std::memcpy(words, &guid, sizeof words);
    return Push(words, 4);
}

bool zunFeatureID::Push(const zunFeatureID & other)
{
    return Push(other.DataPtrGet(), other.DataCountGet());
}

bool zunFeatureID::Set(unsigned int * ids, unsigned int count)
{
    if (ids == nullptr || count == 0)
    {
        m_aIds.Clear();
        return true;
    }
    if (!m_aIds.SetCount(count, false))
        return false;
    zunMemCopy32(&m_aIds[0], ids, count);
    return true;
}

bool zunFeatureID::Set(const zunGUID & guid)
{
    if (!m_aIds.SetCount(4, false))
        return false;
    std::memcpy(&m_aIds[0], &guid, sizeof guid);
    return true;
}

bool zunFeatureID::Set(const zunFeatureID & other)
{
    m_aIds.Clear();
    // Read after the clear: Set(*this) leaves the sequence empty.
    return m_aIds.InsertRange(kNone, other.DataPtrGet(), other.DataCountGet());
}

zunString zunFeatureID::ToString(bool hexadecimal) const
{
    zunString text("{ ");
    zunString number;
    for (unsigned int i = 0; i < m_aIds.Count(); ++i)
    {
        if (hexadecimal)
            number.Printf("%x", m_aIds[i]);
        else
            number.Printf("%d", static_cast<int>(m_aIds[i]));
        if (i != 0)
            text << ", ";
        text << number;
    }
    text << " }";
    return text;
}

void zunFeatureID::Dump(const zunString & tag, bool hexadecimal) const
{
    zunDebugLog(tag, "%s\n", static_cast<const char *>(ToString(hexadecimal)));
}

bool zunFeatureID::operator==(const zunFeatureID & other) const
{
    const unsigned int count = m_aIds.Count();
    return count == other.m_aIds.Count() && (count == 0 || zunMemCmpEq32(m_aIds.Data(), other.m_aIds.Data(), count));
}

bool zunFeatureID::operator!=(const zunFeatureID & other) const
{
    return !(*this == other);
}

bool zunFeatureID::operator<(const zunFeatureID & other) const
{
    const unsigned int count = m_aIds.Count();
    const unsigned int otherCount = other.m_aIds.Count();
    for (unsigned int i = 0; i < count && i < otherCount; ++i)
        if (m_aIds[i] != other.m_aIds[i])
            return m_aIds[i] < other.m_aIds[i];
    return count < otherCount;
}

void zunFeatureID::Read(zunFile * file)
{
    m_aIds.Clear();
    unsigned int count = 0;
    file->Read_UInt32(count);
    if (count == 0)
        return;
    // Zeroed, where the stored form leaves the ids unset: a limit that stops
    // the array read below must not leave indeterminate ids behind.
    unsigned int * ids = m_aIds.Extend(count, true);
    if (ids == nullptr)
        throw ZUN_EXCEPTION("void __cdecl zunFeatureID::Read(struct zunFile *) throw(struct zunException)");
    zunFileArrayAccess::Read_Array(file, ids, 4, count, zunFile::DiffersByByteOrder);
}

void zunFeatureID::Write(zunFile * file) const
{
    const unsigned int count = m_aIds.Count();
    file->Write_UInt32(count);
    if (count != 0)
        zunFileArrayAccess::Write_Array(file, m_aIds.Data(), 4, count, zunFile::DiffersByByteOrder);
}
