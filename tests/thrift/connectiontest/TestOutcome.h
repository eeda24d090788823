#pragma once
// The outcome of a connection test in the forms the tests compare: its error
// text in UTF-8, and its steps in one line ("resolve:passed connect:failed").
#include <string>

#include "driversupport/DSTestStep.h"
#include "driversupport/IConnectionTester.h"
#include "support/StringConverter.h"

namespace Tarni::Testing::TestOutcome
{
inline std::string Text(const DriverSupport::IConnectionTester::Outcome& in_outcome)
{
    return Support::StringConverter::ToUtf8(in_outcome.errorText);
}

inline std::string Steps(const DriverSupport::IConnectionTester::Outcome& in_outcome)
{
    using Status = DriverSupport::DSTestStep::Status;
    std::string steps;
    for (const DriverSupport::DSTestStep& step : in_outcome.steps)
    {
        steps += (steps.empty() ? "" : " ") + step.id + ":" +
                 (step.status == Status::Passed ? "passed" : step.status == Status::Failed ? "failed" : "running");
    }
    return steps;
}
}  // namespace Tarni::Testing::TestOutcome
