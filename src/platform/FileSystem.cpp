// File and folder calls over POSIX: statx, access, mkdir, unlink, rmdir,
// rename, opendir and the read/write copy.
#include "FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "NameMask.h"
#include "UTFPrivate.h"
#include "zunException.h"

namespace zunPlatform
{
    namespace
    {
        bool g_forceCrossDevice = false;

        constexpr std::int64_t kSecondsFrom1601To1970 = 11644473600LL;

        // The platform's form: UTF-8 with forward slashes.
        std::string Native(const zunWChar * path)
        {
            const std::size_t units = zunUTFPrivate::WideLength(path);
            std::string text(zunUTFPrivate::CountUTF8(path, units), '\0');
            text.resize(zunUTFPrivate::ToUTF8(path, units, &text[0], text.size()));
            for (char & c : text)
                if (c == '\\')
                    c = '/';
            return text;
        }

        // `folder`/`name` in one allocation.
        std::string ChildPath(const std::string & folder, const std::string & name)
        {
            std::string path;
            path.reserve(folder.size() + 1 + name.size());
            path.append(folder).append(1, '/').append(name);
            return path;
        }

        zunStringW Wide(const char * text)
        {
            zunStringW wide;
            wide = text;
            return wide;
        }

        std::uint64_t FileTime(const struct statx_timestamp & t)
        {
            const std::int64_t seconds = t.tv_sec + kSecondsFrom1601To1970;
            if (seconds < 0)
                return 0; // before 1601: the earliest time there is
            return static_cast<std::uint64_t>(seconds) * 10000000u + t.tv_nsec / 100;
        }

        bool Stat(int folder, const char * path, bool followLinks, struct statx & status)
        {
            const int flags = followLinks ? 0 : AT_SYMLINK_NOFOLLOW;
            return statx(folder, path, flags, STATX_BASIC_STATS | STATX_BTIME, &status) == 0;
        }

        bool IsHiddenName(const std::string & name)
        {
            return !name.empty() && name[0] == '.' && name != "." && name != "..";
        }

        // The last name of a platform path, trailing slashes aside.
        std::string LastName(const std::string & path)
        {
            std::string::size_type end = path.find_last_not_of('/');
            if (end == std::string::npos)
                return std::string();
            const std::string::size_type slash = path.rfind('/', end);
            const std::string::size_type start = slash == std::string::npos ? 0 : slash + 1;
            return path.substr(start, end + 1 - start);
        }

        bool IsReadOnly(unsigned int mode)
        {
            return (mode & S_IWUSR) == 0;
        }

        void FillInfo(const struct statx & status, const std::string & name, zunPath::Info & info)
        {
            const bool folder = S_ISDIR(status.stx_mode);
            unsigned int attributes = 0;
            if (IsReadOnly(status.stx_mode))
                attributes |= zunPath::Info::ReadOnly;
            if (IsHiddenName(name))
                attributes |= zunPath::Info::Hidden;
            if (folder)
                attributes |= zunPath::Info::Folder;
            info.attributes = attributes != 0 ? attributes : static_cast<unsigned int>(zunPath::Info::Normal);
            info.size = folder ? 0 : status.stx_size;
            info.creationTime = FileTime((status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_ctime);
            info.lastAccessTime = FileTime(status.stx_atime);
            info.lastWriteTime = FileTime(status.stx_mtime);
        }

        bool WriteAll(int file, const char * data, std::size_t size)
        {
            while (size > 0)
            {
                const ssize_t written = write(file, data, size);
                if (written < 0 && errno == EINTR)
                    continue;
                if (written <= 0)
                    return false;
                data += written;
                size -= static_cast<std::size_t>(written);
            }
            return true;
        }

        bool CopyBytes(int from, int to)
        {
            std::vector<char> buffer(1 << 16);
            for (;;)
            {
                const ssize_t got = read(from, buffer.data(), buffer.size());
                if (got < 0 && errno == EINTR)
                    continue;
                if (got < 0)
                    return false;
                if (got == 0)
                    return true;
                if (!WriteAll(to, buffer.data(), static_cast<std::size_t>(got)))
                    return false;
            }
        }

        // The file's bytes, permission bits and times into `to`, which is
        // made or replaced. A read-only target, a folder and the very same
        // file are refused.
        bool CopyFile(const std::string & from, const std::string & to, const struct stat & source)
        {
            struct stat target;
            if (lstat(to.c_str(), &target) == 0)
            {
                if (S_ISDIR(target.st_mode) || (S_ISREG(target.st_mode) && IsReadOnly(target.st_mode)) ||
                    (target.st_dev == source.st_dev && target.st_ino == source.st_ino))
                    return false;
            }
            const int in = open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
            if (in < 0)
                return false;
            const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, 0600);
            if (out < 0)
            {
                close(in);
                return false;
            }
            bool copied = CopyBytes(in, out);
            const struct timespec times[2] = {source.st_atim, source.st_mtim};
            copied = fchmod(out, source.st_mode & 07777) == 0 && copied;
            copied = futimens(out, times) == 0 && copied;
            close(in);
            copied = close(out) == 0 && copied;
            return copied;
        }

