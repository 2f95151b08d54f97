#pragma once

/// One instance of an effect: clips with their sources, parameter values, and every action. One
/// thread at a time works with an instance; only `abort` may be called from another.

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/EffectObject.h"
#include "host/InstanceListener.h"
#include "picture/Picture.h"

namespace Tesseret::Host {

class Descriptor;
class Effect;

/// Of the project that the effect stands in, in canonical units and frames.
struct Project {
    OfxPointD size{0.0, 0.0};
    OfxPointD offset{0.0, 0.0};
    OfxPointD extent{0.0, 0.0};
    double pixelAspectRatio = 1.0;
    double frameRate = 25.0;
    double duration = 1.0;
};

struct RenderRequest {
    OfxTime time = 0.0;
    OfxRectI window{0, 0, 0, 0};  ///< in pixels
    OfxPointD scale{1.0, 1.0};
    const char* field = kOfxImageFieldNone;
    bool sequential = false;
    bool interactive = false;
};

/// What the plug-in answered to GetClipPreferences; clips it did not name are absent.
struct ClipPreferences {
    std::map<std::string, std::string> components;
    std::map<std::string, std::string> depths;
    std::map<std::string, double> pixelAspectRatios;
    double frameRate = 25.0;
    std::string fieldOrder;
    std::string premultiplication;
    bool continuousSamples = false;
    bool frameVarying = false;
};

struct Identity {
    std::string clip;  ///< empty: the effect is no identity
    OfxTime time = 0.0;
};

class Instance final : public EffectObject {
public:
    /// By Effect::createInstance; sends CreateInstance and throws HostError when that is refused.
    /// The listener is not owned and may be null.
    Instance(Effect& effect, const Descriptor& described, InstanceListener* listener = nullptr);
    /// Ends a sequence that was begun and sends DestroyInstance.
    ~Instance() override;

    Effect& effect() const { return effect_; }
    const std::string& context() const { return context_; }
    Instance* instance() override { return this; }
    /// Not owned; null for none. Set while no action runs.
    void setListener(InstanceListener* listener) { listener_ = listener; }
    InstanceListener* listener() const { return listener_; }
    /// The one of its listener, else the host's; null when there is none.
    RenderListener* renderListener() const;

    // Clips

    /// Null disconnects. Sends InstanceChanged for the clip, with the reason, once the instance
    /// exists. Throws HostError when there is no such input clip.
    void connect(std::string_view clip, std::shared_ptr<ClipSource> source,
                 const char* reason = kOfxChangeUserEdited);
    /// The project's properties. Until this is called they follow the source that was connected
    /// first.
    void setProject(const Project& project);
    const Project& project() const { return project_; }
    /// The depth in which all clips are handed over. Until this is called: that of the source
    /// connected first when the plug-in supports it, else the next better one. Throws HostError for
    /// an unsupported depth.
    void setDepth(Depth depth);
    /// The depth and components of the output pictures that `render` takes.
    ClipFormat outputFormat() const;

    // Parameters, by name; all throw HostError for a name or shape that does not exist.

    ParameterValue value(std::string_view parameter) const;
    ParameterValue valueAt(std::string_view parameter, OfxTime time) const;
    /// Sets the value and sends BeginInstanceChanged, InstanceChanged and EndInstanceChanged;
    /// returns the status of the middle one.
    OfxStatus set(std::string_view parameter, ParameterValue value,
                  const char* reason = kOfxChangeUserEdited, OfxTime time = 0.0);
    /// A new key; a parameter with keys is animated.
    OfxStatus setAt(std::string_view parameter, OfxTime time, ParameterValue value,
                    const char* reason = kOfxChangeUserEdited);
    /// A push button: sends the three actions without a value.
    OfxStatus press(std::string_view button, const char* reason = kOfxChangeUserEdited,
                    OfxTime time = 0.0);

    // Actions; each returns the plug-in's status and fills its answer with the host's defaults
    // where the plug-in leaves the answer to the host.

