#!/bin/bash
# Adds a structure type, an output format and a command to a copy of the tree, each by the files that CONTRIBUTING.md
# lists, builds the program and looks for them in its output, its help and its completions.
#
#     add-one-of-each.sh SOURCE BUILD
set -eu
source=$1 work=$2/add-one-of-each
fail() {
    echo "$*" >&2
    exit 1
}
rm -rf "$work/tree"
mkdir -p "$work/tree"
cd "$work/tree"
cp -r "$source"/{CMakeLists.txt,cmake,CInterface,Docs,Packages,Sources,Tools} .

# A format: one file and one row.
cat >Tools/quorlin/Formats/Dummy.cpp <<'CPP'
#include "Tools/quorlin/Formats.h"

namespace {

class ClDummyWriter : public ClWriter {
  public:
    using ClWriter::ClWriter;
    void Begin(const List_t& list, const Members_t&) override { m_output << list.name << "\n"; }
    void Row(std::initializer_list<Cell_t> cells, std::span<const Row_t>) override {
        for (const Cell_t& cell : cells)
            if (const auto* text = std::get_if<std::string_view>(&cell)) m_output << "<" << *text << ">";
        m_output << "\n";
    }
};

std::unique_ptr<ClWriter> Make(ClOutput& output, bool) { return std::make_unique<ClDummyWriter>(output); }

}  // namespace

constexpr Format_t kDummyFormat = {
    .name = "dummyformat",
    .remark = "for a test",
    .contents = kAnyContent,
    .takesMany = false,
    .reportsErrors = false,
    .isSweep = false,
    .make = Make,
};
CPP
echo 'FORMAT(Dummy)' >>Tools/quorlin/Formats.inc

# A command: one file and one row.
cat >Tools/quorlin/Commands/Dummy.cpp <<'CPP'
#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Formats.h"

namespace {

constexpr Column_t kColumns[] = {{"name", "Name"}};
constexpr List_t kList = {.name = "names", .columns = kColumns};

int List(ClTable& table, ClWriter& writer) {
    writer.Row({table.Name()});
    return kExitDone;
}

}  // namespace

constexpr Command_t kDummyCommand = {
    .name = "dummycommand",
    .summary = "a command of a test",
    .description = "Names a table.",
    .footer = "",
    .trouble = kExitNoTable,
    .make = MakeCommand<ClListCommand<List, kList, kDummyCommand>>,
};
CPP
echo 'COMMAND(Dummy)' >>Tools/quorlin/Commands.inc

# A structure type: one file and one row.
cat >Sources/SMBIOSType150.cpp <<'CPP'
#include "Sources/Decoders.h"

namespace {

constexpr ItemRow_t kItems[] = {
    {"Dummy Number", 0x04, Hex8  },
    {"Dummy Name",   0x05, String},
};

}  // namespace

ROWS_DECODER(150, kItems)
CPP
sed -i '/^DECODER( 221/i DECODER( 150, Swept, FormattedArea, Header, "Dummy Information", "")' Sources/Types.def
printf '\226\006\064\022\052\001Fjord\0\0\177\004\065\022\0\0' >dummy.bin

# A cache has most objects, if the build is like the release and as deep in its tree. Without one, -O0 is fastest.
build=build/release options='-DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0'
! command -v ccache >/dev/null || options='-DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_COMPILER_LAUNCHER=ccache'
export CCACHE_BASEDIR=$PWD
# shellcheck disable=SC2086  # its words
nice cmake -S . -B $build -G Ninja $options -DQUORLIN_TESTS=OFF >/dev/null
nice cmake --build $build --target quorlin_program quorlin_completions >"$work/log" ||
    { cat "$work/log"; fail "it doesn't build"; }

program=$build/bin/quorlin
expect() { # what is expected, in which text
    grep -q -- "$1" <<<"$2" || fail "no '$1' in: $2"
}
expect "^sample$" "$("$program" dummycommand --sample)"
expect '"names":\[{"name":"sample"}\]' "$("$program" dummycommand --sample --format json)"
expect "^<sample>" "$("$program" dummycommand --sample --format dummyformat)"
expect "<Manufacturer><Halvorsen Systems>" "$("$program" --sample --type 1 --format dummyformat)"
expect '^"Dummy Information {Type 150}#GROUPNAME", ""$' "$("$program" --image dummy.bin --as table --format lines)"
expect '^"Dummy Name", "Fjord"$' "$("$program" --image dummy.bin --as table --format lines)"
expect "dummycommand  *a command of a test" "$("$program" --help)"
expect "dummyformat (for a test)" "$("$program" find --help)"
for shell in bash zsh fish; do
    for word in dummycommand dummyformat; do
        grep -q "$word" $build/completions/quorlin.$shell || fail "$shell doesn't complete $word"
    done
done
