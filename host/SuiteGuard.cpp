#include "host/SuiteGuard.h"

#include <string>
#include <utility>

#include "host/EmbeddedHost.h"

namespace Tesseret::Host {

namespace {

thread_local HeldException* newest = nullptr;

std::string textOf(const std::exception_ptr& exception)
{
    try {
        std::rethrow_exception(exception);
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "of an unknown type";
    }
}

void report(const std::exception_ptr& exception)
{
    EmbeddedHost* const host = EmbeddedHost::current();
    if (!host) return;
    host->report(Report::Kind::Note, "an exception in a call of the plug-in: " + textOf(exception));
}

}  // namespace

HeldException::HeldException() : outer_(std::exchange(newest, this)) {}

HeldException::~HeldException()
{
    newest = outer_;
}

std::exception_ptr HeldException::take()
{
    return std::exchange(first_, nullptr);
}

void HeldException::rethrow()
{
    if (const std::exception_ptr exception = take()) std::rethrow_exception(exception);
}

void holdBack(std::exception_ptr exception) noexcept
{
    if (!exception) return;
    if (newest && !newest->first_) newest->first_ = exception;
    try {
        report(exception);
    } catch (...) {  // the exception may be the report's own
    }
}

}  // namespace Tesseret::Host
