#pragma once

/// Messages for the user: those of a plug-in, and the log that shows all of them.

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "render/PluginMessages.h"

namespace Tesseret::Viewer {

/// Collects a plug-in's messages outside of renders. All functions may be called from any thread.
class MessageList final : public Render::JobListener {
public:
    void warning(const std::string& text) override { add(text); }
    void message(const std::string& text) override { add(text); }

    Host::HostOptions hostOptions(unsigned int threads) { return plugin_.hostOptions(threads); }
    /// Returns the messages since the last call, errors last.
    std::vector<std::string> take();

private:
    void add(const std::string& line);

    std::mutex mutex_;
    std::vector<std::string> lines_;  ///< guarded by mutex_
    Render::WarningFilter warnings_{*this};
    Render::PluginMessages plugin_{*this, warnings_};
};

/// The messages shown to the user, oldest first.
class MessageLog {
public:
    enum class Kind { Note, Message, Error };
    struct Line {
        Kind kind;
        std::string text;
    };

    /// Drops a line that repeats the last one. Removes the oldest lines when there are too many.
    void add(Kind kind, const std::string& text);
    /// Runs the work, and logs its exception.
    void attempt(const std::function<void()>& work);
    const std::vector<Line>& lines() const { return lines_; }
    /// How many lines were ever added.
    unsigned long count() const { return count_; }

private:
    std::vector<Line> lines_;
    unsigned long count_ = 0;
};

}  // namespace Tesseret::Viewer