        bool CopyLink(const std::string & from, const std::string & to)
        {
            std::vector<char> target(PATH_MAX + 1);
            const ssize_t length = readlink(from.c_str(), target.data(), target.size() - 1);
            if (length < 0)
                return false;
            target[static_cast<std::size_t>(length)] = 0;
            struct stat existing;
            if (lstat(to.c_str(), &existing) == 0 && (S_ISDIR(existing.st_mode) || unlink(to.c_str()) != 0))
                return false;
            return symlink(target.data(), to.c_str()) == 0;
        }

        bool CopyEntry(const std::string & from, const std::string & to);

        // A folder and everything in it; a folder of that name is merged
        // into. Its permission bits are set last, so that a read-only source
        // folder still receives its copy.
        bool CopyFolder(const std::string & from, const std::string & to, const struct stat & source)
        {
            struct stat target;
            if (lstat(to.c_str(), &target) == 0 ? !S_ISDIR(target.st_mode) : mkdir(to.c_str(), 0700) != 0)
                return false;
            DIR * folder = opendir(from.c_str());
            if (folder == nullptr)
                return false;
            bool copied = true;
            while (const dirent * entry = readdir(folder))
            {
                const std::string name = entry->d_name;
                if (name != "." && name != "..")
                    copied = CopyEntry(ChildPath(from, name), ChildPath(to, name)) && copied;
            }
            closedir(folder);
            const struct timespec times[2] = {source.st_atim, source.st_mtim};
            copied = chmod(to.c_str(), source.st_mode & 07777) == 0 && copied;
            copied = utimensat(AT_FDCWD, to.c_str(), times, 0) == 0 && copied;
            return copied;
        }

        bool CopyEntry(const std::string & from, const std::string & to)
        {
            struct stat source;
            if (lstat(from.c_str(), &source) != 0)
                return false;
            if (S_ISDIR(source.st_mode))
                return CopyFolder(from, to, source);
            if (S_ISREG(source.st_mode))
                return CopyFile(from, to, source);
            if (S_ISLNK(source.st_mode))
                return CopyLink(from, to);
            return false; // devices, pipes and sockets are not copied
        }

        // mkdir of every missing folder above `path`.
        bool MakeParents(const std::string & path)
        {
            for (std::string::size_type slash = path.find('/', 1); slash != std::string::npos;
                 slash = path.find('/', slash + 1))
            {
                const std::string prefix = path.substr(0, slash);
                struct stat status;
                if (stat(prefix.c_str(), &status) != 0 && mkdir(prefix.c_str(), 0777) != 0)
                    return false;
            }
            return true;
        }

        std::string RealPath(const std::string & path)
        {
            char * resolved = realpath(path.c_str(), nullptr);
            if (resolved == nullptr)
                return std::string();
            std::string result = resolved;
            std::free(resolved);
            return result;
        }

