#pragma once

/// Sinks for the host's reports on wrong calls, for the plug-in's messages and for the
/// notifications of a render. The host serialises reports and messages; they may come from any
/// thread.

#include <functional>
#include <string>
#include <string_view>

#include "ofx/tesseretObserver.h"

namespace Tesseret::Host {

class Instance;

/// One line without line end.
struct Report {
    enum class Kind {
        Note,     ///< allowed, but worth knowing: an unknown property, an allocation refused
        BadCall,  ///< the plug-in did what the standard forbids, and the call returned an error
    };
    Kind kind = Kind::Note;
    std::string text;
};
using ReportSink = std::function<void(const Report&)>;

/// A message of the plug-in. `text` is formatted; type and id are empty when the plug-in gave null.
struct Message {
    std::string type;
    std::string id;
    std::string text;
    Instance* instance = nullptr;  ///< null when the plug-in named none
};
/// Returns 0, 12, 13 or 14. Without a sink the host returns 0, and 14 for a question.
using MessageSink = std::function<OfxStatus(const Message&)>;

/// Listens to "TesseretObserverSuite". Calls come on the thread that renders the instance. An
/// exception of a call is rethrown by the host's function that sent the action, after the plug-in
/// has returned.
class RenderListener {
public:
    virtual ~RenderListener() = default;
    virtual void stageBegan(Instance& /*instance*/, std::string_view /*stage*/) {}
    virtual void stageEnded(Instance& /*instance*/, std::string_view /*stage*/) {}
    virtual void progress(Instance& /*instance*/, double /*fraction*/) {}
    virtual void blockLaid(Instance& /*instance*/, const TesseretBlockV1& /*block*/) {}
    virtual void note(Instance& /*instance*/, std::string_view /*text*/) {}
    /// Whether the plug-in should make the maps and the path for the two calls below.
    virtual bool wantsMaps(Instance& /*instance*/) { return false; }
    virtual void mapMade(Instance& /*instance*/, const TesseretMapV1& /*map*/) {}
    virtual void pathFound(Instance& /*instance*/, const TesseretPathV1& /*path*/) {}
};

}  // namespace Tesseret::Host
