// A library that is preloaded into a program of ours: it counts calls of one kind and makes one of them fail, or kills
// the process just before it. The environment says which:
//
//   OVMIC_FAULT_KIND    "files": what changes the files below a folder; "memory": blocks of some size and larger
//   OVMIC_FAULT_FOLDER  that folder, absolute
//   OVMIC_FAULT_BYTES   that size
//   OVMIC_FAULT_FROM    ending of the path of a file; counting begins when one is opened. Not set: at once
//   OVMIC_FAULT_AT      number of the call, from 1; 0 or not set: none
//   OVMIC_FAULT_HOW     "fail": no room on the disk, no memory; "kill"
//   OVMIC_FAULT_COUNT   file that receives the number of calls when the process ends by itself
//
// For Linux and glibc, whose own functions it calls.

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

extern "C" {
void *__libc_malloc(size_t bytes);
void *__libc_calloc(size_t count, size_t bytes);
void *__libc_realloc(void *block, size_t bytes);
void *__libc_memalign(size_t alignment, size_t bytes);
}

namespace
{

enum class Kind { None, Files, Memory };

Kind kind = Kind::None;
char folder[4096];
size_t smallestBlock = 0;
long faultAt = 0;
bool kills = false;
char countFile[4096];
char firstFile[4096];
std::atomic<bool> counting{false};
std::atomic<long> calls{0};

constexpr int mostFiles = 1024;
std::atomic<bool> watched[mostFiles]; // by file descriptor: open for writing below the folder

/// Counts a call. @return whether it is to fail
bool fails()
{
    if (!counting || calls.fetch_add(1) + 1 != faultAt)
        return false;
    if (kills)
        kill(getpid(), SIGKILL);
    return true;
}

bool isBelowFolder(const char *path)
{
    if (kind != Kind::Files)
        return false;
    char current[sizeof folder];
    const char *begin = path[0] == '/' ? path : getcwd(current, sizeof current);
    return begin && strncmp(begin, folder, strlen(folder)) == 0;
}

bool isWatched(int file)
{
    return kind == Kind::Files && file >= 0 && file < mostFiles && watched[file];
}

int noRoom()
{
    errno = ENOSPC;
    return -1;
}

bool refuses(size_t bytes)
{
    if (kind != Kind::Memory || bytes < smallestBlock || !fails())
        return false;
    errno = ENOMEM;
    return true;
}

template <typename Function>
Function *next(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

bool endsWith(const char *text, const char *ending)
{
    const size_t length = strlen(text);
    const size_t endingLength = strlen(ending);
    return length >= endingLength && strcmp(text + length - endingLength, ending) == 0;
}

int opened(const char *path, int flags, mode_t mode)
{
    if (kind != Kind::None && !counting && endsWith(path, firstFile))
        counting = true;
    const bool writes = (flags & O_ACCMODE) != O_RDONLY && isBelowFolder(path);
    if (writes && fails())
        return noRoom();
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    if (file >= 0 && file < mostFiles)
        watched[file] = writes;
    return file;
}

__attribute__((constructor)) void begin()
{
    const auto text = [](const char *name) {
        const char *value = getenv(name);
        return value ? value : "";
    };
    snprintf(folder, sizeof folder, "%s", text("OVMIC_FAULT_FOLDER"));
    snprintf(countFile, sizeof countFile, "%s", text("OVMIC_FAULT_COUNT"));
    snprintf(firstFile, sizeof firstFile, "%s", text("OVMIC_FAULT_FROM"));
    counting = firstFile[0] == '\0';
    smallestBlock = strtoul(text("OVMIC_FAULT_BYTES"), nullptr, 10);
    faultAt = strtol(text("OVMIC_FAULT_AT"), nullptr, 10);
    kills = strcmp(text("OVMIC_FAULT_HOW"), "kill") == 0;
    if (strcmp(text("OVMIC_FAULT_KIND"), "files") == 0)
        kind = Kind::Files;
    if (strcmp(text("OVMIC_FAULT_KIND"), "memory") == 0)
        kind = Kind::Memory;
}

__attribute__((destructor)) void end()
{
    kind = Kind::None;
    if (countFile[0] == '\0')
        return;
    char number[32];
    const int length = snprintf(number, sizeof number, "%ld", calls.load());
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, countFile, O_WRONLY | O_CREAT, 0600));
    if (syscall(SYS_write, file, number, length) == length)
        syscall(SYS_close, file);
}

} // namespace

