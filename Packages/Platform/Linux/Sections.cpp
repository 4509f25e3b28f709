// Named shared sections, as files in the runtime folder. Whoever has a section open holds a shared lock on its file,
// and the system drops the lock of a holder that dies. So a file without locks is a section that is gone: the next to
// create it begins with zeros, and the last to close it deletes the file. All of that happens under a lock on the
// folder.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>

#include "Packages/Platform/Linux/Descriptor.h"
#include "Packages/Platform/Linux/Handles.h"
#include "Packages/Platform/Linux/Mutex.h"
#include "Packages/Platform/Linux/RuntimeFolder.h"

namespace {

constexpr DWORD kUnknownRevision = 1305;
constexpr WORD kHasDacl = 4, kDaclDefaulted = 8;

// "Global\Name" and "Local\Name" are Name, as there is one folder for each user; the rest of the name may hold no
// separator. Empty for a name that can't be.
std::string FileNameOf(const char* name) {
    const char* separator = std::strrchr(name, '\\');
    const std::string place(name, separator == nullptr ? 0 : static_cast<size_t>(separator - name));
    const std::string bare = separator == nullptr ? name : separator + 1;
    const bool isKnownPlace = separator == nullptr || place == "Global" || place == "Local";
    return isKnownPlace && !bare.empty() && bare.size() < 200 && bare.find('/') == bare.npos ? "section." + bare : "";
}

// The section itself. Handles and views share it, and it goes with the last of them.
class ClSectionFile {
  public:
    ClSectionFile(ClDescriptor&& file, std::string name) : m_file(std::move(file)), m_name(std::move(name)) {}
    ClSectionFile(const ClSectionFile&) = delete;
    ClSectionFile& operator=(const ClSectionFile&) = delete;
    ~ClSectionFile() {
        if (m_name.empty()) return;
        const ClDescriptor folder(OpenRuntimeFolder());
        if (!folder.IsOpen() || !LockFile(folder.Get(), LOCK_EX)) return;
        if (LockFile(m_file.Get(), LOCK_EX | LOCK_NB)) unlinkat(folder.Get(), m_name.c_str(), 0);
        // While the folder is locked, so that of two that close at once one is the last.
        LockFile(m_file.Get(), LOCK_UN);
    }
    int Get() const { return m_file.Get(); }

