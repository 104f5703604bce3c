// zunCachedDataContainer: records under GUIDs that never follow a copy.
#include "zunCachedData.h"

zunCachedData::~zunCachedData() = default;

zunCachedDataContainer::zunCachedDataContainer() = default;

zunCachedDataContainer::zunCachedDataContainer(const zunCachedDataContainer &) {}

zunCachedDataContainer & zunCachedDataContainer::operator=(const zunCachedDataContainer &)
{
    return *this;
}

zunCachedDataContainer::~zunCachedDataContainer() = default;

void zunCachedDataContainer::SetCachedData(const zunGUID & id, std::unique_ptr<zunCachedData> record)
{
    // The replaced record is deleted by the assignment.
    m_cachedData[id] = std::move(record);
}

void zunCachedDataContainer::RemoveCachedData(const zunGUID & id)
{
    m_cachedData.erase(id);
}

zunCachedData * zunCachedDataContainer::FindCachedData(const zunGUID & id) const
{
    const auto found = m_cachedData.find(id);
    return found != m_cachedData.end() ? found->second.get() : nullptr;
}
