#include "products/OFX/Support/Records.h"

#include "ofx/tesseretRecord.h"
#include "products/OFX/Support/Host.h"

namespace Orvane {
namespace {

class HostRecords final : public Engine::RecordExchange {
public:
    HostRecords(const TesseretRecordSuiteV1& suite, OfxImageEffectHandle effect)
        : suite_(&suite), effect_(effect)
    {}

    std::span<const std::byte> offered() override
    {
        if (suite_->recordOffered == nullptr) return {};
        std::size_t size = 0;
        const void* const bytes = suite_->recordOffered(effect_, &size);
        if (bytes == nullptr) return {};
        return {static_cast<const std::byte*>(bytes), size};
    }
    void taken(bool isUsable) override
    {
        if (suite_->recordTaken != nullptr) suite_->recordTaken(effect_, isUsable ? 1 : 0);
    }
    bool isWanted() override
    {
        return suite_->recordMade != nullptr && suite_->wantsRecord != nullptr &&
               suite_->wantsRecord(effect_) != 0;
    }
    void made(std::span<const std::byte> record) override
    {
        suite_->recordMade(effect_, record.data(), record.size());
    }

private:
    const TesseretRecordSuiteV1* suite_;
    OfxImageEffectHandle effect_;
};

}  // namespace

std::unique_ptr<Engine::RecordExchange> makeHostRecords(OfxImageEffectHandle effect)
{
    const auto* suite = static_cast<const TesseretRecordSuiteV1*>(
        fetchSuite(hostRecord(), kTesseretRecordSuite, 1));
    if (suite == nullptr) return nullptr;
    return std::make_unique<HostRecords>(*suite, effect);
}

}  // namespace Orvane
