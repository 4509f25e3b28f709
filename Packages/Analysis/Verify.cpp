#include "Packages/Analysis/Verify.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <set>

#include "Packages/Analysis/Values.h"
#include "Packages/Format/Ascii.h"
#include "Packages/Standard/Texts.h"

namespace {

// Codes and bits of the standard's tables.
constexpr uint64_t kCentralProcessor = 3, kPopulated = 1u << 6, kDisabledByUser = 2, kDisabledByFirmware = 3;
constexpr uint64_t kInUse = 4, kUefiBit = 1u << 3, kExternal = 1, kDeviceEnabled = 0x80;
constexpr uint64_t kInstructionCache = 3, kSerialInterface = 4;
constexpr uint32_t kSettings = 1u << 9 | 1u << 18 | 1u << 28;  // feature flags that settings change: APIC, PSN, HTT
constexpr uint64_t kLiberty = 4;                               // how far a hypervisor's numbers may be off

constexpr char kNotAvailable[] = "not available", kHypervisor[] = "as the hypervisor likes";

std::string MHz(uint64_t speed) { return std::to_string(speed) + " MHz"; }

std::string LanesText(uint32_t lanes) { return std::string("x").append(std::to_string(lanes)); }

// The PCI class of a type of on-board device; none for types that have several, or no PCI.
std::optional<uint32_t> ClassOf(uint64_t type) {
    constexpr uint32_t kStorage = 1, kNetwork = 2, kDisplay = 3, kMultimedia = 4;
    switch (type) {
        case 3: return kDisplay;
        case 4:
        case 8:
        case 9:
        case 10:
        case 15: return kStorage;
        case 5: return kNetwork;
        case 7: return kMultimedia;
        default: return std::nullopt;
    }
}

// Whether a text has this number of a version, with nothing that continues it.
bool HasVersion(std::string_view text, const std::string& version) {
    const auto continues = [](char c) { return c == '.' || (c >= '0' && c <= '9'); };
    for (size_t at = text.find(version); at != text.npos; at = text.find(version, at + 1)) {
        const size_t end = at + version.size();
        if ((at == 0 || !continues(text[at - 1])) && (end == text.size() || !continues(text[end]))) return true;
    }
    return false;
}

// The ways in which firmware writes a version in 32 bits: bytes, words, and decimal digits as in 1620h for 1.62.
bool IsVersion(std::string_view text, uint32_t number) {
    std::string bytes;
    for (const uint32_t byte : {number >> 24, number >> 16 & 0xFF, number >> 8 & 0xFF, number & 0xFF})
        if (byte != 0 || !bytes.empty()) bytes.append(bytes.empty() ? "" : ".").append(std::to_string(byte));
    const std::string words = std::to_string(number >> 16) + "." + std::to_string(number & 0xFFFF);
    char digits[16];
    std::snprintf(digits, sizeof digits, "%X.%02X", number >> 12, number >> 4 & 0xFF);
    const bool isDigits = (number & 0xF) == 0 && number >> 16 == 0;
    return (bytes.find('.') != bytes.npos && HasVersion(text, bytes)) ||
           (number >> 16 != 0 && HasVersion(text, words)) || (isDigits && HasVersion(text, digits));
}

class ClVerify {
  public:
    ClVerify(std::span<const uint8_t> table, uint16_t version, const HardwareFacts_t& hardware,
             const std::function<void(const Verification_t&)>& report)
        : m_table(table), m_version(version), m_hardware(hardware), m_report(report), m_handles(table) {}

    void Run() {
        // What others refer to comes first, wherever it is in the table.
        constexpr int kMemoryArray = 16, kMemoryDevice = 17;
        Walk(kMemoryArray, [this] { AddArray(); });
        Walk(kMemoryDevice, [this] { AddDevice(); });
        Walk(kAllTypes, [this] { VerifyStructure(); });
        VerifyCounts();
        for (const auto& [level, claim] : m_levels) VerifyCaches(level, claim);
        VerifyMemory();
    }

  private:
    static constexpr int kAllTypes = -1;

    void Walk(int type, auto&& verify) {
        for (const TableStructure_t& structure : ClWalk(m_table)) {
            if (type != kAllTypes && structure.Type() != type) continue;
            m_structure = &structure;
            m_values.Clear();
            m_facts.Begin(structure, {.version = m_version, .handles = &m_handles});
            while (m_facts.Next()) m_values.Add(*m_facts);
            verify();
        }
        m_structure = nullptr;
    }

