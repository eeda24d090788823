#pragma once
// The description of every key that the Spark product's configuration model
// knows (name, default, form, checks), in one list: the driver's own defaults
// first, in the order they are built, then the keys that components supply or
// the dialogs edit. Keys it does not list are kept as text.
#include <vector>

#include "driversupport/DSKeyDescription.h"

namespace Tarni::SparkODBC
{
class SOKeyCatalogue
{
public:
    static const std::vector<DriverSupport::DSKeyDescription>& All();

    /// The description of a key (compared as keys are, ignoring case), or null.
    static const DriverSupport::DSKeyDescription* Find(tarni_wstring_view in_key);

    /// True for a key of a prefixed property group ("SSP_...", "http.header....").
    static bool IsPrefixedKey(tarni_wstring_view in_key);

    /// Checks a value for a key: the key's description, and for a prefixed
    /// key a property name after the prefix. Keys it does not know pass.
    /// Throws ErrorException naming the key, the value and what is accepted.
    static void Check(tarni_wstring_view in_key, tarni_wstring_view in_value);
};
}  // namespace Tarni::SparkODBC
