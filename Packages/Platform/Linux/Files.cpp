// Files, searches in folders and the current folder.
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Device.h"

namespace {

class ClFile : public ClObject {
  public:
    explicit ClFile(ClDescriptor&& file) : m_file(std::move(file)) {}

  private:
    ClDescriptor m_file;
};

// Sharing among those that open files by this provider: who may not be disturbed by writers holds a shared lock, and a
// writer an exclusive one. A file that isn't a regular one, such as /dev/null, belongs to everybody and isn't locked.
BOOL LockAsShared(int file, DWORD access, DWORD share) {
    struct stat facts;
    if (fstat(file, &facts) != 0) return FailWithErrno();
    if (S_ISDIR(facts.st_mode)) return Fail(ERROR_ACCESS_DENIED);
    if (!S_ISREG(facts.st_mode) || (share & FILE_SHARE_WRITE) != 0) return TRUE;
    const int kind = (access & GENERIC_WRITE) != 0 || (share & FILE_SHARE_READ) == 0 ? LOCK_EX : LOCK_SH;
    if (flock(file, kind | LOCK_NB) == 0) return TRUE;
    return errno == EWOULDBLOCK ? Fail(ERROR_SHARING_VIOLATION) : FailWithErrno();
}

// Whether `name` fits a pattern of *, ? and letters of either case.
bool Matches(const char* pattern, const char* name) {
    if (*pattern == '\0') return *name == '\0';
    if (*pattern == '*') return Matches(pattern + 1, name) || (*name != '\0' && Matches(pattern, name + 1));
    if (*name == '\0') return false;
    const bool isSame =
        std::tolower(static_cast<unsigned char>(*pattern)) == std::tolower(static_cast<unsigned char>(*name));
    return (*pattern == '?' || isSame) && Matches(pattern + 1, name + 1);
}

class ClSearch : public ClObject {
  public:
    ClSearch(DIR* folder, const char* pattern) : m_folder(folder), m_pattern(pattern) {}
    ~ClSearch() override { closedir(m_folder); }

    BOOL Next(WIN32_FIND_DATAA* found) {
        for (;;) {
            errno = 0;
            const dirent* entry = readdir(m_folder);
            if (entry == nullptr) return errno != 0 ? FailWithErrno() : Fail(ERROR_NO_MORE_FILES);
            if (!Matches(m_pattern.c_str(), entry->d_name)) continue;
            Describe(entry->d_name, found);
            return TRUE;
        }
    }

  private:
    // What can't be looked at any more is told as a file.
    void Describe(const char* name, WIN32_FIND_DATAA* found) const {
        struct stat facts = {};
        if (fstatat(dirfd(m_folder), name, &facts, 0) != 0) facts = {};
        *found = {};
        found->dwFileAttributes = S_ISDIR(facts.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
        std::strncpy(found->cFileName, name, sizeof found->cFileName - 1);
    }

    DIR* m_folder;
    std::string m_pattern;
};

HANDLE InvalidHandle(DWORD error) {
    SetLastError(error);
    return INVALID_HANDLE_VALUE;
}

}  // namespace

// Opens what is there; nothing here makes files.
HANDLE CreateFileA(LPCSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES, DWORD disposition, DWORD, HANDLE) {
    if (path == nullptr || disposition != OPEN_EXISTING) return InvalidHandle(ERROR_INVALID_PARAMETER);
    if (IsDevicePath(path)) return OpenDevice(access);
    const bool reads = (access & GENERIC_READ) != 0, writes = (access & GENERIC_WRITE) != 0;
    const int mode = writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
    ClDescriptor file(open(path, mode | O_CLOEXEC | O_NOCTTY));
    if (!file.IsOpen()) return InvalidHandle(ErrorFromErrno(errno));
    if (!LockAsShared(file.Get(), access, share)) return INVALID_HANDLE_VALUE;
    auto* object = new (std::nothrow) ClFile(std::move(file));
    return object == nullptr ? InvalidHandle(ERROR_NOT_ENOUGH_MEMORY) : object;
}

// The pattern is what stands behind the last separator of either kind.
HANDLE FindFirstFileA(LPCSTR pattern, LPWIN32_FIND_DATAA found) try {
    if (pattern == nullptr || found == nullptr) return InvalidHandle(ERROR_INVALID_PARAMETER);
    const std::string whole = pattern;
    const size_t separator = whole.find_last_of("\\/");
    const std::string folderName = separator == std::string::npos ? "."
                                   : separator == 0               ? "/"
                                                                  : whole.substr(0, separator);
    std::string names = separator == std::string::npos ? whole : whole.substr(separator + 1);
    if (names == "*.*") names = "*";
    DIR* folder = opendir(folderName.c_str());
    if (folder == nullptr) return InvalidHandle(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
    auto* search = new (std::nothrow) ClSearch(folder, names.c_str());
    if (search == nullptr) {
        closedir(folder);
        return InvalidHandle(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (search->Next(found)) return search;
    const DWORD error = GetLastError();
    delete search;
    return InvalidHandle(error == ERROR_NO_MORE_FILES ? ERROR_FILE_NOT_FOUND : error);
} catch (const std::bad_alloc&) {
    return InvalidHandle(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL FindNextFileA(HANDLE handle, LPWIN32_FIND_DATAA found) {
    ClSearch* search = ObjectOf<ClSearch>(handle);
    if (search == nullptr) return FALSE;
    return found == nullptr ? Fail(ERROR_INVALID_PARAMETER) : search->Next(found);
}

BOOL FindClose(HANDLE handle) {
    ClSearch* search = ObjectOf<ClSearch>(handle);
    if (search == nullptr) return FALSE;
    delete search;
    return TRUE;
}

// The length, or the size needed with the NUL where `size` doesn't do.
DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) {
    char path[4096];
    if (getcwd(path, sizeof path) == nullptr) return static_cast<DWORD>(FailWithErrno());
    const auto length = static_cast<DWORD>(std::strlen(path));
    if (buffer == nullptr || size <= length) return length + 1;
    std::memcpy(buffer, path, length + 1);
    return length;
}