    void VerifyStructure() {
        switch (m_structure->Type()) {
            case 0:
                VerifyUefi();
                VerifyFirmwareVersion();
                break;
            case 1: VerifyUuid(); break;
            case 4: VerifyProcessor(); break;
            case 7: AddCache(); break;
            case 9: VerifySlot(); break;
            case 19:
            case 20: VerifyRange(); break;
            case 38: VerifyIpmi(); break;
            case 41: VerifyOnBoard(); break;
            case 43: VerifyTpm(); break;
            case 45: VerifyComponent(); break;
            default: break;
        }
    }

    void Say(VerifyRule_t rule, Verdict_t verdict, std::string_view key, std::string_view claim,
             std::string_view hardware) {
        const Value_t* value = m_structure == nullptr ? nullptr : m_values.Find(key);
        const auto begin = m_structure == nullptr ? 0 : static_cast<uint32_t>(m_structure->data - m_table.data());
        m_report({rule, verdict, m_structure, key, begin + (value == nullptr ? 0u : value->offset), claim, hardware});
    }
    void Judge(VerifyRule_t rule, bool agrees, std::string_view key, std::string_view claim,
               std::string_view hardware) {
        Say(rule, agrees ? Verdict_t::kAgrees : Verdict_t::kContradicts, key, claim, hardware);
    }
    void CantTell(VerifyRule_t rule, std::string_view key, std::string_view claim, std::string_view why) {
        Say(rule, Verdict_t::kCantTell, key, claim, why.empty() ? kNotAvailable : why);
    }

    // ---- Firmware

    void VerifyUefi() {
        const Value_t* bits = m_values.Find("firmware_characteristics_extension_byte_2");
        if (bits == nullptr) return;
        const bool claims = (bits->number & kUefiBit) != 0;
        const char* const claim = claims ? "supported" : "not supported";
        if (!m_hardware.isUefi)
            CantTell(VerifyRule_t::kUefi, bits->key, claim, {});
        else if (claims && !*m_hardware.isUefi)
            CantTell(VerifyRule_t::kUefi, bits->key, claim, "started without UEFI, as firmware with UEFI may allow");
        else
            Judge(VerifyRule_t::kUefi, claims == *m_hardware.isUefi, bits->key, claim,
                  *m_hardware.isUefi ? "started by UEFI" : "started without UEFI");
    }

    void VerifyFirmwareVersion() {
        constexpr std::string_view kKey = "firmware_version";
        const std::string_view version = m_values.Text(kKey);
        if (version.empty()) return;
        std::vector<uint32_t> numbers = m_hardware.revisions;
        for (const FirmwareResource_t& resource : m_hardware.resources)
            if (resource.type == kSystemFirmware) numbers.push_back(resource.version);
        if (numbers.empty()) return CantTell(VerifyRule_t::kFirmwareVersion, kKey, version, m_hardware.whyNoTables);
        std::string all;
        for (const uint32_t number : numbers) {
            if (IsVersion(version, number))
                return Judge(VerifyRule_t::kFirmwareVersion, true, kKey, version, CodeText(number));
            all.append(all.empty() ? "" : ", ").append(CodeText(number));
        }
        CantTell(VerifyRule_t::kFirmwareVersion, kKey, version, all + ", numbers of another kind");
    }

    void VerifyComponent() {
        constexpr uint64_t kNumber32 = 2, kUefiId = 1;
        constexpr std::string_view kKey = "firmware_version", kPrefix = "0x";
        std::string_view version = m_values.Text(kKey);
        const std::string id = LowerCaseText(m_values.Text("firmware_id"));
        if (version.empty() || m_values.Number("version_format") != kNumber32 ||
            m_values.Number("firmware_id_format") != kUefiId)
            return;
        const auto resource = std::ranges::find(m_hardware.resources, id, &FirmwareResource_t::id);
        if (resource == m_hardware.resources.end())
            return CantTell(VerifyRule_t::kComponentVersion, kKey, version, "ESRT doesn't have it, or wasn't read");
        uint32_t number = 0;
        const std::string_view digits =
            version.starts_with(kPrefix) ? version.substr(kPrefix.size()) : std::string_view();
        const char* const last = digits.data() + digits.size();
        const auto [end, error] = std::from_chars(digits.data(), last, number, 16);
        if (digits.empty() || error != std::errc() || end != last)
            return CantTell(VerifyRule_t::kComponentVersion, kKey, version, "the firmware's number isn't one");
        Judge(VerifyRule_t::kComponentVersion, number == resource->version, kKey, version, CodeText(resource->version));
    }

