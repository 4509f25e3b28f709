// Writes what is made from the program's tables of commands and options:
//
//     write_program_docs bash|zsh|fish       a completion script
//     write_program_docs man FILE            the manual page, with new lists between its marks
#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>

#include "Tools/quorlin/Commands.h"
#include "Tools/quorlin/Help.h"

namespace {

struct Entry_t {
    const Command_t* command;
    std::unique_ptr<ClCommand> run;  // the options point to it
    std::vector<Option_t> options;   // without hidden ones, and with --help
};

std::vector<Entry_t> Entries() {
    static bool wantsHelp;
    std::vector<Entry_t> entries;
    for (const Command_t* command : Commands()) {
        Entry_t& entry = entries.emplace_back(Entry_t{command, command->make(), {}});
        entry.options = entry.run->Options();
        std::erase_if(entry.options, [](const Option_t& option) { return option.isHidden; });
        entry.options.push_back({.name = "--help",
                                 .typeName = nullptr,
                                 .help = "Print a command's help",
                                 .target = &wantsHelp,
                                 .letter = 'h'});
    }
    return entries;
}

bool IsFile(const Option_t& option) {
    return option.typeName != nullptr && option.typeName == std::string_view("FILE");
}

// The names and words of a list, with blanks between them.
template <class List, class TextOf>
std::string Joined(const List& list, TextOf textOf) {
    std::string text;
    for (const auto& each : list) {
        const std::string next = textOf(each);
        if (!next.empty()) text += (text.empty() ? "" : " ") + next;
    }
    return text;
}

std::string Words(const Option_t& option) {
    return Joined(option.choices, [](const Choice_t& choice) { return std::string(choice.word); });
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) text.replace(at, from.size(), to);
    return text;
}

// In single quotes of a shell.
std::string Quoted(std::string_view text) { return "'" + Replaced(std::string(text), "'", "'\\''") + "'"; }

std::vector<const Option_t*> Arguments(const Entry_t& entry) {
    std::vector<const Option_t*> arguments;
    for (const Option_t& option : entry.options)
        if (option.IsArgument()) arguments.push_back(&option);
    return arguments;
}

std::string Letter(const Option_t& option) { return option.letter == 0 ? "" : std::string("-") + option.letter; }

// "-t|--type"
std::string Pattern(const Option_t& option) {
    return option.letter == 0 ? option.name : Letter(option) + "|" + option.name;
}

// Where a value's completion is decided, as lines of a case statement: a value takes words, files or nothing of ours.
std::string BashValue(const Option_t& option) {
    return IsFile(option) ? "files=1" : option.choices.empty() ? ":" : "words=" + Quoted(Words(option));
}

