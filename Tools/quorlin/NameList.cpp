#include "Tools/quorlin/NameList.h"

#include <cerrno>
#include <cstring>

#include "Packages/OS/Program.h"
#include "Tools/quorlin/CommandLine.h"

static constexpr size_t kLongestName = 64u << 10;

ClNameList::ClNameList(const std::string& path)
    : m_file(path.empty()              ? nullptr
             : path == kStandardStream ? stdin
                                       : OpenFile(path, "r")) {
    if (m_file == nullptr && !path.empty()) m_problem = std::strerror(errno);
}

ClNameList::~ClNameList() {
    if (m_file != nullptr && m_file != stdin) std::fclose(m_file);
}

bool ClNameList::Next(std::string* name) {
    if (m_file == nullptr) return false;
    do {
        name->clear();
        int character;
        while ((character = std::getc(m_file)) != EOF && character != '\n') {
            if (character == '\0' || name->size() == kLongestName) {
                m_problem = "not a list of file names, one a line";
                return false;
            }
            name->push_back(static_cast<char>(character));
        }
        if (std::ferror(m_file) != 0) m_problem = std::strerror(errno);
        if (character == EOF && name->empty()) return false;
        if (name->ends_with('\r')) name->pop_back();
    } while (name->empty());
    return true;
}

size_t ClNameList::Count() {
    if (m_file == nullptr || m_file == stdin || std::fseek(m_file, 0, SEEK_END) != 0) return 0;
    size_t count = 0;
    std::rewind(m_file);
    for (std::string name; Next(&name);) count++;
    std::rewind(m_file);
    return count;
}
