#include "compound/allocation_meter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> held{0};
std::atomic<std::size_t> most{0};
std::atomic<std::size_t> atStart{0};

void* allocate(std::size_t size) {
    void* const memory = std::malloc(std::max<std::size_t>(size, 1));
    if (!memory) {
        throw std::bad_alloc();
    }
    const std::size_t now = held += malloc_usable_size(memory);
    if (now > most) {
        most = now;
    }
    return memory;
}

void release(void* memory) noexcept {
    if (memory) {
        held -= malloc_usable_size(memory);
    }
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}

void* operator new[](std::size_t size) {
    return allocate(size);
}

void operator delete(void* memory) noexcept {
    release(memory);
}

void operator delete[](void* memory) noexcept {
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}

namespace compound_tests {

void startAllocationMeter() {
    atStart = held.load();
    most = held.load();
}

std::size_t mostAllocated() {
    return most - atStart;
}

} // namespace compound_tests
