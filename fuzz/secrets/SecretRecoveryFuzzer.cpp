// Feeds arbitrary stored values to the recovery path. Every input must end
// in a recovered secret or an ErrorException (DSDecryptError, or the hex
// conversion's DSIException) and never in a crash, a sanitizer report or an
// unexpected exception type. Half of the inputs are turned into a mutation
// of a genuine protected value, so the fuzzer also works behind the tag check
// (on Linux the key sources live in a private temporary folder).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "driversupport/DSEncryptionUtils.h"
#include "core/DSITypeUtilities.h"
#include "core/ErrorException.h"
#include "support/StringConverter.h"

using namespace Tarni;
using DriverSupport::DSEncryptionUtils;
using Support::StringConverter;

namespace
{
struct Genuine
{
    tarni_wstring userValue;
    tarni_wstring machineValue;
};

const Genuine& Setup()
{
    static const Genuine genuine = [] {
        const auto folder = std::filesystem::temp_directory_path() / "tarni-fuzz-secrets";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "machine-id") << "00112233445566778899aabbccddeeff\n";
        DSEncryptionUtils::SetKeyLocations({StringConverter::FromUtf8((folder / "user" / "secret.key").string()),
                                            StringConverter::FromUtf8((folder / "machine-id").string())});
        return Genuine{DSEncryptionUtils::Encrypt(u"fuzz user secret", false, u"EncryptedPWD"),
                       DSEncryptionUtils::Encrypt(u"fuzz machine secret \u20ac", true, u"EncryptedPWD")};
    }();
    return genuine;
}

/// Bytes as text: UTF-8 when they are, else one code unit per byte.
tarni_wstring AsText(const std::string& in_bytes)
{
    if (StringConverter::IsValidUtf8(in_bytes)) return StringConverter::FromUtf8(in_bytes);
    return tarni_wstring(in_bytes.begin(), in_bytes.end());
}

void Recover(const tarni_wstring& in_value)
{
    try
    {
        DSEncryptionUtils::Decrypt(in_value, u"EncryptedPWD");
    }
    catch (const Support::ErrorException&)
    {
        // The refusal every bad value must end in.
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* in_data, size_t in_size)
{
    const Genuine& genuine = Setup();
    if (in_size == 0) return 0;
    const std::string bytes(reinterpret_cast<const char*>(in_data) + 1, in_size - 1);
    const uint8_t mode = in_data[0];

    if ((mode & 1) == 0)
    {
        // The input is the stored value itself.
        Recover(AsText(bytes));
        try
        {
            DSI::DSITypeUtilities::HexStringToBinary(AsText(bytes));
        }
        catch (const Support::ErrorException&)
        {
        }
        return 0;
    }

    // The input edits a genuine value: pairs of (position, new unit) bytes,
    // then an optional cut.
    tarni_wstring value = (mode & 2) != 0 ? genuine.machineValue : genuine.userValue;
    size_t i = 0;
    for (; i + 1 < bytes.size() && i < 16; i += 2)
    {
        const size_t position = static_cast<unsigned char>(bytes[i]) % value.size();
        value[position] = static_cast<char16_t>(static_cast<unsigned char>(bytes[i + 1]));
    }
    if ((mode & 4) != 0 && !value.empty())
    {
        value.resize(static_cast<unsigned char>(mode) % value.size());
    }
    Recover(value);
    return 0;
}
