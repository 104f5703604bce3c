// zunGUID: 16 bytes from the platform's UUID service, and their file form;
// zunUserDataManager, whose records are keyed by them (zunUserData.h).
#include <cstring>
#include <map>
#include <utility>

#include "FileArrayAccess.h"
#include "ThrowSite.h"
#include "platform/Uuid.h"
#include "zunChunk.h"
#include "zunFile.h"
#include "zunGUID.h"
#include "zunUserData.h"

static_assert(sizeof(zunGUID) == 16, "zunGUID is laid out as the platform's UUID");

namespace
{
    unsigned char (&BytesOf(zunGUID & guid))[16]
    {
        return *reinterpret_cast<unsigned char(*)[16]>(&guid);
    }

    const unsigned char (&BytesOf(const zunGUID & guid))[16]
    {
        return *reinterpret_cast<const unsigned char(*)[16]>(&guid);
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

// ---- zunUserDataManager: records under GUIDs, the registry, the file form.

namespace
{
    using Registry = std::map<zunGUID, zunUserDataManager::Creator>;

    // Made at first use, which static construction of the library reaches
    // below, and gone at unload.
    Registry & TheRegistry()
    {
        static Registry registry;
        return registry;
    }

    const bool kRegistryMadeAtLoad = (TheRegistry(), true);

    /// The creator of a serializable id, or null for a volatile or unknown one.
    const zunUserDataManager::Creator * CreatorOf(const zunGUID & id)
    {
        const Registry & registry = TheRegistry();
        const auto found = registry.find(id);
        return found != registry.end() && found->second ? &found->second : nullptr;
    }

    bool IsRegistered(const zunGUID & id)
    {
        return TheRegistry().count(id) != 0;
    }

    const char * const kReadSignature =
        "void __cdecl zunUserDataManager::Read(struct zunFile &) throw(struct zunException)";
}

zunUserDataManager::UserData::~UserData() = default;

void zunUserDataManager::UserData::Write(zunFile &) const {}

void zunUserDataManager::UserData::Read(zunFile &) {}

zunUserDataManager::zunUserDataManager() : m_pUserData(new Map) {}

zunUserDataManager::zunUserDataManager(const zunUserDataManager & other) : zunUserDataManager()
{
    *this = other;
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): allocates, and asks the records.
zunUserDataManager::zunUserDataManager(zunUserDataManager && other) : zunUserDataManager()
{
    *this = std::move(other);
}

zunUserDataManager::~zunUserDataManager()
{
    delete m_pUserData;
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): a manager assigned to itself ends up empty.
zunUserDataManager & zunUserDataManager::operator=(const zunUserDataManager & other)
{
    // Emptied first, with no test for self-assignment: a manager assigned to
    // itself ends up empty.
    m_pUserData->clear();
    for (const auto & entry : *other.m_pUserData)
        if (entry.second != nullptr && entry.second->IsTransferable())
            m_pUserData->emplace(entry.first, entry.second->Clone());
    return *this;
}

// NOLINTNEXTLINE(performance-noexcept-move-constructor): asks the records IsTransferable.
zunUserDataManager & zunUserDataManager::operator=(zunUserDataManager && other)
{
    if (m_pUserData != other.m_pUserData)
        m_pUserData->swap(*other.m_pUserData);
    // Also on a move to itself. An entry without a record holds nothing to move.
    for (auto entry = m_pUserData->begin(); entry != m_pUserData->end();)
    {
        if (entry->second == nullptr || !entry->second->IsTransferable())
            entry = m_pUserData->erase(entry);
        else
            ++entry;
    }
    return *this;
}

zunUserDataManager::Error zunUserDataManager::RegisterSerializableUserData(const zunGUID & id, Creator creator)
{
    if (!creator)
        return NoCreator;
    return TheRegistry().emplace(id, std::move(creator)).second ? NoError : AlreadyRegistered;
}

zunUserDataManager::Error zunUserDataManager::RegisterVolatileUserData(const zunGUID & id)
{
    return TheRegistry().emplace(id, Creator()).second ? NoError : AlreadyRegistered;
}

zunUserDataManager::Error zunUserDataManager::SetUserData(const zunGUID & id, std::unique_ptr<UserData> record)
{
    if (!IsRegistered(id))
        return NotRegistered; // `record` goes with this scope
    // The replaced record is deleted by the assignment.
    (*m_pUserData)[id] = std::move(record);
    return NoError;
}

zunUserDataManager::Error zunUserDataManager::RemoveUserData(const zunGUID & id)
{
    if (!IsRegistered(id))
        return NotRegistered;
    m_pUserData->erase(id);
    return NoError;
}

zunUserDataManager::UserData * zunUserDataManager::GetUserDataInternal(const zunGUID & id) const
{
    const auto found = m_pUserData->find(id);
    return found != m_pUserData->end() ? found->second.get() : nullptr;
}

void zunUserDataManager::Write(zunFile & file) const
{
    unsigned int count = 0;
    for (const auto & entry : *m_pUserData)
        if (entry.second != nullptr && CreatorOf(entry.first) != nullptr)
            ++count;
    file.Write_UInt32(count);

    for (const auto & entry : *m_pUserData)
    {
        if (entry.second == nullptr || CreatorOf(entry.first) == nullptr)
            continue;
        zunChunk chunk(&file);
        chunk.Create(ChunkFCC);
        entry.first.Write(&file);
        entry.second->Write(file);
        chunk.Close();
    }
}

void zunUserDataManager::Read(zunFile & file)
{
    unsigned int count = 0;
    file.Read_UInt32(count);
    m_pUserData->clear();

    for (unsigned int i = 0; i < count; ++i)
    {
        zunChunk chunk(&file);
        chunk.Descend();
        if (chunk.GetFCC() != ChunkFCC)
            throw ZUN_EXCEPTION(kReadSignature).SetDebugDescription("Unexpected chunk");
        // A chunk too short for the id leaves Invalid, which is refused next.
        zunGUID id(zunGUID::Invalid);
        id.Read(&file);
        if (id == zunGUID::Invalid)
            throw ZUN_EXCEPTION(kReadSignature).SetDebugDescription("Invalid Id");
        if (const Creator * creator = CreatorOf(id))
        {
            if (std::unique_ptr<UserData> record = (*creator)())
            {
                record->Read(file);
                // The first chunk of an id wins; a later record goes with this scope.
                m_pUserData->try_emplace(id, std::move(record));
            }
        }
        chunk.Ascend();
    }
}
