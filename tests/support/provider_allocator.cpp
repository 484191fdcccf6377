#include "provider_allocator.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>

namespace tembra::test {
namespace {

struct State {
    std::mutex mutex;
    std::unordered_map<void *, std::size_t> blocks;
    ProviderAllocator::Observer observer;
    std::function<void()> callObserver;
    unsigned asked = 0;
    unsigned refused = 0;
    unsigned failAt = 0;
    bool everAfter = false;
    std::size_t largest = 0;
};

// Never destroyed: the provider may free something when the process ends.
State &state() {
    static auto *instance = new State;
    return *instance;
}

// By operator new, since malloc is wrapped.
void *allocate(std::size_t size) {
    State &at = state();
    if (at.callObserver)
        at.callObserver();
    const std::lock_guard guard(at.mutex);
    ++at.asked;
    if (at.failAt != 0 && (at.everAfter ? at.asked >= at.failAt : at.asked == at.failAt)) {
        ++at.refused;
        return nullptr;
    }
    if (at.largest != 0 && size > at.largest)
        return nullptr;
    void *block = ::operator new(size, std::nothrow);
    if (block != nullptr) {
        std::memset(block, 0xA5, size); // so that old contents cannot be mistaken for valid data
        at.blocks.emplace(block, size);
    }
    return block;
}

void release(void *block) {
    if (block == nullptr)
        return;
    State &at = state();
    if (at.callObserver)
        at.callObserver();
    const std::lock_guard guard(at.mutex);
    const auto found = at.blocks.find(block);
    if (found == at.blocks.end()) {
        std::fprintf(stderr, "the provider frees %p, which it has not allocated\n", block);
        std::abort();
    }
    if (at.observer)
        at.observer(static_cast<const unsigned char *>(block), found->second);
    at.blocks.erase(found);
    ::operator delete(block);
}

std::size_t sizeOf(void *block) {
    State &at = state();
    const std::lock_guard guard(at.mutex);
    const auto found = at.blocks.find(block);
    return found == at.blocks.end() ? 0 : found->second;
}

} // namespace

void ProviderAllocator::failAt(unsigned nth, bool everAfter) {
    State &at = state();
    const std::lock_guard guard(at.mutex);
    at.asked = at.refused = 0;
    at.failAt = nth;
    at.everAfter = everAfter;
}

void ProviderAllocator::refuseAbove(std::size_t size) {
    state().largest = size;
}

unsigned ProviderAllocator::refused() {
    const std::lock_guard guard(state().mutex);
    return state().refused;
}

std::size_t ProviderAllocator::live() {
    const std::lock_guard guard(state().mutex);
    return state().blocks.size();
}

void ProviderAllocator::observeFrees(Observer observer) {
    const std::lock_guard guard(state().mutex);
    state().observer = std::move(observer);
}

void ProviderAllocator::observeCalls(std::function<void()> observer) {
    state().callObserver = std::move(observer);
}

void ProviderAllocator::discard(void *block) {
    release(block);
}

extern "C" {

void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_realloc(void *block, std::size_t size);
void __wrap_free(void *block);

void *__wrap_malloc(std::size_t size) {
    return allocate(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size) {
    void *block =
        size != 0 && count > static_cast<std::size_t>(-1) / size ? nullptr : allocate(count * size);
    return block == nullptr ? nullptr : std::memset(block, 0, count * size);
}

void *__wrap_realloc(void *block, std::size_t size) {
    void *moved = allocate(size);
    if (moved != nullptr && block != nullptr) {
        std::memcpy(moved, block, std::min(size, sizeOf(block)));
        release(block);
    }
    return moved;
}

void __wrap_free(void *block) {
    release(block);
}

} // extern "C"

} // namespace tembra::test
