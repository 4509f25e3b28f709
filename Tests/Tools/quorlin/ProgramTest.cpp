// The program as users see it: commands, exit codes, error lines, files and formats.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Packages/OS/Processors.h"
#include "Tests/Support/Linux/Processes.h"
#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

namespace fs = std::filesystem;

using Bytes_t = std::vector<uint8_t>;
using testing::TempDir;

bool Has(const std::string& text, const std::string& part) { return text.find(part) != text.npos; }

// A command line, its exit code, its output, and a part of its errors. Rows call a function, as clang-format would
// align rows of braces.
struct Case_t {
    std::string arguments;
    int exitCode;
    std::string output, says;
};
Case_t Case(const std::string& arguments, int exitCode, const std::string& output, const std::string& says = "") {
    return {arguments, exitCode, output, says};
}
std::pair<std::string, std::string> Pair(const std::string& command, const std::string& says) {
    return {command, says};
}

// A chassis with nothing to object to.
ClStructureBuilder Chassis(uint16_t handle, const std::string& maker) {
    return ClStructureBuilder(3, 0x15, handle).Bytes(4, {1, 3}).Bytes(9, {3, 3, 3, 3}).Strings({maker});
}

// One chassis whose maker is `maker`, and a BIOS language structure.
Bytes_t TableBy(const std::string& maker) { return TableOf({Chassis(7, maker), ClStructureBuilder(13, 0x16)}); }

std::string ImageBy(const std::string& maker, const std::string& name) {
    return WriteFile(name, DumpOf(TableBy(maker), 2, 7));
}

Bytes_t Cut(Bytes_t bytes, size_t size, uint8_t filler = 0) {
    bytes.resize(size, filler);
    return bytes;
}

// Each file has the table that its commands need.
TEST(Program, PrintsExactly) {
    const ClStructureBuilder oem(200, 4), titled = ClStructureBuilder(3, 0x15).Byte(4, 1);
    const std::string folder = TempDir(), a = ImageBy("A", "a.bin"), b = ImageBy("B", "b.bin");
    const std::string image = " --image " + ImageBy("Ma\x1bker", "one.bin");
    const std::string oems = " --image " + WriteFile("oem.bin", TableOf({ClStructureBuilder(3, 0x15), oem, oem}));
    const std::string two =
        " --image " + WriteFile("two.bin", TableOf({ClStructureBuilder(titled).Strings({"one"}),
                                                    ClStructureBuilder(titled).Strings({"tw\x1bo"})}));
    // Equal handles match first, in any order. The others match by order; those left over are added or removed.
    const std::string three = WriteFile("c.bin", TableOf({Chassis(1, "one"), Chassis(2, "two"), Chassis(3, "three")})),
                      others = WriteFile("d.bin", TableOf({Chassis(2, "two"), Chassis(9, "one")}));
    const std::string bare = " --image " + WriteFile("bare.bin", TableBy("A")),
                      old = " --image " + WriteFile("old.bin", DumpOf(TableBy("A"), 2, 0));
    const auto by = [](const char* name, const Bytes_t& bytes) {
        return std::string("get 3 Manufacturer --image ") + WriteFile(name, bytes);
    };
    const Bytes_t dump = DumpOf(TableBy("Maker"), 2, 7);
    const std::string blanks = " --image " + ImageBy("Maker  ", "blanks.bin");
    const std::string odd = " --image " + ImageBy("q\"\\\x01\xC3\xA9\xFF", "odd.bin");
    // A folder as Linux shows it.
    fs::create_directory(folder + "tables");
    fs::rename(WriteFile("DMI", TableBy("A")), folder + "tables/DMI");
    fs::rename(WriteFile("point", Cut(DumpOf(TableBy("A"), 2, 7, 0xF0000), 31)), folder + "tables/smbios_entry_point");
    Bytes_t damage = ClStructureBuilder(200, 4, 1).Image();
    damage.insert(damage.end(), {1, 2, 3, 0xFF, 0xFF});
    for (const uint8_t byte : TableBy("Maker")) damage.push_back(byte);
    const std::string damaged = " --as table --image " + WriteFile("damaged.bin", damage);
    const std::string found = "System Enclosure or Chassis Types {Type 3}, handle 0007h\n  Manufacturer  Ma ker\n";
    const Case_t kCases[] = {
        Case("types" + oems, 0,
             "Type  Count  Title\n   3      1  System Enclosure or Chassis Types\n"
             " 127      1  End-of-Table\n 200      2  OEM-specific\n"),
        Case("types --format csv" + oems, 0,
             "type,count,title,decoded\r\n3,1,System Enclosure or Chassis Types,true\r\n"
             "127,1,End-of-Table,false\r\n200,2,OEM-specific,false\r\n"),
        Case("find KER" + image, 0, found),
        Case("find manuf" + image, 0, found),
        Case("find nowhere" + image, 1, ""),
        Case("get 3 manufacturer" + two, 0, "one\ntw o\n"),
        Case("get 3 Manufacturer --instance 2" + two, 0, "tw o\n"),
        // Only the first group has a title.
        Case("get 14 Microcode --instance 2 --sample", 0, " 01.0a.00.1234\n"),
        // Shown from version 2.1 on.
        Case("get 13 Flags" + bare, 0, "00h\n"),
        Case("get 13 Flags --smbios-version 2.0" + bare, 0, "None\n"),
        Case("get 13 Flags" + old, 0, "None\n"),
        Case("diff " + a + " " + b + " --ignore manufacturer", 0, ""),
        Case("diff " + a + " " + folder + "no-such-file", 2, ""),
        Case("diff --format csv " + three + " " + others, 1,
             "change,type,name,place,from,handle_a,handle_b,key,fact,record,offset,a,b\r\n"
             "removed,3,System Enclosure or Chassis,,,3,,,,,,,\r\n"),
        Case("raw --handle 7" + image, 0,
             "Handle 0007h, type 3 (System Enclosure or Chassis), 29 bytes at offset 0h\n"
             "  0000 03 15 07 00 01 03 00 00 00 03 03 03 03 00 00 00  ................\n"
             "  0010 00 00 00 00 00                                   .....\n"
             "  String 1: Ma ker\n"),
        Case(by("offset.bin", DumpOf(TableBy("at 64"), 3, 2, 64, 64)), 0, "at 64\n"),
        Case(by("physical.bin", DumpOf(TableBy("at 32"), 2, 7, 0xF1230)), 0, "at 32\n"),
        // An address within the entry point isn't used.
        Case(by("within.bin", DumpOf(TableBy("after"), 2, 7, 5)), 0, "after\n"),
        Case(by("longer.bin", Cut(dump, dump.size() + 99, ' ')), 0, "Maker\n"),
        // After the first structure.
        Case(by("cut.bin", Cut(dump, 32 + 0x15 + 7 + 9)), 0, "Maker\n"),
        Case("find q --format csv" + odd, 0,
             "type,handle,instance,title,group,key,value\r\n"
             "3,7,1,System Enclosure or Chassis Types,,Manufacturer,\"q\"\"\\ \xC3\xA9\xEF\xBF\xBD\"\r\n"),
        Case("raw --type 200 --sample", 1, ""),
        Case("get 3 Manufacturer" + damaged, 1, "",
             "broken at offset 6h: a structure's length is below a header's, so what comes after it may be made up; "
             "try --recover"),
        Case("get 3 Manufacturer --recover" + damaged, 0, "Maker\n", "skipped 5 bytes at offset 6h"),
        Case("get 3 Manufacturer --verbose --image " + folder + "tables", 0, "A\n", "as sysfs, SMBIOS 2.7"),
        Case("get 1 x --as table --verbose --image " + a, 1, "", "as table, SMBIOS 3.0"),
        Case(by("truncated.bin", Cut(dump, dump.size() - 9)), 0, "Maker\n", "truncated: "),
        Case("get 3 \"Manufacturer \"" + blanks, 0, "Maker\n"),
        Case("--format lines --type 200" + image, 0, ""),
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments;
        EXPECT_EQ(run.output, c.output) << c.arguments;
        EXPECT_TRUE(Has(run.errors, c.says)) << c.arguments << ": " << run.errors;
    }
}

