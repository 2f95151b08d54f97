#include "files/SequencePattern.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace Tesseret::Files {

namespace {

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

std::optional<Mark> findHashes(std::string_view name)
{
    const std::size_t last = name.rfind('#');
    if (last == std::string_view::npos) return std::nullopt;
    const std::size_t before = name.find_last_not_of('#', last);
    const std::size_t begin = before == std::string_view::npos ? 0 : before + 1;
    return Mark{begin, last + 1, static_cast<int>(last + 1 - begin)};
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

SequencePattern::SequencePattern(const std::filesystem::path& name)
    : name_(name), folder_(name.parent_path()), before_(name.filename().string())
{
    std::optional<Mark> mark = findHashes(before_);
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
