/// "TesseretRecordSuite": passes the recorded blocks of an instance to its keeper and back.

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/RecordKeeper.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

/// Calls `function(keeper)` when the handle is an instance with a keeper.
template <typename Function>
void withKeeper(OfxImageEffectHandle handle, Function function)
{
    guarded([&] {
        auto* const effect = static_cast<EffectObject*>(findObject(HandleKind::Effect, handle));
        if (!effect || !effect->instance()) {
            badCall("record suite: no such instance", kOfxStatErrBadHandle);
        } else if (RecordKeeper* const keeper = effect->instance()->records()) {
            function(*keeper);
        }
    });
}

const void* recordOffered(OfxImageEffectHandle effect, std::size_t* size)
{
    std::span<const std::byte> record;
    if (size) {
        withKeeper(effect, [&](RecordKeeper& keeper) { record = keeper.offered(); });
        *size = record.size();
    }
    return record.empty() ? nullptr : record.data();
}

void recordTaken(OfxImageEffectHandle effect, int isUsable)
{
    withKeeper(effect, [&](RecordKeeper& keeper) { keeper.taken(isUsable != 0); });
}

int wantsRecord(OfxImageEffectHandle effect)
{
    bool isWanted = false;
    withKeeper(effect, [&](RecordKeeper& keeper) { isWanted = keeper.wantsRecord(); });
    return isWanted ? 1 : 0;
}

void recordMade(OfxImageEffectHandle effect, const void* bytes, std::size_t size)
{
    withKeeper(effect, [&](RecordKeeper& keeper) {
        if (bytes) keeper.made({static_cast<const std::byte*>(bytes), size});
    });
}

}  // namespace

const TesseretRecordSuiteV1& recordSuite()
{
    static constexpr TesseretRecordSuiteV1 kSuite{&recordOffered, &recordTaken, &wantsRecord,
                                                  &recordMade};
    return kSuite;
}

}  // namespace Tesseret::Host
