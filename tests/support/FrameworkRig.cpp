#include "tests/support/FrameworkRig.h"

#include <utility>

#include "products/OFX/Support/Context.h"
#include "products/OFX/Support/Host.h"
#include "products/OFX/Support/ParamDefine.h"

namespace Tesseret::Fixtures {
namespace {

using namespace Orvane;

/// The tiny effect's main entry describes the host; its own description is not used.
Host::Descriptor freshDescriptor(TinyHost& tiny)
{
    tiny.effect().start();
    return Host::Descriptor(tiny.host(), tiny.effect().descriptor(), kOfxImageEffectContextGeneral);
}

}  // namespace

FrameworkRig::FrameworkRig(Fill fill, const Fixtures::HostQuirks& quirks, OvContext context)
    : fill_(std::move(fill)),
      context_(context),
      tiny_(quirks),
      descriptor_(freshDescriptor(tiny_)),
      described_(make())
{
    described_->bind(context_, nullptr);
    calls().reset();
}

FrameworkRig::~FrameworkRig() = default;

std::unique_ptr<OvOfxEffect> FrameworkRig::make() const
{
    auto effect = std::make_unique<OvOfxEffect>();
    effect->descriptor.pixelDepths = {"byte", "short", "float"};
    effect->outputClip().supportedComponents = {"RGBA"};
    OvOfxContextContainer unknown;
    OvOfxContextContainer* container = effect->container(context_);
    fill_(*effect, container != nullptr ? *container : unknown);
    return effect;
}

OfxStatus FrameworkRig::describe()
{
    const Host::EmbeddedHost::Scope scope(host());
    descriptor_.setDescribing(true);
    OfxStatus status =
        described_->writePluginProperties(OvOfxPropertySet(descriptor_.properties().handle()));
    if (status == kOfxStatOK) status = defineClips(*described_, descriptor_.handle());
    if (status == kOfxStatOK) status = defineParameters(*described_, descriptor_.handle());
    descriptor_.setDescribing(false);
    return status;
}

OvOfxEffect& FrameworkRig::bind()
{
    instance_ = std::make_unique<Host::Instance>(tiny_.effect(), descriptor_);
    calls().reset();  // the tiny effect fetched clips of its own
    bound_ = make();
    bound_->bind(context_, std::make_unique<OvOfxInstanceRecord>(instance_->handle()));
    return *bound_;
}

}  // namespace Tesseret::Fixtures
