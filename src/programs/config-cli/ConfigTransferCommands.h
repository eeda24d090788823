#pragma once
// The export and import commands of tarni-spark-config, over the same file
// format, secret rules and import as the Logging Options dialog: export
// writes the configuration without logging settings and secrets, import
// replaces the configuration with the file's settings and saves it through
// the normal save, all at once or not at all.
#include <iosfwd>

#include "core/TarniString.h"

namespace Tarni::SparkODBC
{
class QDCConfiguration;

class ConfigTransferCommands
{
public:
    /// The file name that stands for standard input or output.
    static constexpr const char16_t* STANDARD_STREAM = u"-";

    ConfigTransferCommands(std::istream& io_in, std::ostream& io_out);

    /// Writes the export to the file (replaced as a whole) or to standard
    /// output. Throws ErrorException naming the file.
    void Export(const QDCConfiguration& in_config, const tarni_wstring& in_target);

    /// Reads the file or standard input, loads it into the configuration
    /// and saves. A bad file throws ErrorException naming it and the line,
    /// before anything is changed.
    void Import(QDCConfiguration& io_config, const tarni_wstring& in_source);

private:
    std::istream& m_in;
    std::ostream& m_out;
};
}  // namespace Tarni::SparkODBC
