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
// From here on bytes reach standard output as they are written; a console takes them as UTF-8.
void PrepareStandardOutput();
bool IsStandardOutputTerminal();
// Writes all bytes to standard output, unbuffered. False with errno set.
bool WriteStandardOutput(const char* bytes, size_t size);
