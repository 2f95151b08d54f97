#pragma once

#include <functional>
#include <string>

namespace Tesseret::Viewer {

/// A small window that asks what is to become of unsaved work before it goes.
class QuestionDialog {
public:
    /// `save` and `drop` are called once the user has chosen; nothing is for "Cancel".
    void ask(const std::string& question, std::function<void()> save, std::function<void()> drop);
    bool isAsking() const { return drop_ != nullptr; }
    /// Called in every frame of the user interface.
    void draw();

private:
    void answer(const std::function<void()>& with);

    std::string question_;
    std::function<void()> save_, drop_;
    bool wantsOpening_ = false;
};

}  // namespace Tesseret::Viewer
