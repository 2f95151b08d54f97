#pragma once

#include <chrono>
#include <cstdio>
#include <string>

namespace Tesseret::Command {

/// A line on a terminal that is redrawn in place; nothing where the stream is not a terminal.
class ProgressBar {
public:
    explicit ProgressBar(std::FILE* stream, bool wanted);

    bool isShown() const { return shown_; }
    /// Draws at most ten times a second; `fraction` is 0 to 1.
    void update(double fraction, const std::string& text);
    /// Erases the line, so that other text can be written; the next update draws it again.
    void clear();

private:
    std::FILE* stream_;
    bool shown_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point next_{};
};

/// "0:07", "12:30", "1:02:03".
std::string durationText(double seconds);

}  // namespace Tesseret::Command
