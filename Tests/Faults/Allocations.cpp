// The test program is linked with --wrap for malloc, calloc, realloc and free, so all calls come here.
#include "Tests/Faults/Allocations.h"

#include <atomic>
#include <new>

namespace {

std::atomic<size_t> live = 0;
size_t made = 0;
size_t failsAt = 0;  // 0: none
Failing_t how = Failing_t::kOnce;
bool hasFailed = false;

bool Fails() {
    if (failsAt == 0) return false;
    made++;
    const bool fails = how == Failing_t::kOnce ? made == failsAt : made >= failsAt;
    hasFailed |= fails;
    return fails;
}

void* Counted(void* block) {
    live += block != nullptr;
    return block;
}

}  // namespace

void FailAllocation(size_t number, Failing_t failing) {
    made = 0;
    hasFailed = false;
    how = failing;
    failsAt = number;
}

bool EndOfFailing() {
    failsAt = 0;
    return hasFailed;
}

size_t LiveBlocks() { return live; }

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
void* __wrap_malloc(size_t size);
void* __wrap_calloc(size_t count, size_t size);
void* __wrap_realloc(void* block, size_t size);
void __wrap_free(void* block);

void* __wrap_malloc(size_t size) { return Fails() ? nullptr : Counted(__real_malloc(size)); }
void* __wrap_calloc(size_t count, size_t size) { return Fails() ? nullptr : Counted(__real_calloc(count, size)); }
void* __wrap_realloc(void* block, size_t size) {
    if (Fails()) return nullptr;
    void* moved = __real_realloc(block, size);
    return block == nullptr ? Counted(moved) : moved;
}
void __wrap_free(void* block) {
    live -= block != nullptr;
    __real_free(block);
}
}

void* operator new(size_t size) {
    void* block = __wrap_malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return __wrap_malloc(size == 0 ? 1 : size); }
void* operator new[](size_t size) { return operator new(size); }
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, size_t) noexcept { __wrap_free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block, size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { __wrap_free(block); }
