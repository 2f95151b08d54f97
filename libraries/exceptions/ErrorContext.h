#pragma once

#include <cstddef>
#include <cstdint>
#include <map>

namespace Orvane::Exceptions {

/// The function name of every raise and catch site; the report leaves such names out.
inline constexpr const char* kUnknownFunction = "unknown()";

/// Where an exception was raised or last caught. All texts are static.
struct ErrorContext {
    std::int32_t id = 0;
    const char* function = nullptr;  ///< may be null
    const char* file = nullptr;      ///< from the last backslash of the path on; may be null
    std::int32_t line = 0;           ///< 0 means no line
    const char* typeName = nullptr;  ///< filled by the catch site, as is familyName
    const char* familyName = nullptr;

    /// Moves the context to another place in the source.
    void moveTo(const char* newFunction, const char* path, std::int32_t newLine) noexcept;
};

/// The part of `path` from its last backslash on, backslash included; all of it when there is none.
const char* fileOfPath(const char* path) noexcept;

/// The contexts one thread has pushed, by sequence number: 0 is the oldest.
using ErrorStack = std::map<std::uint32_t, ErrorContext>;
/// The stacks by host thread index.
using ErrorStacks = std::map<unsigned int, ErrorStack>;

/// The capacity of all stacks together: more than a failing pass can push on any machine. They are
/// emptied after each failure.
inline constexpr std::size_t kMaxErrorContexts = 1024;

/// Appends an unchanged copy of the context to the calling thread's stack, then moves the context
/// itself to the catch site: a stored context records where its exception came from. Threads may
/// push at the same moment. Needs no memory; when the stacks are full only the context itself
/// moves.
void pushErrorContext(ErrorContext& context, const char* function, const char* file,
                      std::int32_t line) noexcept;

/// Removes every thread's stack.
void clearErrorContexts() noexcept;

/// A copy of all stacks. Throws std::bad_alloc.
ErrorStacks errorContexts();

}  // namespace Orvane::Exceptions
