// zunUserData.h - extension records that an object carries without knowing them.
//
// An object holds a zunUserDataManager; other code hangs records on it, each
// an instance of a class derived from zunUserDataManager::UserData, stored
// under a zunGUID. A process-wide registry says which ids exist: a
// serializable id has a creator and its records travel in files, a volatile
// id lives in memory only. Records of ids the reading program never
// registered are skipped, so a file from a program with more record types
// opens in one with fewer, and their data is dropped.
//
//   struct Note : zunUserDataManager::UserData { ... };      // Clone, IsTransferable, Write, Read
//   const zunGUID kNoteId("6b29fc40-ca47-1067-b31d-00dd010662da");
//   zunUserDataManager::RegisterSerializableUserData(kNoteId, [] { return std::make_unique<Note>(); });
//
//   object.m_userData.SetUserData(kNoteId, std::make_unique<Note>("hello"));
//   if (Note * note = object.m_userData.GetUserData<Note>(kNoteId)) ...
//
// The rules a caller must know:
//  - Register at start-up, before managers read files; ids cannot be
//    unregistered. Nothing is locked: one thread at a time.
//  - SetUserData takes ownership on every path: the record is stored, or
//    deleted when the id is not registered. A null record stands as an entry
//    without a record: GetUserData gives null for it, and Write, copy and
//    move treat it as absent (it is neither written, nor copied, nor kept by
//    a move).
//  - Copy assignment empties the target first (so assigning a manager to
//    itself empties it), then clones each record whose IsTransferable is
//    true. Move assignment swaps the two maps, then drops the target's
//    non-transferable records, also when moving to itself; the source keeps
//    what the target held.
//  - File form: a 32-bit count, then one chunk per serializable record in
//    ascending id order (zunGUID::operator<), of FCC 0x61746164 ("data" from
//    the lowest byte up), holding the id's 16-byte form and the record's
//    payload. Read replaces the manager's records: it skips unknown and
//    volatile ids, keeps the first record of a repeated id, and throws a
//    zunException ("Unexpected chunk", "Invalid Id") on a foreign chunk or a
//    zero id, keeping the records read so far.
#ifndef ZUN_USER_DATA_H
#define ZUN_USER_DATA_H

#include <functional>
#include <map>
#include <memory>

#include "zunConfig.h"
#include "zunGUID.h"

struct zunFile;

/// The extension records of one object, each under a registered zunGUID, and
/// the process-wide registry of those ids.
class ZUN_API zunUserDataManager
{
public:
    /// A record. Derive from it; the manager owns and deletes records through it.
    class ZUN_API UserData
    {
    public:
        UserData() = default;
        /// Copies nothing: the base has no fields.
        UserData(const UserData &) = default;
        /// Changes nothing: the base has no fields.
        UserData & operator=(const UserData &) = default;
        virtual ~UserData();
        /// Whether the record follows its owner into a copy or a move.
        virtual bool IsTransferable() const = 0;
        /// A new independent record.
        virtual std::unique_ptr<UserData> Clone() const = 0;
        /// Writes the payload; the default writes nothing.
        virtual void Write(zunFile & file) const;
        /// Reads the payload, which is fenced by its chunk; the default reads nothing.
        virtual void Read(zunFile & file);
    };

    /// Makes an empty record of a serializable id, for Read to fill.
    using Creator = std::function<std::unique_ptr<UserData>()>;

    /// The results of the registry and record operations.
    enum Error : int
    {
        NoError = 0,
        AlreadyRegistered = 1, ///< the registry is unchanged
        NoCreator = 2,         ///< RegisterSerializableUserData was given an empty function
        NotRegistered = 3      ///< the id is not in the registry; nothing is stored
    };

    /// The FCC of a record's chunk: "data" from the lowest byte up.
    static constexpr unsigned int ChunkFCC = 0x61746164;

    zunUserDataManager();
    /// Empty, then copy assignment.
    zunUserDataManager(const zunUserDataManager & other);
    /// Empty, then move assignment: `other` is left empty. Not noexcept: it
    /// allocates its own map and asks the records IsTransferable.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): see above.
    zunUserDataManager(zunUserDataManager && other);
    ~zunUserDataManager();
    /// Empties this manager, then clones each record of `other` whose
    /// IsTransferable is true; assigned to itself, the manager ends up empty.
    zunUserDataManager & operator=(const zunUserDataManager & other);
    /// Swaps the two managers' records, then drops this one's records that
    /// are not transferable (also when moving to itself); `other` keeps what
    /// this manager held.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor): asks the records IsTransferable.
    zunUserDataManager & operator=(zunUserDataManager && other);

    /// NoCreator for an empty function (tested first), AlreadyRegistered for
    /// a known id (the function is dropped), else NoError.
    static Error RegisterSerializableUserData(const zunGUID & id, Creator creator);
    /// AlreadyRegistered for a known id, else NoError.
    static Error RegisterVolatileUserData(const zunGUID & id);

    /// Stores `record` under `id`, deleting the one it replaces; NotRegistered
    /// (and `record` deleted) when `id` is not in the registry.
    Error SetUserData(const zunGUID & id, std::unique_ptr<UserData> record);
    /// Deletes the record under `id`; NoError also when there is none here,
    /// NotRegistered when `id` is not in the registry.
    Error RemoveUserData(const zunGUID & id);

    /// The record under `id` as a T, or null when there is none or it is of
    /// another type. The manager keeps ownership.
    template <class T> T * GetUserData(const zunGUID & id) const { return dynamic_cast<T *>(GetUserDataInternal(id)); }

    /// Replaces the records with those of the file.
    void Read(zunFile & file);
    /// The count, then one chunk per record of a serializable id, in
    /// ascending id order; volatile ids and entries without a record are left
    /// out. Throws zunException when the bytes don't go out.
    void Write(zunFile & file) const;

private:
    using Map = std::map<zunGUID, std::unique_ptr<UserData>>;

    /// The record under `id` in this manager, or null; the registry is not consulted.
    UserData * GetUserDataInternal(const zunGUID & id) const;

    Map * m_pUserData;
};

#endif // ZUN_USER_DATA_H
