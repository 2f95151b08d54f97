#pragma once

/// Ctrl-C and requests to terminate: the first aborts the running render through the host, a second
/// ends the process at once.

#include "host/Instance.h"

namespace Tesseret::Render {

/// Installs the handlers for SIGINT and SIGTERM; called once, before threads start.
void catchInterrupts();

/// Whether an interrupt has come.
bool isInterrupted();

/// The instance that an interrupt aborts while this object lives. One at a time.
class InterruptTarget {
public:
    explicit InterruptTarget(Host::Instance& instance);
    ~InterruptTarget();
    InterruptTarget(const InterruptTarget&) = delete;
    InterruptTarget& operator=(const InterruptTarget&) = delete;
};

}  // namespace Tesseret::Render
