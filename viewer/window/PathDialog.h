#pragma once

#include <filesystem>
#include <functional>
#include <string>

namespace Tesseret::Viewer {

/// A small window that asks for the name of a file. One question at a time.
class PathDialog {
public:
    using Use = std::function<void(const std::filesystem::path&)>;

    /// `use` is called with the name once the user has confirmed it.
    void ask(const std::string& question, const std::filesystem::path& proposed, Use use);
    bool isAsking() const { return use_ != nullptr; }
    /// Called in every frame of the user interface.
    void draw();

private:
    void close();

    std::string question_, text_;
    Use use_;
    bool wantsOpening_ = false;
};

}  // namespace Tesseret::Viewer
