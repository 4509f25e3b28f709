// Services for programs: arguments, files, and standard streams. All text, path names included, is UTF-8 on every
// system.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
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
// The same for a file that all users can read, which replaces a plain file with the name. `write` makes it piece by
// piece, by calls of its argument; after one returned false, more are useless. The file that is there stays as it is on
// failure; with EEXIST if it is a link, a folder, a device or a pipe. The temporary name ends unlike that of a file
// that other programs look for.
using AppendBytes_t = std::function<bool(const void* bytes, size_t size)>;
using WritePieces_t = std::function<void(const AppendBytes_t& append)>;
bool ReplaceWholeFile(const std::string& path, const WritePieces_t& write);
// A new folder with files that only its owner can read and write. Like the files of CreateWholeFile, it gets its name
// when it is complete, and a signal, Ctrl-C or a failure leaves nothing. After a failure nothing more is written.
// A process can make one folder at a time.
class ClNewFolder {
  public:
    // Creates the folder with a temporary name next to `path`.
    explicit ClNewFolder(const std::string& path);
    // Removes the folder unless it is complete.
    ~ClNewFolder();
    ClNewFolder(const ClNewFolder&) = delete;
    ClNewFolder& operator=(const ClNewFolder&) = delete;

    // Creates a file, and returns its number: how many there were before.
    size_t AddFile(const std::string& name);
    // Appends bytes to a file, unbuffered. False after a failure.
    bool Append(size_t file, std::span<const uint8_t> bytes);
    // Gives the complete folder its name. False on failure; the problem is EEXIST if the name exists.
    bool Finish();
    // The errno of the first failure, or 0.
    int Problem() const;

    struct State_t;  // the system's part

  private:
    std::unique_ptr<State_t> m_state;
};
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
