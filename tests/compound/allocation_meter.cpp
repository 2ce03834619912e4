#include "compound/allocation_meter.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> held{0};
std::atomic<std::size_t> most{0};
std::atomic<std::size_t> atStart{0};
std::atomic<std::size_t> left{SIZE_MAX}; // allocations

void* allocate(std::size_t size) {
    if (left == 0) {
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(std::max<std::size_t>(size, 1));
    if (!memory) {
        throw std::bad_alloc();
    }
    left -= left == SIZE_MAX ? 0U : 1U;
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

void failAllocationsAfter(std::size_t count) {
    left = count;
}

void allowAllocations() {
    left = SIZE_MAX;
}

std::size_t mostAllocated() {
    return most - atStart;
}

} // namespace compound_tests
