// zunGUID: 16 bytes from the platform's UUID service, and their file form.
#include <cstring>

#include "FileArrayAccess.h"
#include "platform/Uuid.h"
#include "zunFile.h"
#include "zunGUID.h"

static_assert(sizeof(zunGUID) == 16, "zunGUID is laid out as the platform's UUID");

namespace
{
    unsigned char (&BytesOf(zunGUID & guid))[16]
    {
        return *reinterpret_cast<unsigned char (*)[16]>(&guid);
    }

    const unsigned char (&BytesOf(const zunGUID & guid))[16]
    {
        return *reinterpret_cast<const unsigned char (*)[16]>(&guid);
    }

    void Parse(zunGUID & guid, const char * text)
    {
        if (!zunPlatform::ParseUuid(text != nullptr ? text : "", BytesOf(guid)))
            std::memset(BytesOf(guid), 0, sizeof(zunGUID));
    }
}

const zunGUID zunGUID::Invalid("00000000-0000-0000-0000-000000000000");

zunGUID::zunGUID()
{
    zunPlatform::CreateUuid(BytesOf(*this));
}

zunGUID::zunGUID(const zunString & text)
{
    Parse(*this, text);
}

zunGUID::zunGUID(const char * text)
{
    Parse(*this, text);
}

zunGUID::zunGUID(zunFile * file, const zunGUID & defaultValue) : zunGUID(defaultValue)
{
    Read(file);
}

zunString zunGUID::ToString() const
{
    char text[37];
    if (!zunPlatform::FormatUuid(BytesOf(*this), text))
        return zunString();
    return zunString(text);
}

zunStringW zunGUID::ToString16() const
{
    const zunString narrow = ToString();
    zunWChar wide[37] = {};
    for (unsigned int i = 0; i < narrow.Length() && i < 36; ++i)
        wide[i] = static_cast<zunWChar>(static_cast<unsigned char>(narrow.GetAt(i)));
    return zunStringW(wide);
}

bool zunGUID::operator==(const zunGUID & other) const
{
    return std::memcmp(this, &other, sizeof other) == 0;
}

bool zunGUID::operator!=(const zunGUID & other) const
{
    return !(*this == other);
}

bool zunGUID::operator<(const zunGUID & other) const
{
    return std::memcmp(this, &other, sizeof other) < 0;
}

void zunGUID::Read(zunFile * file)
{
    // Each field keeps its value when a chunk's limit stops its read.
    int data1 = static_cast<int>(Data1);
    short data2 = static_cast<short>(Data2);
    short data3 = static_cast<short>(Data3);
    file->Read_Int32(data1);
    file->Read_Int16(data2);
    file->Read_Int16(data3);
    Data1 = static_cast<unsigned int>(data1);
    Data2 = static_cast<unsigned short>(data2);
    Data3 = static_cast<unsigned short>(data3);
    zunFileArrayAccess::Read_Array(file, Data4, 1, 8, zunFile::SameInAnyByteOrder);
}

void zunGUID::Write(zunFile * file) const
{
    file->Write_Int32(static_cast<int>(Data1));
    file->Write_Int16(static_cast<short>(Data2));
    file->Write_Int16(static_cast<short>(Data3));
    zunFileArrayAccess::Write_Array(file, Data4, 1, 8, zunFile::SameInAnyByteOrder);
}
