/// "TesseretObserverSuite": forwards the plug-in's notifications of a render to the listener of the
/// instance.

#include "host/EffectObject.h"
#include "host/EmbeddedHost.h"
#include "host/Instance.h"
#include "host/SuiteGuard.h"
#include "host/Suites.h"

namespace Tesseret::Host {

namespace {

/// Calls `function(listener, instance)` when the handle is an instance with a listener.
template <typename Function>
void forward(OfxImageEffectHandle handle, Function function)
{
    guarded([&] {
        auto* const effect = static_cast<EffectObject*>(findObject(HandleKind::Effect, handle));
        if (!effect || !effect->instance()) {
            badCall("observer suite: no such instance", kOfxStatErrBadHandle);
        } else if (RenderListener* const listener = effect->instance()->renderListener()) {
            function(*listener, *effect->instance());
        }
    });
}

std::string_view textOf(const char* text)
{
    return text ? text : "";
}

void stageBegan(OfxImageEffectHandle effect, const char* stage)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        listener.stageBegan(instance, textOf(stage));
    });
}

void stageEnded(OfxImageEffectHandle effect, const char* stage)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        listener.stageEnded(instance, textOf(stage));
    });
}

void progress(OfxImageEffectHandle effect, double fraction)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        listener.progress(instance, fraction);
    });
}

void blockLaid(OfxImageEffectHandle effect, const TesseretBlockV1* block)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        if (block) listener.blockLaid(instance, *block);
    });
}

void note(OfxImageEffectHandle effect, const char* text)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        listener.note(instance, textOf(text));
    });
}

int wantsMaps(OfxImageEffectHandle effect)
{
    bool wanted = false;
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        wanted = listener.wantsMaps(instance);
    });
    return wanted ? 1 : 0;
}

void mapMade(OfxImageEffectHandle effect, const TesseretMapV1* map)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        if (map && map->name && map->pixels) listener.mapMade(instance, *map);
    });
}

void pathFound(OfxImageEffectHandle effect, const TesseretPathV1* path)
{
    forward(effect, [&](RenderListener& listener, Instance& instance) {
        if (path && path->points) listener.pathFound(instance, *path);
    });
}

}  // namespace

const TesseretObserverSuiteV1& observerSuite()
{
    static constexpr TesseretObserverSuiteV1 kSuite{
        &stageBegan, &stageEnded, &progress, &blockLaid, &note, &wantsMaps, &mapMade, &pathFound};
    return kSuite;
}

}  // namespace Tesseret::Host
