#pragma once
// The system headers of the Win32 dialog host. <windows.h> maps names such
// as MessageBox and LoadString to their wide forms with macros; the dialog
// host interface uses those names for its own operations, so the macros are
// removed here and the host calls the wide functions by their full names.
#include <windows.h>
#include <commctrl.h>
#include <commdlg.h>
#include <shlobj.h>

#undef DialogBoxParam
#undef LoadString
#undef MessageBox
#undef GetOpenFileName
#undef GetSaveFileName