    /// Sends an action to this instance as it is; null sets are allowed.
    OfxStatus action(const char* name, PropertySet* inArgs = nullptr,
                     PropertySet* outArgs = nullptr);
    OfxStatus changed(const char* objectType, std::string_view name, const char* reason,
                      OfxTime time, OfxPointD scale = {1.0, 1.0});
    OfxStatus beginChanged(const char* reason);
    OfxStatus endChanged(const char* reason);
    OfxStatus regionOfDefinition(OfxTime time, OfxPointD scale, OfxRectD& region);
    /// By input clip; a clip that the plug-in does not answer for gets the requested region.
    OfxStatus regionsOfInterest(OfxTime time, OfxPointD scale, const OfxRectD& requested,
                                std::map<std::string, OfxRectD>& regions);
    OfxStatus timeDomain(OfxRangeD& range);
    OfxStatus framesNeeded(OfxTime time, std::map<std::string, std::vector<OfxRangeD>>& frames);
    OfxStatus clipPreferences(ClipPreferences& preferences);
    OfxStatus isIdentity(const RenderRequest& request, Identity& identity);
    OfxStatus purgeCaches();
    OfxStatus syncPrivateData();
    OfxStatus beginEdit();
    OfxStatus endEdit();

    /// Renders are always between these two; `render` sends them for its one frame when nobody did.
    OfxStatus beginSequence(OfxRangeD frames, double step, const RenderRequest& request);
    OfxStatus endSequence();

    // What is thrown in a call that the plug-in makes meanwhile, by a source or a listener, comes
    // out of the action, which the plug-in has ended by then.

    /// One frame: asks for clip preferences when they may have changed, for identity (then copies
    /// the picture named) and for regions of interest, and sends Render. The output holds the
    /// window's pixels afterwards. Throws HostError when the output's depth or components are not
    /// those of the output clip, or a clip that is not optional has no source.
    OfxStatus render(const RenderRequest& request, Picture& output);
    /// Only the action Render with its arguments, nothing before and after. A null output renders
    /// without one.
    OfxStatus renderOnly(const RenderRequest& request, Picture* output);

    /// From any thread: the running render, and later ones, see the abort until it is cleared.
    void abort() { aborted_.store(true, std::memory_order_relaxed); }
    void clearAbort() { aborted_.store(false, std::memory_order_relaxed); }
    bool isAborted() const { return aborted_.load(std::memory_order_relaxed); }

    // What the suites use.

    OfxPointD renderScale() const { return renderScale_; }
    /// The time of the action that runs, or ran last.
    OfxTime currentTime() const { return currentTime_; }
    /// What the host takes where the plug-in does not answer: the region of "Source", else of all
    /// connected input clips together, else the project.
    OfxRectD defaultRegionOfDefinition(OfxTime time) const;
    /// After the plug-in itself set a value: the change actions with "OfxChangePluginEdited", as
    /// soon as no other action runs. What the plug-in sets in answer to these is not announced
    /// again.
    void pluginEdited(const ParameterChange& change);
    /// Around edits of the plug-in that belong together.
    void pluginBeganEdit(std::string_view label);
    void pluginEndedEdit();
    /// Brings the properties of the project and of the clips up to date.
    void updateProperties();

private:
    Parameter& need(std::string_view parameter) const;
    void notifyChange(const ParameterChange& change);
    /// The three change actions about one object; returns the status of the middle one.
    OfxStatus announce(const char* objectType, std::string_view name, const char* reason,
                       OfxTime time);
    void announceEdits();
    void releaseImages(const char* action, OfxStatus status);
    void writeProject();
    void followSource();
    void adoptFormats();
    void adoptPreferences(const ClipPreferences& preferences);
    ClipFormat formatFor(const Clip& clip, const ClipFormat& wanted) const;
    Depth preferredDepth(Depth wanted) const;
    bool supportsDepth(Depth depth) const;
    void requireReady(const Picture& output) const;
    void askRegionsOfInterest(const RenderRequest& request);
    OfxStatus renderFrame(const RenderRequest& request, Picture& output);
    OfxStatus renderIdentity(const RenderRequest& request, const Identity& identity,
                             Picture& output);

    Effect& effect_;
    std::string context_;
    std::vector<std::string> supportedDepths_;
    std::vector<std::string> slaveParameters_;
    bool created_ = false;
    bool preferencesStale_ = true;
    int actionDepth_ = 0;
    int changeDepth_ = 0;
    int announcing_ = 0;
    InstanceListener* listener_;
    std::vector<std::string> edited_;  ///< set by the plug-in, not announced yet
    std::optional<RenderRequest> sequence_;
    OfxRangeD sequenceFrames_{0.0, 0.0};
    double sequenceStep_ = 1.0;
    bool projectGiven_ = false;
    Project project_;
    std::optional<Depth> depth_;
    std::string firstConnected_;
    OfxPointD renderScale_{1.0, 1.0};
    OfxTime currentTime_ = 0.0;
    std::atomic<bool> aborted_{false};
};

}  // namespace Tesseret::Host
