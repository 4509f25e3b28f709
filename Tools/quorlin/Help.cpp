#include "Tools/quorlin/Help.h"

#include <algorithm>

#include "Tools/quorlin/Columns.h"
#include "Tools/quorlin/Output.h"

namespace {

using Lines_t = std::vector<std::pair<std::string, std::string>>;

void PutBlock(std::string_view heading, const Lines_t& lines, ClColumns& columns) {
    columns.Heading(heading);
    for (const auto& [name, help] : lines) columns.Pair(name, help);
    columns.Finish(2);
}

}  // namespace

std::string Synopsis(const Command_t& command, std::span<const Option_t> options) {
    std::string synopsis = TypedName(command) + " [OPTIONS]";
    for (const Option_t& option : options) {
        if (!option.IsArgument()) continue;
        synopsis.append(option.required ? " " : " [").append(option.name);
        if (option.IsList()) synopsis += "...";
        if (!option.required) synopsis += ']';
    }
    return synopsis;
}

int PrintHelp(const Command_t& command, std::span<const Option_t> options) {
    Lines_t arguments, named = {
                           {"-h, --help", "Print this help and exit"}
    };
    for (const Option_t& option : options) {
        if (option.isHidden) continue;
        std::string name = option.letter == 0 ? "" : std::string("-") + option.letter + ", ";
        name += option.name;
        if (!option.IsArgument() && option.TakesValue()) name.append(" ").append(option.typeName);
        (option.IsArgument() ? arguments : named).emplace_back(name, option.Help());
    }
    ClOutput output;
    ClColumns columns(output);
    columns.Line(0, command.description);
    columns.Line(0, "Usage: " + Synopsis(command, options));
    if (&command == Commands().front()) {
        Lines_t commands;
        for (const Command_t* each : Commands()) commands.emplace_back(each->name, each->summary);
        PutBlock("Commands (quorlin COMMAND --help shows more):", commands, columns);
    }
    if (!arguments.empty()) PutBlock("Arguments:", arguments, columns);
    PutBlock("Options:", named, columns);
    columns.Line(0, "");
    std::string_view footer = command.footer;
    while (!footer.empty()) {
        const size_t end = std::min(footer.find('\n'), footer.size());
        columns.Line(0, footer.substr(0, end));
        footer.remove_prefix(std::min(end + 1, footer.size()));
    }
    return output.Finish() ? kExitDone : command.trouble;
}
