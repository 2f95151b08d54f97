#include "farm/Queue.h"

#include "farm/PrintQueue.h"
#include "farm/SlurmQueue.h"
#include "render/JobError.h"

namespace Tesseret::Farm {

std::unique_ptr<Queue> queueByName(const std::string& name)
{
    if (name == "slurm") return std::make_unique<SlurmQueue>();
    if (name == "print") return std::make_unique<PrintQueue>();
    throw Render::UsageError("there is no queue named " + name);
}

}  // namespace Tesseret::Farm