TEST(Program, PrintsAmongOtherThings) {
    const std::string a = ImageBy("A", "a.bin"), b = ImageBy("B", "b.bin"),
                      c = WriteFile("c.bin", TableOf({ClStructureBuilder(200, 5, 1).Byte(4, 0xAB)})),
                      d = WriteFile("d.bin", TableOf({ClStructureBuilder(200, 5, 1).Byte(4, 0xAC)}));
    const std::string odd = " --type 3 --image " + ImageBy("q\"\\\x01\xC3\xA9\xFF", "odd.bin");
    // A key from a string isn't a title, and a maker isn't an invalid code, although their texts look so.
    const auto versions =
        ClStructureBuilder(221, 0x0C, 0x10).Byte(4, 1).Byte(5, 1).Strings({"BIOS {Type 0}_9#GROUPNAME"});
    const std::string marks =
        " --image " + WriteFile("marks.bin", TableOf({versions, Chassis(7, "Error: Invalid Type")}));
    // Only lines keeps blanks at the end of a text.
    const std::string blanks = " --type 3 --image " + ImageBy("Maker  ", "blanks.bin");
    const Case_t kCases[] = {
        Case("diff " + a + " " + b, 1,
             "changed: System Enclosure or Chassis (type 3): handle 0007h\n    Manufacturer: A -> B\n"),
        Case("diff --format ndjson " + c + " " + d + " " + c, 1, ",\"differences\":[]}\n"),
        Case("diff " + c + " " + d, 1, "    Data, offset 0x4: AB -> AC\n"),
        Case("diff " + a + " --sample --format csv", 1, "\r\nadded,0,Platform Firmware Information,,,,0,,,,,,\r\n"),
        Case("--sample --type 14 --format csv", 0, "14,3585,2,Group Associations,,Microcode,"),
        Case("check --image " + WriteFile("sum.bin", DumpOf(TableBy("A"), 2, 7, 0xF1230)), 1, "checksums"),
        Case("--format json" + odd, 0,
             R"({"key":"Manufacturer","value":"q\"\\\u0001)"
             "\xC3\xA9\xEF\xBF\xBD"
             R"(","replaced":true})"),
        Case("--format lines --type 13 --type 3 --image " + a, 0, "\"\n\"System Enclosure or Chassis Types {Type 3}"),
        Case(
            "--type 0 --sample", 0,
            "BIOS Information {Type 0}, handle 0000h\n  Type                      0\n  Length                    26\n"),
        Case("--type 0 --sample", 0, "\n  BIOS Characteristics\n    BIOS Characteristics Not Supported  "),
        Case("--type 0 --sample", 0, "\n\nBIOS Information {Type 0}_2, handle 0001h\n"),
        Case("--type 221 --format json" + marks, 0,
             R"("title":"Firmware Version Information","items":[{"key":"BIOS {Type 0}_9#GROUPNAME",)"),
        Case("--type 221 --format lines" + marks, 0,
             "\"Firmware Version Information {Type 221}#GROUPNAME\", \"\"\n"
             "\"BIOS {Type 0}_9#GROUPNAME\", \"  0. 0. 0.   0\"\n"),
        Case("check --ignore QR0601" + marks, 0, "No findings\n"),
        Case("--format lines" + blanks, 0, "\"Manufacturer\", \"Maker  \"\n"),
        Case("--format text" + blanks, 0, "Manufacturer           Maker\n"),
        Case("--format json" + blanks, 0, "\"value\":\"Maker\"}"),
        Case("--format csv" + blanks, 0, "Manufacturer,Maker\r\n"),
        Case("--type 4 --sample --color always", 0, "\x1b[1mProcessor Information"),
        Case("--help", 0, "--image FILE"),
        Case("--version", 0, "quorlin "),
    };
    for (const auto& row : kCases) {
        const ProgramRun_t run = RunQuorlin(row.arguments);
        EXPECT_EQ(run.exitCode, row.exitCode) << row.arguments;
        EXPECT_TRUE(Has(run.output, row.output)) << row.arguments << ": " << run.output;
    }
    for (const std::string command :
         {"show", "summary", "types", "find", "get", "diff", "dump", "redact", "raw", "check", "hw", "doctor"})
        EXPECT_TRUE(Has(RunQuorlin(command + " --help").output, "\nExample: quorlin ")) << command;
}

