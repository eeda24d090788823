#include "programs/config-cli/ConfigTransferCommands.h"

#include <istream>
#include <ostream>

#include "core/ErrorException.h"
#include "driversupport/DSConfigurationFile.h"
#include "driversupport/DSDSNConfiguration.h"
#include "platform/SystemError.h"

namespace Tarni::SparkODBC
{
using DriverSupport::DSConfigurationFile;

namespace
{
/// How standard input is named in messages, as other tools name it.
constexpr const char16_t* STANDARD_INPUT_NAME = u"(standard input)";
constexpr const char16_t* STANDARD_OUTPUT_NAME = u"(standard output)";
}  // namespace

ConfigTransferCommands::ConfigTransferCommands(std::istream& io_in, std::ostream& io_out) : m_in(io_in), m_out(io_out)
{
}

void ConfigTransferCommands::Export(const DriverSupport::DSDSNConfiguration& in_config, const tarni_wstring& in_target)
{
    if (in_target == STANDARD_STREAM)
    {
        m_out << DSConfigurationFile::Format(DSConfigurationFile::GetExportMap(in_config)) << std::flush;
        if (!m_out)
        {
            throw Support::ErrorException(
                Support::DiagState::GeneralError, Support::DS_ERROR, u"DSConfigFileWriteErr",
                {STANDARD_OUTPUT_NAME, Platform::SystemError::Text(Platform::SystemError::LastErrorCode())});
        }
        return;
    }
    DSConfigurationFile::Export(in_config, in_target);
}

DriverSupport::ConfigurationMap ConfigTransferCommands::Read(const tarni_wstring& in_source)
{
    if (in_source == STANDARD_STREAM)
    {
        // One byte more than allowed tells a stream that is too long.
        std::string bytes(DSConfigurationFile::MAX_FILE_BYTES + 1, '\0');
        m_in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(m_in.gcount()));
        if (m_in.bad())
        {
            throw Support::ErrorException(
                Support::DiagState::GeneralError, Support::DS_ERROR, u"DSConfigFileReadErr",
                {STANDARD_INPUT_NAME, Platform::SystemError::Text(Platform::SystemError::LastErrorCode())});
        }
        return DSConfigurationFile::Parse(bytes, STANDARD_INPUT_NAME);
    }
    return DSConfigurationFile::Read(in_source);
}
}  // namespace Tarni::SparkODBC
