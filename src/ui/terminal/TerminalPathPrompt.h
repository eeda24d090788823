#pragma once
// The open-file, save-file and folder choosers of the terminal host: a
// modal pop-up with a path to edit. Tab completes the file or folder name
// and lists the names that match; Enter takes the path when it suits the
// chooser (an existing file to open, a folder that exists, a file to save
// whose folder exists, with the default extension added and a question
// before an existing file is replaced); Escape cancels. The answer is an
// absolute path.
#include <optional>
#include <string>
#include <vector>

#include "ui/FileChooserOptions.h"

namespace Tarni::Platform
{
class TerminalDialogHost;

class TerminalPathPrompt
{
public:
    enum class Mode
    {
        Open,
        Save,
        Folder,
    };

    static std::optional<std::string> Run(TerminalDialogHost& io_host, Mode in_mode, const std::wstring& in_title,
                                          const FileChooserOptions& in_options);

    /// Checks a typed path for the chooser; returns the path to answer with
    /// (absolute, default extension added), or nothing with out_problem set
    /// (or, for a folder typed where a file is wanted, with out_folder set).
    static std::optional<std::string> Check(Mode in_mode, const std::string& in_typed,
                                            const FileChooserOptions& in_options, std::wstring& out_problem,
                                            bool& out_folder);
};
}  // namespace Tarni::Platform