extern "C" {

void *malloc(size_t bytes) noexcept
{
    return refuses(bytes) ? nullptr : __libc_malloc(bytes);
}

void *calloc(size_t count, size_t bytes) noexcept
{
    return refuses(count * bytes) ? nullptr : __libc_calloc(count, bytes);
}

void *realloc(void *block, size_t bytes) noexcept
{
    return refuses(bytes) ? nullptr : __libc_realloc(block, bytes);
}

void *aligned_alloc(size_t alignment, size_t bytes) noexcept
{
    return refuses(bytes) ? nullptr : __libc_memalign(alignment, bytes);
}

int posix_memalign(void **block, size_t alignment, size_t bytes) noexcept
{
    *block = refuses(bytes) ? nullptr : __libc_memalign(alignment, bytes);
    return *block ? 0 : ENOMEM;
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return opened(path, flags, mode);
}

// A disk that is nearly full takes a part.
ssize_t write(int file, const void *bytes, size_t count)
{
    if (isWatched(file) && fails()) {
        if (count > 1)
            return syscall(SYS_write, file, bytes, count / 2) < 0 ? -1 : noRoom();
        return noRoom();
    }
    return syscall(SYS_write, file, bytes, count);
}

int close(int file)
{
    const bool fault = isWatched(file) && fails();
    if (file >= 0 && file < mostFiles)
        watched[file] = false;
    const auto result = static_cast<int>(syscall(SYS_close, file));
    return fault ? noRoom() : result;
}

int fsync(int file)
{
    return isWatched(file) && fails() ? noRoom() : static_cast<int>(syscall(SYS_fsync, file));
}

int fdatasync(int file)
{
    return isWatched(file) && fails() ? noRoom() : static_cast<int>(syscall(SYS_fdatasync, file));
}

int ftruncate64(int file, off64_t size) noexcept
{
    return isWatched(file) && fails() ? noRoom() : static_cast<int>(syscall(SYS_ftruncate, file, size));
}

int fchmod(int file, mode_t mode) noexcept
{
    return isWatched(file) && fails() ? noRoom() : static_cast<int>(syscall(SYS_fchmod, file, mode));
}

int fchown(int file, uid_t user, gid_t group) noexcept
{
    return isWatched(file) && fails() ? noRoom() : static_cast<int>(syscall(SYS_fchown, file, user, group));
}

int chmod(const char *path, mode_t mode) noexcept
{
    static auto *const real = next<int(const char *, mode_t)>("chmod");
    return isBelowFolder(path) && fails() ? noRoom() : real(path, mode);
}

int rename(const char *from, const char *to) noexcept
{
    static auto *const real = next<int(const char *, const char *)>("rename");
    return isBelowFolder(to) && fails() ? noRoom() : real(from, to);
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    static auto *const real = next<int(int, const char *, int, const char *, unsigned)>("renameat2");
    return isBelowFolder(to) && fails() ? noRoom() : real(fromFolder, from, toFolder, to, flags);
}

int link(const char *from, const char *to) noexcept
{
    static auto *const real = next<int(const char *, const char *)>("link");
    return isBelowFolder(to) && fails() ? noRoom() : real(from, to);
}

int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept
{
    static auto *const real = next<int(int, const char *, int, const char *, int)>("linkat");
    return isBelowFolder(to) && fails() ? noRoom() : real(fromFolder, from, toFolder, to, flags);
}

int unlink(const char *path) noexcept
{
    static auto *const real = next<int(const char *)>("unlink");
    return isBelowFolder(path) && fails() ? noRoom() : real(path);
}

int mkdir(const char *path, mode_t mode) noexcept
{
    static auto *const real = next<int(const char *, mode_t)>("mkdir");
    return isBelowFolder(path) && fails() ? noRoom() : real(path, mode);
}
}
