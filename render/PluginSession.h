#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "host/Effect.h"

namespace Tesseret::Render {

/// The effect that this program is made for.
inline constexpr std::string_view kTesseretIdentifier = "com.orvane.brisant.tesseret";

/// A loaded and described plug-in with its host. A loaded library knows one host, the last that was
/// opened on it, so all its users in a process share one session.
class PluginSession {
public:
    /// An empty path looks for the plug-in: beside the folder of this program, then in the folders
    /// of OFX_PLUGIN_PATH, then in the system's. Throws `UsageError` when it cannot be used or
    /// found, then with the folders searched.
    PluginSession(std::filesystem::path plugin, Host::HostOptions options = {});

    Host::Effect& effect() { return *effect_; }
    Host::EmbeddedHost& host() { return host_; }
    const std::filesystem::path& file() const { return file_; }

    /// By the short name, "Filter" or "General". Throws `UsageError` that lists the plug-in's
    /// contexts.
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
