#pragma once

/// An overlay of an instance: the host's side of a plug-in's interact. The caller makes an OpenGL
/// context current before `draw`, and before the other calls where the plug-in needs one.

#include <string>
#include <vector>

#include "host/HandleRegistry.h"
#include "host/PropertySet.h"
#include "ofx/ofxInteract.h"

namespace Tesseret::Host {

class Instance;

class Interact {
public:
    /// Arguments of every action, among them the view's scale in canonical units per screen pixel
    /// and its colour.
    struct View {
        OfxTime time = 0.0;
        OfxPointD renderScale{1.0, 1.0};
        OfxPointD pixelScale{1.0, 1.0};
        OfxPointD viewportSize{0.0, 0.0};  ///< screen pixels
        double background[3] = {0.0, 0.0, 0.0};
    };
    struct Pen {
        OfxPointD position{0.0, 0.0};  ///< canonical
        OfxPointI viewport{0, 0};      ///< screen pixels
        double pressure = 1.0;
    };
    struct Key {
        int symbol = 0;
        std::string text;
    };

    /// Describes the overlay and creates it. Throws HostError when the plug-in has none or refuses.
    explicit Interact(Instance& instance);
    ~Interact();
    Interact(const Interact&) = delete;
    Interact& operator=(const Interact&) = delete;

    OfxInteractHandle handle() const { return handle_.as<OfxInteractHandle>(); }
    Instance& instance() const { return instance_; }
    PropertySet& properties() { return properties_; }
    /// The parameters whose changes redraw the overlay.
    std::vector<std::string> slaveParameters() const;
    View& view() { return view_; }

    // Each returns the plug-in's status: 0 when handled, 14 when not.
    OfxStatus draw();
    OfxStatus penMotion(const Pen& pen);
    OfxStatus penDown(const Pen& pen);
    OfxStatus penUp(const Pen& pen);
    OfxStatus keyDown(const Key& key);
    OfxStatus keyUp(const Key& key);
    OfxStatus keyRepeat(const Key& key);
    OfxStatus gainFocus();
    OfxStatus loseFocus();
    /// Sends any action with any arguments.
    OfxStatus action(const char* name, PropertySet* inArgs = nullptr);

    /// How often the plug-in requested these since the overlay was made.
    unsigned int redraws() const { return redraws_; }
    unsigned int swaps() const { return swaps_; }
    void countRedraw() { ++redraws_; }
    void countSwap() { ++swaps_; }

private:
    enum class Extra { View, Pen, Key };
    OfxStatus send(const char* name, Extra extra, const Pen& pen, const Key& key);
    void updateView();

    Instance& instance_;
    Handle handle_;
    PropertySet properties_;
    OfxPluginEntryPoint* entry_;
    View view_;
    unsigned int redraws_ = 0;
    unsigned int swaps_ = 0;
};

}  // namespace Tesseret::Host
