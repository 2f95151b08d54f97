#include "inspect/Inspection.h"

#include "inspect/BundleCheck.h"
#include "inspect/LibraryCheck.h"
#include "inspect/LoadCheck.h"

namespace Tesseret::Inspect {

namespace fs = std::filesystem;

Report inspect(const Options& options)
{
    Report report;
    fs::path bundle = fs::absolute(options.bundle).lexically_normal();
    if (!bundle.has_filename()) bundle = bundle.parent_path();
    report.facts["bundle"] = bundle.string();
    const fs::path file = checkBundle(bundle, report);
    if (file.empty()) return report;
    report.facts["library"] = file.string();
    if (!checkLibrary(file, options.newestGlibc, report)) return report;
    checkIcons(bundle, checkLoading(file, options.limit, report), report);
    return report;
}

}  // namespace Tesseret::Inspect
