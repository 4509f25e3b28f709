// The registry: what the system itself answers, and before that a text file in which an administrator may put other
// values:
//
//   [SOFTWARE\Wow6432Node\Lumetra\Ravelink]
//   FERROXDrvPath=/opt/ravelink/driver
//
// Only HKEY_LOCAL_MACHINE, and only text. Key and value names are the same in either case.
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "Packages/Platform/Linux/Handles.h"

namespace {

constexpr char kFolder[] = "/etc/quorlin";
constexpr char kFile[] = "/etc/quorlin/registry";

// The driver's work is done by this provider, so the file that stands for it is one that every system has.
std::string DriverPath() { return "/dev/null"; }

std::string MachineName() {
    char name[256] = "";
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

std::string SystemName() {
    constexpr char kKey[] = "PRETTY_NAME=";
    std::string name = "Linux";
    for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
        FILE* file = std::fopen(path, "re");
        if (file == nullptr) continue;
        for (char line[512]; std::fgets(line, sizeof line, file) != nullptr;) {
            if (std::strncmp(line, kKey, sizeof kKey - 1) != 0) continue;
            name = line + sizeof kKey - 1;
            while (!name.empty() && std::strchr("\n\"'", name.back()) != nullptr) name.pop_back();
            if (!name.empty() && std::strchr("\"'", name.front()) != nullptr) name.erase(0, 1);
        }
        std::fclose(file);
        break;
    }
    return name;
}

const struct {
    const char *key, *value;
    std::string (*text)();
} kAnswers[] = {
    {"SOFTWARE\\Wow6432Node\\Lumetra\\Ravelink",                       "FERROXDrvPath", DriverPath },
    {"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion",                "ProductName",   SystemName },
    {"SYSTEM\\CurrentControlSet\\Control\\ComputerName\\ComputerName", "ComputerName",  MachineName},
};

bool IsRootsAlone(const struct stat& facts) { return facts.st_uid == 0 && (facts.st_mode & (S_IWGRP | S_IWOTH)) == 0; }

// Opens the text file. nullptr with error 0 where there is none, and with error 5 for one that others than root could
// have written: such a file is refused as a whole, and with it every answer.
FILE* OpenText(DWORD* error) {
    *error = ERROR_SUCCESS;
    struct stat folder, facts;
    if (lstat(kFolder, &folder) != 0) {
        if (errno != ENOENT) *error = ErrorFromErrno(errno);
        return nullptr;
    }
    const int file = open(kFile, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) {
        if (errno != ENOENT) *error = errno == ELOOP ? ERROR_ACCESS_DENIED : ErrorFromErrno(errno);
        return nullptr;
    }
    FILE* text = nullptr;
    if (!S_ISDIR(folder.st_mode) || !IsRootsAlone(folder) || fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode) ||
        !IsRootsAlone(facts))
        *error = ERROR_ACCESS_DENIED;
    else if ((text = fdopen(file, "r")) == nullptr)
        *error = ERROR_NOT_ENOUGH_MEMORY;
    if (text == nullptr) close(file);
    return text;
}

// Looks up a value in the text file, or with a null `value` whether the key is there. 0, 2, or why the file can't be
// used.
DWORD FindInText(const std::string& key, const char* value, std::string* out) {
    DWORD error = ERROR_SUCCESS;
    FILE* file = OpenText(&error);
    if (file == nullptr) return error == ERROR_SUCCESS ? ERROR_FILE_NOT_FOUND : error;
    const std::unique_ptr<FILE, int (*)(FILE*)> closing(file, std::fclose);
    bool isInKey = false;
    char line[4096];
    while (std::fgets(line, sizeof line, file) != nullptr) {
        line[std::strcspn(line, "\r\n")] = '\0';
        if (line[0] == '[') {
            line[std::strcspn(line, "]")] = '\0';
            isInKey = strcasecmp(line + 1, key.c_str()) == 0;
            if (isInKey && value == nullptr) return ERROR_SUCCESS;
        }
        char* text = std::strchr(line, '=');
        if (!isInKey || value == nullptr || text == nullptr) continue;
        *text++ = '\0';
        if (strcasecmp(line, value) != 0) continue;
        *out = text;
        return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
}

// The same with the system's own answers behind the file's.
DWORD Find(const std::string& key, const char* value, std::string* out) {
    const DWORD error = FindInText(key, value, out);
    if (error != ERROR_FILE_NOT_FOUND) return error;
    for (const auto& answer : kAnswers) {
        if (strcasecmp(answer.key, key.c_str()) != 0) continue;
        if (value == nullptr) return ERROR_SUCCESS;
        if (strcasecmp(answer.value, value) != 0) continue;
        *out = answer.text();
        return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
}

// The roots are names and no handles.
bool IsRoot(HKEY key) { return key == HKEY_LOCAL_MACHINE || key == HKEY_CURRENT_USER; }

class ClKey : public ClObject {
  public:
    explicit ClKey(std::string keyPath) : path(std::move(keyPath)) {}
    const std::string path;
};

}  // namespace

LSTATUS RegOpenKeyExA(HKEY root, LPCSTR path, DWORD, REGSAM, PHKEY key) try {
    if (key == nullptr || path == nullptr) return ERROR_INVALID_PARAMETER;
    if (!IsRoot(root)) return ERROR_INVALID_HANDLE;
    if (root != HKEY_LOCAL_MACHINE) return ERROR_FILE_NOT_FOUND;
    const DWORD error = Find(path, nullptr, nullptr);
    if (error != ERROR_SUCCESS) return static_cast<LSTATUS>(error);
    ClObject* object = new ClKey(path);
    *key = static_cast<HKEY>(static_cast<void*>(object));
    return ERROR_SUCCESS;
} catch (const std::bad_alloc&) {
    return ERROR_NOT_ENOUGH_MEMORY;
}

LSTATUS RegQueryValueExA(HKEY handle, LPCSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size) try {
    if (IsRoot(handle)) return ERROR_FILE_NOT_FOUND;
    const ClKey* key = ObjectOf<ClKey>(handle);
    if (key == nullptr) return ERROR_INVALID_HANDLE;
    if (reserved != nullptr || (data != nullptr && size == nullptr)) return ERROR_INVALID_PARAMETER;
    std::string text;
    const DWORD error = Find(key->path, name == nullptr ? "" : name, &text);
    if (error != ERROR_SUCCESS) return static_cast<LSTATUS>(error);
    const auto needed = static_cast<DWORD>(text.size() + 1);
    const DWORD room = size == nullptr ? 0 : *size;
    if (type != nullptr) *type = REG_SZ;
    if (size != nullptr) *size = needed;
    if (data == nullptr) return ERROR_SUCCESS;
    if (room < needed) return ERROR_MORE_DATA;
    std::memcpy(data, text.c_str(), needed);
    return ERROR_SUCCESS;
} catch (const std::bad_alloc&) {
    return ERROR_NOT_ENOUGH_MEMORY;
}

LSTATUS RegCloseKey(HKEY handle) {
    if (IsRoot(handle)) return ERROR_SUCCESS;
    ClKey* key = ObjectOf<ClKey>(handle);
    if (key == nullptr) return ERROR_INVALID_HANDLE;
    delete key;
    return ERROR_SUCCESS;
}
