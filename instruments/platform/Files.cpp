// Files. Like the platform: a handle that shares nothing keeps others of this process out and is refused while anybody
// has the file open, both with ERROR_SHARING_VIOLATION; an open file, a stream's too, cannot be deleted, moved or
// replaced. Unlike it: a handle shares nothing or everything and reads or writes, anything between fails; a handle that
// shares deletion does not allow it; streams open what a handle keeps to itself, the C++ library renames and removes
// open files, letter case counts, and a backslash is a character of a name, as it is for a stream.

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <windows.h>

#include <cerrno>
#include <memory>
#include <mutex>
#include <string>

#include "Handles.h"
#include "WideText.h"

namespace {

// Held from the look at a file until it is open, moved or gone.
std::mutex g_lock;

BOOL Done(bool done) {
    return done || Refuse(errno == ENOENT        ? ERROR_FILE_NOT_FOUND
                          : errno == EWOULDBLOCK ? ERROR_SHARING_VIOLATION
                                                 : ERROR_ACCESS_DENIED);
}

// Whether a descriptor of this process has the file open. The C++ library's directory iterator ends the process when an
// allocation fails.
bool IsOpen(const std::string& path) {
    struct stat wanted {};
    struct stat other {};
    const bool exists = stat(path.c_str(), &wanted) == 0;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), closedir);
    for (const dirent* entry = nullptr; exists && (entry = readdir(folder.get())) != nullptr;) {
        // By name, because another thread may close it now.
        if (fstatat(dirfd(folder.get()), entry->d_name, &other, 0) == 0 && other.st_dev == wanted.st_dev &&
            other.st_ino == wanted.st_ino) {
            return true;
        }
    }
    return false;
}

struct FileHandle : KernelObject {
    FileHandle(int descriptor, std::string path) : native(descriptor), goes(std::move(path)) {}
    ~FileHandle() override {
        const std::lock_guard<std::mutex> hold(g_lock);
        close(native);
        if (!goes.empty()) {
            unlink(goes.c_str());
        }
    }
    int native;
    std::string goes;  // the path of a file that goes with its handle
};

// Does it with the descriptor. What it answers: a number of bytes, or less than 0.
template <typename Transfer>
BOOL Transferred(HANDLE handle, DWORD* count, const Transfer& transfer) {
    auto* const file = ObjectOf<FileHandle>(handle);
    if (file == nullptr) {
        return Refuse(ERROR_INVALID_HANDLE);
    }
    const ssize_t result = transfer(file->native);
    *count = result < 0 ? 0 : static_cast<DWORD>(result);
    return Done(result >= 0);
}

// How open takes it; less than 0 for what is not imitated.
int FlagsOf(DWORD access, DWORD share, DWORD disposition) {
    constexpr DWORD kEverything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const bool writes = (access & GENERIC_WRITE) != 0;
    if ((share != 0 && share != kEverything) || (writes && (access & GENERIC_READ) != 0)) {
        return -1;
    }
    const int creation = disposition == CREATE_ALWAYS ? O_CREAT | O_TRUNC : disposition == OPEN_ALWAYS ? O_CREAT : 0;
    return (writes ? O_WRONLY : O_RDONLY) | creation | O_CLOEXEC;
}

}  // namespace

HANDLE CreateFileW(LPCWSTR wide, DWORD access, DWORD share, void*, DWORD disposition, DWORD flags, HANDLE) {
    const std::string path = NarrowText(wide);
    const bool goes = (flags & FILE_FLAG_DELETE_ON_CLOSE) != 0;
    const int how = FlagsOf(access, share, disposition);
    const std::lock_guard<std::mutex> hold(g_lock);
    if (how < 0 || (share == 0 && IsOpen(path))) {
        SetLastError(how < 0 ? ERROR_INVALID_PARAMETER : ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    const int native = open(path.c_str(), how, 0600);
    if (!Done(native >= 0) || !Done(flock(native, (share == 0 ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0)) {
        close(native);
        return INVALID_HANDLE_VALUE;
    }
    return static_cast<KernelObject*>(new FileHandle(native, goes ? path : ""));
}

BOOL ReadFile(HANDLE handle, void* buffer, DWORD bytes, DWORD* count, void*) {
    return Transferred(handle, count, [=](int file) { return read(file, buffer, bytes); });
}

BOOL WriteFile(HANDLE handle, const void* buffer, DWORD bytes, DWORD* count, void*) {
    return Transferred(handle, count, [=](int file) { return write(file, buffer, bytes); });
}

BOOL FlushFileBuffers(HANDLE handle) {
    DWORD nothing = 0;
    return Transferred(handle, &nothing, [](int file) { return fsync(file); });
}

BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags) {
    const std::string source = NarrowText(from);
    const std::string target = NarrowText(to);
    const std::lock_guard<std::mutex> hold(g_lock);
    if (access(target.c_str(), F_OK) == 0 && ((flags & MOVEFILE_REPLACE_EXISTING) == 0 || IsOpen(target))) {
        return Refuse(ERROR_ACCESS_DENIED);
    }
    return IsOpen(source) ? Refuse(ERROR_SHARING_VIOLATION) : Done(rename(source.c_str(), target.c_str()) == 0);
}

BOOL DeleteFileW(LPCWSTR wide) {
    const std::string path = NarrowText(wide);
    const std::lock_guard<std::mutex> hold(g_lock);
    return IsOpen(path) ? Refuse(ERROR_SHARING_VIOLATION) : Done(unlink(path.c_str()) == 0);
}
