#include "render/NearestName.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace Tesseret::Render {

namespace {

std::string lowered(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return result;
}

/// The Levenshtein distance: how many letters to insert, delete or replace.
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string nearestName(std::string_view typed, const std::vector<std::string>& names)
{
    const std::string* nearest = nullptr;
    std::size_t nearestDistance = 0;
    for (const std::string& name : names) {
        const std::size_t away = distance(lowered(typed), lowered(name));
        if (nearest != nullptr && away >= nearestDistance) continue;
        nearest = &name;
        nearestDistance = away;
    }
    return nearest == nullptr ? "" : *nearest;
}

std::string likelyName(std::string_view typed, const std::vector<std::string>& names)
{
    std::string nearest = nearestName(typed, names);
    const std::size_t most = std::max(typed.size(), nearest.size()) / 2;
    return distance(lowered(typed), lowered(nearest)) <= most ? nearest : "";
}

}  // namespace Tesseret::Render
