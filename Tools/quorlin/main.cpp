// The host program: chooses a machine, drives a package on it, and prints its items.
#include <new>

#include "Packages/FERROXExternal/StructureStore/Machine.h"
#include "Packages/Platform/Platform.h"
#include "Packages/Platform/Program.h"
#include "Packages/Sample/Sample.h"
#include "Tools/quorlin/Image.h"
#include "Tools/quorlin/Options.h"
#include "Tools/quorlin/Show.h"

namespace {

constexpr uint32_t kRawSMBIOSProvider = 0x52534D42;

bool UseImage(const Image_t& image) { return SetImageMachine(&image.source) == kSuccess; }

bool UseSample(const Options_t& options, Image_t* image) {
    const std::span<const uint8_t> table = SampleTable();
    image->source = {table.data(), static_cast<uint32_t>(table.size()), 3, 0, options.signature};
    return UseImage(*image);
}

// Why this machine gives no table, in words that say what to try.
std::string WhyNoTable() {
    if (GetSystemFirmwareTable(kRawSMBIOSProvider, 0, nullptr, 0) == 0 && GetLastError() == ERROR_ACCESS_DENIED)
        return "reading the SMBIOS table needs more rights; try as root";
    return "no SMBIOS table here; try --sample, or --image FILE";
}

// Brings a package up on the machine that the options name. False with a line on standard error.
bool BringUp(const Options_t& options, Image_t* image, Quorlin& package) {
    image->source = {nullptr, 0, options.major, options.minor, options.signature};
    if (options.source == Source_t::kImageFile && !(ReadImage(options.image, image) && UseImage(*image))) return false;
    if (options.source == Source_t::kSample && !UseSample(options, image)) return false;
    if (package.Initialize() == kSuccess) return true;
    package.UnInitialize();
    if (options.source == Source_t::kThisMachineOrSample) {
        SayError("this machine", "no SMBIOS table to be had; showing the embedded sample");
        if (UseSample(options, image) && package.Initialize() == kSuccess) return true;
        package.UnInitialize();
    }
    SayError(options.source == Source_t::kImageFile ? options.image : "this machine",
             options.source == Source_t::kImageFile ? "out of memory" : WhyNoTable());
    return false;
}

int Run(int argc, char** argv) {
    PrepareStandardOutput();
    Options_t options;
    int exitCode = kExitDone;
    if (!ParseOptions(ProgramArguments(argc, argv), &options, &exitCode)) return exitCode;
    Image_t image;
    static BaseAbstraction* created;
    created = options.types.empty() ? CreateSmbiosPackage() : CreateSmbiosPackageForKovr(options.types.front());
    if (created == nullptr) throw std::bad_alloc();
    auto& package = static_cast<Quorlin&>(*created);
    if (!BringUp(options, &image, package)) return kExitNoTable;
    for (const uint8_t type : options.types) package.GetTypes(type);
    ClOutput output;
    ShowItems(package, options.format, output);
    exitCode = output.Finish() ? kExitDone : kExitNoTable;
    // The memory of an image's items goes with the process, which ends here; this machine is given back.
    if (options.source == Source_t::kThisMachine || options.source == Source_t::kThisMachineOrSample) {
        package.UnInitialize();
        DestroySmbiosPackage(created);
    }
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) try { return Run(argc, argv); } catch (const std::bad_alloc&) {
    SayError("memory", "not enough for this table");
    return kExitNoTable;
}
