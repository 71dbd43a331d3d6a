#include "client/DoctorCommand.h"

#include "client/Doctor.h"
#include "client/core/JsonValues.h"
#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
namespace
{
Json FindingJson(const Finding& finding)
{
    return {{"subject", TextJson(finding.subject)},
            {"fault", finding.isFault},
            {"text", TextJson(finding.text)}};
}
} // namespace

int RunDoctor(const Context& context)
{
    const std::vector<Finding> findings = Examine();
    if (context.command.asJson)
    {
        Json json;
        json["findings"] = Json::array();
        for (const Finding& finding : findings)
            json["findings"].push_back(FindingJson(finding));
        context.Print(JsonText(json));
    }
    else
    {
        std::wstring text;
        for (const Finding& finding : findings)
            text += (finding.isFault ? L"FAULT  " : L"ok     ") + finding.subject + L": " +
                    finding.text + L"\n";
        context.Print(text);
    }
    const bool isWell = std::none_of(
        findings.begin(), findings.end(), [](const Finding& finding) { return finding.isFault; });
    return isWell ? kExitOk : kExitFailed;
}
} // namespace pim
