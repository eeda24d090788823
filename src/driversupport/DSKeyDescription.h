#pragma once
// One configuration key as the model knows it: its name, its default (or that
// a component supplies it), the form of its value and the checks that follow
// from the form. The defaults, the dialogs' setters, the command-line tool
// and import read the same description, so a rule exists once.
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::DriverSupport
{
enum class DSKeyForm
{
    Text,    ///< any text without a line break
    Switch,  ///< "1" or "0"
    Number,  ///< unsigned decimal digits within a range (optionally empty)
    Choice,  ///< one of a fixed table of stored texts
    Secret,  ///< a password or token: never given on the command line, stored only protected
};

class DSKeyDescription
{
public:
    /// One accepted stored text and, when the dialogs show it differently, its display name.
    using ChoiceEntry = std::pair<tarni_wstring, tarni_wstring>;

    static DSKeyDescription Text(tarni_wstring_view in_name);
    static DSKeyDescription Switch(tarni_wstring_view in_name);
    static DSKeyDescription Number(tarni_wstring_view in_name, unsigned long long in_minimum,
                                   unsigned long long in_maximum);
    static DSKeyDescription Choice(tarni_wstring_view in_name, std::vector<ChoiceEntry> in_choices);
    static DSKeyDescription Secret(tarni_wstring_view in_name);

    /// The key's own default (a fixed text, or computed when asked, for
    /// defaults that product settings decide).
    DSKeyDescription& Default(tarni_wstring in_value);
    DSKeyDescription& Default(std::function<tarni_wstring()> in_compute);
    /// A Number that may also be empty.
    DSKeyDescription& EmptyAllowed();
    /// The setup error code (DSSetupErrorCode) the dialogs' setter raises for a refused value.
    DSKeyDescription& SetupErrorCode(unsigned in_code);

    tarni_wstring_view GetName() const { return m_name; }
    DSKeyForm GetForm() const { return m_form; }
    bool HasDefault() const { return static_cast<bool>(m_default); }
    tarni_wstring GetDefault() const { return m_default ? m_default() : tarni_wstring(); }
    unsigned long long GetMinimum() const { return m_minimum; }
    unsigned long long GetMaximum() const { return m_maximum; }
    const std::vector<ChoiceEntry>& GetChoices() const { return m_choices; }
    std::optional<unsigned> GetSetupErrorCode() const { return m_setupErrorCode; }

    bool Accepts(tarni_wstring_view in_value) const;

    /// Throws an ErrorException naming the key, the value and what the key
    /// accepts ("DSSettingSwitchErr", "DSSettingNumberErr",
    /// "DSSettingNumberOrEmptyErr", "DSSettingChoiceErr") when the value is refused.
    void Check(tarni_wstring_view in_value) const;

    /// For the dialogs' setters: a DSSetupException with the key's setup
    /// error code when it has one, else as Check.
    void CheckForSetter(tarni_wstring_view in_value) const;

    /// Digits only, no sign or blank, not above ULLONG_MAX; nothing otherwise.
    static std::optional<unsigned long long> ParseUnsigned(tarni_wstring_view in_text);

private:
    DSKeyDescription(tarni_wstring_view in_name, DSKeyForm in_form);

    tarni_wstring m_name;
    DSKeyForm m_form;
    std::function<tarni_wstring()> m_default;
    unsigned long long m_minimum = 0;
    unsigned long long m_maximum = 0;
    bool m_emptyAllowed = false;
    std::vector<ChoiceEntry> m_choices;
    std::optional<unsigned> m_setupErrorCode;
};
}  // namespace Tarni::DriverSupport
