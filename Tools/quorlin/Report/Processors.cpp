// Processors, with their cores and caches drawn to scale. Equal ones share a picture.
#include <algorithm>
#include <map>

#include "Packages/Analysis/Values.h"
#include "Packages/Standard/Texts.h"
#include "Tools/quorlin/Report/Sections.h"

namespace {

constexpr uint64_t kPopulated = 1u << 6;  // of the status

struct Cache_t {
    std::string name;  // "L1"
    uint64_t size;
    auto operator<=>(const Cache_t&) const = default;
};

struct Kind_t {
    bool isThere = false;
    std::string name, speed;
    uint64_t cores = 0, enabled = 0, threads = 0;
    std::vector<Cache_t> caches;
    auto operator<=>(const Kind_t&) const = default;
};

Kind_t KindOf(const ClStructures::Entry_t& entry, const ClStructures& structures) {
    const ClValues values(entry.structure, structures.Options());
    Kind_t kind;
    kind.isThere = (values.Number("status").value_or(kPopulated) & kPopulated) != 0;
    if (!kind.isThere) return kind;
    kind.name = values.Text("processor_version");
    if (const Value_t* family = values.Find("family"); kind.name.empty() && family != nullptr) kind.name = family->word;
    auto speed = values.Number("current_speed");
    if (!speed) speed = values.Number("max_speed");
    if (speed) kind.speed = std::to_string(*speed).append(" ").append(UnitName(Unit_t::kMHz));
    kind.cores = values.Number("cores").value_or(0);
    kind.enabled = std::min(values.Number("cores_enabled").value_or(kind.cores), kind.cores);
    kind.threads = values.Number("threads").value_or(0);
    for (const char* key : {"l1_cache_handle", "l2_cache_handle", "l3_cache_handle"}) {
        const auto handle = values.Number(key);
        const ClStructures::Entry_t* cache = handle ? structures.WithHandle(static_cast<uint16_t>(*handle)) : nullptr;
        if (cache == nullptr || cache->structure.Type() != 7) continue;
        const ClValues of(cache->structure, structures.Options());
        const auto level = of.Number("cache_level"), size = of.Number("cache_size");
        if (level && size && *size != 0) kind.caches.push_back({Filled(kTextCacheLevel, *level), *size});
    }
    return kind;
}

std::string CoresText(const Kind_t& kind) {
    return kind.enabled == kind.cores ? Filled(kTextCores, kind.cores)
                                      : Filled(kTextCoresEnabled, kind.enabled, kind.cores);
}

constexpr uint64_t kWidth = 320, kCore = 14, kPerRow = kWidth / kCore, kMostSquares = 8 * kPerRow;

// One square for each core, with a line for each further thread; of many cores, one for several.
uint64_t PutCores(const Kind_t& kind, ClHtml& html) {
    if (kind.cores == 0) return 0;
    const uint64_t scale = (kind.cores + kMostSquares - 1) / kMostSquares;
    const uint64_t count = (kind.cores + scale - 1) / scale, enabled = (kind.enabled + scale - 1) / scale;
    const uint64_t threads = std::clamp<uint64_t>(kind.threads / std::max<uint64_t>(kind.enabled, 1), 1, 8);
    for (const bool isOn : {true, false}) {
        const uint64_t begin = isOn ? 0 : enabled, end = isOn ? enabled : count;
        if (begin == end) continue;
        html << "<path class=\"core";
        if (!isOn) html << " off";
        html << "\" d=\"";
        for (uint64_t core = begin; core < end; core++) {
            const uint64_t x = 1 + core % kPerRow * kCore, y = 1 + core / kPerRow * kCore;
            html << "M";
            html.Number(x) << " ";
            html.Number(y) << "h12v12h-12z";
            for (uint64_t thread = 1; isOn && thread < threads; thread++) {
                html << "M";
                html.Number(x + 12 * thread / threads) << " ";
                html.Number(y) << "v12";
            }
        }
        html << "\"/>";
    }
    return (count + kPerRow - 1) / kPerRow * kCore + 8;
}

// A label above a bar, whose length is the size in proportion to the largest cache.
uint64_t PutCaches(const Kind_t& kind, uint64_t y, ClHtml& html) {
    uint64_t largest = 1;
    for (const Cache_t& cache : kind.caches) largest = std::max(largest, cache.size);
    for (const Cache_t& cache : kind.caches) {
        const double share = static_cast<double>(cache.size) / static_cast<double>(largest);
        html << "<text x=\"0\" y=\"";
        html.Number(y + 12) << "\">";
        html.Text(cache.name).Raw(" ").Text(SizeText(cache.size)) << "</text><path class=\"bar\" d=\"M0 ";
        html.Number(y + 17) << "h";
        html.Number(std::max<uint64_t>(1, static_cast<uint64_t>(share * static_cast<double>(kWidth)))) << "v8H0z\"/>";
        y += 32;
    }
    return y;
}

void PutPicture(const Kind_t& kind, ClHtml& html) {
    ClHtml inside;
    const uint64_t height = PutCaches(kind, PutCores(kind, inside), inside);
    if (height == 0) return;
    html << "<svg role=\"img\" width=\"";
    html.Number(kWidth) << "\" height=\"";
    html.Number(height) << "\" viewBox=\"0 0 ";
    html.Number(kWidth) << " ";
    html.Number(height) << "\"><title>";
    html.Text(kind.name.empty() ? TextOf(kTextProcessors) : std::string_view(kind.name)) << "</title><desc>";
    html.Text(CoresText(kind)).Raw(", ").Text(Filled(kTextThreads, kind.threads));
    for (const Cache_t& cache : kind.caches) html.Raw(", ").Text(cache.name).Raw(" ").Text(SizeText(cache.size));
    html << "</desc>";
    html.Markup(inside) << "</svg>\n";
}

void PutKind(const Kind_t& kind, const std::vector<const ClStructures::Entry_t*>& entries,
             const ClStructures& structures, ClHtml& html) {
    constexpr size_t kMostLinks = 64;
    html << "<div class=\"card\"><h3>";
    if (entries.size() > 1) html.Number(entries.size()) << " \u00D7 ";
    html.Text(!kind.isThere       ? TextOf(kTextEmptySocket)
              : kind.name.empty() ? TextOf(kTextProcessors)
                                  : std::string_view(kind.name))
        << "</h3>\n<p>";
    std::string line = kind.cores != 0 ? CoresText(kind) : std::string();
    const auto add = [&line](std::string_view text) { line.append(line.empty() ? "" : ", ").append(text); };
    if (kind.threads != 0) add(Filled(kTextThreads, kind.threads));
    if (!kind.speed.empty()) add(kind.speed);
    if (const uint64_t scale = (kind.cores + kMostSquares - 1) / kMostSquares; scale > 1)
        add(Filled(kTextCoresScale, scale));
    html.Text(line);
    html << "</p>\n";
    if (kind.isThere) PutPicture(kind, html);
    html << "<p>";
    html.Text(TextOf(kTextSockets)) << " ";
    for (size_t i = 0; i < std::min(entries.size(), kMostLinks); i++) {
        const std::string name = DesignationOf(*entries[i], structures.Options());
        if (i != 0) html << ", ";
        PutLink(entries[i], name.empty() ? HandleText(entries[i]->structure.Handle()) : name, html);
    }
    if (entries.size() > kMostLinks) html.Raw(", ").Text(Filled(kTextMore, entries.size() - kMostLinks));
    html << "</p></div>\n";
}

}  // namespace

void WriteProcessors(const Report_t&, const ClStructures& structures, ClHtml& html) {
    std::vector<std::pair<Kind_t, std::vector<const ClStructures::Entry_t*>>> groups;
    std::map<Kind_t, size_t> places;
    for (const ClStructures::Entry_t& entry : structures.All()) {
        if (entry.structure.Type() != 4) continue;
        const Kind_t kind = KindOf(entry, structures);
        const auto [place, isNew] = places.try_emplace(kind, groups.size());
        if (isNew) groups.push_back({kind, {}});
        groups[place->second].second.push_back(&entry);
    }
    if (groups.empty()) return;
    html << "<div class=\"cards\">\n";
    for (const auto& [kind, entries] : groups) PutKind(kind, entries, structures, html);
    html << "</div>\n";
}
