// zunPath.h - the library's value type for a file-system path, and the
// operations that take a path to the disk.
//
// A path is text only: building one never looks at the disk, and nothing is
// resolved or made absolute. The text is kept in one canonical form, in
// 16-bit units, with one separator, the backslash:
//
//   zunPath p("/tmp//data/scene.kelp");   // canonical \tmp\data\scene.kelp, absolute
//   p.GetLastComponent(zunPath::WithoutExtension);  // "scene"
//   p.GetExtension(1);                     // "kelp"
//   zunPath folder = p.GetParent(1);       // \tmp\data\  (a separator is kept)
//   folder += zunPath("textures/wood.png"); // \tmp\data\textures\wood.png
//   FILE * f = p.Open("rb");              // the platform form: /tmp/data/scene.kelp
//
// The canonical form:
//  - Every forward slash becomes a backslash. Runs of separators collapse to
//    one, except in a text that starts with two separators and has three or
//    more units (a network name): that text is kept whole, `//srv//share`
//    staying `\\srv\\share`. Two separators alone become one.
//  - Case, "." and "..", drive letters and a trailing separator are kept as
//    given: `a\b` and `a\b\` are different paths.
//  - A path is absolute when it starts with a separator or holds ":\"
//    anywhere; `C:` alone is relative. An empty path is neither.
//
// On Linux the platform form (OSRepresentation8/16, and every call into the
// system) uses forward slashes, so `/tmp/x` is the canonical `\tmp\x`. A
// backslash inside a Linux file name cannot be told from a separator, and a
// name that is not valid UTF-8 reaches the path with U+FFFD in place of its
// bad bytes, so such names are not reachable through a path. `C:\a` is
// absolute to the library but names the relative `C:/a` on Linux.
//
// Equality ignores case (the file system is treated as case-blind on every
// platform); `<` is an exact order of units for sorted containers, so two
// paths may be equal while one is less than the other.
//
// Failures: operations on the text have a result for every input; the one
// report is zunFixMe("You can not append an absolute path"). Operations on
// the disk report by a false result, a null FILE or an empty path; nothing
// here throws (see the debug print channel for the one exception of Open).
// An exhausted heap leaves the text as zunStringW leaves it.
//
// Threads: a path is a plain value, for one thread at a time. CreateFolder
// moves the process's current folder while it runs.
#ifndef ZUN_PATH_H
#define ZUN_PATH_H

#include <cstdint>
#include <cstdio>
#include <functional>

#include "zunConfig.h"
#include "zunFlags.h"
#include "zunString.h"
#include "zunStringList.h"

/// A file-system path held as canonical text (backslash separators, 16-bit
/// units), with the operations that take it to the disk.
class ZUN_API zunPath
{
public:
    /// Whether GetLastComponent keeps the extension.
    enum LastComponentOption
    {
        WithExtension = 0,
        WithoutExtension = 1
    };

    /// The two path syntaxes of the name rules. Any other number is reported
    /// with zunFixMe("unsupported path representation").
    enum Representation : int
    {
        UnityPath = 0, ///< only ":" is refused in a file name
        WinPath = 1    ///< < > " | ? * : \ / are refused in a file name
    };

    /// What ExistsAs asks for.
    enum Object
    {
        File = 0,      ///< exists and is not a folder
        Folder = 1,    ///< exists and is a folder
        AnyObject = 2, ///< exists
    };

    /// Whether Delete and Touch may clear the read-only attribute first.
    enum ReadOnlyAction
    {
        KeepReadOnly = 0,
        OverrideReadOnly = 1
    };

    /// How far a walk goes. Every number other than 1 acts as TopLevelOnly.
    enum TraverseMode
    {
        TopLevelOnly = 0,
        Recursive = 1
    };

    /// What CreateFolder makes: the path itself, or the folder holding it.
    enum CreateFolderOption
    {
        PathIsFolder = 0,
        PathIsFile = 1
    };

    /// Accepted by CopyTo; no mode changes what it does.
    enum CopyMode
    {
        CopyDefault = 0
    };

    /// Bits of MoveTo, held in a zunFlags<zunPath::MoveFlag, 2>.
    enum MoveFlag
    {
        MoveAllowCopy = 1,      ///< across file systems: copy, then delete the source
        MoveReplaceExisting = 2 ///< an existing target is replaced
    };

