// Writes the pages of the rules of check and of verify: write_checks check > Docs/Checks.md
//
// With a file it compares the file with what it would write.
#include "Packages/Analysis/Rules.h"
#include "Packages/Analysis/Verify.h"
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

std::string VerifyPage() {
    std::string text =
        "# Rules of verify\n\n"
        "The program `write_checks` writes this page from the rules' own table; a test compares them. Ids never "
        "change.\n"
        "[Program.md](Program.md#verify) says how the verdicts are to be read.\n\n"
        "| rule | what the firmware claims | where the hardware says it | what contradicts |\n|---|---|---|---|\n";
    for (const VerifyRule_t id : kVerifyRules) {
        const VerifyRow_t row = VerifyRowOf(id);
        text.append("| ").append(row.id).append(" | ").append(Sentence(row.claim)).append(" | ");
        text.append(Sentence(row.source)).append(" | ").append(Sentence(row.contradicts)).append(" |\n");
    }
    return text;
}

}  // namespace

int main(int count, char** values) {
    const std::string_view page = count > 1 ? values[1] : "";
    if (page != "check" && page != "verify") {
        std::cerr << "usage: write_checks check|verify [FILE]\n";
        return 2;
    }
    const std::string text = page == "check" ? ChecksPage() : VerifyPage();
    if (count == 3) return HasContent(values[2], text, "write_checks") ? 0 : 1;
    std::cout << text;
    return 0;
}
