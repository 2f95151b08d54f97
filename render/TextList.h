#pragma once

#include <string>
#include <string_view>

namespace Tesseret::Render {

/// Adds an item to a list that is text, with a separator before all but the first.
inline void appendItem(std::string& list, std::string_view separator, std::string_view item)
{
    if (!list.empty()) list.append(separator);
    list.append(item);
}

}  // namespace Tesseret::Render
