#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct ImGuiInputTextCallbackData;

namespace Tesseret::Viewer {

/// A small window that asks for the name of a file, and completes it from the files that exist. One
/// question at a time.
class PathDialog {
public:
    using Use = std::function<void(const std::filesystem::path&)>;

    /// `use` is called with the name once the user has confirmed it. What it throws is shown, and
    /// the user may correct the name.
    void ask(const std::string& question, const std::filesystem::path& proposed, Use use);
    bool isAsking() const { return use_ != nullptr; }
    /// Called in every frame of the user interface.
    void draw();

private:
    void close();
    void confirm();
    bool drawField();
    void placeCursor(ImGuiInputTextCallbackData& data);
    static void complete(ImGuiInputTextCallbackData& data);
    void drawNames();

    std::string question_, text_, error_;
    std::vector<std::string> names_;    ///< that the text can be continued to
    std::optional<std::string> named_;  ///< the text that they belong to
    Use use_;
    bool wantsOpening_ = false, wantsFocus_ = false;
    bool placesCursor_ = false, selectsName_ = false;
};

}  // namespace Tesseret::Viewer
