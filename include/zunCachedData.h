// zunCachedData.h - derived, recomputable data an object keeps under GUIDs.
//
// A zunCachedDataContainer (a base or a member of the owning object) holds
// records derived from zunCachedData, each under a zunGUID: results that
// belong to this object in its present state and never to a copy of it.
// There is no registry and nothing is written to files.
//
//   struct Triangulation : zunCachedData { ... };
//   mesh.SetCachedData(kTriangulationId, std::make_unique<Triangulation>(...));
//   if (auto * cached = mesh.GetCachedData<Triangulation>(kTriangulationId)) ...
//   mesh.RemoveCachedData(kTriangulationId);           // the object changed
//
// The rules a caller must know:
//  - A copy starts with an empty cache, and assignment leaves the target's
//    cache as it was: nothing of the source's cache is ever taken.
//  - Setting an id again deletes the record it replaces; a null record stands
//    as an entry without a record (GetCachedData gives null for it).
//  - Removing an absent id is no failure. Nothing is locked.
#ifndef ZUN_CACHED_DATA_H
#define ZUN_CACHED_DATA_H

#include <map>
#include <memory>

#include "zunConfig.h"
#include "zunGUID.h"

/// The base of cached records; the container deletes them through it.
class ZUN_API zunCachedData
{
public:
    virtual ~zunCachedData();
};

/// Records derived from zunCachedData under zunGUIDs, owned and deleted by the
/// container; never copied from one object to another.
class ZUN_API zunCachedDataContainer
{
public:
    /// Empty.
    zunCachedDataContainer();
    /// Empty as well: the source is not looked at.
    zunCachedDataContainer(const zunCachedDataContainer & other);
    /// Does nothing: the target keeps its own records.
    zunCachedDataContainer & operator=(const zunCachedDataContainer & other);
    /// Deletes all records.
    virtual ~zunCachedDataContainer();

    /// Stores `record` under `id`, deleting the record it replaces.
    void SetCachedData(const zunGUID & id, std::unique_ptr<zunCachedData> record);
    /// Deletes the record under `id`, if there is one.
    void RemoveCachedData(const zunGUID & id);

    /// The record under `id` as a T, or null when there is none or it is of
    /// another type. The container keeps ownership.
    template <class T> T * GetCachedData(const zunGUID & id) const { return dynamic_cast<T *>(FindCachedData(id)); }

private:
    zunCachedData * FindCachedData(const zunGUID & id) const;

    std::map<zunGUID, std::unique_ptr<zunCachedData>> m_cachedData;
};

#endif // ZUN_CACHED_DATA_H
