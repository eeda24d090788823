// The entry points the ODBC installers look up in the driver's setup
// library. The parameters keep the installer API's types by size: a window
// handle, WORD (unsigned short), BOOL (int), and UTF-16 text on both
// installers (Windows' WCHAR, unixODBC's 16-bit SQLWCHAR). The narrow forms
// convert their text and call the wide ones; unixODBC looks those up first.
#include "platform/TextConversion.h"
#include "programs/odbc-setup/SOSetupAttributes.h"
#include "programs/odbc-setup/SOSetupRequest.h"

using Tarni::SparkODBC::SOSetupAttributes;
using Tarni::SparkODBC::SOSetupRequest;

namespace
{
Tarni::tarni_wstring Wide(const char* in_text)
{
    return in_text == nullptr ? Tarni::tarni_wstring() : Tarni::Platform::TextConversion::AnsiToUtf16(in_text);
}
}  // namespace

extern "C" int ConfigDSNW(void* in_parent, unsigned short in_request, const char16_t* in_driver,
                          const char16_t* in_attributes)
{
    return SOSetupRequest::ConfigDSN(in_parent, in_request, in_driver, in_attributes) ? 1 : 0;
}

extern "C" int ConfigDSN(void* in_parent, unsigned short in_request, const char* in_driver,
                         const char* in_attributes)
{
    const Tarni::tarni_wstring driver = Wide(in_driver);
    const Tarni::tarni_wstring attributes = SOSetupAttributes::FromAnsi(in_attributes);
    return ConfigDSNW(in_parent, in_request, in_driver == nullptr ? nullptr : driver.c_str(),
                      in_attributes == nullptr ? nullptr : attributes.c_str());
}

extern "C" int ConfigDriverW(void* in_parent, unsigned short in_request, const char16_t* in_driver,
                             const char16_t* in_arguments, char16_t* out_message, unsigned short in_messageMax,
                             unsigned short* out_messageLength)
{
    return SOSetupRequest::ConfigDriver(in_parent, in_request, in_driver, in_arguments, out_message, in_messageMax,
                                        out_messageLength)
               ? 1
               : 0;
}

extern "C" int ConfigDriver(void* in_parent, unsigned short in_request, const char* in_driver,
                            const char* in_arguments, char* out_message, unsigned short in_messageMax,
                            unsigned short* out_messageLength)
{
    if (out_message != nullptr && in_messageMax > 0)
    {
        out_message[0] = '\0';
    }
    const Tarni::tarni_wstring driver = Wide(in_driver);
    const Tarni::tarni_wstring arguments = Wide(in_arguments);
    return ConfigDriverW(in_parent, in_request, in_driver == nullptr ? nullptr : driver.c_str(),
                         in_arguments == nullptr ? nullptr : arguments.c_str(), nullptr, 0, out_messageLength);
}
