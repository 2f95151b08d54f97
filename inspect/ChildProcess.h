#pragma once

/// Work in a process of its own, which may crash or hang.

#include <chrono>
#include <functional>
#include <string>

namespace Tesseret::Inspect {

/// Sends one line to the parent; called by the work, in the child. The line has no line end.
using SendLine = std::function<void(const std::string& line)>;

/// How the child ended; when the work returned, all else is 0.
struct ChildEnd {
    bool returned = false;
    bool timedOut = false;  ///< the time was over, and the child was ended
    int signal = 0;         ///< that ended it, or 0
    int exitCode = 0;       ///< it ended itself
};

/// Runs `work` in a child process with the same memory, and passes each line it sends to `onLine`,
/// here. Whatever the child prints goes to standard error. Call it while this process has one
/// thread. Throws std::system_error when no process can be started.
ChildEnd runInChild(const std::function<void(const SendLine&)>& work,
                    std::chrono::milliseconds limit,
                    const std::function<void(const std::string& line)>& onLine);

}  // namespace Tesseret::Inspect
