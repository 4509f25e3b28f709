// Service control: a register of services in the runtime folder, a file for each. A service here is its record and
// nothing more: starting and stopping it takes effect at once, and it stays registered and running when the process
// that started it is gone, until the system restarts.
//
// Whoever has a handle to a service holds a shared lock on its file, which the system drops when the holder dies. That
// tells when a service that is marked for deletion may go. Each operation runs under a lock on the folder.
#include "Packages/Platform/Linux/Services.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Handles.h"
#include "Packages/Platform/Linux/RuntimeFolder.h"

namespace {

constexpr DWORD kInvalidLevel = 124;
constexpr uint32_t kMagic = 0x31565251;  // "QRV1"

// The contents of a service's file. Texts end with a NUL.
struct Record_t {
    uint32_t Magic, Type, StartType, ErrorControl, State, IsMarkedForDelete;
    char DisplayName[256], Path[512], Group[64], Account[64];
};

// The folder, locked while this object lives.
class ClRegister {
  public:
    ClRegister() : m_folder(OpenRuntimeFolder()), m_isLocked(m_folder.IsOpen() && LockFile(m_folder.Get(), LOCK_EX)) {}
    // False with error 5 where there is no folder that only the right user can write.
    bool IsUsable() const { return m_isLocked || Fail(ERROR_ACCESS_DENIED); }
    int Folder() const { return m_folder.Get(); }

  private:
    ClDescriptor m_folder;
    bool m_isLocked;
};

// Service names are the same in either case. Empty for a name that can't be.
std::string FileNameOf(const char* name) {
    std::string file = "service.";
    for (const char* at = name; *at != '\0'; ++at) {
        if (*at == '/' || *at == '\\') return "";
        file += static_cast<char>(std::tolower(static_cast<unsigned char>(*at)));
    }
    return *name != '\0' && file.size() < 200 ? file : "";
}

template <size_t kSize>
bool CopyText(char (&to)[kSize], const char* from) {
    if (from == nullptr) from = "";
    const size_t length = std::strlen(from);
    if (length >= kSize) return false;
    std::memcpy(to, from, length + 1);
    return true;
}

bool ReadRecord(int file, Record_t* record) {
    if (pread(file, record, sizeof *record, 0) != sizeof *record || record->Magic != kMagic) return false;
    record->DisplayName[sizeof record->DisplayName - 1] = '\0';
    record->Path[sizeof record->Path - 1] = '\0';
    record->Group[sizeof record->Group - 1] = '\0';
    record->Account[sizeof record->Account - 1] = '\0';
    return true;
}

BOOL WriteRecord(int file, const Record_t& record) {
    const ssize_t written = pwrite(file, &record, sizeof record, 0);
    return written == sizeof record ? TRUE : written < 0 ? FailWithErrno() : Fail(ERROR_DISK_FULL);
}

// Deletes the service's file if it may go: marked, stopped, and no other holder than `file`, whose lock becomes
// exclusive. True if it went.
bool DeleteIfDue(int folder, const std::string& name, int file, const Record_t& record) {
    return record.IsMarkedForDelete != 0 && record.State == SERVICE_STOPPED && LockFile(file, LOCK_EX | LOCK_NB) &&
           unlinkat(folder, name.c_str(), 0) == 0;
}

// The file of a registered service, with a shared lock; not open, with the last error set, where there is none.
ClDescriptor OpenRegistered(const ClRegister& reg, const std::string& name) {
    struct stat facts;
    if (fstatat(reg.Folder(), name.c_str(), &facts, AT_SYMLINK_NOFOLLOW) == 0) {
        ClDescriptor file(OpenPrivateFile(reg.Folder(), name.c_str()));
        Record_t record = {};
        if (!file.IsOpen()) {
            SetLastError(ERROR_ACCESS_DENIED);
            return file;
        }
        const bool isWhole = ReadRecord(file.Get(), &record);
        // A record cut short is one whose writer died; a marked one may have lost its last holder that way.
        if (!isWhole) unlinkat(reg.Folder(), name.c_str(), 0);
        if (isWhole && !DeleteIfDue(reg.Folder(), name, file.Get(), record) && LockFile(file.Get(), LOCK_SH))
            return file;
    }
    SetLastError(ERROR_SERVICE_DOES_NOT_EXIST);
    return ClDescriptor(-1);
}

class ClManager : public ClObject {
  public:
    explicit ClManager(DWORD wanted) : access(wanted) {}
    const DWORD access;
};

class ClService : public ClObject {
  public:
    ClService(ClDescriptor&& file, std::string name, DWORD access)
        : m_file(std::move(file)), m_name(std::move(name)), m_access(access) {}
    ~ClService() override {
        const ClRegister reg;
        Record_t record = {};
        if (reg.IsUsable() && ReadRecord(m_file.Get(), &record))
            DeleteIfDue(reg.Folder(), m_name, m_file.Get(), record);
        // While the folder is locked, so that of two that close at once one is the last.
        LockFile(m_file.Get(), LOCK_UN);
    }
    // The record, for a handle that was opened for `access`; FALSE with the last error set.
    BOOL Read(DWORD access, Record_t* record) const {
        if ((m_access & access) != access) return Fail(ERROR_ACCESS_DENIED);
        return ReadRecord(m_file.Get(), record) ? TRUE : Fail(ERROR_SERVICE_DOES_NOT_EXIST);
    }
    BOOL Write(const Record_t& record) const { return WriteRecord(m_file.Get(), record); }

