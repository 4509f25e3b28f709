// What a program needs of its platform beside the Windows functions: arguments, files, and standard output.
// Text is UTF-8 on every platform, path names included.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

// The arguments as UTF-8, the program's name first.
std::vector<std::string> ProgramArguments(int argc, char** argv);
// As fopen; null with errno set.
std::FILE* OpenFile(const std::string& path, const char* mode);
// Makes a file that doesn't exist yet, which only its owner may read and write. Null with errno set, EEXIST when there
// is anything of that name, a link included.
std::FILE* CreateNewFile(const std::string& path);
bool IsFolder(const std::string& path);
// From here on bytes reach standard output and standard error as they are written; a console takes them as UTF-8.
void PrepareStandardOutput();
bool IsStandardOutputTerminal();
bool IsStandardErrorTerminal();
// The columns of the terminal that standard output is; 0 when it is none.
size_t TerminalWidth();
// Writes all bytes to standard output, unbuffered. False with errno set.
bool WriteStandardOutput(const char* bytes, size_t size);
