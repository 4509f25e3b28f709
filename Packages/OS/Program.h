// What a program needs of its system: arguments, files, and standard streams. Text is UTF-8 on every system, path names
// included.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

// The arguments as UTF-8, the program's name first.
std::vector<std::string> ProgramArguments(int argc, char** argv);
// As fopen; null with errno set.
std::FILE* OpenFile(const std::string& path, const char* mode);
// Creates a file with these bytes that only its owner may read and write. It gets its name when it is whole, so that
// a signal, a full disk or a limit on files leaves none. False with errno set, EEXIST when there is anything of that
// name, a link included.
bool CreateWholeFile(const std::string& path, const void* bytes, size_t size);
bool IsFolder(const std::string& path);
// Whether there is anything of that name.
bool IsThere(const std::string& path);
// To be called first. A standard stream that the program was started without becomes one that fails, so that no file
// takes its place. Bytes pass as they are, and a console takes them as UTF-8. A write to a reader that went away fails
// with EPIPE.
void PrepareStandardStreams();
bool IsStandardOutputTerminal();
bool IsStandardErrorTerminal();
// The columns of the terminal that standard output is; 0 when it is none.
size_t TerminalWidth();
// Writes all bytes to standard output, unbuffered, and waits while it takes none. False with errno set.
bool WriteStandardOutput(const char* bytes, size_t size);
// What gives this process more rights, as "try as root". Null when it has them all, or the system knows none.
const char* AdviceForRights();
