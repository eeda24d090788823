#pragma once
#include <cstdint>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
class IDialogWindow;

/// One entry of a file chooser's filter: the text shown and its pattern.
struct FileChooserFilter
{
    tarni_wstring description;  ///< "DSN Definition"
    tarni_wstring pattern;      ///< "*.sdc"
};

/// What an open or save file box is asked for (the fields of OPENFILENAMEW
/// that the dialogs use).
struct FileChooserOptions
{
    IDialogWindow* owner = nullptr;
    tarni_wstring title;                    ///< empty: the system's default title
    std::vector<FileChooserFilter> filter;  ///< empty: no filter
    tarni_wstring defaultExtension;         ///< without the dot; empty: none
    tarni_wstring initialFile;              ///< initial contents of the name buffer
    unsigned bufferChars = 32768;           ///< size of the name buffer in wide characters
    std::uint32_t flags = 0;                ///< OFN_* flags
};
}  // namespace Tarni::Platform
