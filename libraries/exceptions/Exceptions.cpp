#include "libraries/exceptions/Exceptions.h"

namespace Orvane::Exceptions {

ExceptionI::ExceptionI(const char* function, const char* path, std::int32_t line, std::int32_t id)
{
    context_.id = id;
    context_.moveTo(function, path, line);
}

OutOfMemory::OutOfMemory(const char* function, const char* path, std::int32_t line)
    : Exception(function, path, line, kId)
{}

ThreadFailed::ThreadFailed(const char* function, const char* path, std::int32_t line,
                           const char* detail)
    : Threads(function, path, line, kId), detail_(detail)
{}

void recordCatch(ExceptionI& exception, const char* function, const char* file,
                 std::int32_t line) noexcept
{
    exception.context().typeName = exception.typeName();
    exception.context().familyName = exception.familyName();
    pushErrorContext(exception.context(), function, file, line);
}

}  // namespace Orvane::Exceptions
