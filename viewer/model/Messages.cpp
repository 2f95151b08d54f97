#include "viewer/model/Messages.h"

#include <exception>
#include <utility>

namespace Tesseret::Viewer {

namespace {

constexpr std::size_t kMaxLines = 500;

}  // namespace

void MessageList::add(const std::string& line)
{
    const std::lock_guard lock(mutex_);
    lines_.push_back(line);
}

std::vector<std::string> MessageList::take()
{
    std::string errors = plugin_.takeErrors();
    const std::lock_guard lock(mutex_);
    std::vector<std::string> lines = std::exchange(lines_, {});
    if (!errors.empty()) lines.push_back(std::move(errors));
    return lines;
}

void MessageLog::add(Kind kind, const std::string& text)
{
    if (text.empty()) return;
    if (!lines_.empty() && lines_.back().kind == kind && lines_.back().text == text) return;
    if (lines_.size() == kMaxLines) lines_.erase(lines_.begin());
    lines_.push_back({kind, text});
    ++count_;
}

void MessageLog::attempt(const std::function<void()>& work)
{
    try {
        work();
    } catch (const std::exception& error) {
        add(Kind::Error, error.what());
    }
}

}  // namespace Tesseret::Viewer
