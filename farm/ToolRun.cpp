#include "farm/ToolRun.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Tesseret::Farm {

namespace {

constexpr int kNoProgram = 127;

/// A nameless file for one stream.
class Capture {
public:
    Capture() : file_(std::tmpfile(), &std::fclose)
    {
        if (file_ == nullptr) throw std::system_error(errno, std::generic_category(), "tmpfile");
    }

    int descriptor() const { return ::fileno(file_.get()); }
    std::string text() const
    {
        std::rewind(file_.get());
        std::string text;
        std::array<char, 4096> part{};
        while (const std::size_t count = std::fread(part.data(), 1, part.size(), file_.get()))
            text.append(part.data(), count);
        return text;
    }

private:
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
};

/// Where the streams of a program that is started lead.
class Streams {
public:
    Streams(const Capture& out, const Capture& err)
    {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_addopen(&actions_, 0, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_adddup2(&actions_, out.descriptor(), 1);
        ::posix_spawn_file_actions_adddup2(&actions_, err.descriptor(), 2);
    }
    ~Streams() { ::posix_spawn_file_actions_destroy(&actions_); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

int codeOf(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waitpid");
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

std::string ToolResult::firstError() const
{
    const std::string line = err.substr(0, err.find('\n'));
    return line.empty() ? "it ended with exit code " + std::to_string(code) : line;
}

ToolResult runTool(const std::vector<std::string>& words)
{
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const Capture out, err;
    const Streams streams(out, err);
    pid_t process = -1;
    const int error = ::posix_spawnp(&process, arguments.front(), streams.get(), nullptr,
                                     arguments.data(), ::environ);
    if (error == ENOENT || error == EACCES) return {kNoProgram, "", ""};
    if (error != 0) throw std::system_error(error, std::generic_category(), words.front());
    const int code = codeOf(process);
    return {code, out.text(), err.text()};
}

}  // namespace Tesseret::Farm