        // True when `path` is `folder` or lies inside it, both resolved.
        bool IsInside(const std::string & path, const std::string & folder)
        {
            const std::string resolvedFolder = RealPath(folder);
            const std::string::size_type slash = path.find_last_of('/');
            const std::string parent = RealPath(slash == std::string::npos ? "." : path.substr(0, slash + 1));
            if (resolvedFolder.empty() || parent.empty())
                return true; // what cannot be told apart is not copied
            return parent == resolvedFolder || parent.compare(0, resolvedFolder.size() + 1, resolvedFolder + "/") == 0;
        }

        bool Rename(const std::string & from, const std::string & to, bool replace)
        {
            if (g_forceCrossDevice)
            {
                errno = EXDEV;
                return false;
            }
            if (replace)
                return rename(from.c_str(), to.c_str()) == 0;
            if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
                return true;
            if (errno != EINVAL && errno != ENOSYS)
                return false;
            // A file system that cannot refuse the replacement by itself.
            struct stat existing;
            if (lstat(to.c_str(), &existing) == 0)
            {
                errno = EEXIST;
                return false;
            }
            return rename(from.c_str(), to.c_str()) == 0;
        }

        struct FindFileData : FindHandle
        {
            ~FindFileData() override
            {
                if (folder != nullptr)
                    closedir(folder);
            }

            DIR * folder = nullptr;
            zunStringW mask;
            int mode = 0;
        };

        // The next entry of the search that the mask accepts (in mode 1 a
        // folder always does), with its Info, links not followed. An entry
        // that is gone by the time it is looked at is passed over.
        bool NextMatch(FindFileData & search, zunPath::Info & info, zunStringW & name)
        {
            while (const dirent * entry = readdir(search.folder))
            {
                struct statx status;
                if (!Stat(dirfd(search.folder), entry->d_name, false, status))
                    continue;
                const zunStringW wideName = Wide(entry->d_name);
                if (!(search.mode == 1 && S_ISDIR(status.stx_mode)) && !MatchesNameMask(wideName, search.mask))
                    continue;
                FillInfo(status, entry->d_name, info);
                name = wideName;
                return true;
            }
            return false;
        }
    }

    bool QueryInfo(const zunWChar * path, zunPath::Info & info)
    {
        const std::string native = Native(path);
        struct statx status;
        if (native.empty() || !Stat(AT_FDCWD, native.c_str(), true, status))
            return false;
        if (faccessat(AT_FDCWD, native.c_str(), R_OK, AT_EACCESS) != 0)
            return false;
        FillInfo(status, LastName(native), info);
        return true;
    }

    bool MakeFolder(const zunWChar * path)
    {
        return mkdir(Native(path).c_str(), 0777) == 0;
    }

