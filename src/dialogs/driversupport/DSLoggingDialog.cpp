#include "dialogs/driversupport/DSLoggingDialog.h"

#include <iterator>

#include "driversupport/ConfigurationKeys.h"
#include "driversupport/DSConfigurationFile.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using namespace Platform;

namespace
{
const char* const NS = "Tarni::DriverSupport";
const char* const CLS = "DSLoggingDialog";

/// The controls that apply only while the level is not LOG_OFF.
constexpr int LEVEL_BOUND_CONTROLS[] = {IDC_LOG_PATH, IDC_LOG_BROWSE, IDC_LOG_MAX_FILE_COUNT, IDC_LOG_MAX_FILE_SIZE};

/// Control -> string of its caption.
constexpr struct
{
    int control;
    unsigned string;
} CAPTIONS[] = {
    {IDC_LOG_LEVEL_LABEL, IDS_LOG_LEVEL},
    {IDC_LOG_PATH_LABEL, IDS_LOG_PATH},
    {IDC_LOG_BROWSE, IDS_BROWSE},
    {IDC_LOG_ROTATION_GROUP, IDS_LOG_ROTATION},
    {IDC_LOG_MAX_FILE_COUNT_LABEL, IDS_MAX_NUMBER_FILES},
    {IDC_LOG_MAX_FILE_SIZE_LABEL, IDS_MAX_FILE_SIZE},
    {IDC_LOG_IMPORT, IDS_IMPORT_CONFIGURATION},
    {IDC_LOG_EXPORT, IDS_EXPORT_CONFIGURATION},
    {IDOK, IDS_OK},
    {IDCANCEL, IDS_CANCEL},
};

DSDSNConfiguration* ConfigurationOf(IDialogWindow* in_window)
{
    return DSBaseDialog::GetInputMap<DSDSNConfiguration>(in_window);
}

Support::ILogger* LoggerOf(IDialogWindow* in_window)
{
    auto* configuration = ConfigurationOf(in_window);
    return configuration != nullptr ? configuration->GetLog() : nullptr;
}

bool IsLevelOff(IDialogWindow* in_window) { return in_window->ComboGetCurSel(IDC_LOG_LEVEL) == 0; }
}  // namespace

bool DSLoggingDialog::Show(IDialogWindow* in_parent, DSDSNConfiguration* in_configuration)
{
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Show");
    return RunModal(in_parent, IDD_LOGGING_OPTIONS, &ActionProc, in_configuration) != 0;
}

std::intptr_t DSLoggingDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                          std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    const auto initialize = [&](DSDSNConfiguration* in_input) {
        Initialize(in_window, in_input);
    };
    if (const auto handled =
            RouteCommonMessages<DSDSNConfiguration>(in_window, in_message, in_lParam, NS, CLS, initialize))
    {
        return *handled;
    }
    const int id = static_cast<int>(LowWord(in_wParam));
    const unsigned code = HighWord(in_wParam);
    void (*action)(IDialogWindow*) = nullptr;
    switch (id)
    {
        case IDOK:
            action = &DoOkAction;
            break;
        case IDCANCEL:
            action = &DoCancelAction;
            break;
        case IDC_LOG_IMPORT:
            action = &DoImportAction;
            break;
        case IDC_LOG_EXPORT:
            action = &DoExportAction;
            break;
        case IDC_LOG_MAX_FILE_SIZE:
        case IDC_LOG_MAX_FILE_COUNT:
        case IDC_LOG_PATH:
            action = code == EN_CHANGE ? &CheckEnableButtons : nullptr;
            break;
        case IDC_LOG_LEVEL:
            action = code == CBN_SELCHANGE ? &OnLevelChanged : nullptr;
            break;
        case IDC_LOG_BROWSE:
            action = &BrowseForDir;
            break;
        default:
            break;
    }
    if (action == nullptr)
    {
        return 0;
    }
    GuardAction(in_window, LoggerOf(in_window), NS, CLS, [&] { action(in_window); });
    return 1;
}

void DSLoggingDialog::Initialize(IDialogWindow* in_window, DSDSNConfiguration* in_configuration)
{
    StoreInputMap(in_window, in_configuration);
    TARNI_LOG_ENTRY(in_configuration->GetLog(), NS, CLS, "Initialize");
    CenterDialog(in_window);
    in_window->SetTitle(LoadResourceString(IDS_LOGGING_OPTIONS_TITLE));
    for (const auto& caption : CAPTIONS)
    {
        SetDlgItemString(in_window, caption.control, LoadResourceString(caption.string));
    }
    for (const char16_t* name : LEVEL_NAMES)
    {
        AddComboString(in_window, IDC_LOG_LEVEL, name);
    }
    in_window->ComboSetCurSel(IDC_LOG_LEVEL, static_cast<int>(in_configuration->GetLogLevel()));
    SetDlgItemString(in_window, IDC_LOG_PATH, in_configuration->GetValue(Keys::LogPath));
    SetDlgItemString(in_window, IDC_LOG_MAX_FILE_COUNT, in_configuration->GetValue(Keys::LogFileCount));
    SetDlgItemString(in_window, IDC_LOG_MAX_FILE_SIZE, in_configuration->GetValue(Keys::LogFileSize));
    OnLevelChanged(in_window);
}

