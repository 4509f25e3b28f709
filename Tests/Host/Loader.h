// Loads a shared library and finds a function in it, by the system's own means. Ends the program with a line when
// either is not to be had.
#pragma once

class ClLoader {
  public:
    explicit ClLoader(const char* path);
    ~ClLoader();
    ClLoader(const ClLoader&) = delete;
    ClLoader& operator=(const ClLoader&) = delete;

    template <class Function>
    Function* Find(const char* name) const {
        return reinterpret_cast<Function*>(Address(name));
    }

  private:
    using Address_t = void (*)();
    Address_t Address(const char* name) const;

    void* m_library;
};
