#include "products/OFX/Support/ovOfxSupport.h"

#include <array>
#include <mutex>
#include <new>
#include <sstream>
#include <string_view>

#include "libraries/exceptions/ErrorReport.h"
#include "libraries/exceptions/Exceptions.h"
#include "ofx/ofxImageEffect.h"
#include "ofx/ofxMessage.h"
#include "products/OFX/Support/Actions.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/Message.h"
#include "products/OFX/Support/Plugin.h"
#include "products/OFX/Support/Services.h"

namespace Orvane {
namespace {

/// What error reports show for the catch site below. Users quote them, so they stay as they are.
constexpr const char* kSourceName = "products/OFX/Support/ovOfxSupport";
constexpr int kCatchLine = 195;
constexpr const char* kReportId = "ExceptionID";

struct ActionRow {
    std::string_view name;
    OfxStatus (*handler)(const Actions::Call& call);
};

constexpr std::array<ActionRow, 22> kActions{{
    {kOfxActionLoad, Actions::load},
    {kOfxActionDescribe, Actions::describe},
    {kOfxActionUnload, Actions::unload},
    {kOfxActionPurgeCaches, Actions::purgeCaches},
    {kOfxActionSyncPrivateData, Actions::syncPrivateData},
    {kOfxActionCreateInstance, Actions::createInstance},
    {kOfxActionDestroyInstance, Actions::destroyInstance},
    {kOfxActionInstanceChanged, Actions::instanceChanged},
    {kOfxActionBeginInstanceChanged, Actions::beginInstanceChanged},
    {kOfxActionEndInstanceChanged, Actions::endInstanceChanged},
    {kOfxActionBeginInstanceEdit, Actions::leaveToHost},
    {kOfxActionEndInstanceEdit, Actions::leaveToHost},
    {kOfxImageEffectActionGetRegionOfDefinition, Actions::getRegionOfDefinition},
    {kOfxImageEffectActionGetRegionsOfInterest, Actions::getRegionsOfInterest},
    {kOfxImageEffectActionGetTimeDomain, Actions::getTimeDomain},
    {kOfxImageEffectActionGetFramesNeeded, Actions::getFramesNeeded},
    {kOfxImageEffectActionGetClipPreferences, Actions::getClipPreferences},
    {kOfxImageEffectActionIsIdentity, Actions::isIdentity},
    {kOfxImageEffectActionRender, Actions::render},
    {kOfxImageEffectActionBeginSequenceRender, Actions::leaveToHost},
    {kOfxImageEffectActionEndSequenceRender, Actions::leaveToHost},
    {kOfxImageEffectActionDescribeInContext, Actions::describeInContext},
}};

OfxStatus dispatch(const char* action, const Actions::Call& call)
{
    if (action == nullptr) return kOfxStatReplyDefault;
    const RunningEffect running(call.effect);
    for (const ActionRow& row : kActions) {
        if (row.name == action) return row.handler(call);
    }
    return kOfxStatReplyDefault;
}

/// Shows the user the report of an unhandled failure.
void reportFailure(Exceptions::ExceptionI& exception)
{
    try {
        Exceptions::recordCatch(exception, Exceptions::kUnknownFunction, kSourceName, kCatchLine);
        std::ostringstream report;
        Exceptions::writeErrorReport(report);
        postToHost(nullptr, kOfxMessageError, kReportId, report.view());
    } catch (...) {
        // No memory is left for the report; the action ends with the same status.
    }
}

}  // namespace

void setHost(OfxHost* host)
{
    setHostRecord(host);
}

OfxStatus mainEntry(const char* action, const void* handle, OfxPropertySetHandle inArgs,
                    OfxPropertySetHandle outArgs)
{
    const Actions::Call call{.effect = static_cast<OfxImageEffectHandle>(const_cast<void*>(handle)),
                             .inArgs = inArgs,
                             .outArgs = outArgs};
    try {
        return dispatch(action, call);
    } catch (const Exceptions::OutOfMemory&) {
        Exceptions::clearErrorContexts();
        return kOfxStatErrMemory;
    } catch (Exceptions::ExceptionI& exception) {
        reportFailure(exception);
        Exceptions::clearErrorContexts();
        return kOfxStatReplyDefault;
    } catch (const std::bad_alloc&) {
        Exceptions::clearErrorContexts();
        return kOfxStatErrMemory;
    } catch (...) {
        // Nothing else is thrown on purpose, but no exception may cross the C interface.
        Exceptions::clearErrorContexts();
        return kOfxStatFailed;
    }
}

}  // namespace Orvane

namespace {

extern "C" void setHostOfRecord(OfxHost* host)
{
    Orvane::setHost(host);
}

extern "C" OfxStatus mainEntryOfRecord(const char* action, const void* handle,
                                       OfxPropertySetHandle inArgs, OfxPropertySetHandle outArgs)
{
    return Orvane::mainEntry(action, handle, inArgs, outArgs);
}

OfxPlugin pluginRecord{};
std::mutex fillingRecord;

/// Stores only what differs: another thread may be reading the record that it was given earlier.
template <typename Value>
void fill(Value& member, Value value)
{
    if (member != value) member = value;
}

}  // namespace

extern "C" {

int OfxGetNumberOfPlugins(void)
{
    return 1;
}

OfxPlugin* OfxGetPlugin(int nth)
{
    if (nth != 0) return nullptr;
    const Orvane::PluginIdentity identity = Orvane::pluginHooks().identity();
    const std::lock_guard lock(fillingRecord);
    fill(pluginRecord.pluginApi, kOfxImageEffectPluginApi);
    fill(pluginRecord.apiVersion, kOfxImageEffectPluginApiVersion);
    fill(pluginRecord.pluginIdentifier, identity.identifier);
    fill(pluginRecord.pluginVersionMajor, identity.versionMajor);
    fill(pluginRecord.pluginVersionMinor, identity.versionMinor);
    fill(pluginRecord.setHost, &setHostOfRecord);
    fill(pluginRecord.mainEntry, &mainEntryOfRecord);
    return &pluginRecord;
}

}  // extern "C"
