#pragma once

/// Frame numbers as people write them: "1001", "1001-1100", "1-9x2", and several of these with
/// commas.

#include <string>
#include <string_view>
#include <vector>

namespace Tesseret::Files {

/// The frames of a text in the order written, each once. "A-BxS" counts from A up to B in steps of
/// S; numbers may be negative ("-5--1"). Throws `std::invalid_argument` with one line that says
/// what is wrong: not a range, a range that runs downwards, a step below 1, more than a million
/// frames.
std::vector<int> parseFrames(std::string_view text);

/// The shortest way to write ascending frames: {1, 2, 3, 7} is "1-3,7".
std::string framesText(const std::vector<int>& frames);

}  // namespace Tesseret::Files
