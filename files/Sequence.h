#pragma once

/// Sequences of files: frame numbers as users write them, "1001", "1001-1100", "1-9x2" and several
/// of these with commas, and file names with a place for the number.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tesseret::Files {

/// Parses frames, in the order written, each once. "A-BxS" counts from A up to B in steps of S;
/// numbers may be negative ("-5--1"). Throws `std::invalid_argument` with one line that states the
/// fault: not a range, a range that runs downwards, a step below 1, more than a million frames.
std::vector<int> parseFrames(std::string_view text);

/// The shortest notation of ascending frames: {1, 2, 3, 7} is "1-3,7".
std::string framesText(const std::vector<int>& frames);

/// A file name with a place for the frame number: "plate.####.exr", "plate.@@@@.exr" or
/// "plate.%04d.exr". The number is padded with zeros to the count of marks; longer numbers are not
/// truncated. A name without a place denotes a still.
class SequencePattern {
public:
    /// Uses the last run of '#' in the file name, or else of '@', or else its last "%d" or "%0Nd".
    /// These characters have no meaning in folder names, nor has a single '@' before a letter or
    /// digit.
    explicit SequencePattern(const std::filesystem::path& name);

    /// The name as given.
    const std::filesystem::path& name() const { return name_; }
    bool isSequence() const { return digits_.has_value(); }

    /// The file of a frame; the name itself for a still.
    std::filesystem::path file(int frame) const;

    /// The frames of a sequence that have a file, in their order.
    std::vector<int> found() const;
    /// The frames whose file does not exist.
    std::vector<int> missing(const std::vector<int>& frames) const;

private:
    std::filesystem::path name_, folder_;
    std::string before_, after_;
    std::optional<int> digits_;
};

}  // namespace Tesseret::Files
