#pragma once

/// One instance of an effect: clips with their sources, parameter values, and every action. One
/// thread at a time may use an instance; only `abort` may be called from another.

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
class RecordKeeper;

/// The project around the effect, in canonical units and frames.
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

/// The plug-in's results of GetClipPreferences; clips that it did not set are absent.
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
    std::string clip;  ///< empty: not an identity
    OfxTime time = 0.0;
};

class Instance final : public EffectObject {
public:
    /// Called by Effect::createInstance; sends CreateInstance and throws HostError when that is
    /// refused. The listener is not owned and may be null.
    Instance(Effect& effect, const Descriptor& described, InstanceListener* listener = nullptr);
    /// Ends a sequence that was begun and sends DestroyInstance.
    ~Instance() override;

    Effect& effect() const { return effect_; }
    const std::string& context() const { return context_; }
    Instance* instance() override { return this; }
    /// Not owned; null for none. Set while no action runs.
    void setListener(InstanceListener* listener) { listener_ = listener; }
    InstanceListener* listener() const { return listener_; }
    /// The instance listener's, else the host's; null when there is none.
    RenderListener* renderListener() const;
    /// Not owned; null for none. Asked only where the host has a render listener. Set while no
    /// action runs.
    void setRecords(RecordKeeper* records) { records_ = records; }
    RecordKeeper* records() const { return records_; }

    // Clips

    /// Null disconnects. Sends InstanceChanged for the clip, with the reason, once the instance
    /// exists. Throws HostError when there is no such input clip.
    void connect(std::string_view clip, std::shared_ptr<ClipSource> source,
                 const char* reason = kOfxChangeUserEdited);
    /// Until this is called, the project follows the first connected source.
    void setProject(const Project& project);
    const Project& project() const { return project_; }
    /// The depth of all clips' images. Until this is called: that of the first connected source
    /// when the plug-in supports it, else the next higher one. Throws HostError for an unsupported
    /// depth.
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

    // Actions; each returns the plug-in's status, and the host's defaults where the plug-in sets no
    // result.

    /// Sends an action to this instance as it is; null sets are allowed.
    OfxStatus action(const char* name, PropertySet* inArgs = nullptr,
                     PropertySet* outArgs = nullptr);
    OfxStatus changed(const char* objectType, std::string_view name, const char* reason,
                      OfxTime time, OfxPointD scale = {1.0, 1.0});
    OfxStatus beginChanged(const char* reason);
    OfxStatus endChanged(const char* reason);
    OfxStatus regionOfDefinition(OfxTime time, OfxPointD scale, OfxRectD& region);
    /// By input clip; a clip that the plug-in sets no region for gets the requested one.
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

    /// Renders are always between these two; `render` sends them for its one frame when no sequence
    /// was begun.
    OfxStatus beginSequence(OfxRangeD frames, double step, const RenderRequest& request);
    OfxStatus endSequence();

    // An exception of a source or a listener, thrown in a call that the plug-in makes meanwhile, is
    // rethrown here once the plug-in has returned.

    /// One frame: queries the clip preferences when they may have changed, the identity (then
    /// copies that clip's picture) and the regions of interest, and sends Render. Afterwards the
    /// output holds the window's pixels. Throws HostError when the output's depth or components are
    /// not those of the output clip, or a clip that is not optional has no source.
    OfxStatus render(const RenderRequest& request, Picture& output);
    /// Sends only the action Render with its arguments. A null output renders without one.
    OfxStatus renderOnly(const RenderRequest& request, Picture* output);

    /// From any thread. The running render and later ones are aborted until this is cleared.
    void abort() { aborted_.store(true, std::memory_order_relaxed); }
    void clearAbort() { aborted_.store(false, std::memory_order_relaxed); }
    bool isAborted() const { return aborted_.load(std::memory_order_relaxed); }

    // For the suites.

    OfxPointD renderScale() const { return renderScale_; }
    /// The time of the current or last action.
    OfxTime currentTime() const { return currentTime_; }
    /// The region where the plug-in sets none: that of "Source", else the union of all connected
    /// input clips, else the project.
    OfxRectD defaultRegionOfDefinition(OfxTime time) const;
    /// After the plug-in itself set a value: sends the change actions with "OfxChangePluginEdited"
    /// as soon as no other action runs. What the plug-in sets during these is not announced again.
    void pluginEdited(const ParameterChange& change);
    /// Around edits that the plug-in groups.
    void pluginBeganEdit(std::string_view label);
    void pluginEndedEdit();
    /// Updates the properties of the project and of the clips.
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
    RecordKeeper* records_ = nullptr;
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
