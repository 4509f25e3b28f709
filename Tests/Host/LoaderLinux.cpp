#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

#include "Loader.h"

namespace {

void* Checked(void* found) {
    if (found != nullptr) return found;
    std::fprintf(stderr, "%s\n", dlerror());
    std::exit(1);
}

}  // namespace

ClLoader::ClLoader(const char* path) : m_library(Checked(dlopen(path, RTLD_NOW | RTLD_LOCAL))) {}

ClLoader::~ClLoader() { dlclose(m_library); }

ClLoader::Address_t ClLoader::Address(const char* name) const {
    return reinterpret_cast<Address_t>(Checked(dlsym(m_library, name)));
}
