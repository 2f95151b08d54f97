#pragma once

/// One host: the record a plug-in is given, its identity and suites, its threads, and where it
/// tells what happens. Several hosts may live in one process; each handle leads to its own. Calls
/// that carry no handle (threads, null effects) belong to the host whose action runs on the calling
/// thread, else to the newest.

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "host/HostQuirks.h"
#include "host/HostRecords.h"
#include "host/HostSinks.h"
#include "host/PropertySet.h"

namespace Tesseret::Host {

class ThreadPool;

struct HostOptions {
    HostQuirks quirks{};
    unsigned int threads = 0;  ///< 0 is the number of processors
    bool recording = false;    ///< keep the lists of writes, suite fetches, actions and messages
    ReportSink onReport{};
    MessageSink onMessage{};
    RenderListener* listener = nullptr;  ///< not owned; with it "TesseretObserverSuite" is offered
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
    HostQuirks& quirks() { return quirks_; }
    const HostQuirks& quirks() const { return quirks_; }
    unsigned int threads() const;
    /// Not owned; null withdraws the suite. Set while nothing renders.
    void setListener(RenderListener* listener) { listener_ = listener; }
    RenderListener* listener() const { return listener_; }

    Counters counters() const;
    /// Sets the counts, and with them the faults to order, back to the start; forgets the recorded
    /// lists.
    void resetCounters();
    std::vector<PropertyWrite> propertyWrites() const;
    std::vector<SuiteFetch> suiteFetches() const;
    std::vector<ActionRecord> actions() const;
    std::vector<Message> messages() const;
    /// The texts of all wrong calls since the last reset, at most 100.
    std::vector<std::string> badCalls() const;

    /// The host of the calling thread, as said above; null when there is none.
    static EmbeddedHost* current();

    /// Makes a host the current one of this thread while it lives.
    class Scope {
    public:
        explicit Scope(EmbeddedHost& host);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        EmbeddedHost* previous_;
    };

    // What the suites and the other classes of the host use.
    void report(Report::Kind kind, const std::string& text);
    /// Reports a wrong call and returns its status.
    OfxStatus badCall(const std::string& text, OfxStatus status);
    OfxStatus post(const Message& message);
    const void* fetchSuite(const char* name, int version);
    void recordWrite(PropertyWrite write);
    void recordAction(std::string_view action, OfxStatus status);
    ThreadPool& pool() { return *pool_; }

    /// The live counts behind `counters`.
    struct Counts {
        std::atomic<unsigned int> imagesFetched{0}, fetchCalls{0}, imagesReleased{0},
            allocations{0}, locks{0}, blocksLive{0}, memoryBlocksLive{0}, multiThreadCalls{0},
            abortPolls{0}, badCalls{0}, cpuQuestions{0};
        std::atomic<std::size_t> bytesLive{0}, bytesPeak{0};
    };
    Counts& counts() { return counts_; }

private:
    void describeSelf();

    HostQuirks quirks_;
    bool recording_;
    ReportSink onReport_;
    MessageSink onMessage_;
    RenderListener* listener_;
    PropertySet properties_;
    OfxHost record_{};
    std::unique_ptr<ThreadPool> pool_;
    Counts counts_;

    mutable std::mutex mutex_;  ///< guards the lists below
    std::vector<PropertyWrite> writes_;
    std::vector<SuiteFetch> fetches_;
    std::vector<ActionRecord> actions_;
    std::vector<Message> messages_;
    std::vector<std::string> badCallTexts_;
    std::recursive_mutex sinkMutex_;  ///< serialises the two sinks; one may lead to the other
};

/// Reports a wrong call to the current host, if there is one, and returns its status.
OfxStatus badCall(const std::string& text, OfxStatus status);

}  // namespace Tesseret::Host
