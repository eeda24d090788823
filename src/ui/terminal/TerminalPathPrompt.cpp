#include "ui/terminal/TerminalPathPrompt.h"

#include <sys/stat.h>

#include <algorithm>

#include "ui/DialogConstants.h"
#include "ui/terminal/PathCompletion.h"
#include "ui/terminal/TerminalDialogHost.h"
#include "ui/terminal/TerminalEditField.h"
#include "ui/terminal/TerminalMessageBox.h"
#include "ui/terminal/TerminalText.h"
#include "support/StringConverter.h"

namespace Tarni::Platform
{
namespace
{
using Support::StringConverter;

constexpr int LIST_ROWS = 6;

bool IsFolder(const std::string& in_path)
{
    struct stat info{};
    return ::stat(in_path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool Exists(const std::string& in_path)
{
    struct stat info{};
    return ::stat(in_path.c_str(), &info) == 0;
}

std::string ParentOf(const std::string& in_path)
{
    const std::size_t slash = in_path.rfind('/');
    return slash == 0 ? "/" : in_path.substr(0, slash);
}

std::vector<std::string> PatternsOf(const FileChooserOptions& in_options)
{
    std::vector<std::string> patterns;
    for (const auto& filter : in_options.filter)
    {
        for (auto& pattern : PathCompletion::SplitPatterns(StringConverter::ToUtf8(filter.pattern)))
        {
            patterns.push_back(std::move(pattern));
        }
    }
    return patterns;
}
}  // namespace

std::optional<std::string> TerminalPathPrompt::Check(Mode in_mode, const std::string& in_typed,
                                                     const FileChooserOptions& in_options, std::wstring& out_problem,
                                                     bool& out_folder)
{
    out_problem.clear();
    out_folder = false;
    if (in_typed.empty())
    {
        out_problem = in_mode == Mode::Folder ? L"Type the name of a folder." : L"Type the name of a file.";
        return std::nullopt;
    }
    std::string path = PathCompletion::MakeAbsolute(in_typed);
    while (path.size() > 1 && path.back() == '/')
    {
        path.pop_back();
    }
    if (in_mode == Mode::Folder)
    {
        if (!IsFolder(path))
        {
            out_problem = L"The folder does not exist.";
            return std::nullopt;
        }
        return path;
    }
    if (IsFolder(path))
    {
        out_folder = true;
        return std::nullopt;
    }
    if (in_mode == Mode::Save && !in_options.defaultExtension.empty())
    {
        const std::string name = path.substr(path.rfind('/') + 1);
        if (name.find('.') == std::string::npos)
        {
            path += "." + StringConverter::ToUtf8(in_options.defaultExtension);
        }
    }
    const bool mustExist = in_mode == Mode::Open && (in_options.flags & OFN_FILEMUSTEXIST) != 0;
    if (mustExist && !Exists(path))
    {
        out_problem = L"The file does not exist.";
        return std::nullopt;
    }
    if (!IsFolder(ParentOf(path)))
    {
        out_problem = L"The folder of the file does not exist.";
        return std::nullopt;
    }
    return path;
}

std::optional<std::string> TerminalPathPrompt::Run(TerminalDialogHost& io_host, Mode in_mode,
                                                   const std::wstring& in_title, const FileChooserOptions& in_options)
{
    const std::vector<std::string> patterns = PatternsOf(in_options);
    std::wstring filterText;
    for (const auto& filter : in_options.filter)
    {
        filterText += (filterText.empty() ? L"" : L", ") + TerminalText::ToWide(filter.description) + L" (" +
                      TerminalText::ToWide(filter.pattern) + L")";
    }
    std::string initial = StringConverter::ToUtf8(in_options.initialFile);
    initial = PathCompletion::MakeAbsolute(initial);
    if (in_options.initialFile.empty() || IsFolder(initial))
    {
        initial += initial.back() == '/' ? "" : "/";
    }

    TerminalEditField field(1, false, false, false);
    field.SetText(TerminalText::FromUtf8(initial));
    std::vector<std::string> candidates;
    std::wstring problem;
    const std::wstring status = L"Tab: complete  Enter: choose  Esc: cancel";
    WINDOW* window = nullptr;
    std::optional<std::string> result;
    for (;;)
    {
        const int screenRows = io_host.GetDialogRows();
        const int screenCols = io_host.GetScreenCols();
        const int width = std::clamp(screenCols - 4, 3, 76);
        const int height = std::min(LIST_ROWS + 6, std::max(screenRows, 3));
        if (window != nullptr)
        {
            ::delwin(window);
        }
        window = ::newwin(height, width, std::max((screenRows - height) / 2, 0), std::max((screenCols - width) / 2, 0));
        if (window == nullptr)
        {
            break;
        }
        ::keypad(window, TRUE);
        field.SetWidth(std::max(width - 4, 1));

        io_host.PaintAll(&status, false);
        ::werase(window);
        ::box(window, 0, 0);
        const std::wstring title = L" " + TerminalText::Fit(in_title, std::max(width - 6, 1)) + L" ";
        ::wattr_set(window, A_BOLD, 0, nullptr);
        ::mvwaddnwstr(window, 0, std::max((width - TerminalText::Width(title)) / 2, 1), title.c_str(),
                      static_cast<int>(title.size()));
        ::wattr_set(window, A_NORMAL, 0, nullptr);
        ::mvwaddch(window, 1, 1, '[');
        ::mvwaddch(window, 1, width - 2, ']');
        const int caret = field.Draw(window, 1, 2, A_UNDERLINE);
        const std::wstring info = filterText.empty() ? std::wstring() : L"Files: " + filterText;
        const std::wstring shownInfo = TerminalText::Fit(info, width - 4);
        ::mvwaddnwstr(window, 2, 2, shownInfo.c_str(), static_cast<int>(shownInfo.size()));
        for (int i = 0; i < LIST_ROWS && i < static_cast<int>(candidates.size()) && 3 + i < height - 2; ++i)
        {
            std::wstring line = TerminalText::FromUtf8(candidates[static_cast<std::size_t>(i)]);
            if (i == LIST_ROWS - 1 && static_cast<int>(candidates.size()) > LIST_ROWS)
            {
                line = L"... " + std::to_wstring(candidates.size() - LIST_ROWS + 1) + L" more";
            }
            line = TerminalText::Fit(line, width - 6);
            ::mvwaddnwstr(window, 3 + i, 4, line.c_str(), static_cast<int>(line.size()));
        }
        if (!problem.empty())
        {
            const std::wstring shown = TerminalText::Fit(problem, width - 4);
            ::wattr_set(window, A_BOLD, 0, nullptr);
            ::mvwaddnwstr(window, height - 2, 2, shown.c_str(), static_cast<int>(shown.size()));
            ::wattr_set(window, A_NORMAL, 0, nullptr);
        }
        ::wmove(window, 1, 2 + caret);
        ::touchwin(window);
        ::wnoutrefresh(window);
        ::curs_set(1);
        ::doupdate();

        const TerminalKey key = io_host.ReadKey(window);
        if (key.kind == TerminalKey::Kind::Escape)
        {
            break;
        }
        if (key.IsTab())
        {
            const auto completion =
                PathCompletion::Complete(TerminalText::ToUtf8(field.GetText()), patterns, in_mode == Mode::Folder);
            candidates = completion.candidates;
            problem = candidates.empty() ? L"No file or folder begins so." : L"";
            field.SetText(TerminalText::FromUtf8(completion.text));
            continue;
        }
        if (key.IsEnter())
        {
            bool folder = false;
            const auto path = Check(in_mode, TerminalText::ToUtf8(field.GetText()), in_options, problem, folder);
            if (folder)
            {
                // A folder where a file is wanted: show what is in it.
                std::string text = PathCompletion::MakeAbsolute(TerminalText::ToUtf8(field.GetText()));
                text += text.back() == '/' ? "" : "/";
                field.SetText(TerminalText::FromUtf8(text));
                candidates = PathCompletion::Complete(text, patterns, false).candidates;
                continue;
            }
            if (!path)
            {
                continue;
            }
            if (in_mode == Mode::Save && (in_options.flags & OFN_OVERWRITEPROMPT) != 0 && Exists(*path))
            {
                const std::wstring question = TerminalText::FromUtf8(*path) + L" already exists.\nDo you want to replace it?";
                if (TerminalMessageBox::Run(io_host, question, in_title, MB_YESNO | MB_ICONEXCLAMATION) != IDYES)
                {
                    continue;
                }
            }
            result = path;
            break;
        }
        if (field.HandleKey(key) == TerminalEditField::Outcome::Changed)
        {
            problem.clear();
        }
    }
    if (window != nullptr)
    {
        ::delwin(window);
    }
    return result;
}
}  // namespace Tarni::Platform
