#pragma once

#include <iosfwd>

#include "libraries/exceptions/ErrorContext.h"
#include "platform/Clock.h"

namespace Orvane::Exceptions {

/// Writes all pushed contexts as the plain text that users quote: a UTC time stamp, a rule, then
/// each thread's contexts from the newest to the oldest. Lines end in CR LF, the text in one NUL,
/// so that the buffer of an in-memory stream can be passed on unchanged.
void writeErrorReport(std::ostream& out);

/// The same for given stacks and a given moment.
void writeErrorReport(std::ostream& out, const ErrorStacks& stacks, const UtcTime& when);

}  // namespace Orvane::Exceptions
