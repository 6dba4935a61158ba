#include "tests/fuzz/Finding.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sanitizer/allocator_interface.h>

namespace quillet::fuzz {

namespace {

struct Usage {
    bool watched = false;
    std::int64_t limit = 0;
    std::int64_t now = 0;
};

// Of the one thread that runs inputs.
thread_local Usage usage;

void allocated(const volatile void* /*block*/, std::size_t size) {
    if (!usage.watched)
        return;
    usage.now += static_cast<std::int64_t>(size);
    if (usage.now <= usage.limit)
        return;
    usage.watched = false; // what follows allocates
    finding("an input takes more memory than its bytes justify");
}

void freed(const volatile void* block) {
    // Some of what is freed was there before: the count is then too low, never too high.
    if (usage.watched && block != nullptr)
        usage.now -= static_cast<std::int64_t>(
            __sanitizer_get_allocated_size(const_cast<const void*>(block)));
}

} // namespace

void finding(std::string_view what) {
    std::fprintf(stderr, "finding: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

MemoryBound::MemoryBound(std::size_t inputSize, std::size_t more) noexcept {
    static const int installed = __sanitizer_install_malloc_and_free_hooks(allocated, freed);
    if (installed == 0)
        finding("allocations cannot be watched");
    usage = {true, static_cast<std::int64_t>(Base + PerByte * inputSize + more), 0};
}

MemoryBound::~MemoryBound() {
    usage.watched = false;
}

} // namespace quillet::fuzz
