// zunExternalReference: the table of live references, the delegate, and the
// cached resolution of each reference's actual path.
#include <map>

#include "zunException.h"
#include "zunExternalReference.h"
#include "zunFile.h"

using Record = zunExternalReferenceRecord;

struct zunExternalReferenceRecord
{
    std::uint64_t id;
    unsigned int state;
    zunExternalReference::Type type;
    zunPath referencePath;
    zunPath actualPath; ///< meaningful only when the state isn't Unresolved
};

namespace
{
    // Process-wide and unlocked: one thread at a time.
    std::uint64_t g_nextId = 0;
    zunExternalReference::Delegate * g_pDelegate = nullptr;

    std::map<std::uint64_t, Record *> & Table()
    {
        static std::map<std::uint64_t, Record *> table;
        return table;
    }

    Record * NewRecord(zunExternalReference::Type type, bool inTable)
    {
        Record * record = new Record{g_nextId++, zunExternalReference::Unresolved, type, zunPath(), zunPath()};
        if (inTable)
            Table().emplace(record->id, record);
        return record;
    }

    Record * Find(std::uint64_t id)
    {
        const auto found = Table().find(id);
        return found != Table().end() ? found->second : nullptr;
    }

    void ChangeState(Record & record, unsigned int state)
    {
        if (record.state == state)
            return;
        record.state = state;
        if (g_pDelegate != nullptr)
            g_pDelegate->OnStateChanged(record.id, state);
    }

    void Invalidate(Record & record)
    {
        ChangeState(record, zunExternalReference::Unresolved);
    }

    void SetPath(Record & record, const zunPath & path)
    {
        record.referencePath = g_pDelegate != nullptr ? g_pDelegate->ToReferencePath(record.type, path) : path;
        Invalidate(record);
    }

    void Resolve(Record & record)
    {
        if (record.state != zunExternalReference::Unresolved)
            return;
        record.actualPath = g_pDelegate != nullptr ? g_pDelegate->ToActualPath(record.type, record.referencePath)
                                                   : record.referencePath;
        const bool found = record.referencePath.IsEmpty() || !record.actualPath.IsEmpty();
        ChangeState(record, found ? zunExternalReference::Resolved : zunExternalReference::Unresolvable);
    }

    bool IsValid(Record & record)
    {
        if (record.referencePath.IsEmpty())
            return true;
        Resolve(record);
        return record.state == zunExternalReference::Resolved;
    }

    void ReadPath(zunFile * file, zunPath & path)
    {
        // The stored text is a path's canonical text, which construction
        // gives back unchanged.
        zunStringW text;
        file->Read_String16(text);
        path = zunPath(text);
    }
}

zunExternalReference::Delegate::~Delegate() = default;

zunExternalReference::zunExternalReference(zunExternalReference::Type type) : m_pRecord(NewRecord(type, true)) {}

zunExternalReference::zunExternalReference(zunExternalReference::Type type, const zunPath & path)
    : zunExternalReference(type)
{
    SetPath(*m_pRecord, path);
}

zunExternalReference::zunExternalReference(const zunExternalReference & other)
    : m_pRecord(NewRecord(other.m_pRecord->type, true))
{
    m_pRecord->referencePath = other.m_pRecord->referencePath;
}

zunExternalReference::zunExternalReference(zunExternalReference && other) noexcept : m_pRecord(other.m_pRecord)
{
    other.m_pRecord = nullptr;
}

zunExternalReference::zunExternalReference(zunFile * file) : m_pRecord(NewRecord(Type(0), false))
{
    Read(file, VersionWithType);
}

zunExternalReference::~zunExternalReference()
{
    if (m_pRecord == nullptr)
        return;
    if (g_pDelegate != nullptr)
        g_pDelegate->OnRemoved(m_pRecord->id);
    Table().erase(m_pRecord->id);
    delete m_pRecord;
}

zunExternalReference & zunExternalReference::operator=(const zunExternalReference & other)
{
    if (this != &other)
    {
        m_pRecord->type = other.m_pRecord->type;
        m_pRecord->referencePath = other.m_pRecord->referencePath;
        m_pRecord->state = other.m_pRecord->state;
        m_pRecord->actualPath = other.m_pRecord->actualPath;
    }
    return *this;
}

