// Loads a shared library and finds functions in it. Ends the program with a message if either isn't available.
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
