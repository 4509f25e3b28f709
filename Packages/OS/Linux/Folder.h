#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "Packages/OS/Linux/Descriptor.h"

// An open folder.
class ClFolder {
  public:
    explicit ClFolder(const char* path) {
        ClDescriptor file(path, O_RDONLY | O_DIRECTORY);
        if (file.IsOpen()) m_folder = fdopendir(file.Get());
        if (m_folder != nullptr) file.Release();
    }
    ClFolder(const ClFolder&) = delete;
    ClFolder& operator=(const ClFolder&) = delete;
    ~ClFolder() {
        if (m_folder != nullptr) closedir(m_folder);
    }
    bool IsOpen() const { return m_folder != nullptr; }
    // Returns the next name; null at the end with errno 0, or on failure with errno set.
    const char* Next() {
        errno = 0;
        const dirent* entry = m_folder == nullptr ? nullptr : readdir(m_folder);
        return entry == nullptr ? nullptr : entry->d_name;
    }
    bool IsFolder(const char* name) const {
        struct stat facts = {};
        return fstatat(dirfd(m_folder), name, &facts, 0) == 0 && S_ISDIR(facts.st_mode);
    }

  private:
    DIR* m_folder = nullptr;
};