    /// What GetInfo and VisitFolder report of one file or folder.
    struct Info
    {
        /// Bits of `attributes`. On Linux: ReadOnly is a missing owner write
        /// bit, Hidden a name that starts with a dot (other than "." and
        /// ".."), Folder a directory, and Normal stands alone when none of
        /// those is set. System, Archive and Temporary are never set.
        enum Attribute
        {
            ReadOnly = 1,
            Hidden = 2,
            System = 4,
            Folder = 8,
            Archive = 16,
            Normal = 32,
            Temporary = 64
        };

        unsigned int attributes;      ///< Attribute bits
        std::uint64_t size;           ///< bytes; 0 for a folder
        std::uint64_t creationTime;   ///< 100 ns units since 1601-01-01 UTC (see GetInfo)
        std::uint64_t lastAccessTime; ///< 100 ns units since 1601-01-01 UTC
        std::uint64_t lastWriteTime;  ///< 100 ns units since 1601-01-01 UTC
    };

    /// The walker of VisitFolder: the child's path, its Info and the depth
    /// (0 for the folder's own entries). True goes on (and into a folder when
    /// walking recursively); false ends the whole walk.
    typedef std::function<bool(const zunPath &, const zunPath::Info &, int)> Visitor;

    // ---- Construction and assignment ------------------------------------------------

    /// The empty path.
    zunPath();
    /// A path of its own with `other`'s text.
    zunPath(const zunPath & other);
    /// Takes `other`'s storage; `other` has none afterwards and may only be
    /// assigned to or destroyed (it reads as empty meanwhile).
    zunPath(zunPath && other) noexcept;
    /// Normalises UTF-8 text; null gives the empty path. Invalid UTF-8 is
    /// replaced, never refused.
    ///@{
    zunPath(const zunString & text);
    zunPath(const char * text);
    ///@}
    /// Normalises UTF-16 text; null gives the empty path.
    ///@{
    zunPath(const zunStringW & text);
    zunPath(const zunWChar * text);
    ///@}
    /// Copies `defaultValue`, then Read. A read stopped at the stream's limit
    /// gives the empty path, as a string read there does, not the default.
    zunPath(zunFile * file, const zunPath & defaultValue);
    ~zunPath();

    /// Copies `other`'s text; self-assignment does nothing.
    zunPath & operator=(const zunPath & other);
    /// Exchanges storage: `other` ends up with this path's former text.
    zunPath & operator=(zunPath && other) noexcept;
    /// Makes the path empty.
    void Clear();

    /// An empty path, constant from the library's load.
    static const zunPath Empty;

    // ---- Text forms -------------------------------------------------------------------

    /// The canonical text itself.
    const zunStringW & WinRepresentation() const;
    /// A copy of the text in the platform's form (forward slashes on Linux).
    zunStringW OSRepresentation16() const;
    /// The platform's form in UTF-8: what the system calls take.
    zunString OSRepresentation8() const;
    /// OSRepresentation8 with every backslash turned into a forward slash.
    zunString UnityRepresentation() const;

    // ---- Queries ----------------------------------------------------------------------

    /// The text has no units.
    bool IsEmpty() const;
    /// Non-empty, and the first unit is a separator or ":\" occurs anywhere.
    bool IsAbsolute() const;
    /// Non-empty and not absolute.
    bool IsRelative() const;
    /// True only for a drive root such as `C:\`: the first separator (past a
    /// leading pair) follows a colon and ends the text. `\` is no root.
    bool IsRoot() const;

    /// The names of the path in UTF-8: the text split at every separator,
    /// empty names dropped. `C:\a\b\` gives `C:`, `a`, `b`; `\\srv\s` gives
    /// `srv`, `s`.
    zunStringListT<char> GetComponents() const;

    /// The last name of the path, without a trailing separator: `a\b\` gives
    /// `b`; a path without an inner separator gives its text with every
    /// separator taken out (`C:\` gives `C:`, `\` the empty text). Without
    /// the extension, the name is cut from its last dot on, so `.profile`
    /// gives the empty text.
    zunStringW GetLastComponent16(zunPath::LastComponentOption option = WithExtension) const;
    /// The same in UTF-8.
    zunString GetLastComponent(zunPath::LastComponentOption option = WithExtension) const;
    /// The text after the `level`-th dot counted from the end of the last
    /// name, without the dot; when the name has fewer dots, after its first.
    /// Level 0, an empty path or a name without a dot give the empty text.
    /// `a.b.c`: level 1 `c`, levels 2 and 3 `b.c`; `.profile`: `profile`.
    /// GetExtension gives the same in UTF-8.
    ///@{
    zunStringW GetExtension16(unsigned int level = 1) const;
    zunString GetExtension(unsigned int level = 1) const;
    ///@}

