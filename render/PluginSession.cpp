#include "render/PluginSession.h"

#include <algorithm>
#include <utility>

#include "host/HostError.h"
#include "render/JobError.h"
#include "render/PluginFinder.h"
#include "render/TextList.h"

namespace Tesseret::Render {

namespace {

constexpr std::string_view kContextPrefix = "OfxImageEffectContext";

}  // namespace

PluginSession::PluginSession(std::filesystem::path plugin, Host::HostOptions options)
    : file_(plugin.empty() ? findPlugin() : std::move(plugin)), host_(std::move(options))
{
    try {
        std::shared_ptr<Host::PluginLibrary> library = Host::PluginLibrary::load(file_);
        OfxPlugin& chosen = choosePlugin(*library);
        effect_ = std::make_unique<Host::Effect>(host_, std::move(library), chosen);
        effect_->start();
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
}

const Host::ContextDescription& PluginSession::describe(const std::string& context)
{
    const std::vector<std::string> contexts = effect_->description().contexts;
    if (std::ranges::find(contexts, longContextName(context)) == contexts.end()) {
        std::string known;
        for (const std::string& name : contexts) {
            appendItem(known, ", ", shortContextName(name));
        }
        throw UsageError("no context \"" + context + "\"; the plug-in has " + known);
    }
    try {
        return effect_->describeInContext(longContextName(context));
    } catch (const Host::HostError& error) {
        throw UsageError(error.what());
    }
}

std::string longContextName(const std::string& name)
{
    return std::string(kContextPrefix) + name;
}

std::string shortContextName(const std::string& name)
{
    return name.starts_with(kContextPrefix) ? name.substr(kContextPrefix.size()) : name;
}

}  // namespace Tesseret::Render
