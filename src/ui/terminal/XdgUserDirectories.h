#pragma once
// The user's folders as the XDG user-dirs convention names them: the file
// user-dirs.dirs in the configuration folder ($XDG_CONFIG_HOME, else
// ~/.config) holds lines such as XDG_DOCUMENTS_DIR="$HOME/Documents",
// each a path relative to the home folder ("$HOME/...") or an absolute one.
#include <optional>
#include <string>
#include <string_view>

namespace Tarni::Platform
{
class XdgUserDirectories
{
public:
    /// The folder that the text of a user-dirs.dirs file gives the name
    /// (for instance "XDG_DOCUMENTS_DIR"), with $HOME replaced; nothing when
    /// the file does not name it or names it in a form the convention lacks.
    static std::optional<std::string> Find(std::string_view in_fileText, std::string_view in_name,
                                           const std::string& in_home);

    /// The documents folder: from the user's user-dirs.dirs, else from the
    /// environment variable XDG_DOCUMENTS_DIR, else the home folder. Only an
    /// existing folder counts; nothing without a home folder.
    static std::optional<std::string> DocumentsFolder();
};
}  // namespace Tarni::Platform
