#include "files/Sequence.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <set>
#include <stdexcept>
#include <string_view>

namespace Tesseret::Files {

namespace {

constexpr std::size_t kMaxFrames = 1'000'000;

[[noreturn]] void fail(std::string_view text, const std::string& reason)
{
    throw std::invalid_argument("frames \"" + std::string(text) + "\": " + reason);
}

/// Removes the number at the start of `rest` and returns it.
int takeNumber(std::string_view& rest, std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
    if (error != std::errc()) fail(text, "expected 1001, 1001-1100 or 1001-1100x2");
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
    if (!rest.empty()) fail(text, "expected 1001, 1001-1100 or 1001-1100x2");
    if (span.last < span.first) fail(text, "the range runs downwards");
    if (span.step < 1) fail(text, "the step is below 1");
    return span;
}

std::string padded(int frame, int digits)
{
    std::string number = std::to_string(std::abs(static_cast<long long>(frame)));
    const auto width = static_cast<std::size_t>(digits);
    if (number.size() < width) number.insert(0, width - number.size(), '0');
    return frame < 0 ? "-" + number : number;
}

/// The place of a frame number in a name: the characters [begin, end), and how many digits.
struct Mark {
    std::size_t begin, end;
    int digits;
};

/// The last run of a character.
std::optional<Mark> findRun(std::string_view name, char mark)
{
    const std::size_t last = name.rfind(mark);
    if (last == std::string_view::npos) return std::nullopt;
    const std::size_t before = name.find_last_not_of(mark, last);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    return Mark{begin, last + 1, static_cast<int>(last + 1 - begin)};
}

/// A single '@' before a letter or digit belongs to the name: "icon@2x.png".
std::optional<Mark> findAts(std::string_view name)
{
    const std::optional<Mark> run = findRun(name, '@');
    const bool isWord = run && run->digits == 1 && run->end < name.size() &&
                        std::isalnum(static_cast<unsigned char>(name[run->end])) != 0;
    return isWord ? std::nullopt : run;
}

/// The last "%d" or "%0Nd".
std::optional<Mark> findPrintf(std::string_view name)
{
    for (std::size_t at = name.rfind('%'); at != std::string_view::npos;
         at = at == 0 ? std::string_view::npos : name.rfind('%', at - 1)) {
        const std::string_view rest = name.substr(at + 1);
        if (rest.starts_with('d')) return Mark{at, at + 2, 1};
        const bool isPadded = rest.size() >= 3 && rest[0] == '0' && rest[1] >= '1' &&
                              rest[1] <= '9' && rest[2] == 'd';
        if (isPadded) return Mark{at, at + 4, rest[1] - '0'};
    }
    return std::nullopt;
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
            if (frames.size() == kMaxFrames) fail(text, "more than a million frames");
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

SequencePattern::SequencePattern(const std::filesystem::path& name)
    : name_(name), folder_(name.parent_path()), before_(name.filename().string())
{
    std::optional<Mark> mark = findRun(before_, '#');
    if (!mark) mark = findAts(before_);
    if (!mark) mark = findPrintf(before_);
    if (!mark) return;
    digits_ = mark->digits;
    after_ = before_.substr(mark->end);
    before_.resize(mark->begin);
}

std::filesystem::path SequencePattern::file(int frame) const
{
    return folder_ / (digits_ ? before_ + padded(frame, *digits_) + after_ : before_);
}

std::vector<int> SequencePattern::found() const
{
    std::vector<int> frames;
    std::error_code error;
    const std::filesystem::path folder = folder_.empty() ? "." : folder_;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (!name.starts_with(before_) || !name.ends_with(after_)) continue;
        if (name.size() <= before_.size() + after_.size()) continue;
        const std::string_view number = std::string_view(name).substr(
            before_.size(), name.size() - before_.size() - after_.size());
        int frame = 0;
        const auto [end, fault] =
            std::from_chars(number.data(), number.data() + number.size(), frame);
        const bool isNumber = fault == std::errc() && end == number.data() + number.size();
        if (isNumber && padded(frame, *digits_) == number) frames.push_back(frame);
    }
    std::ranges::sort(frames);
    return frames;
}

std::vector<int> SequencePattern::missing(const std::vector<int>& frames) const
{
    std::vector<int> absent;
    std::ranges::copy_if(frames, std::back_inserter(absent), [this](int frame) {
        std::error_code ignored;
        return !std::filesystem::exists(file(frame), ignored);
    });
    return absent;
}

}  // namespace Tesseret::Files
