// The tables that a command works on: which they are, and one of them brought up.
#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Sources/Quorlin.h"
#include "Tools/quorlin/CommandLine.h"

// What the user said of where tables come from: first as typed, then checked.
struct Source_t {
    std::vector<std::string> images;
    std::string imageList;
    bool sample = false, sampleIfNone = false, verbose = false, recover = false;
    bool driver = false, noDriver = false;
    std::string asGiven, versionGiven, signatureGiven, roadGiven, trace, colorGiven;

    bool scan = false;  // this machine's memory is the only road
    TableForm_t as = TableForm_t::kAny;
    uint8_t major = 3, minor = 0;  // of a bare table
    uint32_t signature = 0;        // of an image's processor

    // The options that fill this: for a command that takes one table only, and for one that takes many.
    std::vector<Option_t> Options();
    std::vector<Option_t> FleetOptions();
    // Checks what was given as a whole. As ParseCommandLine when it is bad.
    bool Check(const Usage_t& usage, int* exitCode);
    // The same for a command that takes one table only.
    bool CheckOne(const Usage_t& usage, int* exitCode);
    bool IsFleet() const { return !imageList.empty() || images.size() > 1; }
};

// One table, brought up as the process's only one until Close.
class ClTable {
  public:
    ClTable() = default;
    ~ClTable() { Close(); }
    ClTable(const ClTable&) = delete;
    ClTable& operator=(const ClTable&) = delete;

    // Brings up an image file, or what else `source` says when `path` is null. False with Error set.
    bool Open(const Source_t& source, const std::string* path);
    // Whether it is a machine, not an image, that is in use.
    bool IsThisMachine() const;
    void Close();

    // A package on the table, that has decoded nothing so far.
    Quorlin& Package() { return *m_package; }
    // The table's bytes; they live until Close. Empty without memory.
    std::span<const uint8_t> Bytes();
    uint8_t Major() const { return m_version[0]; }
    uint8_t Minor() const { return m_version[1]; }

    // The file, "sample" or "this machine".
    const std::string& Name() const { return m_name; }
    // What is wrong and what to try.
    const std::string& Error() const { return m_error; }
    // What else a user should hear, empty if nothing: of a table cut short, or of bytes that were skipped.
    const std::string& Remark() const { return m_remark; }
    // The form in which the table came, for --verbose.
    std::string Form() const;
    // Null unless the table comes from a file.
    const Image_t* Image() const { return m_isImage ? &m_image : nullptr; }

  private:
    bool OpenImage(const Source_t& source, const std::string& path);
    bool OpenThisMachine(const Source_t& source);
    bool BringUpThisMachine(const Source_t& source);
    bool BringUpWatched(const MachineServices_t& machine);
    bool UseSample(const Source_t& source);
    bool UseRecovered(const Source_t& source);
    bool BringUp();
    void AddRemark(const std::string& text);

    std::unique_ptr<Quorlin> m_package;
    Image_t m_image;
    bool m_isImage = false, m_isSample = false;
    SMBIOSTableImage_t* m_dump = nullptr;  // of this machine
    std::vector<uint8_t> m_recovered;
    uint8_t m_version[2] = {};
    std::string m_name, m_error, m_remark;
};

// Brings up each table that `source` names, one after the other, and runs `work` on it, which gives an exit code. A
// table that can't be brought up is handed to `failed`; the run goes on and ends with the highest exit code.
// `trouble` is the exit code of such a table.
int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work,
                 const std::function<void(const ClTable&)>& failed);
// The same for commands that say both on standard error: of a table that can't be brought up, and the remarks.
int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work);
