#include "dialogs/product/QuillAdvancedOptionsDialog.h"

#include <cstdint>
#include <string>

#include "core/NumberConverter.h"
#include "dialogs/product/QuillServerSidePropertiesDialog.h"
#include "dialogs/product/QuillTempTableDialog.h"
#include "driversupport/ConfigurationKeys.h"
#include "product/SOProductSettings.h"
#include "resource.h"
#include "support/StringConverter.h"

namespace Tarni::SparkODBC
{
using namespace Platform;
using DriverSupport::DSBaseDialog;
using Support::NumberConverter;
using Support::StringConverter;
namespace Keys = DriverSupport::Keys;

namespace
{
const char* const NS = "Tarni::SparkODBC";
const char* const CLS = "QuillAdvancedOptionsDialog";

/// Stored when "Rows fetched per block" is empty or 0.
constexpr unsigned DEFAULT_ROWS_PER_BLOCK = 10000;
/// The largest decimal scale stored.
constexpr int MAX_DECIMAL_SCALE = 38;
constexpr unsigned long long MAX_STRING_COLUMN_LENGTH = 2147483647;

struct CheckBoxKey
{
    int id;
    tarni_wstring_view key;
};

/// The check boxes written in step 6 of OK, in that order.
const CheckBoxKey COMMON_CHECK_BOXES[] = {
    {IDC_ADV_FAST_SQLPREPARE, Keys::FastSQLPrepare},
    {IDC_ADV_USE_NATIVE_QUERY, Keys::UseNativeQuery},
    {IDC_ADV_USE_ONLY_SSPI, Keys::UseOnlySSPI},
    {IDC_ADV_UNICODE_SQL_TYPES, Keys::UseUnicodeSqlCharacterTypes},
    {IDC_ADV_SHOW_SYSTEM_TABLE, Keys::ShowSystemTable},
    {IDC_ADV_DRIVER_CONFIG_PRECEDENCE, Keys::DriverConfigTakePrecedence},
    {IDC_ADV_AUTO_RECONNECT, Keys::AutoReconnect},
    {IDC_ADV_TRANSLATION_FOR_CTAS, Keys::EnableTranslationForCTAS},
};

/// The controls disabled when the main dialog does not allow editing. The
/// check boxes "Unicode SQL character types", "Show System Table" and
/// "Invalid Session Auto Recover" stay enabled then.
const int READ_ONLY_DISABLED[] = {
    IDC_ADV_DEFAULT_STRING_LENGTH,    IDC_ADV_BINARY_LENGTH,          IDC_ADV_DECIMAL_SCALE,
    IDC_ADV_ROWS_PER_BLOCK,           IDC_ADV_MAX_BYTES_PER_FETCH,    IDC_ADV_ASYNC_POLL_INTERVAL,
    IDC_ADV_SOCKET_TIMEOUT,           IDC_ADV_QUERY_TIMEOUT_OVERRIDE, IDC_ADV_FAST_SQLPREPARE,
    IDC_ADV_USE_NATIVE_QUERY,         IDC_ADV_DRIVER_CONFIG_PRECEDENCE, IDC_ADV_USE_ASYNC_EXEC,
    IDC_ADV_GET_TABLES_WITH_QUERY,    IDC_ADV_USE_ONLY_SSPI,          IDC_ADV_AUTO_RECONNECT,
    IDC_ADV_TRANSLATION_FOR_CTAS,     IDC_ADV_SERVER_SIDE_PROPERTIES, IDC_ADV_TEMP_TABLE_CONFIG,
};

tarni_wstring Number(long long in_value) { return StringConverter::FromAscii(std::to_string(in_value)); }

const char16_t* Switch(bool in_on) { return in_on ? u"1" : u"0"; }

/// The low 16 bits of the number as a signed 16-bit value.
int ToInt16(unsigned long long in_value)
{
    const auto low = static_cast<std::uint16_t>(in_value & 0xFFFFu);
    return low >= 0x8000u ? static_cast<int>(low) - 0x10000 : static_cast<int>(low);
}
}  // namespace

QuillAdvancedOptionsDialog* QuillAdvancedOptionsDialog::s_dialog = nullptr;

QuillAdvancedOptionsDialog::QuillAdvancedOptionsDialog(QuillConfiguration& io_configuration, unsigned in_serverType,
                                                       bool in_allowEditing)
    : m_configuration(io_configuration),
      m_logger(io_configuration.GetLog()),
      m_serverType(in_serverType),
      m_allowEditing(in_allowEditing)
{
}

QuillAdvancedOptionsDialog::~QuillAdvancedOptionsDialog()
{
    if (s_dialog == this)
    {
        s_dialog = nullptr;
    }
}

std::intptr_t QuillAdvancedOptionsDialog::Show(IDialogWindow* in_parent)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Show");
    QuillAdvancedOptionsDialog* const previous = s_dialog;
    std::intptr_t result = -1;
    try
    {
        result = DSBaseDialog::RunModal(in_parent, IDD_ADVANCED_OPTIONS, &ActionProc, this);
    }
    catch (...)
    {
        s_dialog = previous;
        throw;
    }
    s_dialog = previous;
    return result;
}

