// quorlin report: the page as text. Tests/Report looks at it in a browser.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <set>

#include "Packages/OS/Hmac.h"
#include "Packages/Sample/Sample.h"
#include "Tests/Support/Images.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/RealTables.h"
#include "Tests/Support/Records.h"
#include "Tests/Support/Structures.h"

namespace {

bool Has(std::string_view text, std::string_view part) { return text.find(part) != text.npos; }

// The page that these arguments give.
std::string PageOf(const std::string& arguments) {
    const std::string path = testing::TempDir() + "report.html";
    std::filesystem::remove(path);
    const ProgramRun_t run = RunQuorlin("report " + path + " " + arguments);
    EXPECT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.output, "");
    return ReadWholeFile(path);
}

// What is between two texts, from a place on; the place moves to its end. Empty if they aren't there.
std::string_view Between(std::string_view text, std::string_view before, std::string_view after, size_t* at) {
    const size_t begin = text.find(before, *at);
    const size_t end = begin == text.npos ? text.npos : text.find(after, begin + before.size());
    if (end == text.npos) return {};
    *at = end;
    return text.substr(begin + before.size(), end - begin - before.size());
}
std::string_view Between(std::string_view text, std::string_view before, std::string_view after) {
    size_t at = 0;
    return Between(text, before, after, &at);
}

// Elements and attributes of a page, by a reading that knows nothing of their meaning.
struct Markup_t {
    std::set<std::string> elements, attributes, ids, links;
    std::string problem;
};

Markup_t MarkupOf(std::string_view page) {
    Markup_t markup;
    for (size_t at = page.find('<'); at != page.npos; at = page.find('<', at)) {
        at++;
        const size_t nameEnd = page.find_first_of(" >", at);
        if (nameEnd == page.npos) break;
        const std::string name(page.substr(at, nameEnd - at));
        if (!name.starts_with('/')) markup.elements.insert(name);
        at = nameEnd;
        while (at < page.size() && page[at] == ' ') {
            const size_t end = page.find_first_of("= >", ++at);
            const std::string attribute(page.substr(at, end - at));
            at = end;
            std::string value;
            if (at < page.size() && page[at] == '=') {
                const bool isQuoted = page[at + 1] == '"';
                const size_t begin = at + 1 + isQuoted;
                at = page.find_first_of(isQuoted ? "\"" : " >", begin);
                value = page.substr(begin, at - begin);
                at += isQuoted;
            }
            if (attribute == "/") continue;
            markup.attributes.insert(attribute);
            if (attribute == "id" && !markup.ids.insert(value).second) markup.problem = "twice: " + value;
            if (attribute == "href") markup.links.insert(value);
        }
        if (at >= page.size() || (page[at] != '>' && page[at] != '/'))
            markup.problem = "no tag: " + std::string(page.substr(nameEnd - name.size(), 80));
        // Until the end tag, styles and scripts are no markup.
        if (name == "style" || name == "script") at = page.find("</" + name + ">", at);
    }
    return markup;
}

void ExpectSound(const std::string& page, const std::string& what) {
    constexpr std::string_view kElements =
        " !doctype a b body button dd desc details div dl dt footer form g h1 h2 h3 h4 head header html "
        "input label li main meta nav option output p path script section select small span strong style "
        "summary svg table tbody td text th thead title tr u ul ";
    constexpr std::string_view kAttributes =
        " aria-label aria-labelledby autocomplete charset class content d data-handle data-instance "
        "data-key data-list data-offset data-record data-state data-text data-type data-value for height "
        "href html http-equiv id lang name role spellcheck tabindex transform type value viewBox width x y ";
    const auto isIn = [](std::string_view words, const std::string& word) { return Has(words, " " + word + " "); };
    const Markup_t markup = MarkupOf(page);
    EXPECT_EQ(markup.problem, "") << what;
    for (const std::string& element : markup.elements) EXPECT_TRUE(isIn(kElements, element)) << what << element;
    for (const std::string& each : markup.attributes) EXPECT_TRUE(isIn(kAttributes, each)) << what << each;
    for (const std::string& link : markup.links)
        EXPECT_TRUE(link.starts_with('#') && markup.ids.contains(link.substr(1))) << what << link;
    for (const char c : page) EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F)) << what;
}