    // ---- Changes and derived paths ------------------------------------------------------

    /// Appends `other` behind a separator (none is doubled). An absolute
    /// `other` on a non-empty path is refused with zunFixMe("You can not
    /// append an absolute path") and the path stays. An empty path takes
    /// `other`'s text. Nothing is normalised afterwards.
    zunPath & operator+=(const zunPath & other);
    /// A copy with `other` appended by +=.
    zunPath operator+(const zunPath & other) const;

    /// Climbs `levels` names up; a ".." at the end is one more level, "." and
    /// extra separators at the end are dropped, a ".." further in is not
    /// resolved. A non-empty result ends in a separator, and an absolute path
    /// never becomes empty: `C:\a\b` gives `C:\a\`, `a` the empty text, `C:\`
    /// gives `\`. Level 0 only tidies the end: `a\b\.` gives `a\b\`.
    zunPath & GoUp(unsigned int levels = 1);
    /// A copy gone up by GoUp.
    zunPath GetParent(unsigned int levels = 1) const;

    /// Cuts the last name from the dot that GetExtension(`level`) finds, then
    /// appends "." (unless `extension` starts with one) and `extension`. An
    /// empty `extension` removes the extension.
    zunPath & SetExtension(const zunStringW & extension, unsigned int level = 1);
    /// The same with UTF-8 text.
    zunPath & SetExtension(const zunString & extension, unsigned int level = 1);

    /// Replaces the last name by `name` (normalised as a path). A path whose
    /// only separator is the first unit, or that has none, keeps its text and
    /// gets `name` appended (`abc` with `x` gives `abc\x`); a trailing
    /// separator alone is what goes from `a\b\` (with `c`: `a\b\c`). An
    /// absolute `name` is refused as by +=, after the cut. UTF-8 `name` is
    /// converted first.
    ///@{
    void SetLastComponent(const zunStringW & name);
    void SetLastComponent(const zunString & name);
    ///@}

    /// Puts the absolute `base` in front of a relative or empty path (an
    /// empty one becomes `base` with a trailing separator) and collapses
    /// separators. An absolute path, or a base that is empty or relative,
    /// leaves the path as it is. GetAbsolutePath returns a changed copy.
    ///@{
    zunPath & MakeAbsolutePath(const zunPath & base);
    zunPath GetAbsolutePath(const zunPath & base) const;
    ///@}

    /// Removes the absolute `base` (taken with a trailing separator, compared
    /// without case) from the front: `C:\a\b\c` with `C:\A\` gives `b\c`. A
    /// path outside `base` stays as it is; no ".." is ever made. A relative
    /// path, or a base that is empty or relative, clears the path.
    /// GetRelativePath returns a changed copy.
    ///@{
    zunPath & MakeRelativePath(const zunPath & base);
    zunPath GetRelativePath(const zunPath & base) const;
    ///@}

    // ---- Comparison ---------------------------------------------------------------------

    /// Whether the file system of `path` tells case apart: false, for every path.
    static bool IsFSCaseSensitive(const zunPath & path);
    /// The texts compared without case (exactly, were a file system case-
    /// sensitive). Nothing else is normalised: `a\b` is not `a\b\`.
    ///@{
    bool operator==(const zunPath & other) const;
    bool operator!=(const zunPath & other) const;
    ///@}
    /// Exact order of the 16-bit units, case included.
    bool operator<(const zunPath & other) const;

    // ---- The disk -----------------------------------------------------------------------
    //
    // Each reports by its result and leaves the disk as the failed call left
    // it. The platform decides permissions, except where the library decides
    // itself: a read-only file (no owner write bit) is never deleted, touched
    // or replaced by a move, even by a process that the system would allow.