  private:
    ClDescriptor m_file;
    std::string m_name;  // empty for a section without a name
};

class ClSection : public ClObject {
  public:
    explicit ClSection(std::shared_ptr<ClSectionFile> section) : file(std::move(section)) {}
    const std::shared_ptr<ClSectionFile> file;
};

struct View_t {
    size_t size;
    std::shared_ptr<ClSectionFile> file;
};
struct Views_t {
    std::mutex lock;
    std::map<const void*, View_t> byAddress;
};
Views_t& Views() {
    static auto& views = *new Views_t;  // outlives every view, also those that a host gives back at its very end
    return views;
}

HANDLE CreateUnnamed(size_t size) {
    ClDescriptor file(memfd_create("section", MFD_CLOEXEC));
    if (!file.IsOpen() || ftruncate(file.Get(), static_cast<off_t>(size)) != 0) {
        FailWithErrno();
        return nullptr;
    }
    return new ClSection(std::make_shared<ClSectionFile>(std::move(file), ""));
}

HANDLE CreateNamed(const std::string& name, size_t size) {
    if (HasUnsharedNames()) {
        SetLastError(ERROR_NO_SYSTEM_RESOURCES);
        return nullptr;
    }
    const ClDescriptor folder(OpenRuntimeFolder());
    if (!folder.IsOpen() || !LockFile(folder.Get(), LOCK_EX)) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    ClDescriptor file(OpenPrivateFile(folder.Get(), name.c_str()));
    if (!file.IsOpen()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    const bool isNew = LockFile(file.Get(), LOCK_EX | LOCK_NB);
    if (isNew) {
        const int error = ftruncate(file.Get(), 0) != 0 ? errno : ReserveSpace(file.Get(), size);
        if (error != 0) {
            unlinkat(folder.Get(), name.c_str(), 0);
            SetLastError(ErrorFromErrno(error));
            return nullptr;
        }
    }
    if (!LockFile(file.Get(), LOCK_SH)) {
        FailWithErrno();
        return nullptr;
    }
    HANDLE handle = new ClSection(std::make_shared<ClSectionFile>(std::move(file), name));
    SetLastError(isNew ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS);
    return handle;
}

}  // namespace

HANDLE CreateFileMappingA(HANDLE file, LPSECURITY_ATTRIBUTES, DWORD protection, DWORD sizeHigh, DWORD sizeLow,
                          LPCSTR name) try {
    const uint64_t size = static_cast<uint64_t>(sizeHigh) << 32 | sizeLow;
    if (file != INVALID_HANDLE_VALUE) {
        SetLastError(ERROR_NOT_SUPPORTED);  // sections of memory only
        return nullptr;
    }
    if (protection != PAGE_READWRITE || size == 0 || size > INT64_MAX) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    if (name == nullptr) return CreateUnnamed(size);
    const std::string fileName = FileNameOf(name);
    if (fileName.empty()) {
        SetLastError(ERROR_INVALID_NAME);
        return nullptr;
    }
    return CreateNamed(fileName, size);
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

LPVOID MapViewOfFile(HANDLE handle, DWORD access, DWORD offsetHigh, DWORD offsetLow, SIZE_T size) try {
    ClSection* section = ObjectOf<ClSection>(handle);
    if (section == nullptr) return nullptr;
    struct stat facts;
    const uint64_t offset = static_cast<uint64_t>(offsetHigh) << 32 | offsetLow;
    if (fstat(section->file->Get(), &facts) != 0) {
        FailWithErrno();
        return nullptr;
    }
    // A view beyond the section's end would end its reader by a signal.
    const auto whole = static_cast<uint64_t>(facts.st_size);
    if (offset >= whole || size > whole - offset) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    const size_t length = size != 0 ? size : whole - offset;
    const bool writes = (access & FILE_MAP_WRITE) != 0;
    auto& views = Views();
    const std::lock_guard<std::mutex> guard(views.lock);
    void* view = mmap(nullptr, length, writes ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED, section->file->Get(),
                      static_cast<off_t>(offset));
    if (view == MAP_FAILED) {
        FailWithErrno();
        return nullptr;
    }
    try {
        views.byAddress[view] = {length, section->file};
    } catch (...) {
        munmap(view, length);
        throw;
    }
    return view;
} catch (const std::bad_alloc&) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL UnmapViewOfFile(LPCVOID address) {
    std::shared_ptr<ClSectionFile> last;  // outlives the guard: the section may go with it
    auto& views = Views();
    const std::lock_guard<std::mutex> guard(views.lock);
    const auto view = views.byAddress.find(address);
    if (view == views.byAddress.end()) return Fail(ERROR_INVALID_ADDRESS);
    munmap(const_cast<void*>(address), view->second.size);
    last = std::move(view->second.file);
    views.byAddress.erase(view);
    return TRUE;
}

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
    if (descriptor == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    if (revision != SECURITY_DESCRIPTOR_REVISION) return Fail(kUnknownRevision);
    *static_cast<SECURITY_DESCRIPTOR*>(descriptor) = {
        static_cast<BYTE>(revision), 0, 0, nullptr, nullptr, nullptr, nullptr};
    return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted) {
    if (descriptor == nullptr) return Fail(ERROR_INVALID_PARAMETER);
    auto* facts = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
    facts->Control = static_cast<WORD>((present ? kHasDacl : 0) | (present && defaulted ? kDaclDefaulted : 0));
    facts->Dacl = present ? list : nullptr;
    return TRUE;
}