void WriteBash(const std::vector<Entry_t>& entries) {
    std::cout
        << "# bash completion of quorlin(1), made from the program's own tables.\n\n_quorlin()\n{\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} option= first=1 command="
        << entries.front().command->name
        << " words= files= options= values= place=0 last= at\n"
           "    COMPREPLY=()\n"
           "    case ${COMP_WORDS[1]-} in\n        "
        << Replaced(Joined(entries, [](const Entry_t& entry) { return std::string(entry.command->name); }), " ", "|")
        << ") [[ $COMP_CWORD -eq 1 ]] || { command=${COMP_WORDS[1]}; first=2; } ;;\n    esac\n    case $command in\n";
    for (const Entry_t& entry : entries) {
        const auto name = [](const Option_t& option) { return option.IsArgument() ? "" : std::string(option.name); };
        const auto value = [](const Option_t& option) {
            return option.IsArgument() || !option.TakesValue()
                       ? std::string()
                       : (option.letter == 0 ? "" : Letter(option) + " ") + option.name;
        };
        std::cout << "        " << entry.command->name
                  << ")\n            options=" << Quoted(Joined(entry.options, name))
                  << "\n            values=" << Quoted(" " + Joined(entry.options, value) + " ") << " ;;\n";
    }
    std::cout << "    esac\n"
                 "    # Bash splits --option=value at the sign.\n"
                 "    if [[ $current == = ]]; then\n"
                 "        option=${COMP_WORDS[COMP_CWORD - 1]} current=\n"
                 "    elif [[ $COMP_CWORD -gt 1 && ${COMP_WORDS[COMP_CWORD - 1]} == = ]]; then\n"
                 "        option=${COMP_WORDS[COMP_CWORD - 2]}\n"
                 "    elif [[ $COMP_CWORD -ge $first && $values == *\" ${COMP_WORDS[COMP_CWORD - 1]} \"* ]]; then\n"
                 "        option=${COMP_WORDS[COMP_CWORD - 1]}\n"
                 "    fi\n"
                 "    # Which argument this is, and the one before it.\n"
                 "    for ((at = first; at < COMP_CWORD; at++)); do\n"
                 "        if [[ ${COMP_WORDS[at]} == -?* ]]; then\n"
                 "            [[ ${COMP_WORDS[at + 1]-} != = ]] || { ((at += 2)); continue; }\n"
                 "            [[ $values != *\" ${COMP_WORDS[at]} \"* ]] || ((at += 1))\n"
                 "        else\n"
                 "            last=${COMP_WORDS[at]}\n"
                 "            ((place += 1))\n"
                 "        fi\n"
                 "    done\n"
                 "    case $command:${option:-$place} in\n";
    for (const Entry_t& entry : entries) {
        const std::string name = entry.command->name;
        for (const Option_t& option : entry.options)
            if (!option.IsArgument() && option.TakesValue())
                std::cout << "        " << name << ":" << Replaced(Pattern(option), "|", "|" + name + ":") << ") "
                          << BashValue(option) << " ;;\n";
        const std::vector<const Option_t*> arguments = Arguments(entry);
        for (size_t place = 0; place < arguments.size(); place++) {
            const Option_t& option = *arguments[place];
            std::cout << "        " << name << ":" << (option.IsList() ? "[0-9]*" : std::to_string(place)) << ") ";
            if (option.after != nullptr) std::cout << "[[ \" " << option.after << " \" != *\" $last \"* ]] || ";
            std::cout << BashValue(option) << " ;;\n";
        }
    }
    std::cout << "    esac\n"
                 "    if [[ -z $option ]]; then\n"
                 "        if [[ $current == -* ]]; then\n"
                 "            words=$options files=\n"
                 "        elif [[ $COMP_CWORD -eq 1 ]]; then\n"
                 "            words="
              << Quoted(Joined(entries, [](const Entry_t& entry) { return std::string(entry.command->name); }))
              << "\n        fi\n    fi\n"
                 "    [[ -z $words ]] || mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
                 "    if [[ -n $files ]]; then\n"
                 "        mapfile -t -O ${#COMPREPLY[@]} COMPREPLY < <(compgen -f -- \"$current\")\n"
                 "        compopt -o filenames 2>/dev/null || :\n"
                 "    fi\n"
                 "}\n\ncomplete -F _quorlin quorlin\n";
}

