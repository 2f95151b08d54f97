#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "engine/kernels/Tables.h"

namespace Orvane::Engine::Kernels {
namespace {

/// The offered tables.
struct Offer {
    std::array<const KernelTable*, 3> tables{&kPlainTable};
    std::size_t count = 1;
};

Offer makeOffer()
{
    Offer offer;
#if defined(TESSERET_X86_KERNELS)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("sse4.1")) offer.tables[offer.count++] = &kSse41Table;
    if (__builtin_cpu_supports("avx2")) offer.tables[offer.count++] = &kAvx2Table;
#endif
    return offer;
}

const KernelTable& chosenTable()
{
    const std::span<const KernelTable* const> offered = offeredTables();
    if (const char* wanted = std::getenv("TESSERET_KERNELS")) {
        const auto named = [wanted](const KernelTable* table) {
            return std::string_view(table->name) == wanted;
        };
        const auto found = std::ranges::find_if(offered, named);
        if (found != offered.end()) return **found;
    }
    return *offered.back();
}

}  // namespace

std::span<const KernelTable* const> offeredTables()
{
    static const Offer offer = makeOffer();
    return {offer.tables.data(), offer.count};
}

const KernelTable& kernels()
{
    static const KernelTable& table = chosenTable();
    return table;
}

}  // namespace Orvane::Engine::Kernels
