// Checks that every output of the program must pass, whatever a table contains.
#pragma once

#include <rapidjson/document.h>

#include <charconv>
#include <map>
#include <set>

#include "Fuzz/Fuzz.h"

// The code points of a text. Invalid UTF-8 is a finding.
inline std::vector<uint32_t> CodePoints(std::string_view text) {
    std::vector<uint32_t> points;
    for (size_t at = 0; at < text.size();) {
        const auto lead = static_cast<uint8_t>(text[at++]);
        const int more = lead < 0x80 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
        Require(lead < 0x80 || (lead >= 0xC2 && lead <= 0xF4));
        uint32_t point = more == 0 ? lead : lead & (0x3Fu >> more);
        for (int place = 0; place < more; place++, at++) {
            Require(at < text.size() && (static_cast<uint8_t>(text[at]) & 0xC0) == 0x80);
            point = point << 6 | (static_cast<uint8_t>(text[at]) & 0x3Fu);
        }
        constexpr uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};
        Require(point >= kLeast[more] && point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF));
        points.push_back(point);
    }
    return points;
}

// The text must contain no character that controls a terminal.
inline void RequireHarmless(std::string_view text) {
    for (const uint32_t point : CodePoints(text)) {
        Require(point >= 0x20 || point == '\n');
        Require(point < 0x7F || point > 0x9F);
        Require(point < 0x202A || point > 0x202E);
        Require(point < 0x2066 || point > 0x2069);
        Require(point != 0x2028 && point != 0x2029);
    }
}

inline void RequireJson(std::string_view text) {
    RequireHarmless(text);
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag>(text.data(), text.size());
    Require(!document.HasParseError() && document.IsObject());
}

// Each line must be a JSON document.
inline void RequireNdjson(std::string_view text) {
    while (!text.empty()) {
        const size_t end = text.find('\n');
        Require(end != text.npos);
        RequireJson(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
}

// The text must be CSV by RFC 4180, with the same number of cells in each row.
inline void RequireCsv(std::string_view text) {
    size_t cells = 1, cellsOfHead = 0;
    std::string plain;
    for (size_t at = 0; at < text.size(); at++) {
        if (text[at] == '"') {
            for (at++; Require(at < text.size()), text[at] != '"' || text.substr(at + 1).starts_with('"'); at++) {
                if (text[at] == '"') at++;
                plain += text[at];
            }
            Require(text.substr(at + 1).starts_with(',') || text.substr(at + 1).starts_with("\r\n"));
        } else if (text[at] == ',') {
            cells++;
        } else if (text[at] == '\r') {
            Require(text.substr(++at).starts_with('\n'));
            Require(cellsOfHead == 0 || cells == cellsOfHead);
            cellsOfHead = std::exchange(cells, 1);
        } else {
            plain += text[at];
        }
    }
    Require(text.empty() || text.ends_with("\r\n"));
    Require(plain.find('\n') == plain.npos);
    RequireHarmless(plain);
}

// The cells of a row of CSV.
inline std::vector<std::string> CellsOf(std::string_view row) {
    std::vector<std::string> cells(1);
    bool isQuoted = false;
    for (const char c : row) {
        if (c == '"')
            isQuoted = !isQuoted;
        else if (c == ',' && !isQuoted)
            cells.emplace_back();
        else
            cells.back() += c;
    }
    return cells;
}

// Calls `take` with each row of CSV.
template <class Take>
void ForEachRow(std::string_view text, Take take) {
    for (size_t end; (end = text.find("\r\n")) != text.npos; text.remove_prefix(end + 2)) take(text.substr(0, end));
}

// The files must be CSV with the columns that columns.csv lists, and numbers where it says so.
inline void RequireRows(const std::vector<std::pair<std::string, std::string>>& files) {
    std::map<std::string, std::vector<std::vector<std::string>>> columns;  // by file; dataset, name, type
    for (const auto& [name, text] : files) RequireCsv(text);
    ForEachRow(files[0].second, [&](std::string_view row) {
        const std::vector<std::string> cells = CellsOf(row);
        columns[cells[0] + ".csv"].push_back(cells);
    });
    for (const auto& [name, text] : std::span(files).subspan(1)) {
        const std::vector<std::vector<std::string>>& types = columns[name];
        bool isHead = true;
        ForEachRow(text, [&](std::string_view row) {
            const std::vector<std::string> cells = CellsOf(row);
            Require(cells.size() == types.size());
            for (size_t place = 0; place < cells.size(); place++) {
                if (isHead) Require(cells[place] == types[place][1]);
                if (isHead || cells[place].empty() || !types[place][2].ends_with("INT")) continue;
                const bool isSigned = types[place][2] == "BIGINT";
                int64_t number;
                uint64_t large;
                const char *begin = cells[place].data(), *end = begin + cells[place].size();
                const auto result = isSigned ? std::from_chars(begin, end, number) : std::from_chars(begin, end, large);
                Require(result.ec == std::errc() && result.ptr == end);
            }
            isHead = false;
        });
        Require(!isHead);
    }
}

// The text must be in Prometheus' text format, each family in one piece, and no two samples may have the same labels.
inline void RequireMetrics(std::string_view text) {
    RequireHarmless(text);
    std::set<std::string_view> families, series;
    std::string_view family;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        Require(line.size() < text.size());
        text.remove_prefix(line.size() + 1);
        const bool isHelp = line.starts_with("# HELP "), isType = line.starts_with("# TYPE ");
        if (isHelp) family = line.substr(7, line.find(' ', 7) - 7);
        if (isHelp) Require(families.insert(family).second);
        if (isType) Require(line.substr(7, family.size()) == family && line.substr(7 + family.size()) == " gauge");
        if (isHelp || isType) continue;
        Require(!family.empty() && line.starts_with(family));
        size_t at = family.size();
        for (char before = '{'; at < line.size() && line[at] == before; before = ',') {
            at = line.find_first_not_of("abcdefghijklmnopqrstuvwxyz_", at + 1);
            Require(at != line.npos && line.substr(at).starts_with("=\""));
            for (at += 2; Require(at < line.size()), line[at] != '"'; at++)
                if (line[at] == '\\') Require(++at < line.size() && (line[at] == '\\' || line[at] == '"'));
            at++;
        }
        if (at != family.size()) Require(line.substr(at++).starts_with('}'));
        Require(series.insert(line.substr(0, at)).second);
        Require(line.substr(at).starts_with(' ') && at + 1 < line.size());
        Require(line.find_first_not_of("0123456789", at + 1) == line.npos);
    }
}
