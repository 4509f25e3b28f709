// Analysis for the C interface.
#include <algorithm>

#include "CInterface/FactTable.h"
#include "CInterface/Opening.h"
#include "Packages/Analysis/Check.h"
#include "Packages/Analysis/Diff.h"
#include "Packages/Analysis/Redact.h"
#include "Packages/OS/Hmac.h"

namespace {

constexpr size_t kLeastKeyBytes = 16;

static_assert(QUORLIN_NOTE == static_cast<int>(Severity_t::kNote) &&
              QUORLIN_WARNING == static_cast<int>(Severity_t::kWarning) &&
              QUORLIN_ERROR == static_cast<int>(Severity_t::kError));
static_assert(QUORLIN_REMOVED == static_cast<int>(Change_t::kRemoved) &&
              QUORLIN_ADDED == static_cast<int>(Change_t::kAdded) &&
              QUORLIN_CHANGED == static_cast<int>(Change_t::kChanged) &&
              QUORLIN_REPLACED == static_cast<int>(Change_t::kReplaced) &&
              QUORLIN_MOVED == static_cast<int>(Change_t::kMoved));

// The structures are in the order of their bytes.
uint32_t IndexOf(const quorlin_fact_table& table, const TableStructure_t* structure) {
    if (structure == nullptr) return QUORLIN_NO_STRUCTURE;
    return std::ranges::lower_bound(table.structures, structure->data, {}, &quorlin_structure::bytes)->index;
}

const char* TextOrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

}  // namespace

quorlin_status quorlin_check(const quorlin_fact_table* table, quorlin_take_finding take, void* context) {
    if (table == nullptr || take == nullptr) return QUORLIN_NULL_POINTER;
    return Guarded([&] {
        const Image_t& image = table->image;
        const CheckedTable_t checked = {
            .bytes = BytesOf(*table),
            .version = VersionOf(*table),
            .checksumsFit = image.checksumsFit,
            .missing = image.missing,
            .structures = image.structures,
            .largest = image.largest,
        };
        CheckTable(checked, [&](const Finding_t& finding) {
            const Rule_t rule = RuleOf(finding.rule);
            const std::string found(finding.found), expected(finding.expected);
            const quorlin_finding taken = {
                .rule = rule.id.data(),
                .what = rule.what.data(),
                .why = rule.why.data(),
                .fix = rule.fix.data(),
                .key = finding.key.empty() ? "" : finding.key.data(),
                .found = found.c_str(),
                .expected = expected.c_str(),
                .severity = static_cast<uint32_t>(rule.severity),
                .structure = IndexOf(*table, finding.structure),
                .offset = finding.offset,
                .size = finding.size,
            };
            take(&taken, context);
        });
        return quorlin_status{QUORLIN_OK};
    });
}

quorlin_status quorlin_diff(const quorlin_fact_table* a, const quorlin_fact_table* b, const char* const* ignored,
                            size_t ignored_count, quorlin_take_difference take, void* context) {
    if (a == nullptr || b == nullptr || take == nullptr || (ignored == nullptr && ignored_count != 0))
        return QUORLIN_NULL_POINTER;
    return Guarded([&] {
        std::vector<std::string> keys;
        for (size_t i = 0; i < ignored_count; i++) {
            if (ignored[i] == nullptr) return quorlin_status{QUORLIN_NULL_POINTER};
            if (!IsFactKey(ignored[i])) return quorlin_status{QUORLIN_BAD_VALUE};
            keys.emplace_back(ignored[i]);
        }
        const ClDiffTable one(BytesOf(*a), VersionOf(*a), keys), other(BytesOf(*b), VersionOf(*b), keys);
        std::vector<quorlin_fact_change> facts;
        DiffTables(one, other, [&](const Difference_t& difference) {
            facts.clear();
            for (const FactChange_t& fact : difference.facts)
                facts.push_back({fact.key.data(), fact.name.data(), TextOrNull(fact.a), TextOrNull(fact.b), fact.record,
                                 fact.offset});
            const std::string place(difference.place), from(difference.from);
            const quorlin_difference taken = {
                .change = static_cast<uint32_t>(difference.change),
                .structure_a = IndexOf(*a, difference.a),
                .structure_b = IndexOf(*b, difference.b),
                .place = place.c_str(),
                .from = from.c_str(),
                .facts = facts.data(),
                .fact_count = facts.size(),
            };
            take(&taken, context);
        });
        return quorlin_status{QUORLIN_OK};
    });
}

quorlin_status quorlin_redact(const quorlin_fact_table* table, const void* key, size_t key_size, int keep_vendor,
                              void* out) {
    if (table == nullptr || key == nullptr || out == nullptr) return QUORLIN_NULL_POINTER;
    if (key_size < kLeastKeyBytes) return QUORLIN_BAD_VALUE;
    return Guarded([&] {
        const std::span<const uint8_t> bytes = BytesOf(*table);
        const std::span<uint8_t> copy(static_cast<uint8_t*>(out), bytes.size());
        std::ranges::copy(bytes, copy.begin());
        const ClHmacKey secret({static_cast<const uint8_t*>(key), key_size});
        const Hmac_t hmac = [&secret](std::span<const uint8_t> message, std::span<uint8_t, 32> mac) {
            return secret.Compute(message, mac);
        };
        const bool isDone = RedactTable(copy, {.version = VersionOf(*table), .keepsVendor = keep_vendor != 0}, hmac);
        return quorlin_status{isDone ? QUORLIN_OK : QUORLIN_NO_TABLE};
    });
}
