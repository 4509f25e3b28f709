#include "Packages/OS/OSServices.h"

#include <cstdlib>
#include <cstring>

#include "Packages/OS/Memory.h"
#include "Packages/OS/OS.h"

char* CopyOfText(const char* text) {
    const size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(os_malloc(size));
    if (copy != nullptr) std::memcpy(copy, text, size);
    return copy;
}

status_t AddName(const char* name, char*** names, uint32_t* count) {
    auto* grown = static_cast<char**>(os_realloc(*names, (*count + size_t{1}) * sizeof(char*)));
    if (grown == nullptr) return kNoMemory;
    *names = grown;
    grown[*count] = CopyOfText(name);
    if (grown[*count] == nullptr) return kNoMemory;
    ++*count;
    return kSuccess;
}

status_t GiveNames(status_t status, char** all, uint32_t known, char*** names, uint32_t* count) {
    if (status == kSuccess) {
        *names = all;
        *count = known;
    } else if (os_FreeStringArray(&all, known) != kSuccess) {
        os_free(all);  // an array without names
    }
    return status;
}

int32_t os_strncmp(const char* first, const char* second, size_t count) { return std::strncmp(first, second, count); }

char* os_strchr(const char* text, int32_t character) { return const_cast<char*>(std::strchr(text, character)); }

char* os_strrchr(const char* text, int32_t character) { return const_cast<char*>(std::strrchr(text, character)); }

int32_t os_atoi(const char* text) { return static_cast<int32_t>(std::strtol(text, nullptr, 10)); }

int32_t os_printf(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = os_vprintf(format, arguments);
    va_end(arguments);
    return length;
}

int32_t os_vprintf(const char* format, va_list arguments) { return std::vprintf(format, arguments); }

int32_t os_fprintf(FILE* stream, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t length = os_vfprintf(stream, format, arguments);
    va_end(arguments);
    return length;
}

int32_t os_vfprintf(FILE* stream, const char* format, va_list arguments) {
    return std::vfprintf(stream, format, arguments);
}

int32_t os_sscanf(const char* text, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int32_t fields = std::vsscanf(text, format, arguments);
    va_end(arguments);
    return fields;
}

char* os_strcat(char* destination, size_t size, const char* source) {
    const size_t present = std::strlen(destination), added = std::strlen(source);
    if (present >= size || added >= size - present) return nullptr;
    std::memcpy(destination + present, source, added + 1);
    return destination;
}

status_t os_GetDateTimeString(char** text) {
    if (text == nullptr) return kNullPointer;
    LocalTime_t now;
    char buffer[64];
    if (os_GetLocalTime(&now) != kSuccess) return kFailure;
    std::snprintf(buffer, sizeof buffer, "%02u/%02u/%04u %02u:%02u:%02u", now.Month, now.Day, now.Year, now.Hour,
                  now.Minute, now.Second);
    char* copy = CopyOfText(buffer);
    if (copy == nullptr) return kFailure;
    *text = copy;
    return kSuccess;
}

status_t os_FreeStringArray(char*** array, uint32_t count) {
    if (array == nullptr || *array == nullptr || count == 0) return kFailure;
    for (uint32_t i = 0; i < count; ++i) os_free((*array)[i]);
    os_free(*array);
    *array = nullptr;
    return kSuccess;
}

int32_t os_fclose(FILE* stream) { return std::fclose(stream); }

int32_t os_fflush(FILE* stream) { return std::fflush(stream); }

size_t os_fread(void* buffer, size_t size, size_t count, FILE* stream) {
    return std::fread(buffer, size, count, stream);
}

size_t os_fwrite(const void* buffer, size_t size, size_t count, FILE* stream) {
    return std::fwrite(buffer, size, count, stream);
}

char* os_fgets(char* buffer, int32_t size, FILE* stream) { return std::fgets(buffer, size, stream); }

int32_t os_fputs(const char* text, FILE* stream) { return std::fputs(text, stream); }

int32_t os_fseek(FILE* stream, long offset, int32_t origin) { return std::fseek(stream, offset, origin); }

long os_ftell(FILE* stream) { return std::ftell(stream); }
