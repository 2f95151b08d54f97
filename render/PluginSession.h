#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/Effect.h"

namespace Tesseret::Render {

/// The effect that this program is made for.
inline constexpr std::string_view kTesseretIdentifier = "com.orvane.brisant.tesseret";

/// A plug-in that is loaded and described, with the host it lives in. A loaded library knows one
/// host, the last that was opened on it: whoever works with it in a process shares one session.
class PluginSession {
public:
    /// An empty path looks for the plug-in: beside the folder of this program, then in the folders
    /// of OFX_PLUGIN_PATH, then in the system's. Throws `UsageError` when it cannot be found, with
    /// where it was looked for, or used.
    PluginSession(std::filesystem::path plugin, Host::HostOptions options = {});

    Host::Effect& effect() { return *effect_; }
    Host::EmbeddedHost& host() { return host_; }
    const std::filesystem::path& file() const { return file_; }

    /// By the short name, "Filter" or "General". Throws `UsageError` that lists the contexts there
    /// are.
    const Host::ContextDescription& describe(const std::string& context);

private:
    std::filesystem::path file_;
    Host::EmbeddedHost host_;
    std::unique_ptr<Host::Effect> effect_;
};

/// "OfxImageEffectContextFilter" from "Filter" and back.
std::string longContextName(const std::string& name);
std::string shortContextName(const std::string& name);

}  // namespace Tesseret::Render
