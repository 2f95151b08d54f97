#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "products/OFX/Support/Clip.h"
#include "products/OFX/Support/Context.h"
#include "products/OFX/Support/EffectInterface.h"
#include "products/OFX/Support/HostWrapper.h"
#include "products/OFX/Support/InstanceRecord.h"
#include "products/OFX/Support/Param.h"

namespace Orvane {

/// The description of an effect for its host. The initial values are the framework's defaults.
struct OvEffectDescriptor {
    std::string label;
    std::string grouping;
    std::string description;               ///< shown by the about message only
    std::vector<std::string> contexts;     ///< "Generator", "Filter", "General", "Retimer", ...
    std::vector<std::string> pixelDepths;  ///< "byte", "short", "float"
    bool supportsTiles = true;
    bool multipleClipDepths = false;
    bool temporalClipAccess = false;
    int renderThreadSafety = 1;  ///< 0 unsafe, 1 instance safe, 2 fully safe
    bool fieldRenderTwiceAlways = true;
    bool sequentialRender = false;
    OfxPluginEntryPoint* overlayEntry = nullptr;  ///< null without an overlay
    int fieldExtraction = 2;  ///< 0 both fields, 1 a single field, 2 a field doubled
};

/// An effect: a temporary object while describing, or a long-lived instance.
///
/// It owns its clips, parameters, pages and markers, has a container of them per context, and is
/// bound to one context: without a record while describing, with one as an instance.
class OvOfxEffect {
public:
    static constexpr int kCode = 63;

    OvOfxEffect();
    OvOfxEffect(const OvOfxEffect&) = delete;
    OvOfxEffect& operator=(const OvOfxEffect&) = delete;

    // Virtual operations, in slot order. The hooks do nothing here.
    virtual ~OvOfxEffect();
    [[nodiscard]] virtual int typeCode() const { return kCode; }
    [[nodiscard]] virtual bool isA(int code) const { return code == kCode; }
    /// Makes the object that handles the queries of one action; the wrapper outlives it.
    virtual std::unique_ptr<OvOfxEffectInterface> makeInterface(OvOfxHostWrapper& wrapper);
    /// Makes the wrapper of one action; the argument sets may be null and outlive it.
    virtual std::unique_ptr<OvOfxHostWrapper> makeHostWrapper(const OvOfxPropertySet* inArgs,
                                                              const OvOfxPropertySet* outArgs);
    virtual void instanceCreated() {}
    virtual void instanceDestroyed() {}
    virtual void getTimeDomain() {}
    /// Whether all state of the instance is stored in its parameters now.
    virtual bool syncPrivateData() { return false; }
    virtual void beginInstanceChanged(const OvOfxChangeRecord&) {}
    virtual void endInstanceChanged(const OvOfxChangeRecord&) {}
    virtual void getClipPreferences() {}
    virtual void describe() {}
    virtual std::string aboutText() { return {}; }
    /// The entries of the tables that binding fills; null for an unknown name.
    virtual OvOfxClip* findClip(const char* name);
    virtual OvOfxParam* findParam(const char* name);
    /// Renders one frame to an output clip of the given kind.
    virtual void render(OvOfxHostWrapper&, OvComponents, OvDepth) {}

    /// Writes the descriptor. Returns kOfxStatFailed at the first unknown context or depth, else 0:
    /// the host's statuses for single properties are ignored.
    [[nodiscard]] OfxStatus writePluginProperties(const OvOfxPropertySet& properties) const;

    /// Marks the objects of a context as in use. With a record the effect becomes an instance: it
    /// keeps the record, and every object in use gets its handle and its place in the tables.
    void bind(OvContext context, std::unique_ptr<OvOfxInstanceRecord> record);
    /// The two halves of destroying an instance, in this order around `instanceDestroyed`.
    void deleteInstanceRecord();
    void deleteHandles();

    /// The context that the effect is bound to.
    [[nodiscard]] OvContext context() const { return context_; }
    /// Null while describing.
    [[nodiscard]] OvOfxInstanceRecord* instance() const { return record_.get(); }
    /// The same for objects that may outlive the effect, such as its overlays: expires before
    /// anything that the effect owns is destroyed.
    [[nodiscard]] std::weak_ptr<OvOfxInstanceRecord> watchedInstance() const { return record_; }
    [[nodiscard]] OvOfxOutputClip& outputClip() const { return *outputClip_; }
    /// All objects made by `own`, in the order of creation.
    [[nodiscard]] const std::vector<std::unique_ptr<OvOfxParam>>& objects() const
    {
        return objects_;
    }
    /// The container of a context, or null for an unknown one.
    [[nodiscard]] OvOfxContextContainer* container(OvContext context);
    /// The parameters defined (while describing) or bound (in an instance), in that order.
    [[nodiscard]] std::vector<OvOfxParam*>& parameters() { return parameters_; }
    [[nodiscard]] const std::map<std::string, OvOfxClip*, std::less<>>& clipTable() const
    {
        return clipTable_;
    }
    /// Posts a message; kinds and results are those of `postEffectMessage`.
    int message(const char* text, int kind, const char* id) const;

    OvEffectDescriptor descriptor;
    int counter = 0;  ///< free for use by the effect's code

    /// Takes an object into the effect's ownership.
    template <typename T, typename... Arguments>
    T& own(Arguments&&... arguments)
    {
        auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
        T& made = *object;
        objects_.push_back(std::move(object));
        return made;
    }

    /// The marker that ends a row of a page, and the one that leaves a cell empty.
    [[nodiscard]] OvOfxParam& rowEnd() const { return *rowEnd_; }
    [[nodiscard]] OvOfxParam& emptyCell() const { return *emptyCell_; }

private:
    void bindClip(OvOfxClip& clip, const char* name);
    void bindParam(OvOfxParam& param);

    std::shared_ptr<OvOfxInstanceRecord> record_;  ///< never shared; overlays hold weak pointers
    OvContext context_ = OvContext::None;
    std::vector<std::unique_ptr<OvOfxParam>> objects_;  // in creation order
    OvOfxOutputClip* outputClip_;
    OvOfxParam* rowEnd_;
    OvOfxParam* emptyCell_;
    std::vector<OvOfxContextContainer> containers_;
    std::vector<OvOfxParam*> parameters_;
    std::map<std::string, OvOfxParam*, std::less<>> paramTable_;
    std::map<std::string, OvOfxClip*, std::less<>> clipTable_;
};

/// The instance behind an effect handle, or null. Also sets `properties` to those of the effect.
[[nodiscard]] OvOfxEffect* findInstance(OfxImageEffectHandle effect, OvOfxPropertySet& properties);

}  // namespace Orvane
