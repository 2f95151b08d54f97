#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Tesseret::Files {

/// A file name with a place for the frame number: "plate.####.exr" or "plate.%04d.exr". The number
/// is padded with zeros to the count of marks; longer numbers are written whole. A name without a
/// place stands for one still.
class SequencePattern {
public:
    /// Takes the last run of '#' in the file name, or else its last "%d" or "%0Nd". Folders may
    /// hold these characters as they are.
    explicit SequencePattern(const std::filesystem::path& name);

    /// As it was given.
    const std::filesystem::path& name() const { return name_; }
    bool isSequence() const { return digits_.has_value(); }

    /// The file of a frame; the name itself for a still.
    std::filesystem::path file(int frame) const;

    /// Those of the frames whose file does not exist.
    std::vector<int> missing(const std::vector<int>& frames) const;

private:
    std::filesystem::path name_, folder_;
    std::string before_, after_;
    std::optional<int> digits_;
};

}  // namespace Tesseret::Files
