// zunExternalReference.h - persisted links from a document to files outside it.
//
// A reference keeps two paths apart: the reference path, which the document
// stores in whatever form the application likes, and the actual path, where
// the file is on this machine now. The application translates between them
// through one global Delegate; the library keeps the table of live
// references, caches the resolved path and reports changes of state.
//
//   struct Resolver : zunExternalReference::Delegate { ... };
//   zunExternalReference::SetDelegate(resolver);          // once, at start-up
//   zunExternalReference texture(kTexture, zunPath("textures/wood.png"));
//   if (texture.IsValid())
//       Load(texture.GetActualPath());                    // the delegate asked once
//   texture.Write(file);                                  // the type and the reference path
//
// The rules a caller must know:
//  - Each reference has a 64-bit id from a counter that starts at 0 and never
//    reuses a value. A copy gets a new id; a move keeps it (the moved-from
//    reference holds nothing and may only be destroyed). The static queries
//    find live references by id and answer IdNotFound for others.
//  - A reference read from a file (zunExternalReference(zunFile *)) works in
//    every way but is not in the table: GetIds and the static queries don't
//    know it.
//  - The actual path is resolved at most once per invalidation (setting the
//    path, Clear, Read, SetDelegate) and cached, also when it came back
//    empty; nothing watches the disk. State: Unresolved, Resolved, or
//    Unresolvable (the delegate found nothing); each change is reported to
//    the delegate's OnStateChanged.
//  - operator!= gives the same result as operator==: both are true for equal
//    references and false for different ones.
//  - Move assignment between references of different types reports
//    zunFixMe("the two external references have different types") and
//    changes neither.
//  - Write stores VersionWithType: the type as a 32-bit integer, then the
//    reference path's text as a wide string. The actual path and the state
//    are never stored.
//  - Nothing is locked; the delegate must not create or destroy references
//    while SetDelegate walks the table.
#ifndef ZUN_EXTERNAL_REFERENCE_H
#define ZUN_EXTERNAL_REFERENCE_H

#include <cstdint>
#include <utility>

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunPath.h"

struct zunFile;
struct zunExternalReferenceRecord;

/// A persisted link to a file outside the document: the stored reference
/// path, the resolved actual path and its state, under a 64-bit id.
class ZUN_API zunExternalReference
{
public:
    /// The kind of a reference: its values are the application's, the library
    /// stores it and hands it to the delegate.
    enum Type : int
    {
    };

    /// Answer of the static queries.
    enum ValidId : int
    {
        IdFound = 0,
        IdNotFound = 1
    };

    /// Persisted forms; any number but 1 acts as VersionPathOnly.
    enum Version : int
    {
        VersionPathOnly = 0,
        VersionWithType = 1
    };

    /// The states reported to Delegate::OnStateChanged.
    enum State : unsigned int
    {
        Unresolved = 0,
        Resolved = 1,
        Unresolvable = 2
    };

    /// The application's translation between reference paths and actual paths.
    struct ZUN_API Delegate
    {
        /// Not called by the library.
        virtual ~Delegate();
        /// Where the file of `referencePath` is now; empty if it can't be found.
        virtual zunPath ToActualPath(zunExternalReference::Type type, const zunPath & referencePath) = 0;
        /// What to store for a path being set.
        virtual zunPath ToReferencePath(zunExternalReference::Type type, const zunPath & path) = 0;
        /// A reference's state changed to `state` (a State).
        virtual void OnStateChanged(std::uint64_t id, unsigned int state) = 0;
        /// First thing when a reference is destroyed.
        virtual void OnRemoved(std::uint64_t id) = 0;
    };

    /// Empty paths, in the table.
    explicit zunExternalReference(zunExternalReference::Type type);
    /// The same, then SetReferencePath(path).
    zunExternalReference(zunExternalReference::Type type, const zunPath & path);
    /// The type and reference path of `other`, a new id, unresolved; in the table.
    zunExternalReference(const zunExternalReference & other);
    /// Takes `other`'s record with its id.
    zunExternalReference(zunExternalReference && other) noexcept;
    /// Reads VersionWithType; a new id, but not in the table.
    explicit zunExternalReference(zunFile * file);
    /// OnRemoved(id) to the delegate, then leaves the table.
    ~zunExternalReference();

    /// Copies type, paths and state; keeps this reference's id. No notification.
    zunExternalReference & operator=(const zunExternalReference & other);
    /// Exchanges the two records, ids included, when the types are equal.
    zunExternalReference & operator=(zunExternalReference && other) noexcept;
    /// SetReferencePath(path).
    zunExternalReference & operator=(const zunPath & path);

    /// Equal types and equal reference paths (zunPath::operator==).
    bool operator==(const zunExternalReference & other) const;
    /// The same test as operator==, with the same result.
    bool operator!=(const zunExternalReference & other) const;

    /// Empties the reference path and invalidates; type and cached actual text stay.
    void Clear();
    /// The stored reference path, as the delegate's ToReferencePath gave it.
    zunPath GetReferencePath() const;
    /// Stores the delegate's ToReferencePath of `path` (or `path` itself
    /// without a delegate) and invalidates.
    void SetReferencePath(const zunPath & path);
    /// Resolves an unresolved reference through the delegate (or takes the
    /// reference path itself without one) and returns the cached actual path.
    zunPath GetActualPath() const;
    /// The type given at construction (or read); assignment copies it.
    zunExternalReference::Type GetType() const;
    /// The reference path is empty.
    bool IsEmpty() const;
    /// True for an empty reference path; otherwise resolves if needed and
    /// tells whether the state is Resolved.
    bool IsValid() const;
    /// This reference's id.
    std::uint64_t GetId() const;

    /// With VersionWithType reads the type (kept at a chunk's limit), then the
    /// reference path (empty when read at the limit, as every string); then
    /// invalidates, without asking the delegate to translate.
    void Read(zunFile * file, zunExternalReference::Version version);
    /// VersionWithType.
    void Write(zunFile * file) const;

    // ---- By id, for live references in the table.

    /// The member of the same name on the reference `id`, resolving as it
    /// does. Not found: IdNotFound and the empty path.
    ///@{
    static std::pair<ValidId, zunPath> GetActualPath(std::uint64_t id);
    static std::pair<ValidId, zunPath> GetReferencePath(std::uint64_t id);
    ///@}
    /// Not found: IdNotFound and type 0.
    static std::pair<ValidId, Type> GetType(std::uint64_t id);
    /// Not found: IdNotFound and false.
    static std::pair<ValidId, bool> IsEmpty(std::uint64_t id);
    /// IsValid of the reference `id`, resolving if needed. Not found:
    /// IdNotFound and false.
    static std::pair<ValidId, bool> IsValid(std::uint64_t id);
    /// SetReferencePath(path) on the reference `id`; IdNotFound (nothing
    /// changes) when there is none.
    static ValidId SetReferencePath(std::uint64_t id, const zunPath & path);
    /// Every id in the table, ascending.
    static zunFastMesh<std::uint64_t> GetIds();
    /// Stores `delegate` (not owned; it cannot be unset) and invalidates every
    /// reference in the table, in id order, notifying the new delegate.
    static void SetDelegate(zunExternalReference::Delegate & delegate);

private:
    zunExternalReferenceRecord * m_pRecord;
};

#endif // ZUN_EXTERNAL_REFERENCE_H