  private:
    ClDescriptor m_file;
    std::string m_name;
    DWORD m_access;
};

template <typename Kind>
Kind* Get(SC_HANDLE handle) {
    return ObjectOf<Kind>(static_cast<HANDLE>(handle));
}

SC_HANDLE HandleOf(ClObject* object) { return static_cast<SC_HANDLE>(static_cast<void*>(object)); }

// A new handle to the service in `file`, if there is one.
SC_HANDLE HandleOf(ClDescriptor&& file, const std::string& name, DWORD access) {
    return file.IsOpen() ? HandleOf(new ClService(std::move(file), name, access)) : nullptr;
}

SC_HANDLE NoHandle(DWORD error) {
    SetLastError(error);
    return nullptr;
}

// 0, or why the service can't start: its file or folder is missing.
DWORD MissingFile(const char* path) {
    if (access(path, F_OK) == 0) return ERROR_SUCCESS;
    if (errno != ENOENT) return ErrorFromErrno(errno);
    const char* separator = std::strrchr(path, '/');
    const std::string folder(path, separator == nullptr ? 0 : static_cast<size_t>(separator - path));
    return folder.empty() || access(folder.c_str(), F_OK) == 0 ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

DWORD AcceptedControls(const Record_t& record) { return record.State == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0; }

}  // namespace

bool IsServiceRunning(const char* name) try {
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable()) return false;
    const ClDescriptor file = OpenRegistered(reg, FileNameOf(name));
    return file.IsOpen() && ReadRecord(file.Get(), &record) && record.State == SERVICE_RUNNING;
} catch (const std::bad_alloc&) {
    return false;
}

SC_HANDLE OpenSCManagerA(LPCSTR machine, LPCSTR, DWORD access) try {
    if (machine != nullptr && *machine != '\0') return NoHandle(ERROR_NOT_SUPPORTED);  // another machine's
    return ClRegister().IsUsable() ? HandleOf(new ClManager(access)) : nullptr;
} catch (const std::bad_alloc&) {
    return NoHandle(ERROR_NOT_ENOUGH_MEMORY);
}

SC_HANDLE OpenServiceA(SC_HANDLE manager, LPCSTR name, DWORD access) try {
    if (Get<ClManager>(manager) == nullptr) return nullptr;
    const std::string fileName = name == nullptr ? "" : FileNameOf(name);
    if (fileName.empty()) return NoHandle(ERROR_INVALID_NAME);
    const ClRegister reg;
    return reg.IsUsable() ? HandleOf(OpenRegistered(reg, fileName), fileName, access) : nullptr;
} catch (const std::bad_alloc&) {
    return NoHandle(ERROR_NOT_ENOUGH_MEMORY);
}