// The characters on both sides of each bound, as an owner of the machine might have put them into its firmware.
TEST(Program, EscapesCharactersThatSteerATerminal) {
    const struct {
        const char *raw, *escaped;  // null: stays as it is
    } kCharacters[] = {
        {"\x1F",         "\\u001F"},
        {"~",            nullptr  },
        {"\x7F",         "\\u007F"},
        {"\xC2\x80",     "\\u0080"},
        {"\xC2\x9F",     "\\u009F"},
        {"\xC2\xA0",     nullptr  },
        {"\xE2\x80\xA7", nullptr  },
        {"\xE2\x80\xA8", "\\u2028"},
        {"\xE2\x80\xA9", "\\u2029"},
        {"\xE2\x80\xAA", "\\u202A"},
        {"\xE2\x80\xAE", "\\u202E"},
        {"\xE2\x80\xAF", nullptr  },
        {"\xE2\x81\xA5", nullptr  },
        {"\xE2\x81\xA6", "\\u2066"},
        {"\xE2\x81\xA9", "\\u2069"},
        {"\xE2\x81\xAA", nullptr  },
    };
    for (const auto& [raw, escaped] : kCharacters) {
        // Eight characters and more are tested at once.
        const std::string image = ImageBy(std::string("maker") + raw + "and more", "steer.bin");
        for (const char* format : {"text", "csv", "json", "ndjson"}) {
            const bool isJson = std::string(format).ends_with("json");
            const std::string shown = escaped == nullptr ? raw : isJson ? escaped : " ";
            const std::string output =
                RunQuorlin(std::string("--type 3 --format ") + format + " --image " + image).output;
            EXPECT_TRUE(Has(output, "maker" + shown + "and more")) << format << ": " << output;
        }
    }
}

TEST(Program, DumpWritesANewFileThatReadsTheSame) {
    const std::string dump = TempDir() + "new-dump.bin";
    std::remove(dump.c_str());
    ASSERT_EQ(RunQuorlin("dump --sample " + dump).exitCode, 0);
    EXPECT_EQ(RunQuorlin("--format lines --image " + dump).output, RunQuorlin("--format lines --sample").output);
    EXPECT_EQ(RunQuorlin("diff " + dump + " --sample").exitCode, 0);
    const ProgramRun_t again = RunQuorlin("dump --sample " + dump);
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(Has(again.errors, "exists already"));
    std::remove(dump.c_str());
}

TEST(Program, RedactWritesANewFileUnderAKey) {
    const auto key = [](const std::string& name, size_t size) {
        return " --key " + WriteFile(name, Bytes_t(size, 'k'));
    };
    const std::string folder = TempDir(), in = folder + "redact-in.bin", out = folder + "redact-out.bin";
    const auto redact = [&](const std::string& to, const std::string& options) {
        std::remove(to.c_str());
        return RunQuorlin("redact " + in + " " + to + options);
    };
    std::remove(in.c_str());
    ASSERT_EQ(RunQuorlin("dump --sample " + in).exitCode, 0);
    const std::string good = key("good.key", 16);
    ASSERT_EQ(redact(out, good).exitCode, 0);
    EXPECT_EQ(RunQuorlin("check --format lines --image " + out).exitCode,
              RunQuorlin("check --format lines --image " + in).exitCode);
    EXPECT_EQ(RunQuorlin("redact " + in + " -" + good).output, ReadWholeFile(out));
    // A wrong entry point stays wrong.
    const std::string wrong = WriteFile("wrong.bin", DumpOf(TableBy("A"), 2, 7, 0xF1230));
    EXPECT_EQ(RunQuorlin("redact " + wrong + " -" + good).output.substr(0, 0x1F), ReadWholeFile(wrong).substr(0, 0x1F));
    // Without a key, each run has a new one.
    const std::string any = folder + "redact-any.bin";
    ASSERT_EQ(redact(any, "").exitCode, 0);
    const std::string before = ReadWholeFile(any);
    EXPECT_NE(before, ReadWholeFile(out));
    ASSERT_EQ(redact(any, "").exitCode, 0);
    EXPECT_NE(ReadWholeFile(any), before);
    EXPECT_EQ(RunQuorlin("redact " + in + " " + any + good).exitCode, 1);  // it exists
    EXPECT_NE(ReadWholeFile(any), ReadWholeFile(out));

    const Case_t kRefusals[] = {
        Case(key("short.key", 15), 1, "", "short.key: shorter than 16 bytes, so not a key; try another key file\n"),
        Case(key("large.key", 65537), 1, "", "larger than 64 KiB"),
        Case(" --key " + folder, 1, "", "try another key file\n"),
        Case(" --key no-such.key", 1, "", "quorlin: no-such.key: "),
        Case(" --list", 2, "", "name a table and a new file, or give --list"),
        Case(good + " --format json", 2, "", "--format is for --list"),
    };
    for (const Case_t& refusal : kRefusals) {
        const ProgramRun_t run = redact(out, refusal.arguments);
        EXPECT_EQ(run.exitCode, refusal.exitCode) << refusal.arguments;
        EXPECT_TRUE(Has(run.errors, refusal.says)) << refusal.arguments << ": " << run.errors;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << run.errors;
        EXPECT_EQ(ReadWholeFile(out), "") << refusal.arguments;
    }
    EXPECT_TRUE(
        Has(RunQuorlin("redact --list --format csv").output, "\r\n17,Memory Device,serial_number,the text\r\n"));
    for (const std::string& file : {in, out, any}) std::remove(file.c_str());
}

