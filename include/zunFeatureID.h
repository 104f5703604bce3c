// zunFeatureID.h - a variable-length path of 32-bit ids.
//
// An ordered sequence of unsigned 32-bit ids kept in one zunFastMesh, which
// names a feature inside nested objects: each id picks one level.
//
//   zunFeatureID path;
//   path.Push(3);                         // { 3 }
//   path.Push(guid);                      // the GUID's 16 bytes as four ids
//   path.ToString(true);                  // "{ 3, 6b29fc40, ... }"
//
// The rules a caller must know:
//  - Growth reports an exhausted heap by false, leaving the ids as they were;
//    only Read throws (when the heap cannot hold the count it read).
//  - Set(other) clears first and reads `other` afterwards, so Set(*this)
//    empties the sequence, while assignment to itself keeps it.
//  - operator< is lexicographic over unsigned ids; on a common prefix the
//    shorter sequence is the lesser.
//  - File form: the count as a 32-bit integer, then, when it is not 0, the
//    ids as 32-bit integers in the stream's byte order. A chunk's limit that
//    stops the count leaves the sequence empty; one that stops the ids leaves
//    that many ids of 0.
#ifndef ZUN_FEATURE_ID_H
#define ZUN_FEATURE_ID_H

#include "zunConfig.h"
#include "zunFastMesh.h"
#include "zunGUID.h"
#include "zunString.h"

struct zunFile;

/// An ordered sequence of unsigned 32-bit ids naming a feature inside nested
/// objects, one id per level.
class ZUN_API zunFeatureID
{
public:
    /// An empty instance.
    static const zunFeatureID Empty;

    /// Empty.
    zunFeatureID();
    /// Takes the ids and the array's minimum capacity; an empty source clears.
    zunFeatureID(const zunFeatureID & other);
    /// As Set(ids, count).
    zunFeatureID(const unsigned int * ids, unsigned int count);
    /// A copy of `defaultValue`, then Read(file).
    zunFeatureID(zunFile * file, const zunFeatureID & defaultValue);
    /// The array's assignment: assignment to itself does nothing.
    zunFeatureID & operator=(const zunFeatureID & other);

    /// Clears; always true.
    bool New();
    /// No ids.
    bool IsEmpty() const;
    /// The ids; null when nothing was ever stored or after a clear.
    const unsigned int * DataPtrGet() const;
    /// The number of ids.
    unsigned int DataCountGet() const;

    /// Appends one id; false when the array cannot grow.
    bool Push(unsigned int id);
    /// Appends `count` ids.
    bool Push(const unsigned int * ids, unsigned int count);
    /// Appends the GUID's 16 bytes as four native 32-bit ids.
    bool Push(const zunGUID & guid);
    /// Appends the other sequence.
    bool Push(const zunFeatureID & other);

    /// With ids and a non-zero count: exactly those ids (false, and nothing
    /// copied, if the array cannot take the count). Otherwise clears: true.
    bool Set(unsigned int * ids, unsigned int count);
    /// Exactly the GUID's four native 32-bit words.
    bool Set(const zunGUID & guid);
    /// Clears, then appends `other`'s ids as they are after the clear.
    bool Set(const zunFeatureID & other);

    /// "{ " ids joined by ", " " }", each by "%x" (hexadecimal) or "%d" (an id
    /// with the top bit set prints negative). Empty: "{  }".
    zunString ToString(bool hexadecimal) const;
    /// Logs ToString(hexadecimal) and a line end through zunDebugLog under `tag`.
    void Dump(const zunString & tag, bool hexadecimal) const;

    /// Same count and the same ids.
    bool operator==(const zunFeatureID & other) const;
    /// Exactly !(*this == other).
    bool operator!=(const zunFeatureID & other) const;
    /// Lexicographic over unsigned ids; on a common prefix the shorter
    /// sequence is the lesser.
    bool operator<(const zunFeatureID & other) const;

    /// Throws zunException when the heap cannot hold the count read.
    void Read(zunFile * file);
    /// The count as a 32-bit integer, then the ids when it is not 0; throws
    /// zunException when the bytes don't go out.
    void Write(zunFile * file) const;

private:
    zunFastMesh<unsigned int> m_aIds;
};

#endif // ZUN_FEATURE_ID_H
