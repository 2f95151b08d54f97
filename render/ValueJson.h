#pragma once

#include <type_traits>
#include <variant>

#include <nlohmann/json.hpp>

#include "host/Parameter.h"

namespace Tesseret::Render {

/// A parameter's value as it is; null where a parameter has none.
template <typename Json>
Json valueJson(const Host::ParameterValue& value)
{
    return std::visit(
        [](const auto& held) -> Json {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>) {
                return nullptr;
            } else {
                return held;
            }
        },
        value);
}

}  // namespace Tesseret::Render