void DSLoggingDialog::OnLevelChanged(IDialogWindow* in_window)
{
    const bool on = !IsLevelOff(in_window);
    for (const int id : LEVEL_BOUND_CONTROLS)
    {
        in_window->EnableItem(id, on);
    }
    CheckEnableButtons(in_window);
}

void DSLoggingDialog::CheckEnableButtons(IDialogWindow* in_window)
{
    const bool complete = !GetDlgItemString(in_window, IDC_LOG_PATH).empty() &&
                          !GetDlgItemString(in_window, IDC_LOG_MAX_FILE_SIZE).empty() &&
                          !GetDlgItemString(in_window, IDC_LOG_MAX_FILE_COUNT).empty();
    in_window->EnableItem(IDOK, IsLevelOff(in_window) || complete);
}

void DSLoggingDialog::DoOkAction(IDialogWindow* in_window)
{
    DSDSNConfiguration* configuration = ConfigurationOf(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoOkAction");
    const int level = in_window->ComboGetCurSel(IDC_LOG_LEVEL);
    configuration->SetLogLevel(level < 0 ? 0u : static_cast<unsigned>(level));
    configuration->SetLogPath(GetDlgItemString(in_window, IDC_LOG_PATH));
    configuration->SetLogFileSize(GetDlgItemString(in_window, IDC_LOG_MAX_FILE_SIZE));
    configuration->SetLogFileCount(GetDlgItemString(in_window, IDC_LOG_MAX_FILE_COUNT));
    in_window->EndDialog(1);
}

void DSLoggingDialog::DoCancelAction(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "DoCancelAction");
    in_window->EndDialog(0);
}

void DSLoggingDialog::BrowseForDir(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(LoggerOf(in_window), NS, CLS, "BrowseForDir");
    const auto folder =
        in_window->GetHost().BrowseForFolder(in_window, LoadResourceString(IDS_LOG_DIR_CHOOSER_TITLE));
    if (folder)
    {
        SetDlgItemString(in_window, IDC_LOG_PATH, *folder);
    }
}

FileChooserOptions DSLoggingDialog::ChooserOptions(IDialogWindow* in_window, unsigned in_titleId)
{
    FileChooserOptions options;
    options.owner = in_window;
    options.title = LoadResourceString(in_titleId);
    options.filter.push_back({LoadResourceString(IDS_DSN_DEFINITION_FILTER), u"*.sdc"});
    options.defaultExtension = u"sdc";
    options.bufferChars = CHOOSER_PATH_CHARS;
    if (const auto documents = in_window->GetHost().GetDocumentsFolder(); documents && !documents->empty())
    {
        // A POSIX path begins with "/"; a Windows path never does (a drive
        // letter or "\\" for a share), and takes the backslash.
        const char16_t separator = documents->front() == u'/' ? u'/' : u'\\';
        tarni_wstring initial = *documents;
        if (initial.back() != separator)
        {
            initial.push_back(separator);
        }
        initial += u"backup.sdc";
        if (initial.size() >= CHOOSER_PATH_CHARS)
        {
            throw Support::ErrorException(Support::DiagState::GeneralError, Support::DS_ERROR,
                                          u"DSChooserPathTooLongErr",
                                          {initial, Support::StringConverter::FromNumber(
                                                        static_cast<unsigned long long>(CHOOSER_PATH_CHARS - 1))});
        }
        options.initialFile = std::move(initial);
    }
    return options;
}

void DSLoggingDialog::DoExportAction(IDialogWindow* in_window)
{
    DSDSNConfiguration* configuration = ConfigurationOf(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoExportAction");
    FileChooserOptions options = ChooserOptions(in_window, IDS_EXPORT_CHOOSER_TITLE);
    options.flags = OFN_PATHMUSTEXIST | OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY;
    const auto path = in_window->GetHost().GetSaveFileName(options);
    if (!path)
    {
        return;
    }
    DSConfigurationFile::Export(*configuration, *path);
    if (configuration->GetLog() != nullptr)
    {
        configuration->GetLog()->LogInfo(NS, CLS, "DoExportAction", "The configuration was exported to \"%s\".",
                                         Support::StringConverter::ToUtf8(*path).c_str());
    }
}

void DSLoggingDialog::DoImportAction(IDialogWindow* in_window)
{
    DSDSNConfiguration* configuration = ConfigurationOf(in_window);
    TARNI_LOG_ENTRY(configuration->GetLog(), NS, CLS, "DoImportAction");
    FileChooserOptions options = ChooserOptions(in_window, IDS_IMPORT_CHOOSER_TITLE);
    options.flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY;
    const auto path = in_window->GetHost().GetOpenFileName(options);
    if (!path)
    {
        return;
    }
    // Read and check the whole file first: a bad file changes nothing.
    DSConfigurationFile::Import(*configuration, DSConfigurationFile::Read(*path));
    if (configuration->GetLog() != nullptr)
    {
        configuration->GetLog()->LogInfo(NS, CLS, "DoImportAction", "The configuration was imported from \"%s\".",
                                         Support::StringConverter::ToUtf8(*path).c_str());
    }
}
}  // namespace Tarni::DriverSupport
