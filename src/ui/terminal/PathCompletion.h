#pragma once
// Completion of file names for the path prompt of the terminal host, as a
// shell completes them: the last part of the typed path is completed to the
// longest text that all entries of its folder beginning with it share.
#include <string>
#include <vector>

namespace Tarni::Platform
{
class PathCompletion
{
public:
    struct Result
    {
        std::string text;                     ///< the path, completed as far as it is unambiguous
        std::vector<std::string> candidates;  ///< the names that match (folders end in "/"), sorted
    };

    /// Completes in_path. Folders always take part and get a trailing "/";
    /// files only when in_foldersOnly is false and their name matches one of
    /// in_patterns (shell patterns such as "*.sdc"; none: every file).
    /// Hidden entries take part only when the typed name begins with ".".
    static Result Complete(const std::string& in_path, const std::vector<std::string>& in_patterns,
                           bool in_foldersOnly);

    /// "~" and "~/..." with the home folder; other paths unchanged.
    static std::string ExpandHome(const std::string& in_path);
    /// The path made absolute against the working folder ("~" expanded).
    static std::string MakeAbsolute(const std::string& in_path);
    /// Whether the name matches one of the patterns; none matches everything.
    static bool Matches(const std::string& in_name, const std::vector<std::string>& in_patterns);
    /// Splits "*.sdc;*.txt" into its patterns.
    static std::vector<std::string> SplitPatterns(const std::string& in_patterns);
};
}  // namespace Tarni::Platform
