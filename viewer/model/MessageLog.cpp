#include "viewer/model/MessageLog.h"

#include <exception>

namespace Tesseret::Viewer {

namespace {

constexpr std::size_t kMostLines = 500;

}  // namespace

void MessageLog::add(Kind kind, const std::string& text)
{
    if (text.empty()) return;
    if (!lines_.empty() && lines_.back().kind == kind && lines_.back().text == text) return;
    if (lines_.size() == kMostLines) lines_.erase(lines_.begin());
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
