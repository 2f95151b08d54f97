#pragma once

/// The effect that the tests of this folder link with the host interface layer: two clips, two
/// integers, and hooks that a test controls.

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/Effect.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "products/OFX/Support/Effect.h"
#include "tests/fixtures/QuirkyHost.h"

namespace Tesseret::Fixtures {

/// What tiny effects do. Set while no action runs.
struct TinyBehaviour {
    bool isRecording = false;
    std::vector<std::string> calls;  ///< while recording: what `onHook` received
    /// Called by every hook, query and change with its name and arguments; may throw.
    std::function<void(const std::string& hook, Orvane::OvOfxEffect& effect)> onHook;
    std::function<void(Orvane::OvOfxHostWrapper& wrapper)> onRender;
    bool handlesQueries = false;
    Orvane::OvRect rect;  ///< the region of definition, pixels of the action
    bool needsTemporalAccess = false;
    bool sequentialRender = true;
    std::string preferencesSlave;           ///< the parameter that clip preferences depend on
    std::atomic<int>* destroyed = nullptr;  ///< counts effects that are gone
    std::atomic<int>* unloads = nullptr;    ///< counts calls of the unload hook
};

/// Starts afresh with every TinyHost.
TinyBehaviour& tinyBehaviour();

/// A host of its own with the tiny effect in it.
class TinyHost {
public:
    explicit TinyHost(const HostQuirks& quirks = {});
    ~TinyHost();
    TinyHost(const TinyHost&) = delete;
    TinyHost& operator=(const TinyHost&) = delete;

    Host::EmbeddedHost& host() { return host_; }
    HostQuirks& quirks() { return quirky_.quirks; }
    CallRecorder& calls() { return quirky_.calls; }
    const CallRecorder& calls() const { return quirky_.calls; }
    Host::Effect& effect() { return *effect_; }
    /// Loads and describes.
    void start();
    /// The same first when that was not done yet.
    std::unique_ptr<Host::Instance> create(const char* context = kOfxImageEffectContextFilter);
    /// The names of the properties written to one set of the host, in order.
    std::vector<std::string> writesTo(std::string_view set) const;

private:
    QuirkyHost quirky_;
    Host::EmbeddedHost host_;
    std::unique_ptr<Host::Effect> effect_;
    bool started_ = false;
};

/// A source for the tiny effect's clips: 8 x 4 pixels.
std::shared_ptr<Host::ClipSource> tinySource();

}  // namespace Tesseret::Fixtures
