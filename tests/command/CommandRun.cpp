#include "tests/command/CommandRun.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tesseret::Command {

namespace {

[[noreturn]] void become(const CommandRun::Arguments& arguments, int out, int err,
                         long mostFileBytes)
{
    ::dup2(out, STDOUT_FILENO);
    ::dup2(err, STDERR_FILENO);
    if (mostFileBytes >= 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const auto most = static_cast<rlim_t>(mostFileBytes);
        const rlimit limit{most, most};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    std::vector<char*> words{const_cast<char*>("tesseret")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    ::execv(TESSERET_COMMAND, words.data());
    ::_exit(127);
}

/// False at the end of the stream.
bool append(int stream, std::string& text)
{
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(stream, buffer.data(), buffer.size());
    if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

}  // namespace

CommandRun::CommandRun(const Arguments& arguments, long mostFileBytes)
{
    std::array<int, 2> out{}, err{};
    if (::pipe(out.data()) != 0 || ::pipe(err.data()) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ == 0) become(arguments, out[1], err[1], mostFileBytes);
    ::close(out[1]);
    ::close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

CommandRun::~CommandRun()
{
    if (process_ > 0) {
        signal(SIGKILL);
        finish();
    }
}

bool CommandRun::readSome()
{
    std::array<pollfd, 2> streams{pollfd{out_, POLLIN, 0}, pollfd{err_, POLLIN, 0}};
    if (out_ < 0 && err_ < 0) return false;
    ::poll(streams.data(), streams.size(), -1);  // a negative descriptor is left out
    const auto take = [](const pollfd& stream, int& descriptor, std::string& text) {
        if (stream.revents == 0 || append(descriptor, text)) return;
        ::close(descriptor);
        descriptor = -1;
    };
    take(streams[0], out_, outcome_.out);
    take(streams[1], err_, outcome_.err);
    return true;
}

void CommandRun::waitForLines(int count)
{
    while (std::ranges::count(outcome_.out, '\n') < count && readSome()) {
    }
}

void CommandRun::signal(int number) const
{
    ::kill(process_, number);
}

Outcome CommandRun::finish()
{
    while (readSome()) {
    }
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    outcome_.code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return outcome_;
}

Outcome run(const CommandRun::Arguments& arguments, long mostFileBytes)
{
    return CommandRun(arguments, mostFileBytes).finish();
}

}  // namespace Tesseret::Command
