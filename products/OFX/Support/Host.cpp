#include "products/OFX/Support/Host.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>

#include "products/OFX/Support/Services.h"

namespace Orvane {
namespace {

std::atomic<OfxHost*> record{nullptr};

const OvOfxHost kNoHost;
std::atomic<const OvOfxHost*> current{&kNoHost};

/// Every description made so far. They are kept until the library is unloaded, since an action on
/// another thread may be reading one while the host unloads and describes again. A host that does
/// so for every instance reports the same each time, so there is hardly ever a second one.
struct Descriptions {
    std::deque<OvOfxHost> known;
    // Some hosts send their last actions from destructors that run after ours.
    ~Descriptions() { current.store(&kNoHost, std::memory_order_release); }
};

std::mutex describing;
Descriptions descriptions;  // guarded by the lock
bool isDescribed = false;   // guarded by the lock

/// The properties of the host record, through a suite that is not published yet.
class HostProperties {
public:
    HostProperties(const OfxPropertySuiteV1& suite, OfxPropertySetHandle handle)
        : suite_(&suite), handle_(handle)
    {}

    [[nodiscard]] std::string text(const char* name) const
    {
        char* value = nullptr;
        const OfxStatus status = suite_->propGetString(handle_, name, 0, &value);
        return status == kOfxStatOK && value != nullptr ? value : "";
    }
    [[nodiscard]] int number(const char* name, int fallback, int index = 0) const
    {
        int value = fallback;
        const OfxStatus status = suite_->propGetInt(handle_, name, index, &value);
        return status == kOfxStatOK ? value : fallback;
    }
    [[nodiscard]] bool flag(const char* name) const { return number(name, 0) != 0; }

private:
    const OfxPropertySuiteV1* suite_;
    OfxPropertySetHandle handle_;
};

template <typename Suite>
const Suite* fetch(const OfxHost* host, const char* name)
{
    return static_cast<const Suite*>(fetchSuite(host, name, 1));
}

OvOfxSuites fetchSuites(const OfxHost* host)
{
    // A braced list is evaluated in order, the order in which the suites are asked for.
    return {.imageEffect = fetch<OfxImageEffectSuiteV1>(host, kOfxImageEffectSuite),
            .property = fetch<OfxPropertySuiteV1>(host, kOfxPropertySuite),
            .parameter = fetch<OfxParameterSuiteV1>(host, kOfxParameterSuite),
            .memory = fetch<OfxMemorySuiteV1>(host, kOfxMemorySuite),
            .multiThread = fetch<OfxMultiThreadSuiteV1>(host, kOfxMultiThreadSuite),
            .message = fetch<OfxMessageSuiteV1>(host, kOfxMessageSuite),
            .interact = fetch<OfxInteractSuiteV1>(host, kOfxInteractSuite)};
}

bool areComplete(const OvOfxSuites& suites)
{
    return suites.imageEffect != nullptr && suites.property != nullptr &&
           suites.parameter != nullptr && suites.memory != nullptr &&
           suites.multiThread != nullptr && suites.message != nullptr;
}

/// Reads everything but the suites, in the order of the members.
void readCapabilities(const HostProperties& host, OvOfxHost& description)
{
    description.name = host.text(kOfxPropName);
    description.quirks = quirksOf(description.name);
    description.supportsOverlays = host.flag(kOfxImageEffectPropSupportsOverlays);
    description.supportsMultiResolution = host.flag(kOfxImageEffectPropSupportsMultiResolution);
    description.supportsTiles = host.flag(kOfxImageEffectPropSupportsTiles);
    description.temporalClipAccess = host.flag(kOfxImageEffectPropTemporalClipAccess);
    description.multipleClipDepths = host.flag(kOfxImageEffectPropSupportsMultipleClipDepths);
    description.multipleClipPARs = host.flag(kOfxImageEffectPropSupportsMultipleClipPARs);
    description.setableFrameRate = host.flag(kOfxImageEffectPropSetableFrameRate);
    description.setableFielding = host.flag(kOfxImageEffectPropSetableFielding);
    description.stringAnimation = host.flag(kOfxParamHostPropSupportsStringAnimation);
    description.customInteract = host.flag(kOfxParamHostPropSupportsCustomInteract);
    description.choiceAnimation = host.flag(kOfxParamHostPropSupportsChoiceAnimation);
    description.booleanAnimation = host.flag(kOfxParamHostPropSupportsBooleanAnimation);
    description.customAnimation = host.flag(kOfxParamHostPropSupportsCustomAnimation);
    description.maxParameters = host.number(kOfxParamHostPropMaxParameters, -1);
    description.maxPages = host.number(kOfxParamHostPropMaxPages, -1);
    description.pageRows = host.number(kOfxParamHostPropPageRowColumnCount, -1, 0);
    description.pageColumns = host.number(kOfxParamHostPropPageRowColumnCount, -1, 1);
    description.isBackground =
        host.flag(kOfxImageEffectHostPropIsBackground) && !description.quirks.isNeverBackground;
}

/// Publishes a description, or a kept one that is equal. Needs the lock.
void publish(OvOfxHost description)
{
    std::deque<OvOfxHost>& known = descriptions.known;
    auto same = std::ranges::find(known, description);
    if (same == known.end()) same = known.insert(known.end(), std::move(description));
    current.store(&*same, std::memory_order_release);
}

}  // namespace

void setHostRecord(OfxHost* host)
{
    record.store(host, std::memory_order_release);
}

OfxHost* hostRecord()
{
    return record.load(std::memory_order_acquire);
}

const void* fetchSuite(const OfxHost* host, const char* name, int version)
{
    if (host == nullptr || host->host == nullptr || host->fetchSuite == nullptr) return nullptr;
    return host->fetchSuite(host->host, name, version);
}

OfxStatus describeHost(const OfxHost* host)
{
    const std::lock_guard lock(describing);
    if (isDescribed) return kOfxStatOK;
    OvOfxHost description;
    description.suites = fetchSuites(host);
    if (!areComplete(description.suites)) return kOfxStatErrMissingHostFeature;
    readCapabilities(HostProperties(*description.suites.property, host->host), description);
    publish(std::move(description));
    useHostServices();
    isDescribed = true;
    return kOfxStatOK;
}

void forgetHost()
{
    const std::lock_guard lock(describing);
    isDescribed = false;
}

const OvOfxHost& hostDescription()
{
    return *current.load(std::memory_order_acquire);
}

OfxStatus loadStatus(const OfxHost* host)
{
    const auto* suite = fetch<OfxPropertySuiteV1>(host, kOfxPropertySuite);
    const bool canRead = suite != nullptr && suite->propGetString != nullptr;
    return quirksOf(canRead ? HostProperties(*suite, host->host).text(kOfxPropName) : "")
        .loadStatus;
}

}  // namespace Orvane
