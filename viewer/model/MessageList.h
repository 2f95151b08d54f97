#pragma once

#include <mutex>
#include <string>
#include <utility>
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
    std::vector<std::string> take()
    {
        std::vector<std::string> lines;
        {
            const std::lock_guard lock(mutex_);
            lines = std::exchange(lines_, {});
        }
        std::string errors = plugin_.takeErrors();
        if (!errors.empty()) lines.push_back(std::move(errors));
        return lines;
    }

private:
    void add(const std::string& line)
    {
        const std::lock_guard lock(mutex_);
        lines_.push_back(line);
    }

    std::mutex mutex_;
    std::vector<std::string> lines_;  ///< guarded by mutex_
    Render::WarningFilter warnings_{*this};
    Render::PluginMessages plugin_{*this, warnings_};
};

}  // namespace Tesseret::Viewer
