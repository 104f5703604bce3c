// zunPath on the disk: queries, copies, moves, deletes, folder walks and the
// current and temporary folders, over the platform's file calls.
#include "zunPath.h"

#include <cerrno>
#include <cstring>
#include <memory>

#include "platform/FileSystem.h"
#include "zunDebugPrint.h"
#include "zunException.h"

namespace
{
    const zunWChar kEveryName[] = ZUN_W("*.*");

    bool IsDotEntry(const zunStringW & name)
    {
        return name == ZUN_W(".") || name == ZUN_W("..");
    }

    bool IsFolder(const zunPath::Info & info)
    {
        return (info.attributes & zunPath::Info::Folder) != 0;
    }

    // The search of FindExtension over a list of either encoding.
    template <typename C> unsigned int FindExtensionIn(zunPath & path, const zunStringListT<C> & extensions)
    {
        if (!path.GetExtension16(1).IsEmpty())
            return 0xFFFFFFFF;
        for (unsigned int i = 0; i < extensions.Count(); ++i)
        {
            path.SetExtension(zunStringT<C, zunCharHelper<C>>(extensions[i]), 1);
            zunPath::Info info;
            if (path.GetInfo(info) && !IsFolder(info))
                return i;
        }
        path.SetExtension(zunStringW(), 1);
        return 0xFFFFFFFF;
    }

    // Ends the platform's search when it goes out of scope.
    using Search = std::unique_ptr<zunPlatform::FindHandle>;
}

bool zunPath::GetInfo(zunPath::Info & info) const
{
    return zunPlatform::QueryInfo(Text(), info);
}

bool zunPath::ExistsAs(zunPath::Object object) const
{
    Info info;
    if (!GetInfo(info))
        return false;
    switch (object)
    {
    case File:
        return !IsFolder(info);
    case Folder:
        return IsFolder(info);
    case AnyObject:
        return true;
    }
    zunFixMe("unsupported object type");
    return false;
}

bool zunPath::IsNewerThan(const zunPath & other) const
{
    Info mine;
    if (!GetInfo(mine))
        return false;
    Info theirs;
    if (!other.GetInfo(theirs))
        return true;
    return mine.lastWriteTime > theirs.lastWriteTime;
}

bool zunPath::CopyTo(const zunPath & target, zunPath::CopyMode) const
{
    return zunPlatform::Copy(Text(), target.Text());
}

bool zunPath::MoveTo(const zunPath & target, const zunFlags<zunPath::MoveFlag, 2> & flags) const
{
    return zunPlatform::Move(Text(), target.Text(), flags.IsSet(MoveAllowCopy), flags.IsSet(MoveReplaceExisting));
}

bool zunPath::Delete(zunPath::ReadOnlyAction action) const
{
    return Delete(zunString(), action);
}

bool zunPath::Delete(const zunString & mask, zunPath::ReadOnlyAction action) const
{
    if (IsEmpty())
        return false;
    if (!mask.IsEmpty())
    {
        // The folder's read-only attribute is the one cleared, not the
        // file's: a read-only file ends the walk, whatever `action` says.
        return VisitFolder(mask, TopLevelOnly,
                           [&](const zunPath & child, const Info & info, int)
                           {
                               if (IsFolder(info))
                                   return true;
                               if (action == OverrideReadOnly)
                                   MakeWriteable(true);
                               return zunPlatform::DeleteFile(child.Text());
                           });
    }
    Info info;
    if (!GetInfo(info))
        return false;
    if (IsFolder(info))
        return zunPlatform::DeleteFolder(Text());
    if (action == OverrideReadOnly)
        MakeWriteable(true);
    return zunPlatform::DeleteFile(Text());
}

bool zunPath::DeleteFolderRecursive() const
{
    Info info;
    if (!GetInfo(info) || !IsFolder(info))
        return false;
    zunStringW name;
    const zunPath pattern = *this + zunPath(kEveryName);
    Search search(zunPlatform::FindFirst(pattern.Text(), info, name, TopLevelOnly));
    for (bool found = search != nullptr; found; found = zunPlatform::FindNext(search.get(), info, name))
    {
        if (IsDotEntry(name))
            continue;
        const zunPath child = *this + zunPath(name);
        if (IsFolder(info))
            child.DeleteFolderRecursive();
        child.Delete(OverrideReadOnly);
    }
    search.reset();
    Delete(OverrideReadOnly);
    // Found to exist and only ever combined by "or": a partial failure is
    // not told by the result.
    return true;
}

