#include "files/FrameRange.h"

#include <charconv>
#include <set>
#include <stdexcept>

namespace Tesseret::Files {

namespace {

constexpr std::size_t kMostFrames = 1'000'000;

[[noreturn]] void fail(std::string_view text, const std::string& reason)
{
    throw std::invalid_argument("frames \"" + std::string(text) + "\": " + reason);
}

/// Takes the number at the start of `rest`.
int takeNumber(std::string_view& rest, std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc()) fail(text, "write 1001, 1001-1100 or 1001-1100x2");
    rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    return number;
}

bool takeCharacter(std::string_view& rest, char character)
{
    if (rest.empty() || rest.front() != character) return false;
    rest.remove_prefix(1);
    return true;
}

struct Span {
    int first, last, step;
};

Span parseSpan(std::string_view rest, std::string_view text)
{
    Span span{takeNumber(rest, text), 0, 1};
    span.last = takeCharacter(rest, '-') ? takeNumber(rest, text) : span.first;
    if (takeCharacter(rest, 'x')) span.step = takeNumber(rest, text);
    if (!rest.empty()) fail(text, "write 1001, 1001-1100 or 1001-1100x2");
    if (span.last < span.first) fail(text, "the range runs downwards");
    if (span.step < 1) fail(text, "the step is below 1");
    return span;
}

}  // namespace

std::vector<int> parseFrames(std::string_view text)
{
    std::vector<int> frames;
    std::set<int> seen;
    for (std::string_view rest = text;;) {
        const std::size_t comma = rest.find(',');
        const Span span = parseSpan(rest.substr(0, comma), text);
        for (long long frame = span.first; frame <= span.last; frame += span.step) {
            if (frames.size() == kMostFrames) fail(text, "more than a million frames");
            const int number = static_cast<int>(frame);
            if (seen.insert(number).second) frames.push_back(number);
        }
        if (comma == std::string_view::npos) return frames;
        rest.remove_prefix(comma + 1);
    }
}

std::string framesText(const std::vector<int>& frames)
{
    std::string text;
    for (std::size_t i = 0; i < frames.size();) {
        std::size_t end = i + 1;
        while (end < frames.size() && frames[end] == frames[end - 1] + 1) ++end;
        if (!text.empty()) text += ',';
        text += std::to_string(frames[i]);
        if (end - i > 1) text += '-' + std::to_string(frames[end - 1]);
        i = end;
    }
    return text;
}

}  // namespace Tesseret::Files
