// Files. Like the platform: a handle's share mode keeps others of this process out, who get ERROR_SHARING_VIOLATION,
// and an open file, a stream's too, cannot be deleted, moved or replaced unless its opener shared that. Unlike it:
// streams open what a handle keeps to itself, the C++ library renames and removes open files, letter case counts,
// and a backslash is a character of a name, as it is for a stream.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "Handles.h"
#include "WideText.h"

namespace {

// How a descriptor of this process holds its file. One that is not listed is a stream's of the C++ library, which
// shares reading and writing and not deletion.
struct Mode {
    DWORD access = GENERIC_READ | GENERIC_WRITE;
    DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
};

std::mutex g_lock;
std::map<int, Mode>& Modes() {
    static auto* const modes = new std::map<int, Mode>;
    return *modes;
}

DWORD ErrorOf(int error) {
    return error == ENOENT    ? ERROR_FILE_NOT_FOUND
           : error == ENOTDIR ? ERROR_PATH_NOT_FOUND
           : error == EEXIST  ? ERROR_ALREADY_EXISTS
                              : ERROR_ACCESS_DENIED;
}

BOOL Done(bool done) {
    return done || Refuse(ErrorOf(errno));
}

DWORD SharingNeededFor(DWORD access) {
    return ((access & GENERIC_READ) != 0 ? FILE_SHARE_READ : 0U) |
           ((access & GENERIC_WRITE) != 0 ? FILE_SHARE_WRITE : 0U) | ((access & DELETE) != 0 ? FILE_SHARE_DELETE : 0U);
}

// With the lock held: whether no descriptor of this process keeps the file from being used so.
bool MayShare(const std::string& path, DWORD neededOfThem, DWORD offeredToThem) {
    struct stat wanted {};
    if (stat(path.c_str(), &wanted) != 0) {
        return true;
    }
    // The C++ library's directory iterator ends the process when an allocation fails.
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    for (const dirent* entry = readdir(folder.get()); entry != nullptr; entry = readdir(folder.get())) {
        const int native = std::atoi(entry->d_name);
        struct stat other {};
        // By name, because another thread may close it now.
        if (fstatat(dirfd(folder.get()), entry->d_name, &other, 0) != 0 || other.st_dev != wanted.st_dev ||
            other.st_ino != wanted.st_ino) {
            continue;
        }
        const Mode mode = Modes().count(native) != 0 ? Modes()[native] : Mode();
        if ((neededOfThem & ~mode.share) != 0 || (SharingNeededFor(mode.access) & ~offeredToThem) != 0) {
            return Refuse(ERROR_SHARING_VIOLATION) != FALSE;
        }
    }
    return true;
}

constexpr DWORD kEverything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct FileHandle : KernelObject {
    explicit FileHandle(int file) : native(file) {}
    ~FileHandle() override {
        const std::lock_guard<std::mutex> hold(g_lock);
        Modes().erase(native);
        close(native);
        if (!goes.empty()) {
            unlink(goes.c_str());
        }
    }
    int native;
    std::string goes;  // the path of a file that goes with its handle
};

int FlagsOf(DWORD access, DWORD disposition) {
    const int direction = (access & GENERIC_WRITE) == 0 ? O_RDONLY : (access & GENERIC_READ) == 0 ? O_WRONLY : O_RDWR;
    const int creation = disposition == CREATE_NEW      ? O_CREAT | O_EXCL
                         : disposition == CREATE_ALWAYS ? O_CREAT | O_TRUNC
                         : disposition == OPEN_ALWAYS   ? O_CREAT
                                                        : 0;
    return direction | creation | O_CLOEXEC;
}

// Of a ReadFile or WriteFile. count: what read or write answered.
BOOL Moved(ssize_t result, DWORD* count) {
    *count = result < 0 ? 0 : static_cast<DWORD>(result);
    return Done(result >= 0);
}

}  // namespace

HANDLE CreateFileW(LPCWSTR wide, DWORD access, DWORD share, void*, DWORD disposition, DWORD flags, HANDLE) {
    const std::string path = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_lock);
    if (!MayShare(path, SharingNeededFor(access), share)) {
        return INVALID_HANDLE_VALUE;
    }
    const int native = std::filesystem::is_directory(path) ? (errno = EISDIR, -1)
                                                           : open(path.c_str(), FlagsOf(access, disposition), 0600);
    if (native < 0) {
        SetLastError(ErrorOf(errno));
        return INVALID_HANDLE_VALUE;
    }
    Modes()[native] = {access, share};
    auto* const file = new FileHandle(native);
    file->goes = (flags & FILE_FLAG_DELETE_ON_CLOSE) != 0 ? path : "";
    return static_cast<KernelObject*>(file);
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD bytes, DWORD* count, void*) {
    auto* const file = ObjectOf<FileHandle>(handle);
    return file == nullptr ? Refuse(ERROR_INVALID_HANDLE) : Moved(read(file->native, buffer, bytes), count);
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD bytes, DWORD* count, void*) {
    auto* const file = ObjectOf<FileHandle>(handle);
    return file == nullptr ? Refuse(ERROR_INVALID_HANDLE) : Moved(write(file->native, buffer, bytes), count);
}

BOOL FlushFileBuffers(HANDLE handle) {
    auto* const file = ObjectOf<FileHandle>(handle);
    return file == nullptr ? Refuse(ERROR_INVALID_HANDLE) : Done(fsync(file->native) == 0);
}

// A file that is to be replaced must not be open at all.
BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const std::string target = NarrowText(to);
    const std::lock_guard<std::mutex> hold(g_lock);
    if (access(target.c_str(), F_OK) == 0 && (flags & MOVEFILE_REPLACE_EXISTING) == 0) {
        return Refuse(ERROR_ALREADY_EXISTS);
    }
    if (!MayShare(target, ~0U, 0)) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    const std::string source = NarrowText(from);
    return MayShare(source, FILE_SHARE_DELETE, kEverything) && Done(rename(source.c_str(), target.c_str()) == 0);
}

BOOL DeleteFileW(LPCWSTR wide) {
    const std::string path = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_lock);
    return MayShare(path, FILE_SHARE_DELETE, kEverything) && Done(unlink(path.c_str()) == 0);
}

BOOL CreateHardLinkW(LPCWSTR linkPath, LPCWSTR existing, void*) {
    return Done(link(NarrowText(existing).c_str(), NarrowText(linkPath).c_str()) == 0);
}
