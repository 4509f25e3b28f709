// A list of file names, one a line.
#pragma once

#include <cstdio>
#include <string>

class ClNameList {
  public:
    // Opens the file, or standard input for "-". An empty path is an empty list.
    explicit ClNameList(const std::string& path);
    ~ClNameList();
    ClNameList(const ClNameList&) = delete;
    ClNameList& operator=(const ClNameList&) = delete;

    // Reads the next line that isn't empty. Reads line by line, so that a long list takes no memory. False at the end,
    // and for a file that isn't a list of names.
    bool Next(std::string* name);
    // How many names there are, or 0 for a list that can be read only once.
    size_t Count();
    // Why the list ended early; empty if it didn't.
    const std::string& Problem() const { return m_problem; }

  private:
    std::FILE* m_file;
    std::string m_problem;
};
