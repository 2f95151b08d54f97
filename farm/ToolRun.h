#pragma once

#include <string>
#include <vector>

namespace Tesseret::Farm {

/// What another program left behind.
struct ToolResult {
    int code = -1;    ///< as a shell has it; 127: there is no such program
    std::string out;  ///< standard output
    std::string err;  ///< standard error

    /// The first line that it wrote on standard error, else its exit code in words.
    std::string firstError() const;
};

/// Runs a program of the search path to its end, with no input. Throws `std::system_error` where
/// not even that can be tried.
ToolResult runTool(const std::vector<std::string>& words);

}  // namespace Tesseret::Farm
