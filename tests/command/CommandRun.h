#pragma once

#include <string>
#include <vector>

namespace Tesseret::Command {

/// What a process left behind.
struct Outcome {
    int code = -1;    ///< as a shell has it: 128 + n when signal n ended it
    std::string out;  ///< standard output
    std::string err;  ///< standard error
};

/// The built `tesseret` as a process of its own.
class CommandRun {
public:
    using Arguments = std::vector<std::string>;

    /// Starts the program. With `mostFileBytes`, writing a larger file fails.
    explicit CommandRun(const Arguments& arguments, long mostFileBytes = -1);
    ~CommandRun();
    CommandRun(const CommandRun&) = delete;
    CommandRun& operator=(const CommandRun&) = delete;

    /// Waits until the standard output holds this many lines, or ends.
    void waitForLines(int count);
    void signal(int number) const;
    /// Waits for the end.
    Outcome finish();

private:
    bool readSome();

    int process_ = -1;
    int out_ = -1, err_ = -1;
    Outcome outcome_;
};

/// Runs it to its end.
Outcome run(const CommandRun::Arguments& arguments, long mostFileBytes = -1);

}  // namespace Tesseret::Command
