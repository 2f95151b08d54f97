#pragma once

namespace Orvane {

/// The error codes that a failed worker stores in the status record and in its node.
inline constexpr int kErrorOutOfMemory = 1000;
inline constexpr int kErrorThreadFailed = 1002;

/// Abort and failure of the current render, shared by everything that runs in it. Not owned by the
/// nodes that point at it. Workers only write `aborted` and `errorCode`, atomically.
struct RenderStatus {
    /// Returns non-zero when the render is to stop; may store an error code.
    using Poll = int (*)(void* abortHandle, int* errorCode);

    void* abortHandle = nullptr;
    Poll poll = nullptr;
    int aborted = 0;
    int errorCode = 0;

    /// Whether the render is to stop, asking the host unless it is known already.
    [[nodiscard]] bool pollAbort()
    {
        if (aborted == 0 && poll != nullptr) aborted = poll(abortHandle, &errorCode);
        return aborted != 0;
    }
};

}  // namespace Orvane
