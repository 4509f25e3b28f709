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

/* QUORLIN_PRINTF_LIKE has the compiler check the arguments that follow a format. On Windows the formats are the
 * standard's too, as MinGW's standard output functions are used and not the system's. */
#ifdef _WIN32
#define QUORLIN_PRINTF_LIKE(formatAt, argumentsAt) __attribute__((format(gnu_printf, formatAt, argumentsAt)))
#else
#define QUORLIN_PRINTF_LIKE(formatAt, argumentsAt) __attribute__((format(printf, formatAt, argumentsAt)))
#endif

#endif
