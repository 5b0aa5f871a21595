#include "jpeg/huffman_cache.h"

#include "jpeg/jpeg_error.h"
#include "platform/thread_annotations.h"

#include <algorithm>
#include <list>
#include <new>
#include <numeric>
#include <vector>

namespace marvolen {
namespace {

constexpr std::size_t kMaxTables = 64;

struct CachedTable {
    std::vector<std::uint8_t> key;
    std::shared_ptr<const HuffmanTable> table;
};

// The most recently used first.
struct HuffmanCache {
    Mutex mutex;
    std::list<CachedTable> tables GUARDED_BY(mutex);
};

HuffmanCache& Cache() {
    static HuffmanCache cache;
    return cache;
}

std::vector<std::uint8_t> KeyOf(const std::uint8_t* counts, const std::uint8_t* symbols,
                                HuffmanTable::Use use) {
    const int total = std::accumulate(counts + 1, counts + 17, 0);
    std::vector<std::uint8_t> key{static_cast<std::uint8_t>(use)};
    key.insert(key.end(), counts + 1, counts + 17);
    key.insert(key.end(), symbols, symbols + total);
    return key;
}

}  // namespace

std::shared_ptr<const HuffmanTable> CachedHuffmanTable(const std::uint8_t* counts,
                                                       const std::uint8_t* symbols,
                                                       HuffmanTable::Use use) try {
    CachedTable made{KeyOf(counts, symbols, use), nullptr};
    HuffmanCache& cache = Cache();
    {
        const MutexLock lock(cache.mutex);
        const auto known =
            std::find_if(cache.tables.begin(), cache.tables.end(),
                         [&](const CachedTable& cached) { return cached.key == made.key; });
        if (known != cache.tables.end()) {
            cache.tables.splice(cache.tables.begin(), cache.tables, known);
            return known->table;
        }
    }
    // Two threads may build the same table at once; the older one then goes by itself.
    const auto table = std::make_shared<HuffmanTable>();
    table->Build(counts, symbols, use);
    made.table = table;
    const MutexLock lock(cache.mutex);
    cache.tables.push_front(std::move(made));
    if (cache.tables.size() > kMaxTables) cache.tables.pop_back();
    return table;
} catch (const std::bad_alloc&) {
    Fail(kJpegErrorMemory);
}

}  // namespace marvolen