SC_HANDLE CreateServiceA(SC_HANDLE managerHandle, LPCSTR name, LPCSTR displayName, DWORD access, DWORD type,
                         DWORD startType, DWORD errorControl, LPCSTR path, LPCSTR group, LPDWORD tag,
                         LPCSTR dependencies, LPCSTR account, LPCSTR) try {
    const ClManager* manager = Get<ClManager>(managerHandle);
    if (manager == nullptr) return nullptr;
    if ((manager->access & SC_MANAGER_CREATE_SERVICE) == 0) return NoHandle(ERROR_ACCESS_DENIED);
    const std::string fileName = name == nullptr ? "" : FileNameOf(name);
    if (fileName.empty()) return NoHandle(ERROR_INVALID_NAME);
    Record_t record = {kMagic, type, startType, errorControl, SERVICE_STOPPED, 0, {}, {}, {}, {}};
    if (path == nullptr || *path == '\0' || startType > SERVICE_DISABLED || tag != nullptr ||
        (dependencies != nullptr && *dependencies != '\0') ||
        !CopyText(record.DisplayName, displayName == nullptr ? name : displayName) || !CopyText(record.Path, path) ||
        !CopyText(record.Group, group) || !CopyText(record.Account, account == nullptr ? "LocalSystem" : account))
        return NoHandle(ERROR_INVALID_PARAMETER);
    const ClRegister reg;
    if (!reg.IsUsable()) return nullptr;
    if (const ClDescriptor old = OpenRegistered(reg, fileName); old.IsOpen()) {
        Record_t oldRecord = {};
        const bool isMarked = ReadRecord(old.Get(), &oldRecord) && oldRecord.IsMarkedForDelete != 0;
        return NoHandle(isMarked ? ERROR_SERVICE_MARKED_FOR_DELETE : ERROR_SERVICE_EXISTS);
    }
    if (GetLastError() != ERROR_SERVICE_DOES_NOT_EXIST) return nullptr;
    ClDescriptor file(OpenPrivateFile(reg.Folder(), fileName.c_str()));
    if (!file.IsOpen()) return NoHandle(ERROR_ACCESS_DENIED);
    if (!WriteRecord(file.Get(), record)) {
        unlinkat(reg.Folder(), fileName.c_str(), 0);
        return nullptr;
    }
    LockFile(file.Get(), LOCK_SH);
    return HandleOf(std::move(file), fileName, access);
} catch (const std::bad_alloc&) {
    return NoHandle(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL StartServiceA(SC_HANDLE handle, DWORD, LPCSTR*) try {
    const ClService* service = Get<ClService>(handle);
    if (service == nullptr) return FALSE;
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable() || !service->Read(SERVICE_START, &record)) return FALSE;
    if (record.IsMarkedForDelete != 0) return Fail(ERROR_SERVICE_MARKED_FOR_DELETE);
    if (record.State == SERVICE_RUNNING) return Fail(ERROR_SERVICE_ALREADY_RUNNING);
    if (record.StartType == SERVICE_DISABLED) return Fail(ERROR_SERVICE_DISABLED);
    if (const DWORD error = MissingFile(record.Path); error != ERROR_SUCCESS) return Fail(error);
    record.State = SERVICE_RUNNING;
    return service->Write(record);
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL ControlService(SC_HANDLE handle, DWORD control, LPSERVICE_STATUS status) {
    const ClService* service = Get<ClService>(handle);
    if (service == nullptr) return FALSE;
    if (status == nullptr || (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_INTERROGATE))
        return Fail(status == nullptr ? ERROR_INVALID_PARAMETER : ERROR_INVALID_SERVICE_CONTROL);
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable() || !service->Read(control == SERVICE_CONTROL_STOP ? SERVICE_STOP : 0, &record)) return FALSE;
    if (record.State != SERVICE_RUNNING) return Fail(ERROR_SERVICE_NOT_ACTIVE);
    if (control == SERVICE_CONTROL_STOP) record.State = SERVICE_STOPPED;
    if (control == SERVICE_CONTROL_STOP && !service->Write(record)) return FALSE;
    *status = {record.Type, record.State, AcceptedControls(record), 0, 0, 0, 0};
    return TRUE;
}

BOOL QueryServiceStatusEx(SC_HANDLE handle, SC_STATUS_TYPE level, LPBYTE buffer, DWORD size, LPDWORD needed) {
    const ClService* service = Get<ClService>(handle);
    if (service == nullptr) return FALSE;
    if (level != SC_STATUS_PROCESS_INFO) return Fail(kInvalidLevel);
    if (needed == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable() || !service->Read(SERVICE_QUERY_STATUS, &record)) return FALSE;
    const SERVICE_STATUS_PROCESS status = {record.Type, record.State, AcceptedControls(record), 0, 0, 0, 0, 0, 0};
    *needed = buffer == nullptr || size < sizeof status ? sizeof status : 0;
    if (*needed != 0) return Fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(buffer, &status, sizeof status);
    return TRUE;
}

BOOL QueryServiceConfigA(SC_HANDLE handle, LPQUERY_SERVICE_CONFIGA config, DWORD size, LPDWORD needed) {
    const ClService* service = Get<ClService>(handle);
    if (service == nullptr) return FALSE;
    if (needed == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable() || !service->Read(SERVICE_QUERY_CONFIG, &record)) return FALSE;
    const char* texts[] = {record.Path, record.Group, "", record.Account, record.DisplayName};
    size_t total = sizeof *config;
    for (const char* text : texts) total += std::strlen(text) + 1;
    *needed = static_cast<DWORD>(total);
    if (config == nullptr || size < total) return Fail(ERROR_INSUFFICIENT_BUFFER);
    char* at = reinterpret_cast<char*>(config + 1);
    char* placed[std::size(texts)];
    for (size_t i = 0; i < std::size(texts); ++i) {
        placed[i] = at;
        at = stpcpy(at, texts[i]) + 1;
    }
    *config = {record.Type, record.StartType, record.ErrorControl, placed[0], placed[1],
               0,           placed[2],        placed[3],           placed[4]};
    return TRUE;
}

BOOL DeleteService(SC_HANDLE handle) {
    const ClService* service = Get<ClService>(handle);
    if (service == nullptr) return FALSE;
    const ClRegister reg;
    Record_t record = {};
    if (!reg.IsUsable() || !service->Read(DELETE, &record)) return FALSE;
    if (record.IsMarkedForDelete != 0) return Fail(ERROR_SERVICE_MARKED_FOR_DELETE);
    record.IsMarkedForDelete = 1;
    return service->Write(record);
}

BOOL CloseServiceHandle(SC_HANDLE handle) {
    ClObject* object = Get<ClObject>(handle);
    if (object == nullptr) return FALSE;
    delete object;
    return TRUE;
}
