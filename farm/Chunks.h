#pragma once

#include <string>
#include <vector>

namespace Tesseret::Farm {

/// The frames that one task of a queue renders; numbers count from 0.
struct Chunk {
    int number;
    std::vector<int> frames;  ///< ascending
};

/// Divides frames, in any order, into chunks of `size`; the last one may be smaller.
std::vector<Chunk> chunksOf(std::vector<int> frames, int size);

/// The number with at least four digits, as in names of files.
std::string chunkName(int number);

}  // namespace Tesseret::Farm
