#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

void* FindIn(const char* library, const char* name) {
    void* loaded = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (void* found = loaded == nullptr ? nullptr : dlsym(loaded, name)) return found;
    std::fprintf(stderr, "%s\n", dlerror());
    std::exit(1);
}
