#include "inspect/LoadSteps.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include <dlfcn.h>

#include "host/Effect.h"
#include "host/HostError.h"
#include "host/Plugin.h"
#include "inspect/DescriptionCheck.h"
#include "inspect/ElfFile.h"

namespace Tesseret::Inspect {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

namespace {

std::string loaderReason()
{
    const char* const text = ::dlerror();
    return text == nullptr ? "unknown reason" : text;
}

/// The file of a needed library beside the plug-in, as its search folders say; empty when the
/// system's folders have to be searched.
fs::path besidePlugin(const fs::path& plugin, const ElfFile& elf, const std::string& library)
{
    for (std::string folder : elf.searchFolders) {
        for (const std::string_view origin : {"$ORIGIN", "${ORIGIN}"}) {
            if (const std::size_t at = folder.find(origin); at != std::string::npos)
                folder.replace(at, origin.size(), plugin.parent_path().string());
        }
        std::error_code ignored;
        if (fs::exists(fs::path(folder) / library, ignored)) return fs::path(folder) / library;
    }
    return {};
}

class LoadSteps {
public:
    LoadSteps(fs::path file, StepSink& sink) : file_(std::move(file)), sink_(sink) {}

    void run()
    {
        if (!openLibraries()) return;
        sink_.step("reading the records of its plug-ins");
        try {
            const auto library = Host::PluginLibrary::load(file_);
            std::set<std::string> identifiers;
            for (OfxPlugin* const plugin : library->plugins()) {
                if (!identifiers.insert(plugin->pluginIdentifier).second) {
                    error(std::string("plug-in ") + plugin->pluginIdentifier,
                          "two plug-ins have this identifier", "give each its own");
                }
                check(library, *plugin);
            }
            sink_.step("closing the library");
        } catch (const Host::HostError& failure) {
            // Without the path at its start, which is known.
            std::string reason = failure.what();
            const std::string path = file_.string() + ": ";
            if (const std::size_t at = reason.find(path); at != std::string::npos)
                reason.erase(0, at + path.size());
            error(file_.filename().string(), reason, "correct what OfxGetPlugin returns");
        }
    }

private:
    void error(const std::string& about, const std::string& text, const std::string& advice)
    {
        sink_.finding({Severity::Error, about, text, advice});
    }

    /// What it needs, and then the library itself. It stays open, which the records need.
    bool openLibraries()
    {
        const ElfFile elf = readElf(file_);
        bool isComplete = true;
        for (const std::string& library : elf.needed) {
            sink_.step("loading " + library);
            const fs::path beside = besidePlugin(file_, elf, library);
            const std::string name = beside.empty() ? library : beside.string();
            if (::dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr) continue;
            error(file_.filename().string(), "it needs " + library + ": " + loaderReason(),
                  "install it, put it beside the plug-in with RUNPATH $ORIGIN, or link it in");
            isComplete = false;
        }
        if (!isComplete) return false;
        sink_.step("loading the library");
        if (::dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL) != nullptr) return true;
        error(file_.filename().string(), "it cannot be loaded: " + loaderReason(),
              "define the symbols, or link the library that has them");
        return false;
    }

    Host::HostOptions hostOptions(const std::string& about)
    {
        Host::HostOptions options;
        options.onReport = [this, about](const Host::Report& report) {
            if (report.kind == Host::Report::Kind::BadCall)
                error(about, report.text, "correct the call: other hosts may crash");
        };
        options.onMessage = [](const Host::Message&) { return kOfxStatReplyDefault; };
        return options;
    }

    void check(const std::shared_ptr<Host::PluginLibrary>& library, OfxPlugin& plugin)
    {
        const std::string identifier = plugin.pluginIdentifier;
        const std::string about = "plug-in " + identifier;
        step("OfxActionLoad and OfxActionDescribe", identifier);
        report_ = {};
        checkRecord(plugin, report_);
        Json facts;
        try {
            Host::EmbeddedHost host(hostOptions(about));
            Host::Effect effect(host, library, plugin);
            facts = describe(effect);
            checkTwice(effect, facts);
        } catch (const Host::HostError& failure) {
            report_.error(about, failure.what(),
                          "return kOfxStatOK, or say what the plug-in needs of a host");
        }
        sendFindings();
        if (facts.is_null()) facts = {{"identifier", identifier}};
        facts["api"] = plugin.pluginApi;
        facts["apiVersion"] = plugin.apiVersion;
        facts["version"] = std::to_string(plugin.pluginVersionMajor) + "." +
                           std::to_string(plugin.pluginVersionMinor);
        sink_.plugin(facts);
    }

    void sendFindings()
    {
        for (const Finding& finding : report_.findings) sink_.finding(finding);
        report_.findings.clear();
    }

    /// What was found so far would be lost in a crash.
    void step(const std::string& what, const std::string& identifier)
    {
        sendFindings();
        sink_.step(what + " of " + identifier);
    }

    /// Loads the plug-in, describes it everywhere and makes an instance in each context.
    Json describe(Host::Effect& effect)
    {
        effect.start();
        const Host::EffectDescription description = effect.description();
        checkEffect(description, report_);
        Json facts = effectFacts(description);
        for (const std::string& context : description.contexts) {
            step("OfxImageEffectActionDescribeInContext " + context, description.identifier);
            const Host::ContextDescription& described = effect.describeInContext(context);
            checkContext(described, description.identifier, report_);
            facts["contexts"].push_back(contextFacts(described));
            step("OfxActionCreateInstance in " + context, description.identifier);
            effect.createInstance(context);
        }
        return facts;
    }

    /// Hosts unload plug-ins to save memory and load them again.
    void checkTwice(Host::Effect& effect, const Json& first)
    {
        const std::string identifier = effect.plugin().pluginIdentifier;
        step("OfxActionUnload", identifier);
        const OfxStatus unloaded = effect.sendUnload();
        if (unloaded != kOfxStatOK && unloaded != kOfxStatReplyDefault) {
            error("plug-in " + identifier,
                  "it returns " + Host::statusText(unloaded) + " for OfxActionUnload",
                  "return kOfxStatOK or kOfxStatReplyDefault");
        }
        step("OfxActionLoad, for the second time,", identifier);
        effect.loadAndDescribe();
        Json second = effectFacts(effect.description());
        for (const std::string& context : effect.description().contexts)
            second["contexts"].push_back(contextFacts(effect.describeInContext(context)));
        if (second != first) {
            error("plug-in " + identifier, "it describes itself differently when loaded again",
                  "set all static data anew in OfxActionLoad");
        }
    }

    fs::path file_;
    StepSink& sink_;
    Report report_;  ///< findings that were not sent yet
};

}  // namespace

void runLoadSteps(const fs::path& file, StepSink& sink)
{
    LoadSteps(file, sink).run();
}

}  // namespace Tesseret::Inspect
