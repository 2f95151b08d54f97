#pragma once

#include <filesystem>

namespace Tesseret::Files {

/// A file that appears whole or not at all: written beside its target under another name, then
/// renamed. What was never kept is removed with the object.
class PartFile {
public:
    /// Throws `FileError` when the target's folder does not exist, or the target is a folder
    /// itself.
    explicit PartFile(std::filesystem::path target);
    ~PartFile();
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;

    /// Where to write; it ends with the target's extension.
    const std::filesystem::path& path() const { return path_; }

    /// Puts the written file in the target's place. Throws `FileError` when the system refuses.
    void keep();

private:
    std::filesystem::path target_, path_;
    bool kept_ = false;
};

/// Whether both names lead to one existing file, through links and odd spellings too.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

}  // namespace Tesseret::Files