    // A UUID of version 1 ends with a network address, or with a random one, which has the bit of groups. Some firmware
    // has an address there whatever the version.
    void VerifyUuid() {
        constexpr size_t kSize = 16, kNode = 10, kNodeSize = 6;
        constexpr uint8_t kTimeBased = 1, kGroup = 1;
        const Value_t* uuid = m_values.Find("uuid");
        if (uuid == nullptr || uuid->state != FactState_t::kValue || uuid->size != kSize) return;
        const uint8_t* bytes = m_structure->data + uuid->offset;
        const std::string node = LowerCaseText(HexDigits({bytes + kNode, kNodeSize}));
        const uint8_t version = (m_version < 0x0206 ? bytes[6] : bytes[7]) >> 4;
        if (std::ranges::find(m_hardware.networkAddresses, node) != m_hardware.networkAddresses.end())
            Judge(VerifyRule_t::kUuid, true, uuid->key, node, node);
        else if (version == kTimeBased && (bytes[kNode] & kGroup) == 0)
            CantTell(VerifyRule_t::kUuid, uuid->key, node,
                     m_hardware.networkAddresses.empty() ? "" : "no interface has it now");
    }

    void VerifyTpm() {
        constexpr std::string_view kKey = "major_spec_version";
        const auto major = m_values.Number(kKey);
        if (!major) return;
        const std::string claim = "version " + std::to_string(*major);
        if (!m_hardware.tpm)
            CantTell(VerifyRule_t::kTpm, kKey, claim, m_hardware.whyNoTables);
        else if (*m_hardware.tpm == 0 && *major == 1)
            CantTell(VerifyRule_t::kTpm, kKey, claim, "no table, which TPMs of version 1 may lack");
        else
            Judge(VerifyRule_t::kTpm, *major == *m_hardware.tpm, kKey, claim,
                  *m_hardware.tpm == 0 ? "no TPM" : "version " + std::to_string(*m_hardware.tpm));
    }

    static std::string IpmiText(uint64_t interface, uint64_t address) {
        return "interface " + std::to_string(interface) + " at " + CodeText(address);
    }

    void VerifyIpmi() {
        const auto interface = m_values.Number("interface_type"), address = m_values.Number("interface_address");
        if (!interface || !address) return;
        const std::string claim = IpmiText(*interface, *address);
        if (!m_hardware.ipmi)
            return CantTell(VerifyRule_t::kIpmi, "interface_type", claim,
                            m_hardware.whyNoTables.empty() ? "the table isn't there" : m_hardware.whyNoTables);
        // The addresses of serial interfaces are written in two ways.
        const HardwareFacts_t::Ipmi_t& ipmi = *m_hardware.ipmi;
        Judge(VerifyRule_t::kIpmi,
              *interface == ipmi.interface && (*interface == kSerialInterface || *address == ipmi.address),
              "interface_type", claim, IpmiText(ipmi.interface, ipmi.address));
    }

    // ---- Processors and caches

