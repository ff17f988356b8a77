#include "arith/convert/chunk_power_cache.h"

#include <algorithm>
#include <vector>

#include "frame/error_state.h"

namespace tw::convert {

namespace {

template <class R>
struct Entry {
    std::uint64_t chunk;
    std::size_t leaf;
    bool separateTwos;
    std::shared_ptr<ChunkPowers<R>> powers;
};

// Most recently used first.  One cache per thread: threads converting their
// own numbers share nothing, and a cache ends with its thread.
template <class R>
std::vector<Entry<R>>& entries() {
    thread_local std::vector<Entry<R>> list;
    return list;
}

template <class R>
std::size_t limbsOf(const std::vector<Entry<R>>& list) {
    std::size_t sum = 0;
    for (const Entry<R>& e : list) sum += e.powers->limbsHeld();
    return sum;
}

}  // namespace

template <class R>
std::shared_ptr<ChunkPowers<R>> acquireChunkPowers(std::uint64_t chunk, std::size_t leaf, bool separateTwos) {
    auto& list = entries<R>();
    for (auto it = list.begin(); it != list.end(); ++it) {
        if (it->chunk == chunk && it->leaf == leaf && it->separateTwos == separateTwos) {
            std::rotate(list.begin(), it, it + 1);
            return list.front().powers;
        }
    }
    return std::make_shared<ChunkPowers<R>>(chunk, leaf, separateTwos);
}

template <class R>
void releaseChunkPowers(std::shared_ptr<ChunkPowers<R>> powers) {
    auto& list = entries<R>();
    auto held = std::find_if(list.begin(), list.end(), [&](const Entry<R>& e) { return e.powers == powers; });
    if (terminateRequested() || !powers->whole()) {
        if (held != list.end()) list.erase(held);
        return;
    }
    if (held == list.end()) {
        list.insert(list.begin(), Entry<R>{powers->chunk(), powers->leaf(), powers->separateTwos(), powers});
        held = list.begin();
    }
    // Within the bounds, dropping the least recently used first; powers
    // larger than the whole bound are not kept at all.
    while (list.size() > kChunkPowerCacheEntries || (!list.empty() && limbsOf(list) > kChunkPowerCacheLimbs))
        list.pop_back();
}

void clearChunkPowerCache() {
    entries<DecimalRadix>().clear();
    entries<BinaryRadix>().clear();
}

std::size_t chunkPowerCacheLimbs() { return limbsOf(entries<DecimalRadix>()) + limbsOf(entries<BinaryRadix>()); }

std::size_t chunkPowerCacheEntries() { return entries<DecimalRadix>().size() + entries<BinaryRadix>().size(); }

template std::shared_ptr<ChunkPowers<DecimalRadix>> acquireChunkPowers<DecimalRadix>(std::uint64_t, std::size_t, bool);
template std::shared_ptr<ChunkPowers<BinaryRadix>> acquireChunkPowers<BinaryRadix>(std::uint64_t, std::size_t, bool);
template void releaseChunkPowers<DecimalRadix>(std::shared_ptr<ChunkPowers<DecimalRadix>>);
template void releaseChunkPowers<BinaryRadix>(std::shared_ptr<ChunkPowers<BinaryRadix>>);

}  // namespace tw::convert
