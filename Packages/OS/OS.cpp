#include "Packages/OS/OS.h"

#include <algorithm>

#include "Packages/OS/Memory.h"

static constexpr size_t kLargestSize = size_t{1} << 63;

void* os_NewBlock(size_t size) { return os_malloc(size); }

void os_FreeBlock(void* block) { os_free(block); }

uint32_t os_strlen(const char* text) { return static_cast<uint32_t>(std::strlen(text)); }

int32_t os_strcmp(const char* first, const char* second) { return std::strcmp(first, second); }

char* os_strncpy(char* destination, const char* source, size_t count) {
    const size_t length = strnlen(source, count);
    std::memcpy(destination, source, length);
    destination[length] = '\0';
    return destination;
}

status_t os_memset(void* destination, size_t size, int value, size_t count) {
    if (destination == nullptr) return kNullPointer;
    if (size > kLargestSize) return kBadValue;
    std::memset(destination, value, std::min(size, count));
    return count <= size ? kSuccess : kBadValue;
}

// Checks all bounds before it calls the standard library, whose invalid-parameter handler would end the process.
// MinGW's runtime has one such handler per process, and it belongs to the host.
status_t os_memcpy(void* destination, size_t size, const void* source, size_t count) {
    if (size > kLargestSize) return kBadValue;
    if (count == 0) return kSuccess;
    if (destination == nullptr) return kNullPointer;
    if (source == nullptr || count > size) {
        std::memset(destination, 0, size);
        return source == nullptr ? kNullPointer : kBadValue;
    }
    std::memcpy(destination, source, count);
    return kSuccess;
}

int32_t os_vsnprintf(char* buffer, size_t size, const char* format, va_list arguments) {
    if (buffer == nullptr || size == 0) return -1;
    buffer[0] = '\0';
    if (format == nullptr) return -1;
    const int length = std::vsnprintf(buffer, size, format, arguments);
    // After a failure the buffer may have part of the text.
    if (length < 0) buffer[size - 1] = '\0';
    return length >= 0 && static_cast<size_t>(length) < size ? length : -1;
}

int32_t os_snprintf(char* buffer, size_t size, size_t count, const char* format, ...) {
    const size_t room = count < size ? count + 1 : size;
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = os_vsnprintf(buffer, room, format, arguments);
    va_end(arguments);
    return length;
}
