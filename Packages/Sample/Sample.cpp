#include "Packages/Sample/Sample.h"

#include <algorithm>
#include <array>

#include "Packages/Sample/Extended.h"
#include "Packages/Sample/Management.h"
#include "Packages/Sample/Memory.h"
#include "Packages/Sample/Options.h"
#include "Packages/Sample/Power.h"
#include "Packages/Sample/Probes.h"
#include "Packages/Sample/Processors.h"
#include "Packages/Sample/SampleBuilder.h"
#include "Packages/Sample/Slots.h"
#include "Packages/Sample/System.h"
#include "Packages/Sample/Vendor.h"

// The upper byte of a handle is the type: 1103h is the fourth structure of type 17.
static consteval ClSampleBuilder BuildSample() {
    ClSampleBuilder table;
    AddSystem(table);             // 0 to 3
    AddProcessors(table);         // 4
    AddMemoryControllers(table);  // 5, 6
    AddCaches(table);             // 7
    AddSlots(table);              // 8 to 10
    AddOptions(table);            // 11 to 15
    AddMemory(table);             // 16 to 20
    AddPower(table);              // 21 to 25
    AddProbes(table);             // 26 to 29
    AddManagement(table);         // 30 to 38
    AddExtended(table);           // 39 to 46, 126
    AddVendor(table);             // 130, 131, 148, 221, 222
    table.Add(127, "", {{0x7F00}});
    return table;
}

static constexpr ClSampleBuilder kBuilt = BuildSample();

// The builder's bytes, without unused room.
static constexpr auto kImage = [] {
    std::array<uint8_t, kBuilt.Size()> image{};
    std::copy_n(kBuilt.Bytes(), image.size(), image.begin());
    return image;
}();

std::span<const uint8_t> SampleTable() { return kImage; }