    void VerifyProcessor() {
        const uint64_t status = m_values.Number("status").value_or(0);
        const uint64_t state = m_values.Number("cpu_status").value_or(0);
        if (m_values.Number("processor_type") != kCentralProcessor || (status & kPopulated) == 0) return;
        if (state == kDisabledByUser || state == kDisabledByFirmware) return;
        m_sockets++;
        const uint64_t cores = m_values.Number("cores").value_or(0);
        const uint64_t threads = m_values.Number("threads").value_or(cores);
        const uint64_t enabled = m_values.Number("cores_enabled").value_or(cores);
        m_knowsCores = m_knowsCores && cores != 0;
        m_knowsThreads = m_knowsThreads && m_values.Number("threads");
        m_cores += cores;
        m_coresEnabled += enabled;
        m_threads += threads;
        // Without their number, those of the enabled cores, of which settings may leave one to a core.
        const auto threadsEnabled = m_values.Number("thread_enabled");
        const uint64_t most = cores == 0 ? 0 : std::min(threads, enabled * ((threads + cores - 1) / cores));
        m_enabledLeast += threadsEnabled.value_or(enabled);
        m_enabledMost += threadsEnabled.value_or(most);
        VerifyIdentity();
        VerifyFamily();
        // A socket may take faster processors, and a processor may start at its lowest speed.
        constexpr uint64_t kSocketsMost = 4, kSlack = 2, kSlowest = 8;
        VerifySpeed(VerifyRule_t::kMaxSpeed, "max_speed", kSlack, kSocketsMost);
        VerifySpeed(VerifyRule_t::kCurrentSpeed, "current_speed", kSlowest, kSlack);
    }

    void VerifyIdentity() {
        const Value_t* id = m_values.Find("processor_id");
        if (id == nullptr || id->state != FactState_t::kValue || id->size != 8) return;
        const auto signature = static_cast<uint32_t>(id->number), features = static_cast<uint32_t>(id->number >> 32);
        if (m_hardware.isArm64) return VerifyMidr(id->key, signature, features);
        VerifyIdentity(VerifyRule_t::kSignature, id->key, signature, &HardwareFacts_t::Identity_t::signature, 0, false);
        // A hypervisor hides some, also from the system that runs it.
        VerifyIdentity(VerifyRule_t::kFeatures, id->key, features, &HardwareFacts_t::Identity_t::features, kSettings,
                       m_hardware.isVirtual);
    }

    // On ARM64 it is MIDR or the SoC's own number, with a bit for the latter, which older firmware lacks.
    void VerifyMidr(std::string_view key, uint32_t signature, uint32_t features) {
        constexpr VerifyRule_t kRule = VerifyRule_t::kSignature;
        constexpr uint32_t kArchitecture = 0xFu << 16;  // a field of MIDR, all ones in 64-bit processors
        constexpr uint64_t kHasSocId = 1u << 9;
        const Value_t* bits = m_values.Find("processor_characteristics");
        if (bits != nullptr && (bits->number & kHasSocId) != 0)
            return CantTell(kRule, key, CodeText(signature), "it is the SoC's own number");
        if (signature != 0 && (signature & kArchitecture) != kArchitecture)
            CantTell(kRule, key, CodeText(signature), "it isn't MIDR");
        else if (signature != 0 && m_hardware.identities.empty())
            CantTell(kRule, key, CodeText(signature), "the system doesn't show MIDR");
        else
            VerifyIdentity(kRule, key, signature, &HardwareFacts_t::Identity_t::signature, 0, m_hardware.isVirtual);
        if (features != 0) CantTell(VerifyRule_t::kFeatures, key, CodeText(features), m_hardware.whyNoProcessors);
    }

    // Bits of `free` may differ. Zero is no claim.
    void VerifyIdentity(VerifyRule_t rule, std::string_view key, uint32_t claim,
                        uint32_t HardwareFacts_t::Identity_t::*part, uint32_t free, bool isExcused) {
        if (claim == 0) return;
        const std::vector<HardwareFacts_t::Identity_t>& all = m_hardware.identities;
        if (all.empty()) return CantTell(rule, key, CodeText(claim), m_hardware.whyNoProcessors);
        const bool agrees =
            std::ranges::any_of(all, [&](const auto& each) { return ((each.*part ^ claim) & ~free) == 0; });
        const std::string real = CodeText(all[0].*part);
        if (!agrees && isExcused)
            CantTell(rule, key, CodeText(claim), std::string(real).append(", ").append(kHypervisor));
        else
            Judge(rule, agrees, key, CodeText(claim), real);
    }

    static bool HasOneOf(std::string_view family, auto... names) {
        return ((family.find(names) != std::string_view::npos) || ...);
    }

