#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Tesseret::Viewer {

/// What the person was told, oldest first.
class MessageLog {
public:
    enum class Kind { Note, Message, Error };
    struct Line {
        Kind kind;
        std::string text;
    };

    /// A line that says the same as the last one is left out. The oldest are forgotten.
    void add(Kind kind, const std::string& text);
    /// Does the work, and tells what went wrong with it.
    void attempt(const std::function<void()>& work);
    const std::vector<Line>& lines() const { return lines_; }
    /// Counts up with every line added.
    unsigned long count() const { return count_; }

private:
    std::vector<Line> lines_;
    unsigned long count_ = 0;
};

}  // namespace Tesseret::Viewer
