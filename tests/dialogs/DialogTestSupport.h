#pragma once
// What the dialog tests share: a scripted host installed as the resource
// module for the test, product settings written for it, and a logger that
// keeps its records.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/TempDirectory.h"
#include "dialogs/framework/DSDialogModule.h"
#include "driversupport/DSProductHelper.h"
#include "support/StringConverter.h"
#include "ui/DialogConstants.h"
#include "ui/IDialogHost.h"
#include "ui/scripted/ScriptedDialogHost.h"
#include "common/RecordingLogger.h"
#include "core/ErrorException.h"

namespace Tarni::Testing
{
/// Installs a scripted host as the resource module for one test.
class DialogTest : public ::testing::Test
{
protected:
    void SetUp() override { DriverSupport::DSDialogModule::SetHost(&m_host); }
    void TearDown() override
    {
        DriverSupport::DSDialogModule::SetHost(nullptr);
        DriverSupport::DSDialogModule::SetErrorTextResolver(nullptr);
        DriverSupport::DSProductHelper::LoadProductSettings(
            Support::StringConverter::FromUtf8((m_dir / "none.did").string()));
        if (!HasFailure())
        {
            m_host.VerifyAllUsed();
        }
    }

    /// Loads product settings of this text for the test.
    void UseProductSettings(const std::string& in_lines)
    {
        const auto path = m_dir / "SparkODBC.did";
        TempDirectory::WriteFile(path, in_lines);
        DriverSupport::DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8(path.string()));
    }

    TempDirectory m_dir;
    Platform::ScriptedDialogHost m_host;
    RecordingLogger m_logger;
};

/// The three ways to leave a dialog without OK: Cancel, Escape and the close box.
using CloseAction = void (*)(Platform::ScriptedDialogWindow&);
inline const CloseAction CLOSERS[] = {[](Platform::ScriptedDialogWindow& w) {
                                          using namespace Platform;  // IDCANCEL: a constant here, a macro on Windows
                                          w.Click(IDCANCEL);
                                      },
                                      [](Platform::ScriptedDialogWindow& w) { w.PressEscape(); },
                                      [](Platform::ScriptedDialogWindow& w) { w.PressCloseBox(); }};

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