// Inside a specification of zsh's _arguments, whose separators need a backslash.
std::string ZshText(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        if (character == ':' || character == '[' || character == ']' || character == '\\') escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string ZshAction(const Option_t& option) {
    return IsFile(option) ? "_files" : option.choices.empty() ? " " : "(" + Words(option) + ")";
}

void WriteZsh(const std::vector<Entry_t>& entries) {
    std::cout << "#compdef quorlin\n# zsh completion of quorlin(1), made from the program's own tables.\n\n"
                 "local command="
              << entries.front().command->name << "\nlocal -a commands options\ncommands=(\n";
    for (const Entry_t& entry : entries)
        std::cout << "    " << Quoted(ZshText(entry.command->name) + ":" + entry.command->summary) << "\n";
    std::cout << ")\n"
                 "if (( CURRENT == 2 )) && [[ ${words[2]} != -* ]]; then\n"
                 "    _describe command commands\n"
                 "    _files\n"
                 "    return\n"
                 "fi\n"
                 "if (( ${commands[(I)${words[2]}:*]} )); then\n"
                 "    command=${words[2]}\n"
                 "    shift words\n"
                 "    (( CURRENT-- ))\n"
                 "fi\n"
                 "case $command in\n";
    for (const Entry_t& entry : entries) {
        std::cout << "    " << entry.command->name << ") options=(\n";
        for (const Option_t& option : entry.options) {
            if (option.IsArgument()) {
                const std::string action = option.after == nullptr
                                               ? ZshAction(option)
                                               : "{[[ \" " + std::string(option.after) +
                                                     " \" != *\" ${words[CURRENT - 1]} \"* ]] || compadd " +
                                                     Words(option) + "}";
                std::cout << "        " << Quoted((option.IsList() ? "*:" : ":") + ZshText(option.name) + ":" + action)
                          << "\n";
                continue;
            }
            const std::string once = option.IsList() ? "*" : "", help = "[" + ZshText(option.help) + "]";
            const std::string value =
                option.TakesValue() ? ":" + std::string(option.typeName) + ":" + ZshAction(option) : "";
            const auto spec = [&](const std::string& name, const char* sign) {
                return std::string(once)
                    .append(name)
                    .append(option.TakesValue() ? sign : "")
                    .append(help)
                    .append(value);
            };
            if (option.letter != 0) std::cout << "        " << Quoted(spec(Letter(option), "+")) << "\n";
            std::cout << "        " << Quoted(spec(option.name, "=")) << "\n";
        }
        std::cout << "    ) ;;\n";
    }
    std::cout << "esac\n_arguments -s -S $options\n";
}

void WriteFish(const std::vector<Entry_t>& entries) {
    const std::string names = Joined(entries, [](const Entry_t& entry) { return std::string(entry.command->name); });
    std::cout << "# fish completion of quorlin(1), made from the program's own tables.\n\n"
                 "function __quorlin_command\n"
                 "    set -l words (commandline -opc)\n"
                 "    if set -q words[2]; and contains -- $words[2] "
              << names
              << "\n"
                 "        echo $words[2]\n"
                 "    else\n"
                 "        echo "
              << entries.front().command->name
              << "\n"
                 "    end\n"
                 "end\n\n"
                 "function __quorlin_is\n"
                 "    test (__quorlin_command) = $argv[1]\n"
                 "end\n\n"
                 "function __quorlin_last_is\n"
                 "    set -l words (commandline -opc)\n"
                 "    contains -- $words[-1] $argv\n"
                 "end\n\n"
                 "complete -c quorlin -f\n";
    for (const Entry_t& entry : entries)
        std::cout << "complete -c quorlin -n 'test (count (commandline -opc)) -eq 1' -a " << entry.command->name
                  << " -d " << Quoted(entry.command->summary) << "\n";
    for (const Entry_t& entry : entries) {
        const std::string name = entry.command->name, condition = "complete -c quorlin -n '__quorlin_is " + name;
        const Option_t* before = nullptr;
        for (const Option_t& option : entry.options) {
            if (option.IsArgument()) {
                if (IsFile(option)) std::cout << condition << "' -F\n";
                const std::string last = option.after != nullptr ? option.after : before != nullptr ? "" : name;
                if (!option.choices.empty() && !last.empty())
                    std::cout << condition << "; and __quorlin_last_is " << last << "' -a " << Quoted(Words(option))
                              << "\n";
                before = &option;
                continue;
            }
            std::cout << condition << "'" << (option.letter == 0 ? "" : std::string(" -s ") + option.letter) << " -l "
                      << option.name + 2;
            if (option.TakesValue()) std::cout << (IsFile(option) ? " -r -F" : " -x");
            if (!option.choices.empty()) std::cout << " -a " << Quoted(Words(option));
            std::cout << " -d " << Quoted(option.help) << "\n";
        }
    }
}

std::string Roff(const std::string& text) { return Replaced(Replaced(text, "\\", "\\e"), "-", "\\-"); }

// A paragraph in lines of at most 118 columns.
std::string Paragraph(const std::string& text) {
    std::string page;
    std::istringstream words(Roff(text));
    size_t column = 0;
    for (std::string word; words >> word; column += word.size() + 1) {
        const bool breaks = column + word.size() > 118;
        page.append(page.empty() ? "" : breaks ? "\n" : " ").append(word);
        if (breaks) column = 0;
    }
    return page + "\n";
}

std::string ManCommands(const std::vector<Entry_t>& entries) {
    std::string page;
    for (const Entry_t& entry : entries)
        page += ".TP\n.B " + Roff(entry.command->name) + "\n" + Paragraph(entry.command->description);
    return page;
}

std::string ManSynopsis(const std::vector<Entry_t>& entries) {
    std::string page = ".nf\n";
    for (const Entry_t& entry : entries) {
        std::string line = Roff(Synopsis(*entry.command, entry.options));
        if (entry.command == entries.front().command)
            line = "quorlin [" + std::string(entry.command->name) + "]" + line.substr(7);
        page += line + "\n";
    }
    return page + ".fi\n";
}

// Each option once, with the commands that take it unless all that read tables do.
std::string ManOptions(const std::vector<Entry_t>& entries) {
    std::vector<const Option_t*> options;
    std::map<std::string_view, std::vector<std::string>> commands;
    for (const Entry_t& entry : entries)
        for (const Option_t& option : entry.options) {
            if (option.IsArgument()) continue;
            std::vector<std::string>& users = commands[option.name];
            if (users.empty()) options.push_back(&option);
            users.emplace_back(entry.command->name);
        }
    const size_t readers = commands["--as"].size();
    std::string page;
    for (const Option_t* option : options) {
        page += ".TP\n.B " + (option->letter == 0 ? "" : Roff(Letter(*option)) + ", ") + Roff(option->name);
        if (option->TakesValue()) page += std::string(" \\fI") + option->typeName + "\\fR";
        std::string help = option->Help() + ".";
        const std::vector<std::string>& users = commands[option->name];
        if (users.size() < readers)
            help += " For " + Replaced(Joined(users, [](const std::string& user) { return user; }), " ", ", ") + ".";
        page += "\n" + Paragraph(help);
    }
    return page;
}

// Replaces what is between `.\" BEGIN NAME` and `.\" END NAME`.
bool WriteMan(const std::vector<Entry_t>& entries, const char* file) {
    std::ifstream stream(file);
    std::stringstream content;
    content << stream.rdbuf();
    std::string page = content.str();
    const std::pair<std::string, std::string> kParts[] = {
        {"synopsis", ManSynopsis(entries)},
        {"commands", ManCommands(entries)},
        {"options",  ManOptions(entries) },
    };
    for (const auto& [name, text] : kParts) {
        const std::string begin = ".\\\" BEGIN " + name + "\n", end = ".\\\" END " + name + "\n";
        const size_t from = page.find(begin), to = page.find(end);
        if (from == page.npos || to == page.npos) return false;
        page.replace(from + begin.size(), to - from - begin.size(), text);
    }
    std::cout << page;
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<Entry_t> entries = Entries();
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (what == "bash") return WriteBash(entries), 0;
    if (what == "zsh") return WriteZsh(entries), 0;
    if (what == "fish") return WriteFish(entries), 0;
    if (what == "man" && argc == 3 && WriteMan(entries, argv[2])) return 0;
    std::cerr << "usage: write_program_docs bash|zsh|fish|man FILE\n";
    return 1;
}
