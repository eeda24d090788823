#include "thrift/connectiontest/TEStepRecorder.h"

#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
using DriverSupport::DSTestStep;

TEStepRecorder::TEStepRecorder(std::vector<DSTestStep>& io_steps) : m_steps(io_steps) {}

void TEStepRecorder::Begin(const char* in_id)
{
    if (m_open)
    {
        Pass();
    }
    DSTestStep step;
    step.id = in_id;
    m_steps.push_back(std::move(step));
    m_started = std::chrono::steady_clock::now();
    m_open = true;
}

void TEStepRecorder::Pass(const tarni_wstring& in_detail)
{
    if (m_open)
    {
        Close(DSTestStep::Status::Passed, in_detail);
    }
}

void TEStepRecorder::Pass(const std::string& in_utf8Detail)
{
    Pass(TEException::ToParameter(in_utf8Detail));
}

void TEStepRecorder::Fail(const tarni_wstring& in_reason)
{
    if (m_open)
    {
        Close(DSTestStep::Status::Failed, in_reason);
        return;
    }
    if (m_steps.empty() || m_steps.back().status == DSTestStep::Status::Passed)
    {
        // Nothing begun yet: the settings themselves were refused before
        // any connection was tried.
        DSTestStep step;
        step.id = m_steps.empty() ? "settings" : "test";
        m_steps.push_back(std::move(step));
    }
    m_steps.back().status = DSTestStep::Status::Failed;
    m_steps.back().detail = in_reason;
}

void TEStepRecorder::Close(DSTestStep::Status in_status, const tarni_wstring& in_detail)
{
    DSTestStep& step = m_steps.back();
    step.status = in_status;
    step.detail = in_detail;
    step.durationMs = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_started).count());
    m_open = false;
}
}  // namespace Tarni::ThriftExtension
