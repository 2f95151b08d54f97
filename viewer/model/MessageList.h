#pragma once

#include <string>
#include <utility>
#include <vector>

#include "render/PluginMessages.h"

namespace Tesseret::Viewer {

/// Keeps what a plug-in says outside of renders, until somebody shows it.
class MessageList final : public Render::JobListener {
public:
    void warning(const std::string& text) override { lines_.push_back(text); }
    void message(const std::string& text) override { lines_.push_back(text); }

    Host::HostOptions hostOptions(unsigned int threads) { return plugin_.hostOptions(threads); }
    /// Since the last call, errors last.
    std::vector<std::string> take()
    {
        std::vector<std::string> lines = std::exchange(lines_, {});
        std::string errors = plugin_.takeErrors();
        if (!errors.empty()) lines.push_back(std::move(errors));
        return lines;
    }

private:
    std::vector<std::string> lines_;
    Render::WarningFilter warnings_{*this};
    Render::PluginMessages plugin_{*this, warnings_};
};

}  // namespace Tesseret::Viewer