TEST(Program, CheckGroupsFindingsAndTakesRules) {
    const auto chassis = Chassis(7, "Maker").Byte(5, 0x7F);
    const std::string image =
        " --as table --image " + WriteFile("check.bin", TableOf({chassis, ClStructureBuilder(chassis).Word(2, 8),
                                                                 Chassis(9, "Default string")}));
    const auto write = [](const std::string& name, std::string_view text) {
        return WriteFile(name, {text.begin(), text.end()});
    };
    const std::string subject = "System Enclosure or Chassis (type 3)";
    const std::string code = "QR0501 warning: " + subject +
                             ", Chassis Type: a code that the standard doesn't assign, 2 times\n"
                             "    0x7F; expected an assigned code from 0x1 to 0x24; handle 0007h, 0008h; at 0x5: 7F\n";
    const std::string filler =
        "QR0304 note: " + subject + ", Manufacturer: " +
        "a text that firmware is delivered with, and that nobody replaced\n    Default string; handle 0009h; at 0x4D\n";
    const std::string profile = write("profile", "# ours\noff QR0601\noff QR0501 type 3\n");
    const Case_t kCases[] = {
        Case("check --only QR0501" + image, 1, code + "2 findings\n"),
        Case("check --only QR0501 --only QR0304" + image, 1, code + "2 findings\n"),
        Case("check --only QR0501 --only QR0304 --severity note" + image, 1, code + filler + "3 findings\n"),
        Case("check --severity error" + image, 0, "No findings\n"),
        Case("check --profile " + profile + image, 0, "No findings\n"),
        Case("check --profile " + profile + " --only QR0501" + image, 1, code + "2 findings\n"),
        Case("check --ignore QR9999" + image, 2, ""),
        Case("check --severity high" + image, 2, ""),
        Case("check --profile no-such-file" + image, 2, ""),
        Case("check --profile " + write("wrong", "off QR0501 board 2\n") + image, 2, ""),
        Case("check --only QR0501 --format csv" + image, 1,
             "rule,severity,type,name,key,what,count,handle,offset,size,bytes,found,expected\r\n"
             "QR0501,warning,3,\"" +
                 subject +
                 ", Chassis Type\",chassis_type,a code that the standard doesn't assign,2,"
                 "7,5,1,7F,0x7F,an assigned code from 0x1 to 0x24\r\n"),
    };
    for (const Case_t& row : kCases) {
        const ProgramRun_t run = RunQuorlin(row.arguments);
        EXPECT_EQ(run.exitCode, row.exitCode) << row.arguments << run.errors;
        EXPECT_TRUE(run.output.starts_with(row.output)) << row.arguments << ": " << run.output;
    }
}

// A structure without a decoder, and one whose decoder leaves it out, with a string that would be a title.
TEST(Program, StructuresWithoutItemsShowTheirBytesAndStrings) {
    const auto oem =
        ClStructureBuilder(200, 6, 0x10).Byte(4, 0xAB).Byte(5, 1).Strings({"BIOS {Type 0}_9#GROUPNAME", "x "});
    const auto module = ClStructureBuilder(6, 5, 0x11).Byte(4, 2);
    WriteFile("raw.bin", TableOf({module, oem, Chassis(7, "M")}));
    const std::string image = " --image raw.bin";
    const std::pair<std::string, std::string> kCases[] = {
        Pair("--type 200",
             "OEM-specific {Type 200}, handle 0010h\n  Bytes     C8 06 10 00 AB 01\n"
             "  String 1  BIOS {Type 0}_9#GROUPNAME\n  String 2  x\n"),
        Pair("--type 6 --format csv",
             "type,handle,instance,title,group,key,value\r\n"
             "6,17,1,Memory Module Information,,Bytes,06 05 11 00 02\r\n"),
        Pair("--type 6,200 --format json",
             "{\"source\":\"raw.bin\",\"smbios\":\"3.0\",\"structures\":[\n"
             R"({"type":6,"handle":17,"instance":1,"title":"Memory Module Information","bytes":"0605110002",)"
             R"("strings":[]})"
             "\n"
             R"(,{"type":200,"handle":16,"instance":1,"title":"OEM-specific","bytes":"C8061000AB01",)"
             R"("strings":["BIOS {Type 0}_9#GROUPNAME","x"]}]})"
             "\n"),
        Pair("find group", "OEM-specific {Type 200}, handle 0010h\n  String 1  BIOS {Type 0}_9#GROUPNAME\n"),
        Pair("get 200 \"string 2\"", "x\n"),
        Pair("--type 200 --format lines", ""),
    };
    const auto home = fs::current_path();
    fs::current_path(TempDir());
    for (const auto& [arguments, output] : kCases) EXPECT_EQ(RunQuorlin(arguments + image).output, output) << arguments;
    const std::string all = RunQuorlin("show" + image).output;
    EXPECT_TRUE(Has(all, "Memory Module Information {Type 6}, ") && Has(all, "OEM-specific {Type 200}, ")) << all;
    fs::current_path(home);
}

TEST(Program, TakesFilesAndStreamsAndTypesAsUsersNameThem) {
    const std::string a = ImageBy("A", "a.bin"), same = RunQuorlin("--image " + a).output;
    EXPECT_EQ(RunQuorlin(a).output, same);
    EXPECT_EQ(RunQuorlin("--color never " + a).output, same);
    EXPECT_EQ(RunQuorlin("--image - <" + a).output, same);
    EXPECT_EQ(RunQuorlin("dump - --image " + a).output, RunQuorlin("dump - --image - <" + a).output);
    const auto types = [](const std::string& arguments) {
        std::istringstream lines(RunQuorlin("--sample --format csv " + arguments).output);
        std::string found;
        for (std::string line; std::getline(lines, line);)
            if (const std::string type = line.substr(0, line.find(',')); type != "type" && !found.ends_with(type + " "))
                found += type + " ";
        return found;
    };
    EXPECT_EQ(types("-t 3,9-10 --type 1"), "3 9 10 1 ");
    EXPECT_EQ(types("--type=Memory,slot"), "5 6 16 17 9 ");
    EXPECT_EQ(RunQuorlin("raw --sample --handle 0x400").output, RunQuorlin("raw --sample --handle 1024").output);
    EXPECT_EQ(RunQuorlin("raw --sample --handle 400h").output, RunQuorlin("raw --sample --handle 1024").output);
    EXPECT_EQ(RunQuorlin("raw --sample --handle 65535").exitCode, 1);  // more digits than in hexadecimal
    const std::string csv = RunQuorlin("types --format csv --image " + a + " --image " + a).output;
    EXPECT_TRUE(csv.starts_with("image,type,count,title,decoded\r\n" + a + ",3,1,")) << csv;
    EXPECT_EQ(csv.find("image,", 1), csv.npos) << csv;
}

