#pragma once
// Records the steps of a connection test as it goes: Begin() opens a step and
// times it, Pass() closes it with what it found; when the test fails, Fail()
// closes the step that was open with the reason. Steps never hold secrets.
#include <chrono>
#include <string>
#include <vector>

#include "core/TarniString.h"
#include "driversupport/DSTestStep.h"

namespace Tarni::ThriftExtension
{
class TEStepRecorder
{
public:
    explicit TEStepRecorder(std::vector<DriverSupport::DSTestStep>& io_steps);

    /// Opens the step in_id (see DSTestStep::id); a step still open is passed
    /// without a detail first.
    void Begin(const char* in_id);

    /// Closes the open step as passed, with what it found.
    void Pass(const tarni_wstring& in_detail = tarni_wstring());
    void Pass(const std::string& in_utf8Detail);

    /// Closes the open step as failed with the reason; without an open step
    /// the reason goes to a step of its own: "settings" when none was begun
    /// (the settings were refused before connecting), "test" otherwise.
    void Fail(const tarni_wstring& in_reason);

    /// Whether a step is open.
    bool IsOpen() const { return m_open; }

private:
    void Close(DriverSupport::DSTestStep::Status in_status, const tarni_wstring& in_detail);

    std::vector<DriverSupport::DSTestStep>& m_steps;
    std::chrono::steady_clock::time_point m_started;
    bool m_open = false;
};
}  // namespace Tarni::ThriftExtension
