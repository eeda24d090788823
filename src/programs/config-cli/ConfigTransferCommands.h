#pragma once
// The files of the export, import and diff commands of tarni-spark-config,
// over the same file format and secret rules as the Logging Options dialog:
// export writes the configuration without logging settings and secrets;
// import and diff read a file (or standard input) whole before the
// configuration is touched.
#include <iosfwd>

#include "core/TarniString.h"
#include "driversupport/ConfigurationMap.h"

namespace Tarni::DriverSupport
{
class DSDSNConfiguration;
}

namespace Tarni::SparkODBC
{

class ConfigTransferCommands
{
public:
    /// The file name that stands for standard input or output.
    static constexpr const char16_t* STANDARD_STREAM = u"-";

    ConfigTransferCommands(std::istream& io_in, std::ostream& io_out);

    /// Writes the export to the file (replaced as a whole) or to standard
    /// output. Throws ErrorException naming the file.
    void Export(const DriverSupport::DSDSNConfiguration& in_config, const tarni_wstring& in_target);

    /// Reads and parses the file or standard input. A bad file throws
    /// ErrorException naming it and the line.
    DriverSupport::ConfigurationMap Read(const tarni_wstring& in_source);

private:
    std::istream& m_in;
    std::ostream& m_out;
};
}  // namespace Tarni::SparkODBC