TEST(Program, ForeignFilesAreNoTables) {
    const std::string noise(300, 'f');
    const struct {
        std::string begin;
        size_t size;
        const char* says;
    } kCases[] = {
        {"\177ELF\2\1\1",            9000, "a Linux program"},
        {"\3757zXZ\1\4\xE6\xD6\xB4", 400,  "xz"             },
        {noise,                      2000, "other data"     },
        {"_SM_",                     31,   "try "           },
        {"_SM3_",                    4096, "no bytes"       },
        {"",                         4096, "zeros"          },
        {"serial: 1\n",              10,   "text"           },
    };
    for (const auto& c : kCases) {
        Bytes_t bytes(c.begin.begin(), c.begin.end());
        bytes.resize(c.size);
        const std::string file = WriteFile("foreign", bytes);
        const ProgramRun_t run = RunQuorlin("check --image " + file);
        EXPECT_EQ(run.exitCode, 2) << c.says;
        EXPECT_TRUE(Has(run.errors, c.says) && std::ranges::count(run.errors, '\n') == 1) << c.says << run.errors;
        EXPECT_EQ(RunQuorlin("types --as table --image " + file).exitCode, 0) << c.says;
    }
}

// At most 8 items for each byte, for groups that name groups and lists that count missing entries.
TEST(Program, ATableGivesABoundedNumberOfItems) {
    std::vector<ClStructureBuilder> structures(255, ClStructureBuilder(221, 5).Byte(4, 255));
    structures.resize(257, ClStructureBuilder(14, 8).Byte(5, 221));
    const std::string image = " --image " + WriteFile("bomb.bin", TableOf(structures));
    for (const char* command : {"--format lines", "show", "--format json", "find none"}) {
        const ProgramRun_t run = RunQuorlin(command + image);
        EXPECT_EQ(run.exitCode, 1) << command;
        EXPECT_TRUE(Has(run.errors, "more items than a table of its size may")) << command << run.errors;
    }
}

TEST(Program, WritesALineForEachImage) {
    const std::string a = ImageBy("A", "a.bin"), b = ImageBy("B", "b.bin"), none = TempDir() + "no-such-file";
    const std::string list = a + "\r\n\n" + none + "\n" + b;  // the last line may lack its end
    const std::string names = WriteFile("names", Bytes_t(list.begin(), list.end()));
    for (const std::string& arguments :
         {"--image-list " + names, "--image-list - <" + names, "--image " + a + " --image " + b + " --image " + none}) {
        const ProgramRun_t run = RunQuorlin("--format ndjson --type 3 " + arguments);
        EXPECT_EQ(run.exitCode, 1) << arguments;
        EXPECT_EQ(std::ranges::count(run.output, '\n'), 3) << arguments;
        EXPECT_TRUE(Has(run.output, "\",\"error\":\"No such file")) << arguments;
        EXPECT_TRUE(Has(run.output, "{\"key\":\"Manufacturer\",\"value\":\"B\"}")) << arguments;
        EXPECT_EQ(run.errors, "") << arguments;
    }
    EXPECT_EQ(RunQuorlin("--image " + a + " --image " + b).exitCode, 2);
    EXPECT_EQ(RunQuorlin("--format ndjson --image-list " + none).exitCode, 1);
    // A NUL or a line without end isn't a name.
    for (const Bytes_t& bytes : {
             Bytes_t{'a', '\0', '\n'},
             Bytes_t(1u << 20, 'a')
    }) {
        const ProgramRun_t run = RunQuorlin("--format ndjson --image-list " + WriteFile("names", bytes));
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.output, "");
        EXPECT_TRUE(Has(run.errors, "not a list of file names")) << run.errors;
    }
    // An invalid version doesn't end the run.
    const std::string bare = " --image " + WriteFile("bare.bin", TableBy("C"));
    EXPECT_EQ(RunQuorlin("--format ndjson --smbios-version 0.0" + bare + bare).exitCode, 0);
}

// Sequences that are too long, encode half of a pair or too large a number, or lack their end; and the control
// characters beyond ASCII, which some terminals obey.
TEST(Program, WritesValidTextForAnyBytes) {
    const std::string u = "\xEF\xBF\xBD";  // U+FFFD
    const struct {
        std::string bytes, shown;
    } kCases[] = {
        {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"\xC0\xAF.",                            u + u + "."                           },
        {"\xE0\x9F\xBF.",                        u + u + u + "."                       },
        {"\xED\xA0\x80.",                        u + u + u + "."                       },
        {"\xF0\x8F\xBF\xBF.",                    u + u + u + u + "."                   },
        {"\xF4\x90\x80\x80.",                    u + u + u + u + "."                   },
        {"\xE2\x82",                             u + u                                 },
        {std::string("a\xC2\x9B") + "31mb\x7F.", "a 31mb ."                            },
    };
    for (const auto& c : kCases)
        EXPECT_EQ(RunQuorlin("get 3 Manufacturer --image " + ImageBy(c.bytes, "text.bin")).output, c.shown + "\n");
}

