#pragma once

#include <cstddef>
#include <span>

namespace Tesseret::Host {

/// Keeps the recorded blocks of one instance, by "TesseretRecordSuite". Calls come on the thread
/// that renders the instance. An exception of a call is rethrown by the host's function that sent
/// the action, after the plug-in has returned.
class RecordKeeper {
public:
    virtual ~RecordKeeper() = default;
    /// A record for an instance that has no blocks to repeat; empty for none. The bytes stay until
    /// the render ends.
    virtual std::span<const std::byte> offered() = 0;
    /// Whether the instance repeats what was offered.
    virtual void taken(bool isUsable) = 0;
    /// Whether `made` is to be called after a render that chose new blocks.
    virtual bool wantsRecord() = 0;
    virtual void made(std::span<const std::byte> record) = 0;
};

}  // namespace Tesseret::Host