    /// Fills `info`; false when the thing is not there or cannot be opened
    /// for reading. Links are followed. Times: the creation time is the birth
    /// time where the file system keeps one, else the last status change.
    bool GetInfo(zunPath::Info & info) const;
    /// False when GetInfo fails, and for an unsupported object number
    /// (reported with zunFixMe("unsupported object type")).
    bool ExistsAs(zunPath::Object object) const;
    /// False without this path's Info; true when `other` has none; else this
    /// last write time is strictly later than `other`'s.
    bool IsNewerThan(const zunPath & other) const;
    /// Copies a file or a whole folder. An existing folder as `target`
    /// receives the copy inside it; otherwise the copy takes the name
    /// `target`, and missing folders on the way are made. Existing files are
    /// replaced (read-only ones excepted). Write times and permission bits
    /// travel with the copy. A folder is never copied into itself.
    bool CopyTo(const zunPath & target, zunPath::CopyMode mode = CopyDefault) const;
    /// Renames this path to `target`. Across file systems only with
    /// MoveAllowCopy, and then only a file (copied, then the source deleted;
    /// a source that will not go is left and the move still succeeds). An
    /// existing target is replaced only with MoveReplaceExisting.
    bool MoveTo(const zunPath & target, const zunFlags<zunPath::MoveFlag, 2> & flags = zunFlags<MoveFlag, 2>()) const;
    /// Delete with an empty mask: a file (its read-only attribute cleared
    /// first with OverrideReadOnly) or an empty folder. False for an empty path.
    bool Delete(zunPath::ReadOnlyAction action = KeepReadOnly) const;
    /// With a mask: deletes the files of this folder that match it (sub-
    /// folders are left alone); OverrideReadOnly clears the read-only
    /// attribute of the folder, not of the files, so a read-only file stops
    /// the deletion there with false. An empty mask deletes this path itself.
    bool Delete(const zunString & mask, zunPath::ReadOnlyAction action = KeepReadOnly) const;
    /// Deletes the folder and everything in it, read-only files included.
    /// False only when this is not an existing folder: a partial failure is
    /// not reported (check ExistsAs afterwards if you must know).
    bool DeleteFolderRecursive() const;

    // ---- File form ----------------------------------------------------------------------
    // The canonical text as a wide string: a 32-bit count of UTF-8 bytes, the
    // bytes and a zero byte. Backslashes are stored as they stand.

    /// Reads the text as it is stored, without normalising it.
    void Read(zunFile * file);
    /// Throws zunException when the bytes don't go out.
    void Write(zunFile * file) const;

    // ---- Name rules and temporary names ---------------------------------------------------
    // Static: none of these looks at a path object's own text. Names and paths
    // of more than 256 units (bytes for the narrow forms) are refused.

    /// The characters a file name may not hold: ":" for UnityPath, and
    /// < > " | ? * : \ / for WinPath. Empty for another number (reported).
    ///@{
    static zunStringW GetInvalidFilenameCharacters16(zunPath::Representation representation);
    static zunString GetInvalidFilenameCharacters(zunPath::Representation representation);
    ///@}
    /// 1 to 256 units, none of them invalid in a file name.
    ///@{
    static bool IsValidFilename(const zunString & name, zunPath::Representation representation);
    static bool IsValidFilename(const zunStringW & name, zunPath::Representation representation);
    ///@}
    /// 2 to 256 units. UnityPath refuses ":"; WinPath refuses " * < > ? | and
    /// allows one colon only before the first separator (`C:\a`), where a
    /// leading `\\` doesn't count as a separator: `C:\a:b` and `a\b:c` are
    /// invalid, `\\srv\s` and `C:/a` valid.
    ///@{
    static bool IsValidPath(const zunString & path, zunPath::Representation representation);
    static bool IsValidPath(const zunStringW & path, zunPath::Representation representation);
    ///@}
    /// A copy of `name` with each invalid character replaced by
    /// `replacement`; unchanged when `name` is empty or `replacement` is 0.
    static zunStringW MakeValidFilename(const zunStringW & name, zunWChar replacement,
                                        zunPath::Representation representation);
    /// The wide form over the UTF-8 `name`, but the replacement is the first
    /// decimal digit of `replacement`'s code, not the character itself: '_'
    /// (95) replaces by '9', '-' (45) by '4'. Stored names depend on this.
    static zunString MakeValidFilename(const zunString & name, char replacement,
                                       zunPath::Representation representation);
    /// `folder` + stem + the digits of one rand() + suffix, for a name that
    /// doesn't exist yet; the suffix is what follows the first dot of `stem`
    /// (`data.tmp` gives `data<digits>.tmp`). Tries 50 numbers; empty when all
    /// exist or `folder` isn't a folder. Nothing is created: another process
    /// may take the name before it is opened. Reseeds rand() from the time.
    /// A UTF-8 `stem` is converted first.
    ///@{
    static zunPath GetTemporaryFilename(zunStringW stem, const zunPath & folder);
    static zunPath GetTemporaryFilename(const zunString & stem, const zunPath & folder);
    ///@}

