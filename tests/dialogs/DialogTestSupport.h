#pragma once
// What the dialog tests share: a scripted host installed as the resource
// module for the test, and a logger that keeps its records.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dialogs/framework/DSDialogModule.h"
#include "ui/IDialogHost.h"
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

using Platform::DialogProcedure;
using Platform::DialogRect;
using Platform::FileChooserOptions;
using Platform::IDialogHost;
using Platform::IDialogWindow;

// A host that forwards to the scripted one and records the buffer sizes of
// the string loads.
class CountingHost : public IDialogHost
{
public:
    explicit CountingHost(IDialogHost& in_inner) : m_inner(in_inner) {}
    std::intptr_t DialogBoxParam(unsigned a, IDialogWindow* b, DialogProcedure c, std::intptr_t d) override
    {
        return m_inner.DialogBoxParam(a, b, c, d);
    }
    int LoadString(unsigned in_id, char16_t* out_buffer, int in_chars) override
    {
        sizes.push_back(in_chars);
        return m_inner.LoadString(in_id, out_buffer, in_chars);
    }
    int MessageBox(IDialogWindow* a, tarni_wstring_view b, tarni_wstring_view c, std::uint32_t d) override
    {
        return m_inner.MessageBox(a, b, c, d);
    }
    DialogRect GetDesktopRect() override { return m_inner.GetDesktopRect(); }
    bool SetWaitCursor(tarni_wstring_view in_activity) override { return m_inner.SetWaitCursor(in_activity); }
    std::optional<tarni_wstring> GetOpenFileName(const FileChooserOptions& o) override { return m_inner.GetOpenFileName(o); }
    std::optional<tarni_wstring> GetSaveFileName(const FileChooserOptions& o) override { return m_inner.GetSaveFileName(o); }
    std::optional<tarni_wstring> BrowseForFolder(IDialogWindow* a, tarni_wstring_view b) override
    {
        return m_inner.BrowseForFolder(a, b);
    }
    std::optional<tarni_wstring> GetDocumentsFolder() override { return m_inner.GetDocumentsFolder(); }

    std::vector<int> sizes;

private:
    IDialogHost& m_inner;
};
}  // namespace Tarni::Testing