    void VerifyFamily() {
        const Value_t* family = m_values.Find("family");
        if (family == nullptr || family->state != FactState_t::kValue) return;
        const bool saysIntel = HasOneOf(family->word, "Intel", "Xeon", "Pentium");
        const bool saysAmd = HasOneOf(family->word, "AMD Athlon", "AMD Opteron", "AMD Zen", "AMD Phenom", "AMD Sempron",
                                      "AMD Turion", "AMD Duron", "-Series Processor", "Series APU");
        if (!saysIntel && !saysAmd) return;
        const bool isIntel = m_hardware.vendor == "GenuineIntel", isAmd = m_hardware.vendor == "AuthenticAMD";
        if (m_hardware.vendor.empty())
            CantTell(VerifyRule_t::kFamily, family->key, family->word, m_hardware.whyNoProcessors);
        else if (!isIntel && !isAmd)
            CantTell(VerifyRule_t::kFamily, family->key, family->word, m_hardware.vendor);
        else
            Judge(VerifyRule_t::kFamily, saysIntel == isIntel, family->key, family->word, m_hardware.vendor);
    }

    // Speeds change while a machine runs, and firmware rounds them. A processor's fastest speed may be far above the
    // base speed, and the one that it has now may be any.
    void VerifySpeed(VerifyRule_t rule, std::string_view key, uint64_t least, uint64_t most) {
        const auto claim = m_values.Number(key);
        const uint64_t known = m_hardware.baseSpeed.value_or(0), maximum = m_hardware.maxSpeed.value_or(0);
        const uint64_t base = known != 0 ? known : maximum, fastest = std::max(known, maximum);
        if (!claim || *claim == 0) return;
        if (base == 0) return CantTell(rule, key, MHz(*claim), m_hardware.whyNoProcessors);
        if (m_hardware.isVirtual || known == 0 || maximum == 0) {
            least = std::max(least, kLiberty);
            most = std::max(most, kLiberty);
        }
        std::string speeds = MHz(base);
        if (fastest != base) speeds.append(" to ").append(MHz(fastest));
        Judge(rule, *claim >= base / least && *claim <= fastest * most, key, MHz(*claim), speeds);
    }

    // A number that differs contradicts, unless there is an excuse.
    void VerifyCount(VerifyRule_t rule, const std::string& claim, std::optional<uint64_t> hardware, bool agrees,
                     std::string_view excuse, std::string_view why) {
        if (!hardware) return CantTell(rule, {}, claim, why);
        std::string text = std::to_string(*hardware);
        if (agrees || excuse.empty()) return Judge(rule, agrees, {}, claim, text);
        CantTell(rule, {}, claim, text.append(", ").append(excuse));
    }

    // The system may be told to use fewer than the firmware gives it, and a hypervisor may add some.
    bool UsesAll() const {
        return m_hardware.threads && m_hardware.enabled && *m_hardware.threads == *m_hardware.enabled;
    }

    void VerifyCounts() {
        if (m_sockets == 0) return;
        constexpr std::string_view kThreadsOff = "as settings may turn threads off";
        const std::string_view excuse = !UsesAll() ? "but the system may not use just those that the firmware enabled"
                                        : m_hardware.isVirtual ? kHypervisor
                                                               : "";
        const auto is = [](std::optional<uint64_t> hardware, uint64_t claim) { return hardware == claim; };
        const HardwareFacts_t& real = m_hardware;
        VerifyCount(VerifyRule_t::kSockets, std::to_string(m_sockets), real.packages, is(real.packages, m_sockets),
                    excuse, real.whyNoCounts);
        if (!m_knowsCores) return;
        std::string cores = std::to_string(m_cores);
        if (m_coresEnabled != m_cores) cores.append(", ").append(std::to_string(m_coresEnabled)).append(" enabled");
        VerifyCount(VerifyRule_t::kCores, cores, real.cores, is(real.cores, m_cores) || is(real.cores, m_coresEnabled),
                    excuse, real.whyNoCounts);
        if (!m_knowsThreads) return;
        // Some firmware counts the threads that a processor has, whatever the settings.
        const uint64_t threads = real.threads.value_or(0), enabled = real.enabled.value_or(0);
        const bool someAreOff = threads < m_threads && (threads == m_coresEnabled || m_coresEnabled < m_cores);
        VerifyCount(VerifyRule_t::kThreads, std::to_string(m_threads), real.threads, is(real.threads, m_threads),
                    !UsesAll()   ? excuse
                    : someAreOff ? kThreadsOff
                                 : "",
                    {});
        VerifyCount(VerifyRule_t::kEnabled, std::to_string(m_enabledMost), real.enabled,
                    enabled == m_enabledLeast || enabled == m_enabledMost,
                    enabled >= m_enabledLeast && enabled <= m_enabledMost ? kThreadsOff : "", real.whyNoTables);
    }