TEST(Program, ExitsWithOneLineThatSaysWhy) {
    const std::string missing = TempDir() + "no-such-file";
    const std::string empty = WriteFile("empty", {}), text = WriteFile("text", Bytes_t(1000, 'a'));
    const struct {
        std::string arguments;
        int exitCode;
        const char* says;  // in its one line on standard error
    } kCases[] = {
        {"--image " + missing,                                     1, "No such file"                 },
        {"--image " + TempDir(),                                   1, ""                             },
        {"--image " + empty + "/none",                             1, "; try another"                },
        {"--image " + empty,                                       1, "empty"                        },
        {"--image " + text,                                        1, "not a table"                  },
        {"--sample --method \"\"",                                 2, "--method may not be empty"    },
        {"--sample --road scan",                                   2, "are for this machine"         },
        {"--method bios",                                          2, "use firmware, scan or efi"    },
        {"diff " + text + " \"\"",                                 2, "image may not be empty"       },
        {"--sample types",                                         2, "exclude"                      },
        {"raw --image-list x",                                     2, "unknown option '--image-list'"},
        {"doctor --image x",                                       2, "unknown option '--image'"     },
        {"doctor --replay x",                                      2, "unknown option '--replay'"    },
        {"doctor --sample",                                        2, "unknown option '--sample'"    },
        {"get 300 x --sample",                                     2, "unknown structure type '300'" },
        {"types --as folder --sample",                             2, "--as"                         },
        {"--sample --image " + missing,                            2, "exclude"                      },
        {"--sample --type 256",                                    2, "256"                          },
        {"--sample --type 9-7",                                    2, "9-7"                          },
        {"--sample --type 1,,2",                                   2, "1,,2"                         },
        {"--sample --color red",                                   2, "always"                       },
        {"raw --sample --handle 0010",                             2, "10 for decimal, 0x10 or 10h"  },
        {"raw --sample --handle 1a",                               2, "write 0x1a or 1ah"            },
        {"raw --sample --handle 65536",                            2, "16-bit handle"                },
        {"--sample --format xml",                                  2, "xml"                          },
        {"--sample --smbios-version 3",                            2, "3.0"                          },
        {"--sample --signature 12G",                               2, "hexadecimal"                  },
        {"get 3 Makers --sample",                                  1, "--type 3"                     },
        {"shwo",                                                   2, "neither a command nor a file" },
 // Bad arguments are refused before the hardware library is opened.
        {"hw msr write 16",                                        2, "needs --write VALUE"          },
        {"hw msr write 16 --write 1",                              2, "needs both"                   },
        {"hw msr write 16 --yes-write-hardware",                   2, "needs both"                   },
        {"hw mem 0xFED00000 4 --write 1",                          2, "needs both"                   },
        {"hw cpuid 0 --write 1 --yes-write-hardware",              2, "can't write"                  },
        {"hw pci 0000:00:03.0 2 5 --write 1 --yes-write-hardware", 2, "can't write"                  },
        {"hw cpuid",                                               2, "takes other arguments"        },
        {"hw cpuids 0",                                            2, "unknown value 'cpuids'"       },
        {"hw pci 0000:00:20.0 2 5",                                2, "is not a PCI function"        },
        {"hw pci 00:03.0 2 5",                                     2, "is not a PCI function"        },
        {"hw cpuid 0 --cpu 256",                                   2, "not a processor number"       },
        {"hw mem 0xFED00000 2 --write 65536 --yes-write-hardware", 2, "larger than 2 bytes"          },
        {"hw port read 0x80 3",                                    2, "must be 1, 2 or 4"            },
        {"hw pci 0000:00:03.0 2 0",                                2, "from 1 to 4094"               },
        {"hw versions --cpu 0",                                    2, "doesn't take --cpu"           },
        {"hw cpuid 0 --out x",                                     2, "doesn't take --out"           },
        {"hw acpi --out x",                                        2, "--out needs the name"         },
        {"hw cpuid 0 --trace Global",                              2, "not a setting like"           },
    };
    for (const auto& c : kCases) {
        const ProgramRun_t run = RunQuorlin(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.arguments;
        EXPECT_EQ(run.output, "") << c.arguments;
        EXPECT_EQ(std::ranges::count(run.errors, '\n'), 1) << c.arguments << ": " << run.errors;
        EXPECT_EQ(run.errors.substr(0, 9), "quorlin: ") << c.arguments;
        EXPECT_TRUE(Has(run.errors, c.says) && Has(run.errors, "try ")) << c.arguments << ": " << run.errors;
    }
}

// Only on Linux: Windows has no device that is always full, no SIGPIPE and no script(1), which lends a terminal.
class OnLinux : public testing::Test {
  protected:
    void SetUp() override {
        if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "no /dev/full, so not Linux";
    }
    // The output of a shell command, both streams, with its exit code as the last line.
    static std::string Shell(const std::string& command) {
        const std::string written = TempDir() + "shell.txt";
        EXPECT_EQ(std::system(("{ " + command + "; echo $?; } </dev/null >" + written + " 2>&1").c_str()), 0);
        return ReadWholeFile(written);
    }
};

TEST_F(OnLinux, OutputThatCannotBeWrittenIsTrouble) {
    const std::string full = "quorlin: standard output: No space left on device; try another place for the output\n";
    const auto run = [](const std::string& arguments) {
        return Shell(QUORLIN_PROGRAM " " + arguments + " >/dev/full");
    };
    for (const char* arguments : {"--sample", "--version", "--help", "hw --help"})
        EXPECT_EQ(run(arguments), full + "1\n") << arguments;
    for (const char* arguments : {"find a --sample", "check --sample", "raw --help", "diff --help"})
        EXPECT_EQ(run(arguments), full + "2\n") << arguments;
    // A reader that has gone is not an error.
    EXPECT_EQ(Shell("{ sleep 0.1; " QUORLIN_PROGRAM " --sample; echo $? >&2; } | true"), "0\n0\n");
}

// In kilobytes of address space, of which the program and the store's records of a table of 4 MiB take the most.
TEST_F(OnLinux, ForeignFilesAndFlawsTakeLittleMemory) {
    if (IsSanitized()) GTEST_SKIP() << "a sanitizer reserves terabytes";
    const std::string sparse = WriteFile("sparse", {}), zeros = WriteFile("zeros", Bytes_t(4u << 20)),
                      bomb = TempDir() + "bomb.gz";
    fs::resize_file(sparse, uintmax_t{1} << 36);
    Shell("head -c 100M /dev/zero | gzip >" + bomb);
    for (const std::string& file : {std::string("/dev/zero"), sparse, bomb})
        EXPECT_EQ(Shell("ulimit -v 24000; " QUORLIN_PROGRAM " --image " + file),
                  "quorlin: " + file + ": larger than 4 MiB, so not a table; try the file with the dump\n1\n");
    const std::string findings = Shell("ulimit -v 330000; " QUORLIN_PROGRAM " check --as table --format json --image " +
                                       zeros + " | tail -c 300");
    EXPECT_TRUE(Has(findings, "a length below a header's 4")) << findings;
    // A long name over many values.
    std::string record = R"({"form": "quorlin record", "version": 1, ")" + std::string(20000, 'a') + "\": [1";
    for (int count = 0; count < 20000; count++) record += ",1";
    record += "]}";
    const fs::path folder = fs::path(TempDir()) / "foreign-record";
    fs::create_directories(folder);
    fs::rename(WriteFile("machine.json", {record.begin(), record.end()}), folder / "machine.json");
    EXPECT_EQ(Shell("ulimit -v 64000; " QUORLIN_PROGRAM " --replay " + folder.string()),
              "quorlin: " + folder.string() + ": the record has no SMBIOS table; try another record\n1\n");
}

