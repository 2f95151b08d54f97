#pragma once

#include <initializer_list>
#include <vector>

#include "render/RenderJob.h"

namespace Tesseret::Render {

/// Tells several listeners what one is told, in their order.
class JobListeners final : public JobListener {
public:
    /// They outlive this; null ones are left out.
    JobListeners(std::initializer_list<JobListener*> listeners);

    void frameBegan(int frame) override;
    void matteTaken(Files::MatteFrom from) override;
    void areaBegan(std::size_t area, std::size_t count) override;
    void frameWritten(const FrameResult& result) override;
    void warning(const std::string& text) override;
    void message(const std::string& text) override;
    void stageBegan(Host::Instance& instance, std::string_view stage) override;
    void stageEnded(Host::Instance& instance, std::string_view stage) override;
    void progress(Host::Instance& instance, double fraction) override;
    void blockLaid(Host::Instance& instance, const TesseretBlockV1& block) override;
    void note(Host::Instance& instance, std::string_view text) override;
    /// Whether any of them wants maps; all are told of them then.
    bool wantsMaps(Host::Instance& instance) override;
    void mapMade(Host::Instance& instance, const TesseretMapV1& map) override;
    void pathFound(Host::Instance& instance, const TesseretPathV1& path) override;

private:
    template <typename What, typename... Values>
    void tell(What what, Values&... values)
    {
        for (JobListener* const listener : listeners_) (listener->*what)(values...);
    }

    std::vector<JobListener*> listeners_;
};

}  // namespace Tesseret::Render
