// Numbers of system calls that aren't the same everywhere.
#pragma once

#include <sys/syscall.h>

#include <cstdint>

// System calls that the C library uses for these functions. Newer architectures have only the calls with folders.
#ifdef SYS_link
inline constexpr uint32_t kLinkCall = SYS_link, kMkdirCall = SYS_mkdir, kRenameCall = SYS_rename;
#else
inline constexpr uint32_t kLinkCall = SYS_linkat, kMkdirCall = SYS_mkdirat, kRenameCall = SYS_renameat;
#endif
