#include "command/ProgressBar.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <unistd.h>

namespace Tesseret::Command {

namespace {

constexpr std::chrono::milliseconds kInterval{100};
constexpr int kCells = 30;

}  // namespace

ProgressBar::ProgressBar(std::FILE* stream, bool wanted)
    : stream_(stream), shown_(wanted && ::isatty(::fileno(stream)) == 1)
{}

void ProgressBar::update(double fraction, const std::string& text)
{
    const auto now = std::chrono::steady_clock::now();
    if (!shown_ || now < next_) return;
    next_ = now + kInterval;
    const double part = std::clamp(fraction, 0.0, 1.0);
    const auto full = static_cast<std::size_t>(std::lround(part * kCells));
    const std::string bar = std::string(full, '=') + std::string(kCells - full, ' ');
    std::fprintf(stream_, "\r[%s] %3d%%  %s\x1b[K", bar.c_str(), static_cast<int>(part * 100.0),
                 text.c_str());
    std::fflush(stream_);
    drawn_ = true;
}

void ProgressBar::clear()
{
    if (!drawn_) return;
    std::fputs("\r\x1b[K", stream_);
    std::fflush(stream_);
    drawn_ = false;
    next_ = {};
}

std::string durationText(double seconds)
{
    const long total = std::lround(std::clamp(seconds, 0.0, 1e6));
    std::array<char, 32> text{};
    if (total < 3600) {
        std::snprintf(text.data(), text.size(), "%ld:%02ld", total / 60, total % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%ld:%02ld:%02ld", total / 3600, total / 60 % 60,
                      total % 60);
    }
    return text.data();
}

}  // namespace Tesseret::Command
