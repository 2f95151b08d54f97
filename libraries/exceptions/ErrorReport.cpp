#include "libraries/exceptions/ErrorReport.h"

#include <cstring>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>

namespace Orvane::Exceptions {
namespace {

constexpr const char* kLineEnd = "\r\n";
constexpr const char* kRule = "----------------------------------------";
constexpr std::size_t kFunctionColumn = 30;
constexpr std::size_t kFileColumn = 20;

/// A name fitted to its column: a longer one becomes dots and its last characters.
std::string shortened(std::string_view name, std::size_t column)
{
    if (name.size() <= column) return std::string(name);
    return "..." + std::string(name.substr(name.size() - (column - 3)));
}

/// A number in decimal, zero-filled to at least `digits`.
std::string padded(int number, int digits)
{
    std::string text = std::to_string(number);
    if (text.size() < static_cast<std::size_t>(digits)) {
        text.insert(0, static_cast<std::size_t>(digits) - text.size(), '0');
    }
    return text;
}

void writeTime(std::ostream& out, const UtcTime& when)
{
    out << padded(when.day, 2) << '/' << padded(when.month, 2) << '/' << when.year << ' '
        << padded(when.hour, 2) << ':' << padded(when.minute, 2) << ':' << padded(when.second, 2)
        << kLineEnd;
}

void writeEntry(std::ostream& out, const ErrorContext& entry)
{
    out << "[ Err " << padded(entry.id, 4) << "]  ";
    if (entry.function != nullptr && std::strcmp(entry.function, kUnknownFunction) != 0) {
        out << std::left << std::setfill(' ') << std::setw(kFunctionColumn)
            << shortened(entry.function, kFunctionColumn) << "  ";
    }
    if (entry.file != nullptr) {
        out << std::right << std::setfill(' ') << std::setw(kFileColumn)
            << shortened(entry.file, kFileColumn);
        if (entry.line != 0) out << '(' << padded(entry.line, 4) << ") ";
    }
    out << "\"Unregistered Error (" << entry.id << ")\"  ("
        << (entry.typeName != nullptr ? entry.typeName : "") << ')' << kLineEnd;
}

}  // namespace

void writeErrorReport(std::ostream& out)
{
    writeErrorReport(out, errorContexts(), utcNow());
}

void writeErrorReport(std::ostream& out, const ErrorStacks& stacks, const UtcTime& when)
{
    writeTime(out, when);
    out << kRule << kLineEnd;
    for (const auto& [thread, stack] : stacks) {
        if (stacks.size() > 1) out << "Thread " << thread << kLineEnd << kRule << kLineEnd;
        std::size_t number = stack.size();
        for (auto entry = stack.rbegin(); entry != stack.rend(); ++entry) {
            out << number-- << ". ";
            writeEntry(out, entry->second);
        }
        out << kLineEnd;
    }
    out << '\0';
}

}  // namespace Orvane::Exceptions
