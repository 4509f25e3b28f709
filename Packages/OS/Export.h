/* QUORLIN_API marks what the shared library exports. */
#ifndef QUORLIN_EXPORT_H
#define QUORLIN_EXPORT_H

#if defined(_WIN32) && defined(QUORLIN_BUILDING)
#define QUORLIN_API __declspec(dllexport)
#elif defined(_WIN32)
#define QUORLIN_API
#else
#define QUORLIN_API __attribute__((visibility("default")))
#endif

/* QUORLIN_PRINTF_LIKE makes the compiler check arguments against their format. Formats are the standard's on Windows
 * too, where MinGW's output functions are used, not the system's. */
#ifdef _WIN32
#define QUORLIN_PRINTF_LIKE(formatAt, argumentsAt) __attribute__((format(gnu_printf, formatAt, argumentsAt)))
#else
#define QUORLIN_PRINTF_LIKE(formatAt, argumentsAt) __attribute__((format(printf, formatAt, argumentsAt)))
#endif

#endif