bool zunPath::CreateFolder(zunPath::TraverseMode mode, zunPath::CreateFolderOption option) const
{
    if (IsEmpty())
        return false;
    const zunPath saved = GetCurrentPath();
    const zunPath target = option == PathIsFile ? GetParent(1) : *this;
    const zunStringW & text = target.Text();
    bool made = true;
    if (mode == Recursive)
    {
        for (unsigned int i = 0; i < text.Length() && made; ++i)
        {
            if (text.GetAt(i) != u'\\')
                continue;
            const zunStringW prefix = text.SubString(0, i + 1);
            // Entering the folder is the test that it exists. The saved
            // folder is entered again at once, so that a relative prefix
            // that follows is read from where the caller stands.
            if (zunPlatform::SetCurrentFolder(prefix))
                zunPlatform::SetCurrentFolder(saved.Text());
            else
                made = zunPlatform::MakeFolder(prefix);
        }
    }
    if (made && !zunPlatform::SetCurrentFolder(text))
        made = zunPlatform::MakeFolder(text);
    zunPlatform::SetCurrentFolder(saved.Text());
    return made;
}

bool zunPath::Touch(zunPath::ReadOnlyAction action) const
{
    bool cleared = false;
    if (action == OverrideReadOnly)
    {
        Info info;
        if (GetInfo(info) && (info.attributes & Info::ReadOnly) != 0)
            cleared = MakeWriteable(true);
    }
    const bool touched = zunPlatform::SetTimesToNow(Text());
    if (cleared)
        MakeWriteable(false);
    return touched;
}

bool zunPath::MakeHidden(bool hidden) const
{
    return zunPlatform::ChangeAttribute(Text(), zunPlatform::AttributeHidden, hidden);
}

bool zunPath::MakeWriteable(bool writeable) const
{
    return zunPlatform::ChangeAttribute(Text(), zunPlatform::AttributeWriteable, writeable);
}

// The interface takes the visitor by value; the walk passes it on by reference.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool zunPath::VisitFolder(const zunString & mask, zunPath::TraverseMode mode, Visitor visitor) const
{
    return Walk(mask, mode, visitor, 0);
}

bool zunPath::Walk(const zunString & mask, TraverseMode mode, const Visitor & visitor, int depth) const
{
    const zunPath pattern = *this + (mask.IsEmpty() ? zunPath(kEveryName) : zunPath(mask));
    const zunPath folder = pattern.GetParent(1);
    Info info;
    zunStringW name;
    Search search(zunPlatform::FindFirst(pattern.Text(), info, name, mode));
    for (bool found = search != nullptr; found; found = zunPlatform::FindNext(search.get(), info, name))
    {
        if (IsDotEntry(name))
            continue;
        const zunPath child = folder + zunPath(name);
        bool goOn = visitor(child, info, depth);
        if (goOn && IsFolder(info) && mode == Recursive)
            goOn = child.Walk(mask, mode, visitor, depth + 1);
        if (!goOn)
            return false;
    }
    return true;
}

FILE * zunPath::Open(const char * mode) const
{
    FILE * file = nullptr;
    if (mode != nullptr)
        file = zunPlatform::OpenStream(Text(), mode);
    else
        errno = EINVAL; // no mode opens nothing
    if (file != nullptr)
        return file;
    const int error = errno;
    zunDprintf("[zunPath::Open] _wfopen(%s, %s) falied! errno=%d, '%s'\n",
               static_cast<const char *>(OSRepresentation8()), mode != nullptr ? mode : "(null)", error,
               std::strerror(error));
    return nullptr;
}

unsigned int zunPath::FindExtension(const zunStringListT<char> & extensions)
{
    return FindExtensionIn(*this, extensions);
}

unsigned int zunPath::FindExtension(const zunStringListT<zunWChar> & extensions)
{
    return FindExtensionIn(*this, extensions);
}

zunPath zunPath::GetCurrentPath()
{
    return zunPath(zunPlatform::GetCurrentFolder());
}

bool zunPath::SetCurrentPath() const
{
    return zunPlatform::SetCurrentFolder(Text());
}

zunPath zunPath::GetTemporaryPath()
{
    return zunPath(zunPlatform::GetTemporaryFolder());
}
