// The registries of live handles, one per family.  A handle value encodes its
// family, a slot of the family's table and the slot's generation; the slot
// holds the object and the generation it was handed out under.  A lookup is
// a few loads with no lock, so threads that keep to their own numbers run
// side by side.  Deleting a handle frees nothing of the table: the slot goes
// to a free list under a new generation, so a stale handle keeps failing
// until its slot has been reused 2^32 times (2^12 on 32-bit builds) and the
// table never grows past the peak of live handles.  Free slots are kept per
// thread first, and pass through a locked shared pool only in batches.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "frame/platform.h"

namespace tw {

// The family a handle value names; 0 is never a handle's, so no handle is null.
enum class HandleFamily : std::uint8_t { Decimal = 1, Binary = 2, Converter = 3 };

// How a handle value packs its family, slot and generation.
struct HandleCodec {
    static constexpr bool kWide = sizeof(void*) >= 8;
    static constexpr unsigned kSlotBits = kWide ? 26 : 18;
    static constexpr unsigned kGenerationShift = kWide ? 32 : 20;
    static constexpr std::uint32_t kGenerationMask = kWide ? 0xFFFFFFFFu : 0xFFFu;
    static constexpr std::uint32_t kSlotMask = (1u << kSlotBits) - 1;

    static std::uintptr_t encode(HandleFamily family, std::uint32_t slot, std::uint32_t generation) {
        return (std::uintptr_t(generation) << kGenerationShift) | (std::uintptr_t(slot) << 2) | std::uintptr_t(family);
    }
    // The bits no field uses, with the family's: a value this codec made has
    // none of the former set.
    static constexpr std::uintptr_t kCheckMask =
        ~((std::uintptr_t(kGenerationMask) << kGenerationShift) | (std::uintptr_t(kSlotMask) << 2));
    static std::uint32_t slot(std::uintptr_t value) { return std::uint32_t(value >> 2) & kSlotMask; }
    static std::uint32_t generation(std::uintptr_t value) { return std::uint32_t(value >> kGenerationShift) & kGenerationMask; }
    static std::uint32_t nextGeneration(std::uint32_t g) { return (g + 1) & kGenerationMask; }
};

class HandleRegistry {
private:
    struct Slot {
        std::atomic<std::uint32_t> generation{0};
        std::atomic<void*> object{nullptr};
    };
    static constexpr unsigned kChunkBits = 12;
    static constexpr std::size_t kChunkSlots = std::size_t(1) << kChunkBits;
    static constexpr std::size_t kChunks = std::size_t(1) << (HandleCodec::kSlotBits - kChunkBits);

    [[gnu::always_inline]] Slot* slotOf(std::uintptr_t value) const noexcept {
        const std::uint32_t slot = HandleCodec::slot(value);
        Slot* chunk = chunks_[slot >> kChunkBits].load(std::memory_order_acquire);
        return chunk == nullptr ? nullptr : chunk + (slot & (kChunkSlots - 1));
    }

public:
    constexpr explicit HandleRegistry(HandleFamily family) : family_(family) {}
    HandleRegistry(const HandleRegistry&) = delete;
    HandleRegistry& operator=(const HandleRegistry&) = delete;

    // The object behind a live handle of this family, else null; records
    // nothing.  Inline: every call of the C interface makes one per handle.
    [[gnu::always_inline]] void* find(const void* handle) const noexcept {
        const auto value = reinterpret_cast<std::uintptr_t>(handle);
        // Only values this registry could have made: its family and no stray bits.
        if ((value & HandleCodec::kCheckMask) != std::uintptr_t(family_)) return nullptr;
        const Slot* s = slotOf(value);
        if (s == nullptr) return nullptr;
        void* object = s->object.load(std::memory_order_acquire);
        if (object == nullptr || s->generation.load(std::memory_order_relaxed) != HandleCodec::generation(value))
            return nullptr;
        return object;
    }
    // A new handle for object, or null (with -3) when the table is full.
    void* insert(void* object) noexcept;
    // Unregisters a live handle and returns its object; null for any other value.
    void* take(const void* handle) noexcept;
    // Live handles, and the null entry of a failed creation once there was one.
    std::int32_t count() const noexcept {
        return live_.load(std::memory_order_relaxed) + (nullCounted_.load(std::memory_order_relaxed) ? 1 : 0);
    }
    // A creation whose object could not be allocated is counted once as a null
    // entry, which no lookup ever accepts.
    void countNullEntry() noexcept { nullCounted_.store(true, std::memory_order_relaxed); }

    // Slots move between a thread's own list and the shared pool in batches.
    static constexpr std::size_t kBatch = 64;
    // Slots of the shared pool, with the first never-used slot; under the lock.
    void fillFromPool(std::vector<std::uint32_t>& out) noexcept;
    void returnToPool(std::vector<std::uint32_t>& from, std::size_t count) noexcept;

private:
    const HandleFamily family_;
    std::atomic<std::int32_t> live_{0};
    std::atomic<bool> nullCounted_{false};
    // Chunks of slots, published once and never moved or freed.
    std::atomic<Slot*> chunks_[kChunks] = {};
    platform::ConstantMutex poolLock_;
    std::vector<std::uint32_t> pool_;  // free slots handed back by threads
    std::uint32_t nextUnused_ = 0;     // slots from here on were never used
};

// The registries are constant-initialised, so a lookup meets no guard of a
// function-local static and no pointer to follow, and never destroyed: a
// handle used from another static object's destructor at exit, or a thread
// ending late, still meets a valid one.
namespace detail {
union RegistryHolder {
    HandleRegistry registry;
    constexpr explicit RegistryHolder(HandleFamily family) : registry(family) {}
    ~RegistryHolder() {}
};
extern RegistryHolder decimalRegistryHolder;
extern RegistryHolder binaryRegistryHolder;
extern RegistryHolder converterRegistryHolder;
}  // namespace detail

inline HandleRegistry& decimalRegistry() { return detail::decimalRegistryHolder.registry; }
inline HandleRegistry& binaryRegistry() { return detail::binaryRegistryHolder.registry; }
inline HandleRegistry& converterRegistry() { return detail::converterRegistryHolder.registry; }

}  // namespace tw