// A structure of each type with a byte 1 in every place, so that each string is the hostile one.
std::vector<uint8_t> HostileTable() {
    const std::string hostile =
        "</title></style></script><img src=x "
        "onerror=alert(1)>\"'&amp;<b>\x1B[31m\x07\x7F\xC2\x85\xE2\x80\xAE\xFF--><!--";
    std::vector<ClStructureBuilder> structures;
    for (int type = 0; type < 256; type++) {
        if (type == 127 || (type > 46 && type % 32 != 0)) continue;
        ClStructureBuilder structure(static_cast<uint8_t>(type), 0x60, static_cast<uint16_t>(type));
        for (size_t offset = 4; offset < 0x60; offset++) structure.Byte(offset, 1);
        structures.push_back(structure.Strings({hostile}));
    }
    // A module, a processor and a cache that are there.
    structures.push_back(ClStructureBuilder(17, 0x22, 0x201)
                             .Word(4, 0x10)
                             .Word(0x0C, 64)
                             .Byte(0x10, 1)
                             .Byte(0x1A, 1)
                             .Strings({hostile}));
    structures.push_back(ClStructureBuilder(4, 0x30, 0x202)
                             .Byte(0x10, 1)
                             .Byte(0x18, 0x41)
                             .Byte(0x23, 2)
                             .Word(0x1A, 7)
                             .Strings({hostile}));
    return TableOf(structures);
}

TEST(Report, TextsOfTheTableAreNoMarkup) {
    const std::string dump = WriteFile("hostile.bin", DumpOf(HostileTable(), 3, 4));
    const std::string page = PageOf(dump);
    ExpectSound(page, "hostile ");
    EXPECT_TRUE(Has(page, "&lt;img src=x onerror=alert(1)&gt;&quot;&#39;&amp;amp;&lt;b&gt; [31m"));
    EXPECT_FALSE(Has(page, "\xE2\x80\xAE"));
    EXPECT_FALSE(Has(page, "\xFF"));
    EXPECT_FALSE(Has(page, "<!--"));
    // Both tables' texts are in the differences.
    ExpectSound(
        PageOf(WriteFile("sample.bin", DumpOf({SampleTable().begin(), SampleTable().end()}, 3, 0)) + " " + dump),
        "differences ");
}

TEST(Report, PagesOfOddTablesAreSound) {
    ExpectSound(PageOf("--sample"), "sample ");
    ExpectSound(PageOf(WriteFile("all.bin", TableOfAllTypes(9)) + " --as table"), "all types ");
    ExpectSound(PageOf(WriteFile("none.bin", TableOf({})) + " --as table"), "no structures ");
    size_t count = 0;
    for (const TableImage_t& image : GeneratedImages())
        if (count++ % 8 == 0) ExpectSound(PageOf(WriteFile("odd.bin", image.bytes)), image.name);
}

// More structures than a page shows, the first of which has a very long text; and the same with other texts.
TEST(Report, PagesOfLargeTablesSayWhatTheyLeaveOut) {
    const auto table = [](const char* locator) {
        std::vector<ClStructureBuilder> structures = {
            ClStructureBuilder(1, 0x1B, 30000).String(4, std::string(100000, '<'))};
        for (uint16_t i = 0; i < 20000; i++) {
            ClStructureBuilder slot(17, 0x15, i);
            structures.push_back(slot.Word(0x0C, 64).String(0x10, locator).String(0x11, locator));
        }
        return WriteFile(std::string(locator) + ".bin", DumpOf(TableOf(structures), 3, 4));
    };
    const std::string before = table("a-long-name-of-a-slot"), after = table("another-name-of-a-slot"),
                      page = PageOf(before + " " + after);
    ExpectSound(page, "large ");
    EXPECT_TRUE(Has(page, "20002 structures, "));
    EXPECT_TRUE(Has(page, "which leaves out its last 19544 structures and "));
    EXPECT_TRUE(Has(page, " more structures differ; quorlin diff shows them all."));
    EXPECT_TRUE(Has(page, "\u2026 and 34464 more bytes"));
    EXPECT_LT(page.size(), 30'000'000u);
}

std::string Base64OfHash(std::string_view text) {
    std::array<uint8_t, 32> hash = {};
    EXPECT_TRUE(os_Sha256({reinterpret_cast<const uint8_t*>(text.data()), text.size()}, hash));
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bits, base64;
    for (const uint8_t byte : hash)
        for (int bit = 7; bit >= 0; bit--) bits += static_cast<char>('0' + (byte >> bit & 1));
    bits += "00";  // up to a multiple of six
    for (size_t at = 0; at < bits.size(); at += 6) base64 += kDigits[std::stoul(bits.substr(at, 6), nullptr, 2)];
    return base64 + "=";
}

TEST(Report, OnlyItsOwnStyleAndScriptMayRun) {
    const std::string page = PageOf("--sample");
    EXPECT_EQ(std::string(Between(page, "<head>\n<meta http-equiv=\"Content-Security-Policy\" content=\"", "\">")),
              "default-src 'none'; style-src 'sha256-" + Base64OfHash(Between(page, "<style>", "</style>")) +
                  "'; script-src 'sha256-" + Base64OfHash(Between(page, "<script>", "</script>")) + "'");
    for (const char* place : {"://", "url(", "@import", "{{", "}}"}) EXPECT_FALSE(Has(page, place)) << place;
}

