// Services for programs: arguments, files, and standard streams. All text, path names included, is UTF-8 on every
// system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

// Returns the arguments, the program's name first.
std::vector<std::string> ProgramArguments(int argc, char** argv);
// As fopen. Returns null, with errno set, on failure.
std::FILE* OpenFile(const std::string& path, const char* mode);
// Opens a plain file for reading, without waiting. Opens nothing else, as opening a device may have effects. Returns
// null, with errno set, on failure; with EINVAL for a link, a device or a pipe.
std::FILE* OpenPlainFile(const std::string& path);
// Creates a file with these bytes that only its owner can read and write. It gets its name when it is complete, so that
// a signal, a full disk or a limit on file sizes leaves no partial file. Returns false, with errno set, on failure;
// with EEXIST if the name exists, be it as a link.
bool CreateWholeFile(const std::string& path, const void* bytes, size_t size);
// A file of a new folder.
struct NewFile_t {
    std::string name;
    std::span<const uint8_t> bytes;
};
// Creates a folder with these files that only its owner can read and write. Like the files of CreateWholeFile, it gets
// its name when it is complete. False, with errno set, on failure; with EEXIST if the name exists.
bool CreateWholeFolder(const std::string& path, std::span<const NewFile_t> files);
bool IsFolder(const std::string& path);
// Whether the name exists.
bool IsThere(const std::string& path);
// Whether new files can be created in the working folder: 0, or an errno, such as EROFS. Creates none.
int WhyNoNewFiles();
// Must be called first. Replaces standard streams that are closed with streams that fail, so that no file that the
// program opens takes their place. Bytes are then written unchanged, a console takes them as UTF-8, and a write to a
// reader that is gone fails with EPIPE.
void PrepareStandardStreams();
bool IsStandardOutputTerminal();
bool IsStandardErrorTerminal();
// Returns the width in columns of the terminal at standard output; 0 if it is no terminal.
size_t TerminalWidth();
// Writes all bytes to standard output, unbuffered, and waits while it is full. Returns false, with errno set, on
// failure.
bool WriteStandardOutput(const char* bytes, size_t size);
// Returns advice on how to get more rights, such as "try as root"; null if the process has all rights.
const char* AdviceForRights();
// Returns the name and the version of the system's kernel, such as "Linux 6.1.0-18-amd64". Empty if unknown.
std::string KernelVersion();
// Returns what kind of firmware started the system: "UEFI" or "BIOS"; null if that is unknown.
const char* FirmwareKind();
// Opens the system's list of the names of PCI devices, pci.ids. Returns null if it has none.
std::FILE* OpenPciNames();
