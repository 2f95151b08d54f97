#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <utility>

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

/// Tells one existing file from another, through links and odd spellings too.
using FileIdentity = std::pair<std::uintmax_t, std::uintmax_t>;
/// Nothing when there is no such file.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

}  // namespace Tesseret::Files
