#include "libraries/exceptions/ErrorContext.h"

#include <cstring>
#include <mutex>

#include "libraries/services/HostServices.h"

namespace Orvane::Exceptions {
namespace {

struct Table {
    std::mutex lock;
    ErrorStacks stacks;
};

// Built at the first failure, so that a library that never fails runs no code when it is loaded.
Table& table()
{
    static Table instance;
    return instance;
}

}  // namespace

const char* fileOfPath(const char* path)
{
    if (path == nullptr) return nullptr;
    const char* backslash = std::strrchr(path, '\\');
    return backslash != nullptr ? backslash : path;
}

void ErrorContext::moveTo(const char* newFunction, const char* path, std::int32_t newLine)
{
    function = newFunction;
    file = fileOfPath(path);
    line = newLine;
}

void pushErrorContext(ErrorContext& context, const char* function, const char* file,
                      std::int32_t line)
{
    const unsigned int thread = threadService().threadIndex();
    {
        const std::lock_guard guard(table().lock);
        ErrorStack& stack = table().stacks[thread];
        stack.emplace(static_cast<std::uint32_t>(stack.size()), context);
    }
    context.moveTo(function, file, line);
}

void clearErrorContexts()
{
    const std::lock_guard guard(table().lock);
    table().stacks.clear();
}

ErrorStacks errorContexts()
{
    const std::lock_guard guard(table().lock);
    return table().stacks;
}

}  // namespace Orvane::Exceptions