std::intptr_t QuillAdvancedOptionsDialog::ActionProc(IDialogWindow* in_window, std::uint32_t in_message,
                                                     std::uintptr_t in_wParam, std::intptr_t in_lParam)
{
    if (in_message == WM_DESTROY || in_message == WM_NCDESTROY)
    {
        return 1;
    }
    if (in_message == WM_INITDIALOG)
    {
        s_dialog = reinterpret_cast<QuillAdvancedOptionsDialog*>(in_lParam);
        if (s_dialog != nullptr)
        {
            DSBaseDialog::GuardAction(in_window, s_dialog->m_logger, NS, CLS, [&] { s_dialog->Initialize(in_window); });
        }
        return 1;
    }
    if (in_message != WM_COMMAND || s_dialog == nullptr || s_dialog->m_window != in_window)
    {
        return 0;
    }
    QuillAdvancedOptionsDialog& dialog = *s_dialog;
    std::intptr_t handled = 1;
    DSBaseDialog::GuardAction(in_window, dialog.m_logger, NS, CLS, [&] {
        switch (LowWord(in_wParam))
        {
            case IDOK:
                dialog.DoOkAction();
                break;
            case IDCANCEL:
                // Cancel ends with 1 too; nothing is written.
                TARNI_LOG_ENTRY(dialog.m_logger, NS, CLS, "DoCancelAction");
                in_window->EndDialog(1);
                break;
            case IDC_ADV_TEMP_TABLE_CONFIG:
                dialog.OpenTempTableConfiguration();
                break;
            case IDC_ADV_SERVER_SIDE_PROPERTIES:
                dialog.OpenServerSideProperties();
                break;
            default:
                handled = 0;
                break;
        }
    });
    return handled;
}

unsigned QuillAdvancedOptionsDialog::ReadNumber(IDialogWindow* in_window, int in_id)
{
    tarni_wstring text = DSBaseDialog::GetDlgItemString(in_window, in_id);
    const auto isBlank = [](char16_t in_char) { return in_char == u' ' || in_char == u'\t'; };
    while (!text.empty() && isBlank(text.back()))
    {
        text.pop_back();
    }
    std::size_t first = 0;
    while (first < text.size() && isBlank(text[first]))
    {
        ++first;
    }
    return NumberConverter::ToUInt32(tarni_wstring_view(text).substr(first)).value_or(0);
}

void QuillAdvancedOptionsDialog::Initialize(IDialogWindow* in_window)
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "Initialize");
    m_window = in_window;
    DSBaseDialog::CenterDialog(in_window);
    FillFields();
    FillCheckBoxes();
    ApplyEnabling();
}

void QuillAdvancedOptionsDialog::FillFields()
{
    // A stored number that cannot be read shows the key's default.
    const DriverSupport::ConfigurationMap defaults = m_configuration.GetDefaultDriverProperties();
    const auto value = [&](tarni_wstring_view in_key) { return m_configuration.GetValue(in_key); };
    const auto show = [&](int in_id, const tarni_wstring& in_text) {
        DSBaseDialog::SetDlgItemString(m_window, in_id, in_text);
    };

    const auto stringLength = NumberConverter::ToUInt64(value(Keys::DefaultStringColumnLength));
    show(IDC_ADV_DEFAULT_STRING_LENGTH, stringLength && *stringLength >= 1 && *stringLength <= MAX_STRING_COLUMN_LENGTH
                                            ? Number(static_cast<long long>(*stringLength))
                                            : Number(static_cast<long long>(
                                                  SOProductSettings::GetDefaultStringColumnLength())));

    const auto binaryLength = NumberConverter::ToInt64(value(Keys::BinaryColumnLength));
    show(IDC_ADV_BINARY_LENGTH, binaryLength && *binaryLength >= INT32_MIN && *binaryLength <= INT32_MAX
                                    ? Number(*binaryLength)
                                    : defaults.GetValue(Keys::BinaryColumnLength));

    const auto scale = NumberConverter::ToInt64(value(Keys::DecimalColumnScale));
    show(IDC_ADV_DECIMAL_SCALE, scale ? Number(ToInt16(static_cast<unsigned long long>(*scale)))
                                      : defaults.GetValue(Keys::DecimalColumnScale));

    for (const auto& [id, key] : {std::pair<int, tarni_wstring_view>{IDC_ADV_ROWS_PER_BLOCK, Keys::RowsFetchedPerBlock},
                                  {IDC_ADV_SOCKET_TIMEOUT, Keys::SocketTimeout},
                                  {IDC_ADV_ASYNC_POLL_INTERVAL, Keys::AsyncExecPollInterval}})
    {
        const auto number = NumberConverter::ToUInt32(value(key));
        show(id, number ? Number(*number) : defaults.GetValue(key));
    }

    show(IDC_ADV_MAX_BYTES_PER_FETCH, value(Keys::MaxBytesPerFetchRequest));
    show(IDC_ADV_QUERY_TIMEOUT_OVERRIDE, value(Keys::QueryTimeoutOverride));
}

