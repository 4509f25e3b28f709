#include "CInterface/Opening.h"

#include "Packages/Debug/Debug.h"

namespace {

std::mutex opening;

constexpr uint8_t kUsualMajor = 3;
constexpr uint8_t kNoSweep = 127;  // a type without items

// For quorlin_last_error: the problem, or only the status if nothing more is known. They have no destructor, because
// that would keep the library loaded until the thread ends.
thread_local quorlin_status lastStatus = QUORLIN_OK;
thread_local char lastProblem[512] = "";

// An image as the options describe it. 0.0 is an unknown version.
Image_t ImageWith(const quorlin_options& options) {
    Image_t image;
    image.source.signature = options.signature;
    image.source.major = options.smbios_major;
    image.source.minor = options.smbios_minor;
    if (options.smbios_major == 0 && options.smbios_minor == 0) image.source.major = kUsualMajor;
    return image;
}

// Keeps the trace handles of package and store open from the first opening on, so that later openings find the
// configuration and the log files as the first one did, and needn't set them up.
void KeepTrace() {
    static DebugHandle_t package = nullptr, store = nullptr;
    if (package == nullptr) DebugLibInit("Quorlin", &package);
    if (store == nullptr) DebugLibInit("SMBIOSDbgHdl", &store);
}

}  // namespace

quorlin_status KeepOutcome(quorlin_status status) { return lastStatus = status; }

void KeepProblem(const std::string& problem) { lastProblem[problem.copy(lastProblem, sizeof lastProblem - 1)] = '\0'; }

quorlin_status ReadFileImage(const char* path, const quorlin_options& options, Image_t* image) {
    *image = ImageWith(options);
    std::string problem;
    if (ReadImage(path, TableForm_t::kAny, image, &problem) == kSuccess) return QUORLIN_OK;
    KeepProblem(problem);
    return QUORLIN_NO_IMAGE;
}

quorlin_status ReadMemoryImage(const void* bytes, size_t size, const quorlin_options& options, Image_t* image) {
    *image = ImageWith(options);
    const auto* begin = static_cast<const uint8_t*>(bytes);
    std::string problem;
    if (ImageFromBytes({begin, begin + size}, TableForm_t::kAny, image, &problem) == kSuccess) return QUORLIN_OK;
    KeepProblem(problem);
    return QUORLIN_NO_IMAGE;
}

void AddRemark(std::string* remark, const std::string& text) {
    if (!text.empty()) remark->append(remark->empty() ? "" : "; ").append(text);
}

ClPackageInUse::ClPackageInUse() : m_lock(opening), m_package(kNoSweep), m_isBusy(StoreIsUp()) {
    if (m_isBusy) return;
    KeepTrace();
    m_chosen = ChosenMachine();
}

ClPackageInUse::~ClPackageInUse() {
    if (m_isBusy) return;
    m_package.UnInitialize();
    // A package takes a table of version 0.0 for no table, and leaves the store up.
    if (StoreIsUp()) LibSMBIOSExit();
    ChooseMachine(m_chosen);
}

const char* quorlin_last_error() {
    if (lastStatus == QUORLIN_OK) return "";
    return lastProblem[0] == '\0' ? quorlin_status_text(lastStatus) : lastProblem;
}
