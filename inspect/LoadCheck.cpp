#include "inspect/LoadCheck.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "inspect/ChildProcess.h"
#include "inspect/LoadSteps.h"

namespace Tesseret::Inspect {

using Json = nlohmann::ordered_json;

namespace {

/// Sends what happens to the parent, one line of JSON each.
class SendingSink final : public StepSink {
public:
    explicit SendingSink(const SendLine& send) : send_(send) {}

    void step(const std::string& what) override { sendAs("step", what); }
    void finding(const Finding& finding) override { sendAs("finding", toJson(finding)); }
    void plugin(const Json& facts) override { sendAs("plugin", facts); }

private:
    void sendAs(const char* kind, const Json& value)
    {
        // A plug-in's texts may be in any encoding.
        send_(Json{{kind, value}}.dump(-1, ' ', true, Json::error_handler_t::replace));
    }

    const SendLine& send_;
};

/// A plug-in that is described twice makes the same mistake twice.
void addOnce(Finding finding, Report& report)
{
    const bool isKnown = std::ranges::any_of(report.findings, [&](const Finding& other) {
        return other.about == finding.about && other.text == finding.text;
    });
    if (!isKnown) report.findings.push_back(std::move(finding));
}

std::string endText(const ChildEnd& end, std::chrono::milliseconds limit)
{
    if (end.timedOut) {
        const std::string seconds = std::to_string((limit.count() + 500) / 1000);
        return "it does not come back within " + seconds + " seconds";
    }
    if (end.signal != 0) {
        return "it crashes with signal " + std::to_string(end.signal) + " (" +
               ::strsignal(end.signal) + ")";
    }
    return "it ends the process, with exit code " + std::to_string(end.exitCode);
}

}  // namespace

std::vector<std::string> checkLoading(const std::filesystem::path& file,
                                      std::chrono::milliseconds limit, Report& report)
{
    std::string step = "starting";
    std::vector<std::string> identifiers;
    report.facts["plugins"] = Json::array();
    const auto receive = [&](const std::string& line) {
        const Json json = Json::parse(line);
        if (json.contains("step")) step = json.at("step").get<std::string>();
        if (json.contains("finding")) addOnce(findingFrom(json.at("finding")), report);
        if (json.contains("plugin")) {
            identifiers.push_back(json.at("plugin").at("identifier").get<std::string>());
            report.facts["plugins"].push_back(json.at("plugin"));
        }
    };
    const ChildEnd end = runInChild(
        [&file](const SendLine& send) {
            SendingSink sink(send);
            runLoadSteps(file, sink);
        },
        limit, receive);
    if (!end.returned) {
        report.error(file.filename().string(), endText(end, limit) + " while " + step,
                     "run a debugger on a host that loads it");
    }
    return identifiers;
}

}  // namespace Tesseret::Inspect