    void AddCache() {
        constexpr uint64_t kEnabledAtStart = 1u << 7;
        const auto level = m_values.Number("cache_level"), size = m_values.Number("cache_size");
        const Value_t* configuration = m_values.Find("cache_configuration");
        if (!level || !size || *size == 0 || m_values.Number("location") == kExternal) return;
        if (configuration == nullptr || (configuration->number & kEnabledAtStart) == 0) return;
        Level_t& sum = m_levels[*level];
        sum.all += *size;
        if (m_values.Number("system_cache_type") != kInstructionCache) sum.data += *size;
        sum.largest = std::max(sum.largest, *size);
    }

    struct Level_t {
        uint64_t all = 0, data = 0, largest = 0;
    };

    // Firmware describes all caches of a level, those of one processor, or one of them; with instruction caches or
    // without.
    void VerifyCaches(uint64_t level, const Level_t& claim) {
        const std::string text = "level " + std::to_string(level) + ": " + SizeText(claim.all);
        if (m_hardware.caches.empty()) return CantTell(VerifyRule_t::kCacheSize, {}, text, m_hardware.whyNoCaches);
        Level_t all, one;
        for (const HardwareFacts_t::Cache_t& cache : m_hardware.caches) {
            if (cache.level != level) continue;
            all.all += cache.size * cache.count;
            one.all += cache.size;
            all.largest = std::max(all.largest, cache.size * cache.count);
            one.largest = std::max(one.largest, cache.size);
            if (cache.isInstruction) continue;
            all.data += cache.size * cache.count;
            one.data += cache.size;
        }
        const uint64_t sockets = std::max<uint64_t>(m_hardware.packages.value_or(1), 1);
        bool agrees = false;
        for (const uint64_t claimed : {claim.all, claim.data, claim.largest})
            for (const uint64_t real : {all.all, all.data, all.largest, one.all, one.data, one.largest})
                agrees |= claimed == real || claimed * sockets == real;
        const std::string real = SizeText(all.all) + " in all, " + SizeText(one.largest) + " in one";
        const bool isNear = claim.largest > one.largest / kLiberty && claim.largest < all.all * kLiberty;
        if (all.all == 0)  // CPUID doesn't list caches at the memory
            CantTell(VerifyRule_t::kCacheSize, {}, text,
                     m_hardware.isArm64 ? m_hardware.whyNoCaches : "CPUID has none of this level");
        else if (!agrees && (!UsesAll() || m_coresEnabled != m_cores))
            CantTell(VerifyRule_t::kCacheSize, {}, text, real + ", but not all processors are in use");
        else if (!agrees && m_hardware.isVirtual && isNear)
            CantTell(VerifyRule_t::kCacheSize, {}, text, std::string(real).append(", ").append(kHypervisor));
        else
            Judge(VerifyRule_t::kCacheSize, agrees, {}, text, real);
    }

    // ---- Memory

    void AddArray() {
        constexpr uint64_t kVideoMemory = 4, kCacheMemory = 7;
        const auto use = m_values.Number("use");
        if (use && *use >= kVideoMemory && *use <= kCacheMemory) m_otherArrays.insert(m_structure->Handle());
    }

    // Whether the handle with this key is one of these.
    bool RefersTo(std::string_view key, const std::set<uint16_t>& handles) const {
        const auto handle = m_values.Number(key);
        return handle && handles.contains(static_cast<uint16_t>(*handle));
    }

    void AddDevice() {
        const Value_t* size = m_values.Find("memory_size");
        if (RefersTo("physical_memory_array_handle", m_otherArrays)) return;
        m_knowsMemory = m_knowsMemory && size != nullptr && size->state != FactState_t::kUnknown;
        const uint64_t all = m_values.Number("memory_size").value_or(0);
        m_installed += all;
        // The system's memory is the volatile part.
        m_memory +=
            m_values.Number("non_volatile_size").value_or(0) == 0 ? all : m_values.Number("volatile_size").value_or(0);
    }

    // What firmware and graphics take for themselves in most machines.
    static uint64_t Kept(uint64_t memory) { return memory / 8 + (uint64_t{512} << 20); }

