#pragma once

#include <cstdint>

#include "libraries/exceptions/ErrorContext.h"
#include "libraries/exceptions/OvRefCounter.h"

namespace Orvane::Exceptions {

/// Base of the family: a failure that cannot be handled where it occurs. The whole state is its
/// error context; the classes add only their identity.
class ExceptionI : public OvRefCounter {
public:
    ~ExceptionI() override = default;
    ExceptionI(const ExceptionI&) = default;
    ExceptionI& operator=(const ExceptionI&) = default;

    // Slot order: id, typeName, familyName.
    virtual int id() const = 0;
    virtual const char* typeName() const = 0;    ///< the exception's own class
    virtual const char* familyName() const = 0;  ///< the family it belongs to

    ErrorContext& context() { return context_; }
    const ErrorContext& context() const { return context_; }

protected:
    ExceptionI(const char* function, const char* path, std::int32_t line, std::int32_t id);

private:
    ErrorContext context_;
};

/// Family of general failures.
class Exception : public ExceptionI {
protected:
    using ExceptionI::ExceptionI;
};

/// An allocation failed.
class OutOfMemory final : public Exception {
public:
    static constexpr int kId = 5;

    OutOfMemory(const char* function, const char* path, std::int32_t line);
    int id() const override { return kId; }
    const char* typeName() const override { return "OutOfMemory"; }
    const char* familyName() const override { return "Exception"; }
};

/// Family of failures of worker threads.
class Threads : public ExceptionI {
protected:
    using ExceptionI::ExceptionI;
};

/// A worker did not finish its share.
class ThreadFailed final : public Threads {
public:
    static constexpr int kId = 4;

    /// `detail` is kept for the debugger; no report shows it.
    ThreadFailed(const char* function, const char* path, std::int32_t line, const char* detail);
    int id() const override { return kId; }
    const char* typeName() const override { return "ThreadFailed"; }
    const char* familyName() const override { return "Threads"; }
    const char* detail() const { return detail_; }

private:
    const char* detail_;
};

/// The first step of every catch site: stores the exception's names in its context and pushes that
/// context, which is then moved to the catch site. Needs no memory.
void recordCatch(ExceptionI& exception, const char* function, const char* file,
                 std::int32_t line) noexcept;

}  // namespace Orvane::Exceptions
