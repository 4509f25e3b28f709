// The tables that a command works on, brought up one after the other.
#pragma once

#include <functional>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <vector>

#include "Packages/FERROXExternal/StructureStore/ImageFile.h"
#include "Sources/Quorlin.h"
#include "Tools/quorlin/Source.h"

// One table. It is the process's only one until Close.
class ClTable {
  public:
    ClTable() = default;
    ~ClTable() { Close(); }
    ClTable(const ClTable&) = delete;
    ClTable& operator=(const ClTable&) = delete;

    // Brings up an image file, or what else `source` names if `path` is null. False with Error set.
    bool Open(const Source_t& source, const std::string* path);
    void Close();
    // Takes down the package, which takes much more memory than the bytes. They stay.
    void ClosePackage();
    // The same for a large table only, as that of a small one takes more time to take down than memory.
    void CloseLargePackage();
    // Whether the table is a machine's own, not an image or the sample.
    bool IsThisMachine() const { return !m_isImage && !m_isSample; }

    // A package on the table that has decoded nothing so far. An image's is brought up by the first call, as most
    // commands read the bytes alone. Throws std::bad_alloc.
    Quorlin& Package() {
        if (m_package == nullptr && !BringUp()) throw std::bad_alloc();
        return *m_package;
    }
    bool HadTooManyItems() const { return m_package != nullptr && m_package->HadTooManyItems(); }
    // The table's bytes, which live until Close. Empty without memory.
    std::span<const uint8_t> Bytes();
    uint8_t Major() const { return m_version[0]; }
    uint8_t Minor() const { return m_version[1]; }
    // The same as 0304h for 3.4.
    uint16_t Version() const { return static_cast<uint16_t>(Major() << 8 | Minor()); }

    // "3.4".
    std::string VersionText() const { return std::to_string(Major()) + "." + std::to_string(Minor()); }

    // The file, "sample" or "this machine".
    const std::string& Name() const { return m_name; }
    // What is wrong and what to try.
    const std::string& Error() const { return m_error; }
    // What else a user should know, such as that the table is cut short; empty if nothing.
    const std::string& Remark() const { return m_remark; }
    // The form that the table was read in, for --verbose.
    std::string Form() const;
    // Null unless the table comes from a file.
    const Image_t* Image() const { return m_isImage ? &m_image : nullptr; }

  private:
    bool OpenImage(const Source_t& source, const std::string& path);
    bool OpenThisMachine(const Source_t& source);
    bool BringUpThisMachine(const Source_t& source);
    bool BringUpRecord(const Source_t& source);
    bool BringUpWatched(const MachineServices_t& machine);
    bool UseSample(const Source_t& source);
    void UseRecovered(const Source_t& source);
    bool BringUp();
    void AddRemark(const std::string& text);

    std::unique_ptr<Quorlin> m_package;
    Image_t m_image;
    bool m_isImage = false, m_isSample = false, m_isRecord = false;
    SMBIOSTableImage_t* m_dump = nullptr;  // of this machine
    std::vector<uint8_t> m_recovered;
    uint8_t m_version[2] = {};
    std::string m_name, m_error, m_remark;
};

// Brings up each table that `source` names, one after the other, and runs `work` on it, which returns an exit code. A
// table that can't be brought up is passed to `failed`, and counts as `trouble`. Returns the highest exit code. Of a
// list that can't be read to its end, says why and sets `isComplete`, unless it is null, to false.
int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work,
                 const std::function<void(const ClTable&)>& failed, bool* isComplete = nullptr);
// The same, with errors and remarks on standard error.
int ForEachTable(const Source_t& source, int trouble, const std::function<int(ClTable&)>& work);
