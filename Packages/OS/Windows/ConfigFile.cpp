#include "Packages/OS/ConfigFile.h"

#include <fcntl.h>
#include <io.h>

#include <iterator>
#include <string_view>

#include "Packages/OS/Windows/Windows.h"

#include <aclapi.h>
#include <sddl.h>

// Windows has no set-user-ID programs.
bool HasForeignRights() { return false; }

namespace {

class ClHandle {
  public:
    explicit ClHandle(HANDLE handle) : m_handle(handle) {}
    ClHandle(const ClHandle&) = delete;
    ClHandle& operator=(const ClHandle&) = delete;
    ~ClHandle() {
        if (IsOpen()) CloseHandle(m_handle);
    }
    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }
    // Returns a stream that takes over the handle; null on failure.
    std::FILE* OpenStream(const char* mode) {
        const int file = _open_osfhandle(reinterpret_cast<intptr_t>(m_handle), _O_TEXT);
        if (file < 0) return nullptr;
        m_handle = INVALID_HANDLE_VALUE;  // owned by `file` now
        std::FILE* stream = _fdopen(file, mode);
        if (stream == nullptr) _close(file);
        return stream;
    }

  private:
    HANDLE m_handle;
};

// An account from the text form of its SID.
class ClAccount {
  public:
    explicit ClAccount(const char* text) { ConvertStringSidToSidA(text, &m_account); }
    ClAccount(const ClAccount&) = delete;
    ClAccount& operator=(const ClAccount&) = delete;
    ~ClAccount() { LocalFree(m_account); }
    bool Is(PSID account) const { return m_account != nullptr && EqualSid(m_account, account); }

  private:
    PSID m_account = nullptr;
};

bool IsUser(PSID account) {
    HANDLE token;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    const ClHandle closed(token);
    alignas(TOKEN_USER) char block[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size;
    return GetTokenInformation(token, TokenUser, block, sizeof block, &size) &&
           EqualSid(reinterpret_cast<TOKEN_USER*>(block)->User.Sid, account);
}

bool IsTrusted(PSID account) {
    static const ClAccount system("S-1-5-18"), administrators("S-1-5-32-544"),
        installer("S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464");  // owns system folders
    return system.Is(account) || administrators.Is(account) || installer.Is(account) || IsUser(account);
}

// Whether an account that isn't trusted has one of these rights.
bool CanOthers(const ACL* list, DWORD rights) {
    if (list == nullptr) return true;
    for (DWORD place = 0; place < list->AceCount; place++) {
        void* entry;
        if (!GetAce(const_cast<ACL*>(list), place, &entry)) return true;
        auto* allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);  // the conditional kind has the same head
        const BYTE kind = allowed->Header.AceType;
        if (kind != ACCESS_ALLOWED_ACE_TYPE && kind != ACCESS_ALLOWED_CALLBACK_ACE_TYPE) continue;
        if ((allowed->Header.AceFlags & INHERIT_ONLY_ACE) != 0) continue;
        if ((allowed->Mask & rights) != 0 && !IsTrusted(&allowed->SidStart)) return true;
    }
    return false;
}

struct Refusals_t {
    const char *owner, *access, *unknown;
};
constexpr Refusals_t kFile = {"another user owns it", "others can write it", "its access list can't be read"};
constexpr Refusals_t kFolder = {"another user owns its folder, or one above",
                                "others can write its folder, or one above", "its folder can't be examined"};

constexpr DWORD kChangeAccess = WRITE_DAC | WRITE_OWNER | DELETE | GENERIC_ALL;
constexpr DWORD kChangeContent = FILE_WRITE_DATA | FILE_APPEND_DATA | GENERIC_WRITE;  // for a folder: add files to it

// Returns why another account has one of these rights; null if none has.
const char* WhyRefused(HANDLE file, DWORD rights, const Refusals_t& refusals) {
    PSID owner;
    ACL* list;
    PSECURITY_DESCRIPTOR facts;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION | DACL_SECURITY_INFORMATION, &owner, nullptr,
                        &list, nullptr, &facts) != ERROR_SUCCESS)
        return refusals.unknown;
    const char* refusal = !IsTrusted(owner) ? refusals.owner : CanOthers(list, rights) ? refusals.access : nullptr;
    LocalFree(facts);
    return refusal;
}

// Checks the folder of an open file and all folders above it, by their names without links.
const char* WhyNotReached(HANDLE file) {
    wchar_t name[1024];
    const DWORD length = GetFinalPathNameByHandleW(file, name, std::size(name), 0);
    if (length == 0 || length >= std::size(name)) return kFolder.unknown;
    const std::wstring_view path(name, length);
    // The name begins with \\?\ and a drive, or with kShare, a server and a share.
    constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
    const size_t begin = path.starts_with(kShare) ? path.find(L'\\', kShare.size()) + 1 : 4;
    DWORD rights = kChangeAccess | FILE_DELETE_CHILD | kChangeContent;
    for (size_t end = path.rfind(L'\\'); end != path.npos && end >= begin; end = path.rfind(L'\\', end - 1)) {
        name[end + 1] = L'\0';
        const ClHandle folder(CreateFileW(name, READ_CONTROL, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                          nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        const char* refusal = folder.IsOpen() ? WhyRefused(folder.Get(), rights, kFolder) : kFolder.unknown;
        if (refusal != nullptr) return refusal;
        // Others may add files to the folders above, as they may to a drive's root, but not rename folders there.
        rights = kChangeAccess | FILE_DELETE_CHILD;
    }
    return nullptr;
}

bool IsPlain(HANDLE file) {
    BY_HANDLE_FILE_INFORMATION facts;
    return GetFileType(file) == FILE_TYPE_DISK && GetFileInformationByHandle(file, &facts) &&
           (facts.dwFileAttributes & (FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DIRECTORY)) == 0;
}

}  // namespace

std::FILE* OpenConfigFile(const char* path, const char** refusal) {
    ClHandle file(CreateFileA(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    *refusal = nullptr;
    if (!file.IsOpen()) {
        const DWORD problem = GetLastError();
        if (problem != ERROR_FILE_NOT_FOUND && problem != ERROR_PATH_NOT_FOUND) *refusal = "it can't be read";
        return nullptr;
    }
    *refusal =
        IsPlain(file.Get()) ? WhyRefused(file.Get(), kChangeAccess | kChangeContent, kFile) : "it is no plain file";
    if (*refusal == nullptr) *refusal = WhyNotReached(file.Get());
    return *refusal == nullptr ? file.OpenStream("r") : nullptr;
}

std::FILE* OpenLogFile(const char* path, bool deviceToo) {
    // No CREATE_ALWAYS: only a plain file is emptied.
    ClHandle file(CreateFileA(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    if (!file.IsOpen()) return nullptr;
    const bool isDisk = GetFileType(file.Get()) == FILE_TYPE_DISK;
    if (!(isDisk ? IsPlain(file.Get()) && SetEndOfFile(file.Get()) : deviceToo)) return nullptr;
    return file.OpenStream("w");
}
