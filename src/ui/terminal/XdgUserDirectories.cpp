#include "ui/terminal/XdgUserDirectories.h"

#include <sys/stat.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace Tarni::Platform
{
namespace
{
bool IsFolder(const std::string& in_path)
{
    struct stat info {};
    return !in_path.empty() && stat(in_path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string_view Trim(std::string_view in_text)
{
    while (!in_text.empty() && (in_text.front() == ' ' || in_text.front() == '\t'))
    {
        in_text.remove_prefix(1);
    }
    while (!in_text.empty() && (in_text.back() == ' ' || in_text.back() == '\t' || in_text.back() == '\r'))
    {
        in_text.remove_suffix(1);
    }
    return in_text;
}

/// The text between the double quotes, shell escapes undone; nothing when
/// the value is not one quoted word.
std::optional<std::string> Unquote(std::string_view in_value)
{
    if (in_value.size() < 2 || in_value.front() != '"' || in_value.back() != '"')
    {
        return std::nullopt;
    }
    in_value = in_value.substr(1, in_value.size() - 2);
    std::string text;
    for (std::size_t i = 0; i < in_value.size(); ++i)
    {
        if (in_value[i] == '\\' && i + 1 < in_value.size())
        {
            ++i;
        }
        else if (in_value[i] == '"')
        {
            return std::nullopt;
        }
        text += in_value[i];
    }
    return text;
}
}  // namespace

std::optional<std::string> XdgUserDirectories::Find(std::string_view in_fileText, std::string_view in_name,
                                                    const std::string& in_home)
{
    std::optional<std::string> found;
    std::istringstream lines{std::string(in_fileText)};
    for (std::string line; std::getline(lines, line);)
    {
        const std::string_view entry = Trim(line);
        if (entry.empty() || entry.front() == '#' || entry.substr(0, in_name.size()) != in_name ||
            entry.substr(in_name.size(), 1) != "=")
        {
            continue;
        }
        const auto value = Unquote(Trim(entry.substr(in_name.size() + 1)));
        if (!value)
        {
            continue;
        }
        // A later line wins, as when the shell reads the file.
        if (value->rfind("$HOME", 0) == 0 && (value->size() == 5 || (*value)[5] == '/'))
        {
            found = in_home + value->substr(5);
        }
        else if (!value->empty() && value->front() == '/')
        {
            found = *value;
        }
    }
    return found;
}

std::optional<std::string> XdgUserDirectories::DocumentsFolder()
{
    const char* home = std::getenv("HOME");
    if (home == nullptr || *home == '\0')
    {
        return std::nullopt;
    }
    const char* configHome = std::getenv("XDG_CONFIG_HOME");
    const std::string configFolder =
        configHome != nullptr && *configHome == '/' ? std::string(configHome) : std::string(home) + "/.config";
    std::ifstream file(configFolder + "/user-dirs.dirs");
    std::ostringstream text;
    text << file.rdbuf();
    if (const auto documents = Find(text.str(), "XDG_DOCUMENTS_DIR", home); documents && IsFolder(*documents))
    {
        return documents;
    }
    if (const char* documents = std::getenv("XDG_DOCUMENTS_DIR"); documents != nullptr && IsFolder(documents))
    {
        return std::string(documents);
    }
    return std::string(home);
}
}  // namespace Tarni::Platform
