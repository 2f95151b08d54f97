#pragma once

/// Ctrl-C and requests to terminate: the first aborts the running render through the host, a second
/// ends the process at once.

#include "host/Instance.h"

namespace Tesseret::Render {

/// Installs the handlers for SIGINT and SIGTERM; called once, before threads start.
void catchInterrupts();

/// Whether an interrupt has come.
bool isInterrupted();

/// Forgets the interrupts that came: what they asked for was done.
void forgetInterrupts();

/// An instance that an interrupt aborts while this object lives. At most kMaxTargets at a time: of
/// more, an interrupt ends the renders that it does not reach once they are done.
inline constexpr int kMaxTargets = 64;
class InterruptTarget {
public:
    explicit InterruptTarget(Host::Instance& instance);
    ~InterruptTarget();
    InterruptTarget(const InterruptTarget&) = delete;
    InterruptTarget& operator=(const InterruptTarget&) = delete;

private:
    int slot_ = kMaxTargets;
};

}  // namespace Tesseret::Render
