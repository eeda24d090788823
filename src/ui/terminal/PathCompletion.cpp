#include "ui/terminal/PathCompletion.h"

#include <dirent.h>
#include <fnmatch.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace Tarni::Platform
{
std::string PathCompletion::ExpandHome(const std::string& in_path)
{
    if (in_path == "~" || in_path.rfind("~/", 0) == 0)
    {
        const char* home = std::getenv("HOME");
        if (home != nullptr && *home != '\0')
        {
            return std::string(home) + in_path.substr(1);
        }
    }
    return in_path;
}

std::string PathCompletion::MakeAbsolute(const std::string& in_path)
{
    std::string path = ExpandHome(in_path);
    if (!path.empty() && path.front() == '/')
    {
        return path;
    }
    std::unique_ptr<char, decltype(&std::free)> cwd(::getcwd(nullptr, 0), &std::free);
    const std::string base = cwd ? cwd.get() : ".";
    return path.empty() ? base : (base == "/" ? base : base + "/") + path;
}

bool PathCompletion::Matches(const std::string& in_name, const std::vector<std::string>& in_patterns)
{
    if (in_patterns.empty())
    {
        return true;
    }
    return std::any_of(in_patterns.begin(), in_patterns.end(), [&](const std::string& in_pattern) {
        return in_pattern == "*.*" || ::fnmatch(in_pattern.c_str(), in_name.c_str(), 0) == 0;
    });
}

std::vector<std::string> PathCompletion::SplitPatterns(const std::string& in_patterns)
{
    std::vector<std::string> patterns;
    std::size_t start = 0;
    while (start <= in_patterns.size())
    {
        const std::size_t end = std::min(in_patterns.find(';', start), in_patterns.size());
        std::string pattern = in_patterns.substr(start, end - start);
        pattern.erase(0, pattern.find_first_not_of(' '));
        pattern.erase(pattern.find_last_not_of(' ') + 1);
        if (!pattern.empty())
        {
            patterns.push_back(pattern);
        }
        start = end + 1;
    }
    return patterns;
}

PathCompletion::Result PathCompletion::Complete(const std::string& in_path, const std::vector<std::string>& in_patterns,
                                                bool in_foldersOnly)
{
    Result result{in_path, {}};
    const std::string expanded = ExpandHome(in_path);
    const std::size_t slash = expanded.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : expanded.substr(0, slash + 1);
    const std::string prefix = slash == std::string::npos ? expanded : expanded.substr(slash + 1);
    // The text before the name stays as typed (a leading "~" included).
    const std::string typedFolder = in_path.substr(0, in_path.size() - prefix.size());

    DIR* directory = ::opendir(folder.empty() ? "." : folder.c_str());
    if (directory == nullptr)
    {
        return result;
    }
    while (const dirent* entry = ::readdir(directory))
    {
        const std::string name = entry->d_name;
        if (name == "." || name == ".." || name.rfind(prefix, 0) != 0 || (name.front() == '.' && prefix.empty()))
        {
            continue;
        }
        struct stat info{};
        const std::string full = (folder.empty() ? "" : folder) + name;
        const bool isFolder = ::stat(full.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
        if (isFolder)
        {
            result.candidates.push_back(name + "/");
        }
        else if (!in_foldersOnly && Matches(name, in_patterns))
        {
            result.candidates.push_back(name);
        }
    }
    ::closedir(directory);
    std::sort(result.candidates.begin(), result.candidates.end());
    if (result.candidates.empty())
    {
        return result;
    }
    // The longest beginning that every candidate shares.
    std::string common = result.candidates.front();
    for (const auto& candidate : result.candidates)
    {
        std::size_t n = 0;
        while (n < common.size() && n < candidate.size() && common[n] == candidate[n])
        {
            ++n;
        }
        common.resize(n);
    }
    if (common.size() > prefix.size())
    {
        result.text = typedFolder + common;
    }
    return result;
}
}  // namespace Tarni::Platform
