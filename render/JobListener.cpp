#include "render/JobListener.h"

#include <algorithm>

namespace Tesseret::Render {

JobListeners::JobListeners(std::initializer_list<JobListener*> listeners)
{
    for (JobListener* const listener : listeners) {
        if (listener) listeners_.push_back(listener);
    }
}

void JobListeners::frameBegan(int frame)
{
    notify(&JobListener::frameBegan, frame);
}

void JobListeners::matteTaken(Files::MatteFrom from)
{
    notify(&JobListener::matteTaken, from);
}

void JobListeners::mattePrepared(std::size_t step, const PreparedMatte& matte, std::size_t count)
{
    notify(&JobListener::mattePrepared, step, matte, count);
}

void JobListeners::areaBegan(std::size_t area, std::size_t count)
{
    notify(&JobListener::areaBegan, area, count);
}

void JobListeners::frameWritten(const FrameResult& result)
{
    notify(&JobListener::frameWritten, result);
}

void JobListeners::frameFailed(int frame, const std::string& text)
{
    notify(&JobListener::frameFailed, frame, text);
}

void JobListeners::warning(const std::string& text)
{
    notify(&JobListener::warning, text);
}

void JobListeners::message(const std::string& text)
{
    notify(&JobListener::message, text);
}

void JobListeners::stageBegan(Host::Instance& instance, std::string_view stage)
{
    notify(&JobListener::stageBegan, instance, stage);
}

void JobListeners::stageEnded(Host::Instance& instance, std::string_view stage)
{
    notify(&JobListener::stageEnded, instance, stage);
}

void JobListeners::progress(Host::Instance& instance, double fraction)
{
    notify(&JobListener::progress, instance, fraction);
}

void JobListeners::blockLaid(Host::Instance& instance, const TesseretBlockV1& block)
{
    notify(&JobListener::blockLaid, instance, block);
}

void JobListeners::note(Host::Instance& instance, std::string_view text)
{
    notify(&JobListener::note, instance, text);
}

bool JobListeners::wantsMaps(Host::Instance& instance)
{
    return std::ranges::any_of(
        listeners_, [&](JobListener* listener) { return listener->wantsMaps(instance); });
}

void JobListeners::mapMade(Host::Instance& instance, const TesseretMapV1& map)
{
    notify(&JobListener::mapMade, instance, map);
}

void JobListeners::pathFound(Host::Instance& instance, const TesseretPathV1& path)
{
    notify(&JobListener::pathFound, instance, path);
}

}  // namespace Tesseret::Render
