#include "host/files/SequencePattern.h"

#include <algorithm>
#include <cstdlib>
#include <regex>

namespace Tesseret::Files {

namespace {

std::string padded(int frame, int digits)
{
    std::string number = std::to_string(std::abs(static_cast<long long>(frame)));
    const auto width = static_cast<std::size_t>(digits);
    if (number.size() < width) number.insert(0, width - number.size(), '0');
    return frame < 0 ? "-" + number : number;
}

}  // namespace

SequencePattern::SequencePattern(const std::filesystem::path& name)
    : name_(name), folder_(name.parent_path()), before_(name.filename().string())
{
    // Greedy first groups find the last mark.
    static const std::regex hashes("(.*[^#]|)(#+)([^#]*)");
    static const std::regex printf("(.*)%(0[1-9]|)d(.*)");
    std::smatch match;
    const std::string text = before_;
    if (std::regex_match(text, match, hashes)) {
        digits_ = static_cast<int>(match.length(2));
    } else if (std::regex_match(text, match, printf)) {
        digits_ = match.length(2) > 0 ? match.str(2)[1] - '0' : 1;
    } else {
        return;
    }
    before_ = match.str(1);
    after_ = match.str(3);
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