// The configuration is in a folder that anybody may write to.
TEST_F(OnLinux, AStrangersConfigurationWritesNothing) {
    const auto folder = fs::path(TempDir()) / "quorlin-stranger";
    fs::remove_all(folder);
    fs::create_directory(folder);
    fs::permissions(folder, fs::perms::all);
    const std::string precious = WriteFile("precious", {'p'}), program = "cd " + folder.string() + "; " QUORLIN_PROGRAM;
    std::ofstream(folder / "debug.conf") << "Global:TraceType<Al>\nGlobal:OutputType<CoFi>\nGlobal:FileName<"
                                         << precious << ">\n";
    const std::string plain = Shell(QUORLIN_PROGRAM " --sample --type 24");
    EXPECT_EQ(Shell(program + " --sample --type 24"), plain);
    EXPECT_EQ(Shell(program + " --sample --type 24 --verbose 2>&1 >/dev/null | grep debug.conf"),
              "quorlin: debug.conf: ignored: others can write its folder, or one above\n0\n");
    EXPECT_EQ(ReadWholeFile(precious), "p");

    // What the user asks for.
    const std::string trace =
        " --sample --type 24 --trace 'Global:TraceType<In>;Global:OutputType<Fi>;Global:FileName<";
    EXPECT_TRUE(Has(Shell(program + trace + "/dev/stderr>' 2>&1 >/dev/null"), " Fn:ParseAllStructures "));
    const std::string lost = Shell(program + trace + "no-folder/log>' 2>&1 >/dev/null");
    EXPECT_TRUE(Has(lost, "quorlin: --trace: can't open its log; try ")) << lost;
}

TEST_F(OnLinux, ATerminalGetsColourAndLinesThatFit) {
    const std::pair<const char*, bool> kEnvironments[] = {
        {"-u NO_COLOR", true },
        {"NO_COLOR=",   true },
        {"NO_COLOR=1",  false},
        {"TERM=dumb",   false},
    };
    for (const auto& [environment, isColoured] : kEnvironments) {
        const std::string output = Shell(std::string("env ") + environment +
                                         " script -qec 'stty cols 60; for command in \"\" check \"hw --help\"; do " +
                                         QUORLIN_PROGRAM " $command --sample; done' /dev/null");
        EXPECT_EQ(Has(output, "\x1b[1mProcessor Information {Type 4}, handle 0400h\x1b[0m\r\n"), isColoured)
            << environment << output;
        EXPECT_TRUE(Has(output, " findings\r\n") && Has(output, "Exit codes: ")) << output;
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 61u + (line.starts_with('\x1b') ? 8 : 0)) << line;  // with the carriage return
    }
}

