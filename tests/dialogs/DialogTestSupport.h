#pragma once
// What the dialog tests share: a scripted host installed as the resource
// module for the test, and a logger that keeps its records.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/framework/DSDialogModule.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "core/ErrorException.h"
#include "core/ILogger.h"

namespace Tarni::Testing
{
class RecordingLogger final : public Support::ILogger
{
public:
    struct Record
    {
        Support::LogLevel level;
        std::string place;  ///< namespace::class::function
        std::string text;
    };

    RecordingLogger() { m_level = Support::LOG_TRACE; }

    void LogMessageV(Support::LogLevel in_level, const char* in_ns, const char* in_cls, const char* in_fn,
                     const char* in_format, va_list in_args) override
    {
        char buffer[4096];
        vsnprintf(buffer, sizeof(buffer), in_format, in_args);
        records.push_back({in_level, std::string(in_ns) + "::" + in_cls + "::" + in_fn, buffer});
    }
    void LogError(const char* in_ns, const char* in_cls, const char* in_fn,
                  const Support::ErrorException& in_error) override
    {
        records.push_back({Support::LOG_ERROR, std::string(in_ns) + "::" + in_cls + "::" + in_fn, in_error.what()});
    }
    using ILogger::LogError;

    bool Has(Support::LogLevel in_level, const std::string& in_place, const std::string& in_text) const
    {
        for (const auto& r : records)
        {
            if (r.level == in_level && r.place == in_place && r.text.find(in_text) != std::string::npos) return true;
        }
        return false;
    }

    std::vector<Record> records;
};

/// Installs a scripted host as the resource module for one test.
class DialogTest : public ::testing::Test
{
protected:
    void SetUp() override { DriverSupport::DSDialogModule::SetHost(&m_host); }
    void TearDown() override
    {
        DriverSupport::DSDialogModule::SetHost(nullptr);
        DriverSupport::DSDialogModule::SetErrorTextResolver(nullptr);
        if (!HasFailure())
        {
            m_host.VerifyAllUsed();
        }
    }

    Platform::ScriptedDialogHost m_host;
    RecordingLogger m_logger;
};
}  // namespace Tarni::Testing
