#include "inspect/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tesseret::Inspect {

namespace {

using Clock = std::chrono::steady_clock;

/// Of a child whose work returned; a library that ends the process itself will hardly choose it.
constexpr int kReturned = 97;
constexpr std::size_t kLongestLine = std::size_t{16} << 20;

/// Ends like a program without handlers, and leaves no memory image.
void resetProcess()
{
    for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGINT, SIGTERM, SIGPIPE})
        std::signal(number, SIG_DFL);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    ::setpgid(0, 0);
    ::dup2(STDERR_FILENO, STDOUT_FILENO);
}

void writeAll(int pipe, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t count = ::write(pipe, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) ::_exit(1);
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

[[noreturn]] void runChild(const std::function<void(const SendLine&)>& work, int pipe)
{
    resetProcess();
    try {
        work([pipe](const std::string& line) { writeAll(pipe, line + "\n"); });
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tesseret: %s\n", error.what());
        ::_exit(1);
    }
    std::fflush(nullptr);
    ::_exit(kReturned);
}

/// Passes on whole lines of the pipe until its end, or until the time is over.
void readLines(int pipe, Clock::time_point end,
               const std::function<void(const std::string& line)>& onLine)
{
    std::string text;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waiting{pipe, POLLIN, 0};
        if (left <= 0) return;
        if (::poll(&waiting, 1, static_cast<int>(left)) <= 0) continue;
        std::array<char, 65536> buffer{};
        const ssize_t count = ::read(pipe, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        text.append(buffer.data(), static_cast<std::size_t>(count));
        for (std::size_t line; (line = text.find('\n')) != std::string::npos;) {
            onLine(text.substr(0, line));
            text.erase(0, line + 1);
        }
        if (text.size() > kLongestLine) return;
    }
}

/// Waits until the child ends, or ends it with all its children when the time is over.
ChildEnd waitFor(pid_t child, Clock::time_point end)
{
    ChildEnd result;
    int status = 0;
    pid_t ended = 0;
    while ((ended = ::waitpid(child, &status, WNOHANG)) == 0 && Clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (ended == 0) {
        result.timedOut = true;
        ::kill(-child, SIGKILL);
        ::kill(child, SIGKILL);
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        return result;
    }
    if (WIFSIGNALED(status)) result.signal = WTERMSIG(status);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    result.returned = code == kReturned;
    if (!result.returned) result.exitCode = code;
    return result;
}

}  // namespace

ChildEnd runInChild(const std::function<void(const SendLine&)>& work,
                    std::chrono::milliseconds limit,
                    const std::function<void(const std::string& line)>& onLine)
{
    std::array<int, 2> pipe{};
    if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    std::fflush(nullptr);
    const Clock::time_point end = Clock::now() + limit;
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe[0]);
        runChild(work, pipe[1]);
    }
    ::close(pipe[1]);
    if (child < 0) {
        ::close(pipe[0]);
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    readLines(pipe[0], end, onLine);
    ::close(pipe[0]);
    return waitFor(child, end);
}

}  // namespace Tesseret::Inspect
