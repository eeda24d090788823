#include "driversupport/DSKeyDescription.h"

#include "driversupport/DSSetupException.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

namespace Tarni::DriverSupport
{
using Support::DiagState;
using Support::ErrorException;
using Support::StringConverter;

DSKeyDescription::DSKeyDescription(tarni_wstring_view in_name, DSKeyForm in_form) : m_name(in_name), m_form(in_form)
{
}

DSKeyDescription DSKeyDescription::Text(tarni_wstring_view in_name)
{
    return DSKeyDescription(in_name, DSKeyForm::Text);
}

DSKeyDescription DSKeyDescription::Switch(tarni_wstring_view in_name)
{
    return DSKeyDescription(in_name, DSKeyForm::Switch);
}

DSKeyDescription DSKeyDescription::Number(tarni_wstring_view in_name, unsigned long long in_minimum,
                                          unsigned long long in_maximum)
{
    DSKeyDescription description(in_name, DSKeyForm::Number);
    description.m_minimum = in_minimum;
    description.m_maximum = in_maximum;
    return description;
}

DSKeyDescription DSKeyDescription::Choice(tarni_wstring_view in_name, std::vector<ChoiceEntry> in_choices)
{
    DSKeyDescription description(in_name, DSKeyForm::Choice);
    description.m_choices = std::move(in_choices);
    return description;
}

DSKeyDescription DSKeyDescription::Secret(tarni_wstring_view in_name)
{
    return DSKeyDescription(in_name, DSKeyForm::Secret);
}

DSKeyDescription& DSKeyDescription::Default(tarni_wstring in_value)
{
    m_default = [value = std::move(in_value)] { return value; };
    return *this;
}

DSKeyDescription& DSKeyDescription::Default(std::function<tarni_wstring()> in_compute)
{
    m_default = std::move(in_compute);
    return *this;
}

DSKeyDescription& DSKeyDescription::EmptyAllowed()
{
    m_emptyAllowed = true;
    return *this;
}

DSKeyDescription& DSKeyDescription::SetupErrorCode(unsigned in_code)
{
    m_setupErrorCode = in_code;
    return *this;
}

std::optional<unsigned long long> DSKeyDescription::ParseUnsigned(tarni_wstring_view in_text)
{
    if (in_text.empty())
    {
        return std::nullopt;
    }
    unsigned long long value = 0;
    for (const char16_t unit : in_text)
    {
        if (unit < u'0' || unit > u'9')
        {
            return std::nullopt;
        }
        const unsigned digit = static_cast<unsigned>(unit - u'0');
        if (value > (~0ULL - digit) / 10)
        {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

bool DSKeyDescription::Accepts(tarni_wstring_view in_value) const
{
    switch (m_form)
    {
    case DSKeyForm::Switch:
        return in_value == u"0" || in_value == u"1";
    case DSKeyForm::Number:
    {
        if (in_value.empty())
        {
            return m_emptyAllowed;
        }
        const auto number = ParseUnsigned(in_value);
        return number && *number >= m_minimum && *number <= m_maximum;
    }
    case DSKeyForm::Choice:
        for (const ChoiceEntry& choice : m_choices)
        {
            if (choice.first == in_value)
            {
                return true;
            }
        }
        return false;
    case DSKeyForm::Text:
    case DSKeyForm::Secret:
        break;
    }
    return true;
}

void DSKeyDescription::Check(tarni_wstring_view in_value) const
{
    if (Accepts(in_value))
    {
        return;
    }
    const auto fail = [&](const char16_t* in_key, std::vector<tarni_wstring> in_more) {
        std::vector<tarni_wstring> parameters{m_name, tarni_wstring(in_value)};
        parameters.insert(parameters.end(), in_more.begin(), in_more.end());
        throw ErrorException(DiagState::GeneralError, Support::DS_ERROR, in_key, std::move(parameters));
    };
    if (m_form == DSKeyForm::Switch)
    {
        fail(u"DSSettingSwitchErr", {});
    }
    if (m_form == DSKeyForm::Number)
    {
        fail(m_emptyAllowed ? u"DSSettingNumberOrEmptyErr" : u"DSSettingNumberErr",
             {StringConverter::FromNumber(m_minimum), StringConverter::FromNumber(m_maximum)});
    }
    // The accepted stored texts, each with its display name where it has one.
    tarni_wstring accepted;
    for (const ChoiceEntry& choice : m_choices)
    {
        if (!accepted.empty())
        {
            accepted += u", ";
        }
        accepted += u"\"" + choice.first + u"\"";
        if (!choice.second.empty())
        {
            accepted += u" (" + choice.second + u")";
        }
    }
    fail(u"DSSettingChoiceErr", {accepted});
}

void DSKeyDescription::CheckForSetter(tarni_wstring_view in_value) const
{
    if (m_setupErrorCode && !Accepts(in_value))
    {
        throw DSSetupException(*m_setupErrorCode);
    }
    Check(in_value);
}
}  // namespace Tarni::DriverSupport
