#pragma once

/// What the user is to read: what a plug-in says, and the log that shows it with everything else.

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "render/PluginMessages.h"

namespace Tesseret::Viewer {

/// Keeps what a plug-in says outside of renders, until somebody shows it. From any thread.
class MessageList final : public Render::JobListener {
public:
    void warning(const std::string& text) override { add(text); }
    void message(const std::string& text) override { add(text); }

    Host::HostOptions hostOptions(unsigned int threads) { return plugin_.hostOptions(threads); }
    /// Since the last call, errors last.
    std::vector<std::string> take();

private:
    void add(const std::string& line);

    std::mutex mutex_;
    std::vector<std::string> lines_;  ///< guarded by mutex_
    Render::WarningFilter warnings_{*this};
    Render::PluginMessages plugin_{*this, warnings_};
};

/// What the user was shown, oldest first.
class MessageLog {
public:
    enum class Kind { Note, Message, Error };
    struct Line {
        Kind kind;
        std::string text;
    };

    /// A line that says the same as the last one is left out. The oldest are forgotten.
    void add(Kind kind, const std::string& text);
    /// Does the work, and reports what went wrong with it.
    void attempt(const std::function<void()>& work);
    const std::vector<Line>& lines() const { return lines_; }
    /// Counts up with every line added.
    unsigned long count() const { return count_; }

private:
    std::vector<Line> lines_;
    unsigned long count_ = 0;
};

}  // namespace Tesseret::Viewer
