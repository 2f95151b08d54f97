#include "libraries/exceptions/ErrorContext.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <span>

#include "libraries/services/HostServices.h"

namespace Orvane::Exceptions {
namespace {

struct Entry {
    unsigned int thread;
    ErrorContext context;
};

/// All stacks, as entries in the order they were pushed. The storage is fixed: the most frequent
/// failure is a lack of memory, on threads whose frames belong to the host.
struct Table {
    std::mutex lock;
    std::size_t count = 0;
    std::array<Entry, kMaxErrorContexts> entries;
};

// Zero-initialised: no code has to run when the library is loaded.
Table table;

}  // namespace

const char* fileOfPath(const char* path) noexcept
{
    if (path == nullptr) return nullptr;
    const char* backslash = std::strrchr(path, '\\');
    return backslash != nullptr ? backslash : path;
}

void ErrorContext::moveTo(const char* newFunction, const char* path, std::int32_t newLine) noexcept
{
    function = newFunction;
    file = fileOfPath(path);
    line = newLine;
}

void pushErrorContext(ErrorContext& context, const char* function, const char* file,
                      std::int32_t line) noexcept
{
    const unsigned int thread = threadService().threadIndex();
    {
        const std::lock_guard guard(table.lock);
        if (table.count < table.entries.size()) {
            table.entries[table.count++] = {.thread = thread, .context = context};
        }
    }
    context.moveTo(function, file, line);
}

void clearErrorContexts() noexcept
{
    const std::lock_guard guard(table.lock);
    table.count = 0;
}

ErrorStacks errorContexts()
{
    ErrorStacks stacks;
    const std::lock_guard guard(table.lock);
    for (const Entry& entry : std::span(table.entries).first(table.count)) {
        ErrorStack& stack = stacks[entry.thread];
        stack.emplace(static_cast<std::uint32_t>(stack.size()), entry.context);
    }
    return stacks;
}

}  // namespace Orvane::Exceptions