    /// Makes the folder (TopLevelOnly: its parent must exist), or the folder
    /// holding this path with PathIsFile. True when it exists afterwards.
    /// The process's current folder changes while this runs and is put back.
    bool CreateFolder(zunPath::TraverseMode mode = Recursive, zunPath::CreateFolderOption option = PathIsFolder) const;
    /// Sets the access and write times of a file to now (Linux keeps its own
    /// creation and change times). A read-only file fails, unless
    /// OverrideReadOnly clears the attribute for the while. A folder fails.
    bool Touch(zunPath::ReadOnlyAction action = KeepReadOnly) const;
    /// Sets (true) or clears (false) the hidden attribute. On Linux hidden is
    /// the name itself, and the library never renames: the result is true
    /// when the thing exists and its name already is as asked (starts with a
    /// dot for true, does not for false), else false.
    bool MakeHidden(bool hidden) const;
    /// true adds the owner write bit; false removes every write bit.
    bool MakeWriteable(bool writeable) const;
    /// Calls `visitor` for each entry of this folder that matches `mask` (an
    /// empty mask is "*.*"), a folder before its contents. With Recursive
    /// every folder counts as matching: the visitor is called for it whatever
    /// the mask, and the walk enters it when the visitor returned true, so the
    /// mask sorts out files only. Masks match as on Windows: without case, `*`
    /// and `?`, several masks separated by ";", and `*.*` matching every name.
    /// "." and ".." are never visited, links are not followed. A missing or
    /// empty folder is no failure: true. False as soon as a visitor says false.
    bool VisitFolder(const zunString & mask, zunPath::TraverseMode mode, Visitor visitor) const;
    /// fopen of the platform form with `mode`. On failure logs "[zunPath::Open]
    /// _wfopen(<path>, <mode>) falied! errno=<n>, '<text>'" through zunDprintf
    /// and returns null.
    FILE * Open(const char * mode) const;

    /// Looks for an existing file (not a folder) by this path with each
    /// extension of the list in turn, set at level 1, and returns the index
    /// of the first found; the path keeps that extension. A path that has an
    /// extension already is left alone: 0xFFFFFFFF. When none is found the
    /// extension is removed again and the result is 0xFFFFFFFF. Each entry
    /// replaces what follows the last dot, so after an entry holding a dot
    /// itself (`tar.gz`), the next ones stand behind its front part.
    ///@{
    unsigned int FindExtension(const zunStringListT<char> & extensions);
    unsigned int FindExtension(const zunStringListT<zunWChar> & extensions);
    ///@}

    /// The process's current folder (no trailing separator but at the root);
    /// empty when the system cannot tell.
    static zunPath GetCurrentPath();
    /// Makes this path the current folder.
    bool SetCurrentPath() const;
    /// The folder for temporary files, with its trailing separator: `\tmp\`.
    static zunPath GetTemporaryPath();

private:
    /// The walk behind VisitFolder, `depth` levels down.
    bool Walk(const zunString & mask, TraverseMode mode, const Visitor & visitor, int depth) const;
    /// The text, or an empty one for a path whose storage was moved away.
    const zunStringW & Text() const;
    /// The text to change, made anew for a path whose storage was moved away.
    zunStringW & MutableText();

    zunStringW * m_pPath; ///< owned; the canonical text. Null only after a move.
};

/// Two move flags as one set: `zunPath::MoveAllowCopy | zunPath::MoveReplaceExisting`.
inline zunFlags<zunPath::MoveFlag, 2> operator|(zunPath::MoveFlag a, zunPath::MoveFlag b)
{
    return zunFlags<zunPath::MoveFlag, 2>(a) | b;
}

#endif // ZUN_PATH_H
