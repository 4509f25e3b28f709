// The row form of facts: many tables as CSV files.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "Tests/Support/Program.h"
#include "Tests/Support/Structures.h"

namespace {

namespace fs = std::filesystem;

// A path in the test's folder at which nothing is.
std::string NewFolder() {
    const std::string path = testing::TempDir() + "rows-new";
    fs::remove_all(path);
    return path;
}

auto CountEntries() { return std::distance(fs::directory_iterator(testing::TempDir()), fs::directory_iterator()); }

// Cells that need quotes or cleaning, fillers, a code that isn't assigned, lists, bits of which none is set, broken
// references, and what version 2.1 has no field for.
std::vector<uint8_t> OddTable() {
    return TableOf({
        ClStructureBuilder(0, 0x12, 0)
            .Bytes(4, {1, 2})
            .Byte(8, 3)
            .Strings({"Acme, Inc.", "1.0 \"beta\"", "05/12/2023"}),
        ClStructureBuilder(1, 0x19, 1)
            .Bytes(4, {1, 2, 0, 3})
            .Qword(8, UINT64_MAX)
            .Qword(16, UINT64_MAX)
            .Strings({"Acme", "Box", "To Be Filled By O.E.M."}),
        ClStructureBuilder(2, 8, 2).Bytes(4, {1, 0, 0, 2}).Strings({"Acme", " SN  0815"}),
        ClStructureBuilder(8, 9, 3).Bytes(4, {1, 0x30, 2, 0, 9}).Strings({"J1\n2 ", "\x01"}),
        ClStructureBuilder(8, 9, 4).Bytes(4, {0, 0, 1, 0xFF, 0}).Strings({"\xFFport\xE2\x80\xAE"}),
        ClStructureBuilder(14, 11, 5).Bytes(4, {1, 8, 3, 0, 8, 99, 0}).Strings({"ports"}),
        ClStructureBuilder(14, 5, 6).Bytes(4, {2}).Strings({"no such string"}),
        ClStructureBuilder(11, 5, 7).Byte(4, 2).Strings({"say \"hi\", \\ \xC3\xA9", "b"}),
        ClStructureBuilder(16, 15, 8).Bytes(4, {3, 3, 3}).Dword(7, 4096).Word(11, 0xFFFE).Word(13, 1),
        ClStructureBuilder(17, 21, 9).Word(4, 8).Word(6, 0xFFFE).Word(8, 72).Word(10, 64).Word(12, 4).Bytes(14, {9, 0}),
        ClStructureBuilder(200, 4, 10).Strings({"vendor"}),
    });
}

TEST(Rows, OfAnOddTable) {
    const std::string image = WriteFile("rows-odd.bin", DumpOf(OddTable(), 2, 1)), folder = NewFolder();
    const ProgramRun_t run = RunQuorlin("facts --rows " + folder + " " + image);
    ASSERT_EQ(run.exitCode, 0) << run.errors;
    EXPECT_EQ(run.output + run.errors, "");
    // The rows of a file, without the record, which is the same in all, and returns.
    const std::string machines = ReadWholeFile(folder + "/machines.csv");
    const size_t record = machines.find(',', machines.find('\n')) - machines.find('\n') - 1;
    const auto rows = [&](const std::string& dataset) {
        const std::string text = ReadWholeFile(folder + "/" + dataset + ".csv");
        std::string shown;
        for (size_t at = text.find("\r\n") + 2; at < text.size();) {
            const size_t end = text.find("\r\n", at);
            shown.append(text, at + record, end - at - record).append("\n");
            at = end + 2;
        }
        return shown;
    };
    EXPECT_EQ(rows("platform_firmware_information"),
              R"(,0,1,"Acme, Inc.","1.0 ""beta""",,05/12/2023,65536,"",,,,,,,,65536,2023-05-12,,,,)"
              "\n");
    EXPECT_EQ(rows("system_information"), ",1,1,Acme,Box,,,,0x0,,\n");
    EXPECT_EQ(rows("baseboard_information"), ",2,1,Acme,,, SN  0815,,,,,,,\n");
    EXPECT_EQ(rows("port_connector_information"),
              ",3,1,J1 2,0x30,,None,Serial Port 16550A Compatible\n,4,2,,None,\xEF\xBF\xBDport,Other,None\n");
    EXPECT_EQ(rows("group_associations"),
              R"(,5,1,ports,"[{""item_type"":8,""item_handle"":3},{""item_type"":8,""item_handle"":null}]")"
              "\n,6,2,,[]\n");
    EXPECT_EQ(rows("oem_strings"),
              ",7,1,2,\"[{\"\"string\"\":\"\"say \\\"\"hi\\\"\", \\\\ \xC3\xA9\"\"},{\"\"string\"\":\"\"b\"\"}]\"\n");
    EXPECT_EQ(rows("physical_memory_array"),
              ",8,1,System board or motherboard,System memory,None,4194304,,1,,4194304\n");
    EXPECT_EQ(rows("memory_device"), ",9,1,8,,72,64,4194304,DIMM,,,,0x0,\"\",,,,,,,,,,,,,,,,,,,,,,,,,,,,,,4194304,,\n");
    EXPECT_EQ(rows("strings"),
              ",0,0,1,\"Acme, Inc.\"\n"
              ",0,0,2,\"1.0 \"\"beta\"\"\"\n"
              ",0,0,3,05/12/2023\n"
              ",1,1,1,Acme\n"
              ",1,1,2,Box\n"
              ",1,1,3,To Be Filled By O.E.M.\n"
              ",2,2,1,Acme\n"
              ",2,2,2, SN  0815\n"
              ",3,8,1,J1 2\n"
              ",3,8,2,\"\"\n"
              ",4,8,1,\xEF\xBF\xBD"
              "port\n"
              ",5,14,1,ports\n"
              ",6,14,1,no such string\n"
              ",7,11,1,\"say \"\"hi\"\", \\ \xC3\xA9"
              "\"\n"
              ",7,11,2,b\n"
              ",10,200,1,vendor\n");
    EXPECT_EQ(
        rows("findings"),
        ",QR0801,warning,1,1,uuid: a UUID that firmware is delivered with: ffffffff-ffff-ffff-ffff-ffffffffffff; "
        "expected the machine's own UUID\n"
        ",QR0501,warning,1,1,wake_up_type: a code that the standard doesn't assign: 0x0; expected an assigned code "
        "from 0x0 to 0x8\n"
        ",QR0302,warning,3,8,internal_reference_designator: a string with control bytes: J1 2 ; expected printable "
        "characters\n"
        ",QR0501,warning,3,8,internal_connector_type: a code that the standard doesn't assign: 0x30; expected an "
        "assigned code from 0x0 to 0xFF\n"
        ",QR0302,warning,3,8,external_reference_designator: a string with control bytes:  ; expected printable "
        "characters\n"
        ",QR0401,error,5,14,item_handle: the handle of no structure: 0063h; expected the handle of a structure\n"
        ",QR0301,error,6,14,group_name: a string number past the structure's strings: 2; expected 1 or less\n"
        ",QR0501,warning,9,17,memory_type: a code that the standard doesn't assign: 0x0; expected an assigned code "
        "from 0x1 to 0x25\n");
    EXPECT_EQ(rows("processor_information"), "");
    EXPECT_EQ(rows("rejects"), "");
    EXPECT_EQ(rows("machines"),
              "," + image +
                  ",3c7a530b5c2fed0d94c0aefc366ffdc19e61e68842aab846c03533e4ebc41056,2.1,12,291,,filler,,filler,"
                  "SN 0815,value,,,Acme,Box,,,,Acme,,,,,\"Acme, Inc.\",\"1.0 \"\"beta\"\"\",2023-05-12,,0,,,"
                  "4194304,1,1\n");
}

// What is whole already, or wouldn't be what the options say.
TEST(Rows, AreRefused) {
    const std::string folder = NewFolder();
    const auto entries = CountEntries();
    for (const char* option :
         {"--format csv", "--type 17", "--handle 1", "--key size", "--full", "--where", "--absent"}) {
        const ProgramRun_t run = RunQuorlin("facts --sample --rows " + folder + " " + option);
        EXPECT_EQ(run.exitCode, 2) << option;
        EXPECT_NE(run.errors.find("--rows takes no --type"), run.errors.npos) << run.errors;
    }
    const ProgramRun_t run = RunQuorlin("facts --sample --rows " + folder + "/none/below");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("try another name or place"), run.errors.npos) << run.errors;
    EXPECT_EQ(CountEntries(), entries);
    // The first name is one, but not the whole list.
    const std::string list = WriteFile("rows-no-list", {'n', 'o', 'n', 'e', '\n', 0});
    EXPECT_EQ(RunQuorlin("facts --rows " + folder + " --image-list " + list).exitCode, 1);
    EXPECT_FALSE(fs::exists(folder));
    fs::remove(list);
    fs::create_directory(folder);
    EXPECT_EQ(RunQuorlin("facts --sample --rows " + folder).exitCode, 1);
    EXPECT_TRUE(fs::is_empty(folder));
    EXPECT_EQ(CountEntries(), entries + 1);
}

// Several sources; the record of each comes from its name alone.
TEST(Rows, OfSeveralTables) {
    const std::string folder = NewFolder(), image = WriteFile("rows-odd.bin", DumpOf(OddTable(), 2, 1));
    const std::string bad = WriteFile("rows-bad,image", {1, 2, 3}), list = testing::TempDir() + "rows-none.bin\n";
    const ProgramRun_t run = RunQuorlin("facts " + image + " " + bad + " --rows " + folder + " --image-list " +
                                        WriteFile("rows-list", std::vector<uint8_t>(list.begin(), list.end())));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_NE(run.errors.find("2 of the tables can't be read"), run.errors.npos) << run.errors;
    const std::string rejects = ReadWholeFile(folder + "/rejects.csv");
    EXPECT_NE(rejects.find("source,reason\r\n\"" + bad + "\","), rejects.npos) << rejects;
    EXPECT_NE(rejects.find("\r\n" + testing::TempDir() + "rows-none.bin,No such file"), rejects.npos) << rejects;
    const std::string machines = ReadWholeFile(folder + "/machines.csv");
    EXPECT_EQ(std::ranges::count(machines, '\n'), 2);
    const std::string sample = NewFolder();
    EXPECT_EQ(RunQuorlin("facts --sample --rows " + sample).exitCode, 0);
    // The first 63 bits of the SHA-256 of "sample".
    EXPECT_NE(ReadWholeFile(sample + "/machines.csv").find("\r\n6311212071456192352,sample,"), std::string::npos);
}

}  // namespace