// The message says why, and advises root only where that helps.
TEST_F(OnLinux, AMachineWithoutATableSaysWhy) {
    const std::string point = WriteFile("point", Cut(DumpOf(TableBy("A"), 2, 7), 31)),
                      table = WriteFile("table", TableBy("A"));
    const std::string firmware = "cd /sys/firmware && mkdir -p dmi/tables acpi/tables && cp " + point +
                                 " dmi/tables/smbios_entry_point && cp " + table +
                                 " dmi/tables/DMI && chmod 400 dmi/tables/* && ",
                      nobody = "chmod 600 /dev/mem && setpriv --reuid 65534 --regid 65534 --clear-groups ",
                      memory = "truncate -s 1M /dev/mem && ";
    Bytes_t area(1u << 20);
    Bytes_t dump = DumpOf(TableBy("A"), 2, 7, 0xF0100, 0x100);
    SetChecksums(dump);
    std::ranges::copy(dump, area.begin() + 0xF0000);
    const auto read = [&area](const std::string& method, const std::string& name, const std::string& map) {
        return "cp " + WriteFile("mem", area) + " /dev/mem && mount --bind " +
               WriteFile(name, Bytes_t(map.begin(), map.end())) +
               " /proc/iomem && " QUORLIN_PROGRAM " get 3 Manufacturer --verbose --method " + method;
    };
    const auto scan = [&read](const std::string& name, const std::string& map) { return read("scan", name, map); };
    const auto efi = [&read](const std::string& systab, const std::string& name, const std::string& map) {
        return "mkdir /sys/firmware/efi && echo " + systab + " >/sys/firmware/efi/systab && " + read("efi", name, map);
    };
    const std::pair<std::string, std::string> kCases[] = {
        Pair(scan("rom", "000f0000-000fffff : System ROM\n"), "read by the scan of its memory, SMBIOS 2.7\nA\n0\n"),
        Pair(scan("device", "000f0000-000fffff : PCI\n"),
             "the table isn't in known memory, and is not read; try without --method, or quorlin doctor\n2\n"),
        Pair(firmware + QUORLIN_PROGRAM " get 3 Manufacturer", "A\n0\n"),
        Pair(memory + firmware + nobody + QUORLIN_PROGRAM,
             "this machine: the system refuses to give its SMBIOS table; try as root, or quorlin doctor\n1\n"),
        Pair(memory + firmware + nobody + QUORLIN_PROGRAM " get 24 Handle --sample-if-none",
             "its SMBIOS table; showing the embedded sample\n6144\n6145\n0\n"),
        Pair(QUORLIN_PROGRAM, "this machine: no SMBIOS table here; try --sample, --image FILE, or quorlin doctor\n1\n"),
        Pair(memory + nobody + QUORLIN_PROGRAM,
             "this machine: no SMBIOS table here; try --sample, --image FILE, or quorlin doctor\n1\n"),
        Pair(QUORLIN_PROGRAM " --method scan",
             "its memory can't be read; try without --method, or quorlin doctor\n1\n"),
        Pair(memory + QUORLIN_PROGRAM " --method scan",
             "the scan of its memory finds no table; try without --method, or quorlin doctor\n1\n"),
        Pair(memory + nobody + QUORLIN_PROGRAM " --method scan",
             "the system refuses to give its memory; try as root, or quorlin doctor\n1\n"),
        Pair(efi("SMBIOS=0xf0000", "rom", "000f0000-000fffff : System ROM\n"),
             "read at the address that its firmware gave, SMBIOS 2.7\nA\n0\n"),
        Pair(efi("SMBIOS=0xf0000", "device", "000f0000-000fffff : PCI\n"),
             "the table isn't in known memory, and is not read; try without --method, or quorlin doctor\n2\n"),
        Pair(
            efi("SMBIOS3=0xf1000", "rom", "000f0000-000fffff : System ROM\n"),
            "the firmware's address doesn't lead to a valid entry point; try without --method, or quorlin doctor\n2\n"),
        Pair(QUORLIN_PROGRAM " --method efi",
             "this firmware isn't UEFI, or the kernel doesn't show its tables; try without --method, or quorlin "
             "doctor\n1\n"),
        Pair(memory + "cd /sys/firmware && mkdir efi && echo >efi/systab && chmod 400 efi/systab && " + nobody +
                 QUORLIN_PROGRAM " --method efi",
             "the system refuses to give its memory; try as root, or quorlin doctor\n1\n"),
        Pair(QUORLIN_PROGRAM " hw mem 0xF0000 4",
             "the request was refused (status 0); try quorlin hw --help, or quorlin doctor\n1\n"),
        Pair(memory + nobody + QUORLIN_PROGRAM " hw mem 0xF0000 4",
             "the system refuses it (status 0); try as root, or quorlin doctor\n1\n"),
        Pair("cd /dev && " QUORLIN_PROGRAM " record r && " QUORLIN_PROGRAM " record s --replay r",
             "quorlin: r: something wasn't recorded; machine.json tells what and why, and quorlin doctor more\n"
             "quorlin: s: something wasn't recorded; machine.json tells what and why\n0\n"),
        Pair(QUORLIN_PROGRAM " hw acpi", "shows no ACPI tables; try quorlin doctor\n1\n"),
        Pair(firmware + "printf 12345 >acpi/tables/FACP && printf 123 >acpi/tables/SSDT1 && cp acpi/tables/FACP "
                        "acpi/tables/SSDT2 && touch \"acpi/tables/$(printf \"A\\033[C\")\" && " QUORLIN_PROGRAM
                        " hw acpi",
             "Table  Bytes\nA?[C       -\nFACP       5\nSSDT       3  the first of 2\n0\n"),
        Pair(firmware + QUORLIN_PROGRAM " hw acpi NONE",
             "try quorlin hw acpi, which lists the tables, or quorlin doctor\n1\n"),
    };
    uint32_t registers[4] = {};
    const bool isX86 = os_ReadCPUID(registers);
    for (const auto& [command, says] : kCases) {
        if (!isX86 && Has(command, "--method scan")) continue;  // another test has what it says
        const std::string output = Shell(
            "unshare -m sh -c 'mount -t tmpfs none /dev && mknod -m 666 /dev/null c 1 3 && "
            "mount -t tmpfs none /sys/firmware && " +
            command + "'");
        if (Has(output, "unshare: ")) GTEST_SKIP() << "only root can have folders over those of the system";
        EXPECT_TRUE(output.ends_with(says)) << command << ": " << output;
    }
}

// A debug.conf in the working folder applies to every table of a run.
TEST(Program, LogsEveryWalk) {
    const auto table =
        TableOf({ClStructureBuilder(3, 0x15), ClStructureBuilder(13, 0x16), ClStructureBuilder(17, 0x28)});
    const std::string image = WriteFile("trace.bin", table),
                      line = "\n Info  Fn:ParseAllStructures The present type is ";
    const std::string walk = line + "0x3 myHeaderPtr->Length = 0x15" + line + "0xd myHeaderPtr->Length = 0x16" + line +
                             "0x11 myHeaderPtr->Length = 0x28\n";
    const struct {
        std::string arguments, line;
        int least;  // how often the line comes
    } kCases[] = {
        {"--format lines --image " + image,                        walk, 1},
        {"--format ndjson --image " + image + " --image " + image, walk, 2},
        {"--format lines --type 24 --sample-if-none",              line, 1}, // the last of the machines that it tries
    };
    const auto home = fs::current_path();
    // Under Wine a folder of the host's may look as if all could rename what is in it.
    const char* profile = std::getenv("USERPROFILE");
    const auto folder = fs::path(profile != nullptr ? profile : TempDir()) / "quorlin-trace";
    fs::remove_all(folder);
    fs::create_directory(folder);
    std::ofstream(folder / "debug.conf") << "[GLOBAL]\nGlobal:TraceType<Al>\nGlobal:OutputType<Fi>\n"
                                            "Global:TraceFormatType<TdFn>\nGlobal:FileName<walk.log>\n";
    fs::permissions(folder / "debug.conf", fs::perms::owner_read | fs::perms::owner_write);
    for (const auto& c : kCases) {
        const ProgramRun_t silent = RunQuorlin(c.arguments);
        fs::current_path(folder);
        const ProgramRun_t traced = RunQuorlin(c.arguments);
        std::string log = ReadWholeFile("walk.log");
        fs::current_path(home);
        EXPECT_EQ(traced.exitCode, 0) << c.arguments;
        EXPECT_EQ(traced.output, silent.output) << c.arguments;
        std::erase(log, '\r');  // the log is a text file of its platform
        int count = 0;
        for (size_t at = 0; (at = log.find(c.line, at)) != log.npos; at++) count++;
        EXPECT_GE(count, c.least) << c.arguments << ": " << log;
    }
}

}  // namespace
