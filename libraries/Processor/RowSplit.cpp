#include "libraries/Processor/RowSplit.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace Orvane {

void splitRange(int& begin, int& end, int index, int count)
{
    if (index < 0 || count <= 0) return;
    // 64 bits: a host may report any number of threads.
    const std::int64_t base = begin;
    const std::int64_t length = std::int64_t{end} - begin;
    const std::int64_t chunk = (length + count - 1) / count;
    const std::int64_t first = index * chunk;
    const std::int64_t last = index == count - 1 ? length : std::min(first + chunk, length);
    constexpr std::int64_t kHighest = std::numeric_limits<int>::max();
    begin = static_cast<int>(std::min(base + first, kHighest));
    end = static_cast<int>(base + last);
}

}  // namespace Orvane