    void VerifyMemory() {
        if (m_memory == 0 || !m_knowsMemory) return;
        const std::string claim = SizeText(m_memory);
        if (!m_hardware.memory) return CantTell(VerifyRule_t::kMemorySize, {}, claim, {});
        const uint64_t memory = *m_hardware.memory;
        const bool isPart = memory < m_memory / 4, isLess = memory < m_memory && m_memory - memory > Kept(m_memory);
        const std::string real = SizeText(memory);
        if (m_hardware.isVirtual && (memory > m_memory || isPart))
            CantTell(VerifyRule_t::kMemorySize, {}, claim, std::string(real).append(", ").append(kHypervisor));
        else if (isPart && m_hardware.memoryMap.empty())
            CantTell(VerifyRule_t::kMemorySize, {}, claim, real + "; the system may use a part of it");
        else if (isLess && !isPart)
            CantTell(VerifyRule_t::kMemorySize, {}, claim, real + "; graphics may have the rest");
        else
            Judge(VerifyRule_t::kMemorySize, memory <= m_memory && !isPart, {}, claim, real);
    }

    // A range may have a hole for devices. Some firmware counts addresses as if there were none, or those of memory
    // that the system doesn't have as such: a mirror's, or persistent memory's.
    void VerifyRange() {
        constexpr std::string_view kKey = "range_start";
        const auto begin = m_values.Number(kKey), end = m_values.Number("range_end");
        if (!begin || !end || *end <= *begin) return;
        if (RefersTo("memory_array_mapped_address_handle", m_otherRanges)) return;
        if (RefersTo("memory_array_handle", m_otherArrays)) {
            m_otherRanges.insert(m_structure->Handle());
            return;
        }
        const std::string claim = CodeText(*begin) + " to " + CodeText(*end);
        if (m_hardware.memoryMap.empty()) return CantTell(VerifyRule_t::kMappedRange, kKey, claim, m_hardware.whyNoMap);
        uint64_t covered = 0, all = 0;
        for (const MemoryArea_t& area : m_hardware.memoryMap) {
            const uint64_t first = std::max(area.begin, *begin), last = std::min(area.end, *end);
            if (first <= last) covered += last - first + 1;
            all += area.end - area.begin + 1;
        }
        all = std::max(all, m_installed);
        Judge(VerifyRule_t::kMappedRange, covered > (*end - *begin) / 4 || *end < all + Kept(all), kKey, claim,
              SizeText(covered) + " of it are memory");
    }

    // ---- PCI

    struct Place_t {
        uint64_t segment, bus, device, function;
    };

    std::optional<Place_t> Place() const {
        const auto bus = m_values.Number("bus_number"), place = m_values.Number("device_function_number");
        if (!bus || !place) return std::nullopt;
        return Place_t{m_values.Number("segment_group_number").value_or(0), *bus, *place >> 3 & 31, *place & 7};
    }

    static std::string TextOf(const Place_t& place) {
        char text[32];
        std::snprintf(text, sizeof text, "%04x:%02x:%02x.%x", static_cast<unsigned>(place.segment),
                      static_cast<unsigned>(place.bus), static_cast<unsigned>(place.device),
                      static_cast<unsigned>(place.function));
        return text;
    }

    // Returns the function if it is there, after the verdict on that.
    const HardwareFacts_t::Function_t* VerifyFunction(VerifyRule_t rule, const Place_t& place,
                                                      const std::string& claim) {
        constexpr std::string_view kKey = "bus_number";
        const std::vector<uint32_t>& segments = m_hardware.segments;
        if (std::ranges::find(segments, place.segment) == segments.end()) {
            CantTell(rule, kKey, claim,
                     m_hardware.whyNoFunctions.empty() ? "no such segment is known" : m_hardware.whyNoFunctions);
            return nullptr;
        }
        if (place.bus == 0 && place.device == 0) {
            CantTell(rule, kKey, claim, "the host bridge, so the firmware gives no address");
            return nullptr;
        }
        for (const HardwareFacts_t::Function_t& each : m_hardware.functions) {
            if (each.segment != place.segment || each.bus != place.bus || each.device != place.device ||
                each.function != place.function)
                continue;
            Judge(rule, true, kKey, claim, "a device of class " + CodeText(each.classCode >> 8));
            return &each;
        }
        const bool hasBus = std::ranges::any_of(m_hardware.functions, [&](const HardwareFacts_t::Function_t& each) {
            return each.segment == place.segment && each.bus == place.bus;
        });
        if (hasBus)
            Judge(rule, false, kKey, claim, "no device");
        else  // a device that was removed or is hidden, or a system that numbers buses itself
            CantTell(rule, kKey, claim, "nothing on its bus, which may have another number now");
        return nullptr;
    }

