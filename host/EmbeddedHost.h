#pragma once

/// One host: the record for plug-ins, identity, suites, threads and sinks. Several hosts may exist
/// in one process; each handle belongs to one of them. Calls that carry no handle (threads, null
/// effects) belong to the host whose action runs on the calling thread, else to the newest.

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host/HostBehaviour.h"
#include "host/HostIdentity.h"
#include "host/HostSinks.h"
#include "host/PropertySet.h"
#include "ofx/ofxMultiThread.h"

namespace Tesseret::Host {

class ThreadPool;

struct HostOptions {
    HostIdentity identity{};
    unsigned int threads = 0;            ///< 0: one for each processor it may use
    HostBehaviour* behaviour = nullptr;  ///< not owned; null keeps the published standard
    ReportSink onReport{};
    MessageSink onMessage{};
    RenderListener* listener =
        nullptr;  ///< not owned; with it the two suites of our own are offered
};

class EmbeddedHost {
public:
    explicit EmbeddedHost(HostOptions options = {});
    ~EmbeddedHost();
    EmbeddedHost(const EmbeddedHost&) = delete;
    EmbeddedHost& operator=(const EmbeddedHost&) = delete;

    /// The record for a plug-in's setHost; valid as long as the host.
    OfxHost* record() { return &record_; }
    PropertySet& properties() { return properties_; }
    HostBehaviour& behaviour() const { return *behaviour_; }
    /// For renders on the calling thread.
    unsigned int threads() const;
    /// Whether a list of the host's properties has a value, or the host does not report it.
    bool offers(const char* property, std::string_view value) const;
    /// Notified of renders of instances without a listener of their own. Not owned; null withdraws
    /// the suite from all instances. Set while nothing renders.
    void setListener(RenderListener* listener) { listener_ = listener; }
    RenderListener* listener() const { return listener_; }

    /// The host of the calling thread, as described above; null when there is none.
    static EmbeddedHost* current();

    /// Makes a host the current one of this thread for the scope's lifetime.
    class Scope {
    public:
        explicit Scope(EmbeddedHost& host);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        EmbeddedHost* previous_;
    };

    /// While it lives, renders on this thread use no other threads: for a program that renders many
    /// pictures beside each other.
    class AloneScope {
    public:
        AloneScope();
        ~AloneScope();
        AloneScope(const AloneScope&) = delete;
        AloneScope& operator=(const AloneScope&) = delete;

    private:
        bool previous_;
    };

    // For the suites and the other classes of the host.
    void report(Report::Kind kind, const std::string& text);
    /// Reports a wrong call and returns its status.
    OfxStatus badCall(const std::string& text, OfxStatus status);
    OfxStatus post(const Message& message);
    const void* fetchSuite(const char* name, int version);
    /// Sends an action to an entry point of the plug-in, with this host the current one. An
    /// exception that leaves the plug-in is a wrong call, with status 2; one that a suite held back
    /// is thrown here.
    OfxStatus send(OfxPluginEntryPoint* entry, const char* action, const void* handle,
                   OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs);
    /// Makes the calls of a multiThread on the host's threads. An exception that leaves one of them
    /// is a wrong call.
    OfxStatus runOnThreads(OfxThreadFunctionV1* function, unsigned int calls, void* argument);

private:
    void describeSelf(const HostIdentity& identity);

    HostBehaviour standard_;
    HostBehaviour* behaviour_;
    ReportSink onReport_;
    MessageSink onMessage_;
    RenderListener* listener_;
    PropertySet properties_;
    OfxHost record_{};
    std::unique_ptr<ThreadPool> pool_;
    std::recursive_mutex sinkMutex_;  ///< serialises the two sinks; one may call the other
};

/// Reports a wrong call to the current host, if there is one, and returns its status.
OfxStatus badCall(const std::string& text, OfxStatus status);

}  // namespace Tesseret::Host
