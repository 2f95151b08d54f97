#pragma once

/// An effect of a test's own, described to the embedded host and bound to an instance of it.

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "host/Descriptor.h"
#include "products/OFX/Support/Effect.h"
#include "tests/support/TinyEffect.h"

namespace Tesseret::Fixtures {

class FrameworkRig {
public:
    /// What a test puts into its effect; called for the descriptor and again for the instance.
    using Fill =
        std::function<void(Orvane::OvOfxEffect& effect, Orvane::OvOfxContextContainer& container)>;

    FrameworkRig(Fill fill, const Fixtures::HostQuirks& quirks = {},
                 Orvane::OvContext context = Orvane::OvContext::General);
    ~FrameworkRig();
    FrameworkRig(const FrameworkRig&) = delete;
    FrameworkRig& operator=(const FrameworkRig&) = delete;

    /// Defines clips and parameters; returns the first status that is not 0.
    OfxStatus describe();
    /// Makes an instance of what was described and binds a second effect to it.
    Orvane::OvOfxEffect& bind();

    TinyHost& tiny() { return tiny_; }
    Host::EmbeddedHost& host() { return tiny_.host(); }
    HostQuirks& quirks() { return tiny_.quirks(); }
    CallRecorder& calls() { return tiny_.calls(); }
    Host::Descriptor& descriptor() { return descriptor_; }
    /// The effect that was described.
    Orvane::OvOfxEffect& described() { return *described_; }
    /// After `bind`.
    Host::Instance& instance() { return *instance_; }

private:
    std::unique_ptr<Orvane::OvOfxEffect> make() const;

    Fill fill_;
    Orvane::OvContext context_;
    TinyHost tiny_;
    Host::Descriptor descriptor_;
    std::unique_ptr<Orvane::OvOfxEffect> described_;
    std::unique_ptr<Host::Instance> instance_;
    std::unique_ptr<Orvane::OvOfxEffect> bound_;
};

}  // namespace Tesseret::Fixtures
