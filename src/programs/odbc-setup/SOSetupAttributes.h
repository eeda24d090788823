#pragma once
// The attribute list that the ODBC installer hands to a setup library:
// "KEY=VALUE" entries, each ended by a NUL character, the list ended by an
// empty entry (a second NUL).
#include <string>
#include <utility>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class SODataSourceConfiguration;

class SOSetupAttributes
{
public:
    using Attribute = std::pair<tarni_wstring, tarni_wstring>;

    /// The longest list read, in characters: one that has not ended by then is malformed.
    static constexpr size_t MAX_LIST_CHARS = 65536;

    /// Parses the list; null is an empty list. Throws ErrorException
    /// "DSDsnAttributeErr" naming the entry for an entry without "=" or with
    /// an empty key, and for a list without its terminator within MAX_LIST_CHARS.
    static std::vector<Attribute> Parse(const char16_t* in_list);

    /// The same list given as narrow (installer "ANSI") text, converted entry
    /// by entry into the wide form with its terminator.
    static tarni_wstring FromAnsi(const char* in_list);

    /// The value of a key (compared without case), or empty.
    static tarni_wstring Find(const std::vector<Attribute>& in_attributes, tarni_wstring_view in_key);

    /// Applies the attributes to the data source: "DSN" and "Driver" are the
    /// installer's; a plain secret is kept only protected (for all users of
    /// a system data source, else for the current user); every other value
    /// is checked against its key's description first. Throws ErrorException
    /// (the configuration may then be partly changed, nothing is written).
    static void Apply(SODataSourceConfiguration& io_config, const std::vector<Attribute>& in_attributes,
                      bool in_systemDsn);
};
}  // namespace Tarni::SparkODBC
