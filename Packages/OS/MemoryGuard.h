// Lets AddressSanitizer report the use of bytes that are allocated but belong to nothing yet. Without it these
// functions do nothing.
#pragma once

#include <cstddef>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QUORLIN_HAS_ASAN
#endif
#elif defined(__SANITIZE_ADDRESS__)
#define QUORLIN_HAS_ASAN
#endif

#ifdef QUORLIN_HAS_ASAN
// The sanitizer's own.
extern "C" void __asan_poison_memory_region(void* bytes, size_t size);
extern "C" void __asan_unpoison_memory_region(void* bytes, size_t size);
inline constexpr size_t kGuardBytes = 16;  // to leave between two things in a block
inline void ForbidBytes(void* bytes, size_t size) { __asan_poison_memory_region(bytes, size); }
inline void AllowBytes(void* bytes, size_t size) { __asan_unpoison_memory_region(bytes, size); }
#else
inline constexpr size_t kGuardBytes = 0;
inline void ForbidBytes(void*, size_t) {}
inline void AllowBytes(void*, size_t) {}
#endif