    bool DeleteFile(const zunWChar * path)
    {
        const std::string native = Native(path);
        struct stat status;
        if (lstat(native.c_str(), &status) != 0)
            return false;
        if (S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && IsReadOnly(status.st_mode)))
        {
            errno = S_ISDIR(status.st_mode) ? EISDIR : EACCES;
            return false;
        }
        return unlink(native.c_str()) == 0;
    }

    bool DeleteFolder(const zunWChar * path)
    {
        return rmdir(Native(path).c_str()) == 0;
    }

    bool SetCurrentFolder(const zunWChar * path)
    {
        return chdir(Native(path).c_str()) == 0;
    }

    zunStringW GetCurrentFolder()
    {
        std::vector<char> buffer(PATH_MAX);
        while (getcwd(buffer.data(), buffer.size()) == nullptr)
        {
            if (errno != ERANGE)
                return zunStringW();
            buffer.resize(buffer.size() * 2);
        }
        return Wide(buffer.data());
    }

    zunStringW GetTemporaryFolder()
    {
        return Wide(P_tmpdir "/");
    }

    bool ChangeAttribute(const zunWChar * path, unsigned int attribute, bool value)
    {
        if (attribute != AttributeWriteable && attribute != AttributeHidden)
        {
            zunFixMe("Unsupported attribute");
            return false;
        }
        const std::string native = Native(path);
        struct stat status;
        if (stat(native.c_str(), &status) != 0)
            return false;
        if (attribute == AttributeHidden)
            return IsHiddenName(LastName(native)) == value;
        const mode_t mode = status.st_mode & 07777;
        const mode_t changed = value ? (mode | S_IWUSR) : (mode & ~(S_IWUSR | S_IWGRP | S_IWOTH));
        return changed == mode || chmod(native.c_str(), changed) == 0;
    }

    bool Copy(const zunWChar * from, const zunWChar * to)
    {
        const std::string source = Native(from);
        std::string target = Native(to);
        struct stat status;
        if (source.empty() || target.empty() || stat(source.c_str(), &status) != 0)
            return false;
        struct stat existing;
        if (stat(target.c_str(), &existing) == 0 && S_ISDIR(existing.st_mode))
        {
            const std::string name = LastName(source);
            if (name.empty() || name == "." || name == "..")
                return false;
            target += (target.back() == '/' ? "" : "/") + name;
        }
        while (target.size() > 1 && target.back() == '/')
            target.pop_back();
        if (!MakeParents(target))
            return false;
        if (S_ISDIR(status.st_mode) && IsInside(target, source))
        {
            errno = EINVAL;
            return false;
        }
        return CopyEntry(source, target);
    }

    bool Move(const zunWChar * from, const zunWChar * to, bool allowCopy, bool replace)
    {
        const std::string source = Native(from);
        const std::string target = Native(to);
        if (source.empty() || target.empty())
            return false;
        struct stat existing;
        const bool targetExists = lstat(target.c_str(), &existing) == 0;
        if (targetExists && replace && S_ISREG(existing.st_mode) && IsReadOnly(existing.st_mode))
        {
            errno = EACCES;
            return false;
        }
        if (Rename(source, target, replace))
            return true;
        if (errno != EXDEV || !allowCopy)
            return false;
        // Across file systems a file is copied and its source deleted; a
        // folder does not move there. A source that will not go stays.
        struct stat status;
        if (lstat(source.c_str(), &status) != 0 || S_ISDIR(status.st_mode))
            return false;
        if (targetExists && !replace)
        {
            errno = EEXIST;
            return false;
        }
        if (targetExists && !S_ISDIR(existing.st_mode) && unlink(target.c_str()) != 0)
            return false;
        if (!CopyEntry(source, target))
            return false;
        unlink(source.c_str());
        return true;
    }

    bool SetTimesToNow(const zunWChar * path)
    {
        const std::string native = Native(path);
        struct stat status;
        if (stat(native.c_str(), &status) != 0)
            return false;
        if (S_ISDIR(status.st_mode) || IsReadOnly(status.st_mode))
        {
            errno = S_ISDIR(status.st_mode) ? EISDIR : EACCES;
            return false;
        }
        const int file = open(native.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
        if (file < 0)
            return false;
        const bool set = futimens(file, nullptr) == 0;
        close(file);
        return set;
    }

    FILE * OpenStream(const zunWChar * path, const char * mode)
    {
        return std::fopen(Native(path).c_str(), mode);
    }

    bool IsCaseSensitive(const zunWChar *)
    {
        return false;
    }

    FindHandle * FindFirst(const zunWChar * search, zunPath::Info & info, zunStringW & name, int mode)
    {
        zunStringW text;
        text = search;
        const unsigned int separator = text.FindLast(u'\\', 0xFFFFFFFF);
        FindFileData * data = new FindFileData;
        data->mode = mode;
        std::string folder = "."; // a bare mask searches the current folder
        if (separator == 0xFFFFFFFF)
            data->mask = text;
        else
        {
            folder = Native(text.SubString(0, separator + 1));
            data->mask = text.SubString(separator + 1, 0xFFFFFFFF);
        }
        data->folder = opendir(folder.c_str());
        if (data->folder == nullptr || !NextMatch(*data, info, name))
        {
            delete data;
            return nullptr;
        }
        return data;
    }

    bool FindNext(FindHandle * handle, zunPath::Info & info, zunStringW & name)
    {
        FindFileData * data = static_cast<FindFileData *>(handle);
        return NextMatch(*data, info, name);
    }

    void ForceCrossDeviceMoves(bool force)
    {
        g_forceCrossDevice = force;
    }
}