TEST(Report, RealTablesStaySmall) {
    for (const RealTable_t& real : RealTables()) {
        const std::string page =
            PageOf(WriteFile("real.bin", DumpOf(real.table, static_cast<uint8_t>(real.version >> 8),
                                                static_cast<uint8_t>(real.version))));
        EXPECT_LT(page.size(), 1'500'000u) << real.name;
        ExpectSound(page, real.name);
    }
}

TEST(Report, ARecordedMachineHasDevicesAndVerdicts) {
    TestRecord_t record;
    record.table = TableOf({
        ClStructureBuilder(1, 0x1B, 0x20).Bytes(4, {1, 2, 0, 3}).Strings({"Maker", "Model", "SN-4711"}),
        ClStructureBuilder(9, 0x11, 0x90).String(4, "J1").Bytes(5, {0xA6, 0x0D, 4}).Byte(0x10, 0x18),
    });
    const std::string folder = WriteRecord("report", record);
    const std::string page = PageOf("--replay " + folder);
    for (const char* part :
         {"0000:00:03.0", "2b2a29", "2120:2322", "QV", "can&#39;t tell", "SN-4711", "a recorded machine"})
        EXPECT_TRUE(Has(page, part)) << part;
    ExpectSound(page, "record ");
    // A table alone is held against nothing.
    EXPECT_FALSE(Has(PageOf("--sample"), "can&#39;t tell"));

    const std::string redacted = PageOf("--redact --replay " + folder);
    EXPECT_FALSE(Has(redacted, "SN-4711"));
    EXPECT_FALSE(Has(redacted, "534E2D34373131")) << "as bytes";
    EXPECT_TRUE(Has(redacted, "Maker Model"));
}

TEST(Report, FillersAreGreyAndNotHidden) {
    const std::vector<uint8_t> table = TableOf({ClStructureBuilder(1, 0x1B, 0x20)
                                                    .Bytes(4, {1, 2, 0, 3})
                                                    .Strings({"Maker", "Model", "To Be Filled By O.E.M."})});
    const std::string page = PageOf(WriteFile("filler.bin", table) + " --as table");
    EXPECT_TRUE(Has(Between(page, "<section id=\"firmware\"", "</section>"),
                    "<dt>Serial Number<dd class=filler>To Be Filled By O.E.M."));
    EXPECT_TRUE(Has(page, "data-state=filler><th>Serial Number<td>To Be Filled By O.E.M."));
}

TEST(Report, TwoImagesShowFirstWhatDiffers) {
    const auto image = [](const char* name, const char* product, const char* serial) {
        return WriteFile(
            name,
            DumpOf(
                TableOf({ClStructureBuilder(1, 0x1B, 0x20).Bytes(4, {1, 2, 0, 3}).Strings({"Maker", product, serial})}),
                3, 0));
    };
    const std::string a = image("a.bin", "Old", "SN-4711"), b = image("b.bin", "New", "SN-4711");
    const std::string page = PageOf(a + " " + b);
    const std::string_view differences = Between(page, "<section id=\"differences\"", "</section>");
    EXPECT_TRUE(Has(differences, "<td>Product Name<td>Old<td>New")) << differences;
    EXPECT_FALSE(Has(differences, "SN-4711"));
    EXPECT_LT(page.find("id=\"differences\""), page.find("id=\"summary\""));
    EXPECT_TRUE(Has(page, "<title>Maker New:"));
    EXPECT_TRUE(Has(PageOf(a + " " + a), "say the same"));
    // Equal values stay equal under the one key, and paths say nothing.
    const std::string redacted = PageOf("--redact " + a + " " + b);
    EXPECT_FALSE(Has(Between(redacted, "<section id=\"differences\"", "</section>"), "Serial Number"));
    EXPECT_FALSE(Has(redacted, "a.bin"));
    EXPECT_FALSE(Has(PageOf("--sample"), "id=\"differences\""));
}

TEST(Report, RefusesWhatExistsAndWhatDoesNotFit) {
    const std::string path = WriteFile("exists.html", {'o', 'l', 'd'});
    const ProgramRun_t run = RunQuorlin("report " + path + " --sample");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Has(run.errors, "exists already")) << run.errors;
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_TRUE(RunQuorlin("report - --sample").output.starts_with("<!doctype html>"));
    const std::string out = testing::TempDir() + "report-none.html";
    const struct {
        const char* arguments;
        int exitCode;
    } kCases[] = {
        {"",                                    2},
        {"a b c",                               2},
        {"--sample --key k",                    2},
        {"--sample --keep-vendor",              2},
        {"no-such-file",                        1},
        {"--replay no-such-dir",                1},
        {"--sample --redact --key no-such-key", 1},
    };
    for (const auto& c : kCases) {
        const std::string arguments = *c.arguments == 0 ? "" : out + " " + c.arguments;
        EXPECT_EQ(RunQuorlin("report " + arguments).exitCode, c.exitCode) << c.arguments;
        EXPECT_FALSE(std::filesystem::exists(out)) << c.arguments;
    }
}

}  // namespace
