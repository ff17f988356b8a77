#include "frame/handle_registry.h"

#include <mutex>

#include "frame/error_state.h"

namespace tw {

namespace detail {
constinit RegistryHolder decimalRegistryHolder{HandleFamily::Decimal};
constinit RegistryHolder binaryRegistryHolder{HandleFamily::Binary};
constinit RegistryHolder converterRegistryHolder{HandleFamily::Converter};
}  // namespace detail

namespace {

// Each thread's free slots of the three families; handed back to the shared
// pools when the thread ends, so that threads that come and go lose none.
struct ThreadSlots {
    std::vector<std::uint32_t> free[3];
    ~ThreadSlots() {
        HandleRegistry* registries[3] = {&decimalRegistry(), &binaryRegistry(), &converterRegistry()};
        for (int f = 0; f < 3; ++f) registries[f]->returnToPool(free[f], free[f].size());
    }
};

std::vector<std::uint32_t>& threadSlots(HandleFamily family) {
    thread_local ThreadSlots slots;
    return slots.free[int(family) - 1];
}

// A thread keeps at most this many free slots of a family; past it, half go back.
constexpr std::size_t kThreadSlotsMax = 4 * HandleRegistry::kBatch;

}  // namespace

void HandleRegistry::fillFromPool(std::vector<std::uint32_t>& out) noexcept {
    try {
        const std::lock_guard<platform::ConstantMutex> lock(poolLock_);
        while (out.size() < kBatch && !pool_.empty()) {
            out.push_back(pool_.back());
            pool_.pop_back();
        }
        while (out.size() < kBatch && nextUnused_ < (std::uint64_t(1) << HandleCodec::kSlotBits)) {
            std::atomic<Slot*>& chunk = chunks_[nextUnused_ >> kChunkBits];
            if (chunk.load(std::memory_order_relaxed) == nullptr) chunk.store(new Slot[kChunkSlots], std::memory_order_release);
            out.push_back(nextUnused_++);
        }
    } catch (const std::exception&) {
        // No room for a chunk or the list: whatever was gathered is used.
    }
}

void HandleRegistry::returnToPool(std::vector<std::uint32_t>& from, std::size_t count) noexcept {
    try {
        const std::lock_guard<platform::ConstantMutex> lock(poolLock_);
        pool_.insert(pool_.end(), from.end() - std::ptrdiff_t(count), from.end());
        from.resize(from.size() - count);
    } catch (const std::exception&) {
        // The pool cannot grow: the slots stay with the thread.
    }
}

void* HandleRegistry::insert(void* object) noexcept {
    std::vector<std::uint32_t>& mine = threadSlots(family_);
    if (mine.empty()) fillFromPool(mine);
    if (mine.empty()) {
        setLastError(kErrTooLarge);
        return nullptr;
    }
    const std::uint32_t slot = mine.back();
    mine.pop_back();
    Slot* s = chunks_[slot >> kChunkBits].load(std::memory_order_acquire) + (slot & (kChunkSlots - 1));
    const std::uint32_t generation = s->generation.load(std::memory_order_relaxed);
    s->object.store(object, std::memory_order_release);
    live_.fetch_add(1, std::memory_order_relaxed);
    return reinterpret_cast<void*>(HandleCodec::encode(family_, slot, generation));
}

void* HandleRegistry::take(const void* handle) noexcept {
    void* object = find(handle);
    if (object == nullptr) return nullptr;
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    Slot* s = slotOf(value);
    s->object.store(nullptr, std::memory_order_relaxed);
    s->generation.store(HandleCodec::nextGeneration(HandleCodec::generation(value)), std::memory_order_release);
    live_.fetch_sub(1, std::memory_order_relaxed);
    std::vector<std::uint32_t>& mine = threadSlots(family_);
    try {
        mine.push_back(HandleCodec::slot(value));
    } catch (const std::exception&) {
        return object;  // the slot is lost to reuse, never to a stale handle
    }
    if (mine.size() > kThreadSlotsMax) returnToPool(mine, mine.size() / 2);
    return object;
}

}  // namespace tw
