// QUORLIN_API marks what the shared library exports.
#pragma once

#if defined(_WIN32) && defined(QUORLIN_BUILDING)
#define QUORLIN_API __declspec(dllexport)
#elif defined(_WIN32)
#define QUORLIN_API
#else
#define QUORLIN_API __attribute__((visibility("default")))
#endif