zunExternalReference & zunExternalReference::operator=(zunExternalReference && other) noexcept
{
    if (m_pRecord->type != other.m_pRecord->type)
    {
        zunFixMe("the two external references have different types");
        return *this;
    }
    std::swap(m_pRecord, other.m_pRecord);
    return *this;
}

zunExternalReference & zunExternalReference::operator=(const zunPath & path)
{
    SetReferencePath(path);
    return *this;
}

bool zunExternalReference::operator==(const zunExternalReference & other) const
{
    return m_pRecord->type == other.m_pRecord->type && m_pRecord->referencePath == other.m_pRecord->referencePath;
}

bool zunExternalReference::operator!=(const zunExternalReference & other) const
{
    // Deliberately the same test as operator==, not its negation.
    return *this == other;
}

void zunExternalReference::Clear()
{
    m_pRecord->referencePath.Clear();
    Invalidate(*m_pRecord);
}

zunPath zunExternalReference::GetReferencePath() const
{
    return m_pRecord->referencePath;
}

void zunExternalReference::SetReferencePath(const zunPath & path)
{
    SetPath(*m_pRecord, path);
}

zunPath zunExternalReference::GetActualPath() const
{
    Resolve(*m_pRecord);
    return m_pRecord->actualPath;
}

zunExternalReference::Type zunExternalReference::GetType() const
{
    return m_pRecord->type;
}

bool zunExternalReference::IsEmpty() const
{
    return m_pRecord->referencePath.IsEmpty();
}

bool zunExternalReference::IsValid() const
{
    return ::IsValid(*m_pRecord);
}

std::uint64_t zunExternalReference::GetId() const
{
    return m_pRecord->id;
}

void zunExternalReference::Read(zunFile * file, zunExternalReference::Version version)
{
    if (version == VersionWithType)
    {
        int type = m_pRecord->type;
        file->Read_Int32(type);
        m_pRecord->type = Type(type);
    }
    ReadPath(file, m_pRecord->referencePath);
    Invalidate(*m_pRecord);
}

void zunExternalReference::Write(zunFile * file) const
{
    file->Write_Int32(static_cast<int>(m_pRecord->type));
    file->Write_String16(m_pRecord->referencePath.WinRepresentation());
}

std::pair<zunExternalReference::ValidId, zunPath> zunExternalReference::GetActualPath(std::uint64_t id)
{
    Record * record = Find(id);
    if (record == nullptr)
        return {IdNotFound, zunPath::Empty};
    Resolve(*record);
    return {IdFound, record->actualPath};
}

std::pair<zunExternalReference::ValidId, zunPath> zunExternalReference::GetReferencePath(std::uint64_t id)
{
    const Record * record = Find(id);
    return record != nullptr ? std::make_pair(IdFound, record->referencePath)
                             : std::make_pair(IdNotFound, zunPath::Empty);
}

std::pair<zunExternalReference::ValidId, zunExternalReference::Type> zunExternalReference::GetType(std::uint64_t id)
{
    const Record * record = Find(id);
    return record != nullptr ? std::make_pair(IdFound, record->type) : std::make_pair(IdNotFound, Type(0));
}

std::pair<zunExternalReference::ValidId, bool> zunExternalReference::IsEmpty(std::uint64_t id)
{
    const Record * record = Find(id);
    return record != nullptr ? std::make_pair(IdFound, record->referencePath.IsEmpty())
                             : std::make_pair(IdNotFound, false);
}

std::pair<zunExternalReference::ValidId, bool> zunExternalReference::IsValid(std::uint64_t id)
{
    Record * record = Find(id);
    return record != nullptr ? std::make_pair(IdFound, ::IsValid(*record)) : std::make_pair(IdNotFound, false);
}

zunExternalReference::ValidId zunExternalReference::SetReferencePath(std::uint64_t id, const zunPath & path)
{
    Record * record = Find(id);
    if (record == nullptr)
        return IdNotFound;
    SetPath(*record, path);
    return IdFound;
}

zunFastMesh<std::uint64_t> zunExternalReference::GetIds()
{
    zunFastMesh<std::uint64_t> ids;
    for (const auto & entry : Table())
        ids.Add(entry.first);
    return ids;
}

void zunExternalReference::SetDelegate(zunExternalReference::Delegate & delegate)
{
    g_pDelegate = &delegate;
    for (const auto & entry : Table())
        Invalidate(*entry.second);
}