void QuillAdvancedOptionsDialog::FillCheckBoxes()
{
    const auto on = [&](tarni_wstring_view in_key) { return m_configuration.GetValue(in_key) == u"1"; };
    for (const CheckBoxKey& box : COMMON_CHECK_BOXES)
    {
        m_window->CheckButton(box.id, on(box.key));
    }
    m_window->CheckButton(IDC_ADV_USE_ASYNC_EXEC, on(Keys::EnableAsyncExec));
    // SharkServer cannot get tables with a query, whatever is stored.
    m_window->CheckButton(IDC_ADV_GET_TABLES_WITH_QUERY, !IsSharkServer() && on(Keys::GetTablesWithQuery));
    m_window->CheckButton(IDC_ADV_INVALID_SESSION_RECOVER, on(Keys::InvalidSessionAutoRecover));
}

void QuillAdvancedOptionsDialog::ApplyEnabling()
{
    if (!m_allowEditing)
    {
        for (const int id : READ_ONLY_DISABLED)
        {
            m_window->EnableItem(id, false);
        }
    }
    else if (IsSharkServer())
    {
        m_window->CheckButton(IDC_ADV_USE_ASYNC_EXEC, false);
        m_window->EnableItem(IDC_ADV_USE_ASYNC_EXEC, false);
        m_window->EnableItem(IDC_ADV_GET_TABLES_WITH_QUERY, false);
        m_window->EnableItem(IDC_ADV_ASYNC_POLL_INTERVAL, false);
    }
    m_window->ShowItem(IDC_ADV_TEMP_TABLE_CONFIG, m_tempTablesOffered);
    m_window->EnableItem(IDC_ADV_MAX_BYTES_PER_FETCH, false);
}

void QuillAdvancedOptionsDialog::DoOkAction()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "DoOkAction");
    const auto set = [&](tarni_wstring_view in_key, const tarni_wstring& in_value) {
        m_configuration.SetValue(in_key, in_value);
    };
    const auto text = [&](int in_id) { return DSBaseDialog::GetDlgItemString(m_window, in_id); };
    const auto checked = [&](int in_id) { return tarni_wstring(Switch(m_window->IsButtonChecked(in_id))); };

    const unsigned rows = ReadNumber(m_window, IDC_ADV_ROWS_PER_BLOCK);
    set(Keys::RowsFetchedPerBlock, Number(rows == 0 ? DEFAULT_ROWS_PER_BLOCK : rows));
    set(Keys::MaxBytesPerFetchRequest, text(IDC_ADV_MAX_BYTES_PER_FETCH));
    const unsigned stringLength = ReadNumber(m_window, IDC_ADV_DEFAULT_STRING_LENGTH);
    set(Keys::DefaultStringColumnLength,
        stringLength == 0 ? Number(static_cast<long long>(SOProductSettings::GetDefaultStringColumnLength()))
                          : Number(stringLength));
    set(Keys::BinaryColumnLength, Number(ReadNumber(m_window, IDC_ADV_BINARY_LENGTH)));
    // Truncated to 16 bits first, then capped: 65537 is 1, 100 is 38.
    int scale = ToInt16(ReadNumber(m_window, IDC_ADV_DECIMAL_SCALE));
    if (scale > MAX_DECIMAL_SCALE)
    {
        scale = MAX_DECIMAL_SCALE;
    }
    set(Keys::DecimalColumnScale, Number(scale));
    for (const CheckBoxKey& box : COMMON_CHECK_BOXES)
    {
        set(box.key, checked(box.id));
    }
    // SharkServer keeps the stored values of these two.
    if (QueriesAllowed())
    {
        set(Keys::EnableAsyncExec, checked(IDC_ADV_USE_ASYNC_EXEC));
        set(Keys::GetTablesWithQuery, checked(IDC_ADV_GET_TABLES_WITH_QUERY));
    }
    set(Keys::InvalidSessionAutoRecover, checked(IDC_ADV_INVALID_SESSION_RECOVER));
    set(Keys::AsyncExecPollInterval, text(IDC_ADV_ASYNC_POLL_INTERVAL));
    set(Keys::SocketTimeout, Number(ReadNumber(m_window, IDC_ADV_SOCKET_TIMEOUT)));
    set(Keys::QueryTimeoutOverride, text(IDC_ADV_QUERY_TIMEOUT_OVERRIDE));
    m_window->EndDialog(1);
}

void QuillAdvancedOptionsDialog::OpenServerSideProperties()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OpenServerSideProperties");
    // This product offers "Apply properties with queries"; the server type
    // decides whether it may be changed.
    QuillServerSidePropertiesDialog dialog(m_configuration, m_configuration.GetServerSidePropertyGroup(), true,
                                           QueriesAllowed());
    dialog.Show(m_window);
}

void QuillAdvancedOptionsDialog::OpenTempTableConfiguration()
{
    TARNI_LOG_ENTRY(m_logger, NS, CLS, "OpenTempTableConfiguration");
    QuillTempTableDialog::Input input{&m_configuration, m_allowEditing};
    QuillTempTableDialog::Show(m_window, &input);
}
}  // namespace Tarni::SparkODBC
