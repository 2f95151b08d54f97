#pragma once

#include "picture/Picture.h"

namespace Tesseret::Render {

/// As the options name it.
constexpr const char* depthWord(Depth depth)
{
    switch (depth) {
        case Depth::Byte:
            return "byte";
        case Depth::Short:
            return "short";
        case Depth::Float:
            break;
    }
    return "float";
}

}  // namespace Tesseret::Render
