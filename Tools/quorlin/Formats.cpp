#include "Tools/quorlin/Formats.h"

#include <algorithm>

namespace {

constexpr const Format_t* kFormats[] = {
#define FORMAT(name) &k##name##Format,
#include "Tools/quorlin/Formats.inc"
#undef FORMAT
};

Choice_t ChoiceOf(const Format_t& format) {
    Choice_t choice = {""};
    std::ranges::copy(format.name, choice.word);
    std::ranges::copy(format.remark, choice.remark);
    return choice;
}

}  // namespace

Option_t ClFormatOption::Option() {
    m_choices.reserve(std::size(kFormats));
    for (const Format_t* format : kFormats)
        if ((format->contents & m_content) != 0) m_choices.push_back(ChoiceOf(*format));
    return {.name = "--format", .typeName = "FORMAT", .help = "How to write", .target = &m_name, .choices = m_choices};
}

const Format_t& ClFormatOption::Chosen() const {
    const auto isChosen = [this](const Format_t* format) { return m_name == format->name; };
    const auto chosen = std::ranges::find_if(kFormats, isChosen);
    return chosen == std::end(kFormats) ? *kFormats[0] : **chosen;
}

void ClFormatOption::Check(const Source_t& source) const {
    if (!source.IsFleet() || Chosen().takesMany) return;
    std::string names;
    for (const Format_t* format : kFormats)
        if (format->takesMany && (format->contents & m_content) != 0)
            names.append(names.empty() ? "" : " or ").append(format->name);
    throw BadUsage_t{"several images need --format " + names};
}

int WriteTables(const Source_t& source, const Format_t& format, const List_t& list, int trouble,
                const std::function<int(ClTable& table, ClWriter& writer)>& work, std::string_view base) {
    ClOutput output;
    const std::unique_ptr<ClWriter> writer = format.make(output, source.IsFleet());
    const auto write = [&](ClTable& table) {
        const std::string version = table.VersionText();
        Members_t members = {
            {"source", table.Name()},
            {"smbios", version     }
        };
        if (!base.empty()) members.emplace_back("base", base);
        if (!table.Remark().empty()) members.emplace_back("remark", table.Remark());
        writer->Begin(list, members);
        const int exitCode = work(table, *writer);
        writer->End();
        return exitCode;
    };
    const int exitCode = format.reportsErrors
                             ? ForEachTable(source, trouble, write,
                                            [&](const ClTable& table) { writer->Failed(table.Name(), table.Error()); })
                             : ForEachTable(source, trouble, write);
    return output.Finish() ? exitCode : trouble;
}
