// The INI reader and writer on arbitrary files and edits. The input is a file
// followed by a script of edits (after the first zero byte, if any). Every
// file must either be refused with an ErrorException or:
// - serialise unchanged when nothing is edited, and when every value read is
//   written back as it was read (what a save of an unchanged configuration does);
// - after the edits, read back as the values read first with exactly those
//   edits applied, while every other section reads as before;
// - read, write and read again to the same values, byte for byte the same file.
#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "platform/IniDocument.h"
#include "core/ErrorException.h"
#include "core/NumberConverter.h"
#include "platform/TextConversion.h"

using namespace Tarni;
using Platform::IniDocument;
using Platform::StoredValue;
using Platform::TextConversion;

namespace
{
const tarni_wstring SECTION = u"Driver";
const tarni_wstring OTHER = u"Other";

void Check(bool in_condition)
{
    if (!in_condition)
    {
        std::abort();
    }
}

tarni_wstring Fold(tarni_wstring_view in_text)
{
    tarni_wstring folded(in_text);
    for (char16_t& unit : folded)
    {
        unit = TextConversion::FoldCase(unit);
    }
    return folded;
}

/// Section values by folded key, as the store's caller sees them.
std::map<tarni_wstring, tarni_wstring> ByKey(const std::vector<StoredValue>& in_values)
{
    std::map<tarni_wstring, tarni_wstring> byKey;
    for (const StoredValue& value : in_values)
    {
        Check(byKey.emplace(Fold(value.name), value.value).second);  // no key twice
    }
    return byKey;
}

/// A value from the script: printable ASCII and blanks, no line break.
tarni_wstring TakeValue(const std::string& in_script, size_t& io_pos)
{
    tarni_wstring value;
    const size_t length = io_pos < in_script.size() ? static_cast<unsigned char>(in_script[io_pos++]) % 12 : 0;
    for (size_t i = 0; i < length && io_pos < in_script.size(); ++i)
    {
        const unsigned char c = static_cast<unsigned char>(in_script[io_pos++]);
        value.push_back(static_cast<char16_t>(c % 4 == 0 ? u' ' : (c % 7 == 0 ? u'"' : u'!' + c % 94)));
    }
    return value;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* in_data, std::size_t in_size)
{
    const std::string input(reinterpret_cast<const char*>(in_data), in_size);
    const size_t zero = input.find('\0');
    const std::string file = input.substr(0, zero);
    const std::string script = zero == std::string::npos ? std::string() : input.substr(zero + 1);

    std::vector<StoredValue> before;
    std::vector<StoredValue> otherBefore;
    {
        try
        {
            const IniDocument doc = IniDocument::Parse(file, u"fuzz.ini");
            Check(doc.Serialize() == file);
            before = doc.ReadSection(SECTION);
            otherBefore = doc.ReadSection(OTHER);
        }
        catch (const Support::ErrorException&)
        {
            return 0;
        }
    }

    // Writing back every value as read changes no byte.
    IniDocument doc = IniDocument::Parse(file, u"fuzz.ini");
    for (const StoredValue& value : before)
    {
        doc.SetValue(SECTION, value.name, value.value);
    }
    Check(doc.Serialize() == file);

    // The edits: set an existing key, set a new key, or delete a key.
    std::map<tarni_wstring, tarni_wstring> expected = ByKey(before);
    size_t pos = 0;
    while (pos + 1 < script.size())
    {
        const unsigned char op = static_cast<unsigned char>(script[pos++]);
        tarni_wstring key;
        if (op % 3 != 1 && !before.empty())
        {
            key = before[static_cast<unsigned char>(script[pos++]) % before.size()].name;
        }
        else
        {
            key = u"K" + Support::NumberConverter::ToText(static_cast<unsigned long long>(static_cast<unsigned char>(script[pos++]) % 8));
        }
        if (op % 3 == 2)
        {
            doc.DeleteValue(SECTION, key);
            expected.erase(Fold(key));
        }
        else
        {
            const tarni_wstring value = TakeValue(script, pos);
            doc.SetValue(SECTION, key, value);
            expected[Fold(key)] = value;
        }
    }
    const std::string written = doc.Serialize();

    // Read again: exactly the edited values; the other section as it was; and
    // a further round trip moves nothing.
    const IniDocument again = IniDocument::Parse(written, u"fuzz.ini");
    Check(ByKey(again.ReadSection(SECTION)) == expected);
    Check(ByKey(again.ReadSection(OTHER)) == ByKey(otherBefore));
    Check(again.Serialize() == written);
    return 0;
}