    void VerifySlot() {
        constexpr std::string_view kKey = "slot_data_bus_width";
        const std::optional<Place_t> place = Place();
        if (m_values.Number("current_usage") != kInUse || !place) return;
        const auto* const function = VerifyFunction(VerifyRule_t::kSlotDevice, *place, "in use, " + TextOf(*place));
        const uint32_t lanes = LanesOf(m_values.Number(kKey).value_or(0));
        if (function == nullptr || lanes == 0) return;
        if (function->linkWidth == 0)
            return CantTell(VerifyRule_t::kSlotWidth, kKey, LanesText(lanes), "no link, or no rights to read it");
        Judge(VerifyRule_t::kSlotWidth, function->linkWidth <= lanes, kKey, LanesText(lanes),
              LanesText(function->linkWidth));
    }

    void VerifyOnBoard() {
        constexpr std::string_view kKey = "type_of_device";
        const Value_t *type = m_values.Find("device_type"), *word = m_values.Find(kKey);
        const std::optional<Place_t> place = Place();
        if (type == nullptr || word == nullptr || (type->number & kDeviceEnabled) == 0 || !place) return;
        const auto* const function = VerifyFunction(VerifyRule_t::kOnBoardDevice, *place, "enabled, " + TextOf(*place));
        const std::optional<uint32_t> expected = ClassOf(type->number & ~kDeviceEnabled);
        constexpr uint32_t kBridge = 6;
        if (function == nullptr || !expected) return;
        if (function->classCode >> 16 == kBridge)
            return CantTell(VerifyRule_t::kOnBoardClass, kKey, word->word, "the bridge above it");
        Judge(VerifyRule_t::kOnBoardClass, function->classCode >> 16 == *expected, kKey, word->word,
              "class " + CodeText(function->classCode >> 8));
    }

    const std::span<const uint8_t> m_table;
    const uint16_t m_version;
    const HardwareFacts_t& m_hardware;
    const std::function<void(const Verification_t&)>& m_report;
    const ClHandles m_handles;
    const TableStructure_t* m_structure = nullptr;
    ClFacts m_facts;
    ClValues m_values;
    uint64_t m_sockets = 0, m_cores = 0, m_coresEnabled = 0, m_threads = 0, m_enabledLeast = 0, m_enabledMost = 0;
    uint64_t m_memory = 0, m_installed = 0;
    bool m_knowsCores = true, m_knowsThreads = true, m_knowsMemory = true;
    std::map<uint64_t, Level_t> m_levels;
    std::set<uint16_t> m_otherArrays, m_otherRanges;  // of video memory, flash and the like
};

}  // namespace

VerifyRow_t VerifyRowOf(VerifyRule_t rule) {
    switch (rule) {
#define VERIFY(symbol, id, claim, source, contradicts) \
    case VerifyRule_t::symbol:                         \
        return {id, claim, source, contradicts};
#include "Packages/Analysis/Verify.inc"
#undef VERIFY
    }
    return {};
}

uint32_t LanesOf(uint64_t width) {
    constexpr uint8_t kFirst = 0x08;
    constexpr uint8_t kLanes[] = {1, 2, 4, 8, 12, 16, 32};
    return width >= kFirst && width - kFirst < std::size(kLanes) ? kLanes[width - kFirst] : 0;
}

std::string_view VerdictWord(Verdict_t verdict) {
    switch (verdict) {
        case Verdict_t::kAgrees: return "agrees";
        case Verdict_t::kContradicts: return "contradicts";
        default: return "can't tell";
    }
}

void VerifyTable(std::span<const uint8_t> table, uint16_t version, const HardwareFacts_t& hardware,
                 const std::function<void(const Verification_t&)>& report) {
    ClVerify(table, version, hardware, report).Run();
}
