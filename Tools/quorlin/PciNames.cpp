#include "Tools/quorlin/PciNames.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <string_view>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/CommandLine.h"

namespace {

// Takes a number of `digits` hexadecimal digits and the name after it.
bool Take(std::string_view line, size_t digits, uint32_t* number, std::string_view* name) {
    uint64_t value = 0;
    if (line.size() < digits + 2 || line[digits] != ' ' || !ParseHex(line.substr(0, digits), UINT32_MAX, &value))
        return false;
    *number = static_cast<uint32_t>(value);
    *name = line.substr(digits + 2);
    return true;
}

}  // namespace

// Lines are "8086  Vendor", "<tab>1533  Device", "C 02  Class" and "<tab>00  Subclass".
void NamePciDevices(std::span<PciName_t> devices) {
    if (devices.empty()) return;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenPciNames(), std::fclose);
    if (file == nullptr) return;
    char buffer[512];
    bool isClass = false;
    uint32_t above = 0, number = 0;
    while (std::fgets(buffer, sizeof buffer, file.get()) != nullptr) {
        std::string_view line(buffer, std::strcspn(buffer, "\n")), name;
        if (line.starts_with("\t\t") || line.starts_with('#')) continue;
        const bool isInner = line.starts_with('\t');
        if (isInner) {
            line.remove_prefix(1);
        } else {
            isClass = line.starts_with("C ");
            if (isClass) line.remove_prefix(2);
        }
        if (!Take(line, isClass ? 2 : 4, &number, &name)) continue;
        if (!isInner) above = number;
        for (PciName_t& device : devices) {
            const uint32_t own = isClass ? device.classCode >> 16 : device.vendor;
            const uint32_t inner = isClass ? device.classCode >> 8 & 0xFF : device.device;
            if (own != above || (isInner && inner != number)) continue;
            (isClass ? device.className : isInner ? device.deviceName : device.vendorName) = name;
        }
    }
}
