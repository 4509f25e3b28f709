// Writes the page of the rules of check: write_checks > Docs/Checks.md
//
// With a file it compares the file with what it would write.
#include "Packages/Analysis/Rules.h"
#include "Tools/docs/Page.h"

namespace {

std::string Sentence(std::string_view text) {
    std::string sentence(text);
    if (sentence.front() >= 'a' && sentence.front() <= 'z') sentence.front() += 'A' - 'a';
    return sentence + ".";
}

std::string ChecksPage() {
    std::string text =
        "# Rules of check\n\n"
        "The program `write_checks` writes this page from the rules' own table; a test compares them. Ids never "
        "change.\n"
        "[Program.md](Program.md#check) shows how to choose rules.\n\n"
        "| rule | severity | what is wrong | why it matters | what firmware should do |\n|---|---|---|---|---|\n";
    for (const RuleId_t id : kRules) {
        const Rule_t rule = RuleOf(id);
        text.append("| ").append(rule.id).append(" | ").append(SeverityWord(rule.severity)).append(" | ");
        text.append(Sentence(rule.what)).append(" | ").append(Sentence(rule.why)).append(" | ");
        text.append(Sentence(rule.fix)).append(" |\n");
    }
    return text;
}

}  // namespace

int main(int count, char** values) {
    const std::string text = ChecksPage();
    if (count == 2) return HasContent(values[1], text, "write_checks") ? 0 : 1;
    std::cout << text;
    return 0;
}
