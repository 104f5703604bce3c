// The descriptor calls beneath the disk streams, and the texts of errno.
#include "DiskFile.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "UTFPrivate.h"

namespace zunPlatform
{
    namespace
    {
        std::string Narrow(const zunWChar * path)
        {
            const std::size_t units = zunUTFPrivate::WideLength(path);
            std::string text(zunUTFPrivate::CountUTF8(path, units), '\0');
            text.resize(zunUTFPrivate::ToUTF8(path, units, &text[0], text.size()));
            return text;
        }

        int SystemFlags(int flags)
        {
            int system = (flags & DiskOpenReadWrite) != 0 ? O_RDWR : O_RDONLY;
            if ((flags & DiskOpenCreate) != 0)
                system |= O_CREAT;
            if ((flags & DiskOpenTruncate) != 0)
                system |= O_TRUNC;
            if ((flags & DiskOpenExclusive) != 0)
                system |= O_EXCL;
            // Binary is the only mode there is; a descriptor isn't inherited
            // by the processes the library starts.
            return system | O_CLOEXEC;
        }

        struct ErrorName
        {
            int number;
            const char * text;
        };

        // The texts in the order of the target runtime's numbers, keyed by
        // this system's own codes. Where two names share a code here (EAGAIN
        // and EWOULDBLOCK, ENOTSUP and EOPNOTSUPP) the first text wins; the
        // runtime's "String was truncated" and "other" have no code here.
        const ErrorName kErrorNames[] = {
            {EPERM, "operation not permitted"},
            {ENOENT, "no such file or directory"},
            {ESRCH, "no such process"},
            {EINTR, "interrupted"},
            {EIO, "io error"},
            {ENXIO, "no such device or address"},
            {E2BIG, "argument list too long"},
            {ENOEXEC, "executable format error"},
            {EBADF, "bad file descriptor"},
            {ECHILD, "no child process"},
            {EAGAIN, "resource unavailable try again"},
            {ENOMEM, "not enough memory"},
            {EACCES, "permission denied"},
            {EFAULT, "bad address"},
            {EBUSY, "device or resource busy"},
            {EEXIST, "file exists"},
            {EXDEV, "cross device link"},
            {ENODEV, "no such device"},
            {ENOTDIR, "not a directory"},
            {EISDIR, "is a directory"},
            {EINVAL, "invalid argument"},
            {ENFILE, "too many files open in system"},
            {EMFILE, "too many files open"},
            {ENOTTY, "inappropriate io control operation"},
            {EFBIG, "file too large"},
            {ENOSPC, "no space on device"},
            {ESPIPE, "invalid seek"},
            {EROFS, "read only file system"},
            {EMLINK, "too many links"},
            {EPIPE, "broken pipe"},
            {EDOM, "argument out of domain"},
            {ERANGE, "result out of range"},
            {EDEADLK, "resource deadlock would occur"},
            {ENAMETOOLONG, "filename too long"},
            {ENOLCK, "no lock available"},
            {ENOSYS, "function not supported"},
            {ENOTEMPTY, "directory not empty"},
            {EILSEQ, "illegal byte sequence"},
            {EADDRINUSE, "address in use"},
            {EADDRNOTAVAIL, "address not available"},
            {EAFNOSUPPORT, "address family not supported"},
            {EALREADY, "connection already in progress"},
            {EBADMSG, "bad message"},
            {ECANCELED, "operation canceled"},
            {ECONNABORTED, "connection aborted"},
            {ECONNREFUSED, "connection refused"},
            {ECONNRESET, "connection reset"},
            {EDESTADDRREQ, "destination address required"},
            {EHOSTUNREACH, "host unreachable"},
            {EIDRM, "identifier removed"},
            {EINPROGRESS, "operation in progress"},
            {EISCONN, "already connected"},
            {ELOOP, "too many synbolic link levels"},
            {EMSGSIZE, "message size"},
            {ENETDOWN, "network down"},
            {ENETRESET, "network reset"},
            {ENETUNREACH, "network unreachable"},
            {ENOBUFS, "no buffer space"},
            {ENODATA, "no message available"},
            {ENOLINK, "no link"},
            {ENOMSG, "no message"},
            {ENOPROTOOPT, "no protocol option"},
            {ENOSR, "no stream resources"},
            {ENOSTR, "not a stream"},
            {ENOTCONN, "not connected"},
            {ENOTRECOVERABLE, "state not recoverable"},
            {ENOTSOCK, "not a socket"},
            {ENOTSUP, "not supported"},
            {EOPNOTSUPP, "operation not supported"},
            {EOVERFLOW, "value too large"},
            {EOWNERDEAD, "owner dead"},
            {EPROTO, "protocol error"},
            {EPROTONOSUPPORT, "protocol not supported"},
            {EPROTOTYPE, "wrong protocol type"},
            {ETIME, "stream timeout"},
            {ETIMEDOUT, "timed out"},
            {ETXTBSY, "text file busy"},
            {EWOULDBLOCK, "operation would block"},
        };
    }

    int OpenDescriptor(const zunWChar * path, int flags, int permission)
    {
        const std::string native = Narrow(path);
        int descriptor;
        do
            descriptor = open(native.c_str(), SystemFlags(flags), static_cast<mode_t>(permission));
        while (descriptor == -1 && errno == EINTR);
        return descriptor;
    }

    std::int64_t ReadDescriptor(int descriptor, void * data, unsigned int count)
    {
        ssize_t n;
        do
            n = read(descriptor, data, count);
        while (n == -1 && errno == EINTR);
        return n;
    }

    std::int64_t WriteDescriptor(int descriptor, const void * data, unsigned int count)
    {
        // A partial write is followed up until the rest goes out or a call
        // fails, so that a short count always comes with the errno of its cause.
        const auto * bytes = static_cast<const unsigned char *>(data);
        std::int64_t total = 0;
        while (total < count)
        {
            const ssize_t n = write(descriptor, bytes + total, count - static_cast<unsigned int>(total));
            if (n == -1 && errno == EINTR)
                continue;
            if (n <= 0)
                return total != 0 ? total : -1;
            total += n;
        }
        return total;
    }

    std::int64_t SeekDescriptor(int descriptor, std::int64_t offset, DiskSeekBase base)
    {
        const int whence = base == DiskSeekCurrent ? SEEK_CUR : base == DiskSeekEnd ? SEEK_END : SEEK_SET;
        return lseek(descriptor, static_cast<off_t>(offset), whence);
    }

    int CloseDescriptor(int descriptor)
    {
        return close(descriptor);
    }

    int UnlinkFile(const zunWChar * path)
    {
        return unlink(Narrow(path).c_str());
    }

    int ErrorNumber()
    {
        return errno;
    }

    const char * ErrorText(int number)
    {
        for (const ErrorName & name : kErrorNames)
            if (name.number == number)
                return name.text;
        return "unknown";
    }
}
