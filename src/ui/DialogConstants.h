#pragma once
// Window message, notification, style and message-box values of the dialog
// layer. They keep the names and values that Windows gives them, so that a
// dialog procedure routes the same messages on every host (Win32, terminal,
// scripted). Where <windows.h> has already defined a name as a macro, the
// macro (with the same value) is used instead of the constant below.
#include <cstdint>

namespace Tarni::Platform
{
// clang-format off
#define TARNI_DIALOG_CONSTANT(name, value) constexpr std::uint32_t name = value;

// Messages.
#ifndef WM_DESTROY
TARNI_DIALOG_CONSTANT(WM_DESTROY, 0x0002)
#endif
#ifndef WM_CLOSE
TARNI_DIALOG_CONSTANT(WM_CLOSE, 0x0010)
#endif
#ifndef WM_NCDESTROY
TARNI_DIALOG_CONSTANT(WM_NCDESTROY, 0x0082)
#endif
#ifndef WM_INITDIALOG
TARNI_DIALOG_CONSTANT(WM_INITDIALOG, 0x0110)
#endif
#ifndef WM_TIMER
TARNI_DIALOG_CONSTANT(WM_TIMER, 0x0113)
#endif
#ifndef WM_COMMAND
TARNI_DIALOG_CONSTANT(WM_COMMAND, 0x0111)
#endif

// Notification codes (high word of a WM_COMMAND word parameter).
#ifndef BN_CLICKED
TARNI_DIALOG_CONSTANT(BN_CLICKED, 0)
#endif
#ifndef BN_DOUBLECLICKED
TARNI_DIALOG_CONSTANT(BN_DOUBLECLICKED, 5)
#endif
#ifndef EN_SETFOCUS
TARNI_DIALOG_CONSTANT(EN_SETFOCUS, 0x0100)
#endif
#ifndef EN_KILLFOCUS
TARNI_DIALOG_CONSTANT(EN_KILLFOCUS, 0x0200)
#endif
#ifndef EN_CHANGE
TARNI_DIALOG_CONSTANT(EN_CHANGE, 0x0300)
#endif
#ifndef EN_UPDATE
TARNI_DIALOG_CONSTANT(EN_UPDATE, 0x0400)
#endif
#ifndef CBN_SELCHANGE
TARNI_DIALOG_CONSTANT(CBN_SELCHANGE, 1)
#endif
#ifndef LBN_SELCHANGE
TARNI_DIALOG_CONSTANT(LBN_SELCHANGE, 1)
#endif
#ifndef LBN_DBLCLK
TARNI_DIALOG_CONSTANT(LBN_DBLCLK, 2)
#endif

// Command ids of the standard buttons and results of message boxes.
#ifndef IDOK
TARNI_DIALOG_CONSTANT(IDOK, 1)
#endif
#ifndef IDCANCEL
TARNI_DIALOG_CONSTANT(IDCANCEL, 2)
#endif
#ifndef IDABORT
TARNI_DIALOG_CONSTANT(IDABORT, 3)
#endif
#ifndef IDRETRY
TARNI_DIALOG_CONSTANT(IDRETRY, 4)
#endif
#ifndef IDIGNORE
TARNI_DIALOG_CONSTANT(IDIGNORE, 5)
#endif
#ifndef IDYES
TARNI_DIALOG_CONSTANT(IDYES, 6)
#endif
#ifndef IDNO
TARNI_DIALOG_CONSTANT(IDNO, 7)
#endif

// Message box flags.
#ifndef MB_OK
TARNI_DIALOG_CONSTANT(MB_OK, 0x00000000)
#endif
#ifndef MB_OKCANCEL
TARNI_DIALOG_CONSTANT(MB_OKCANCEL, 0x00000001)
#endif
#ifndef MB_ABORTRETRYIGNORE
TARNI_DIALOG_CONSTANT(MB_ABORTRETRYIGNORE, 0x00000002)
#endif
#ifndef MB_YESNOCANCEL
TARNI_DIALOG_CONSTANT(MB_YESNOCANCEL, 0x00000003)
#endif
#ifndef MB_YESNO
TARNI_DIALOG_CONSTANT(MB_YESNO, 0x00000004)
#endif
#ifndef MB_RETRYCANCEL
TARNI_DIALOG_CONSTANT(MB_RETRYCANCEL, 0x00000005)
#endif
#ifndef MB_TYPEMASK
TARNI_DIALOG_CONSTANT(MB_TYPEMASK, 0x0000000F)
#endif
#ifndef MB_ICONHAND
TARNI_DIALOG_CONSTANT(MB_ICONHAND, 0x00000010)
#endif
#ifndef MB_ICONQUESTION
TARNI_DIALOG_CONSTANT(MB_ICONQUESTION, 0x00000020)
#endif
#ifndef MB_ICONEXCLAMATION
TARNI_DIALOG_CONSTANT(MB_ICONEXCLAMATION, 0x00000030)
#endif
#ifndef MB_ICONASTERISK
TARNI_DIALOG_CONSTANT(MB_ICONASTERISK, 0x00000040)
#endif
#ifndef MB_ICONINFORMATION
TARNI_DIALOG_CONSTANT(MB_ICONINFORMATION, 0x00000040)
#endif
#ifndef MB_ICONMASK
TARNI_DIALOG_CONSTANT(MB_ICONMASK, 0x000000F0)
#endif
#ifndef MB_DEFBUTTON1
TARNI_DIALOG_CONSTANT(MB_DEFBUTTON1, 0x00000000)
#endif
#ifndef MB_DEFBUTTON2
TARNI_DIALOG_CONSTANT(MB_DEFBUTTON2, 0x00000100)
#endif
#ifndef MB_DEFBUTTON3
TARNI_DIALOG_CONSTANT(MB_DEFBUTTON3, 0x00000200)
#endif
#ifndef MB_DEFMASK
TARNI_DIALOG_CONSTANT(MB_DEFMASK, 0x00000F00)
#endif

// Open-file box flags used by the dialogs.
#ifndef OFN_OVERWRITEPROMPT
TARNI_DIALOG_CONSTANT(OFN_OVERWRITEPROMPT, 0x00000002)
#endif
#ifndef OFN_HIDEREADONLY
TARNI_DIALOG_CONSTANT(OFN_HIDEREADONLY, 0x00000004)
#endif
#ifndef OFN_PATHMUSTEXIST
TARNI_DIALOG_CONSTANT(OFN_PATHMUSTEXIST, 0x00000800)
#endif
#ifndef OFN_FILEMUSTEXIST
TARNI_DIALOG_CONSTANT(OFN_FILEMUSTEXIST, 0x00001000)
#endif

// Cursor resource of the wait cursor.
TARNI_DIALOG_CONSTANT(IDC_WAIT_CURSOR, 32514)

#undef TARNI_DIALOG_CONSTANT
// clang-format on

/// Low and high word of a WM_COMMAND word parameter: control id and
/// notification code.
constexpr unsigned LowWord(std::uintptr_t in_value) { return static_cast<unsigned>(in_value & 0xFFFF); }
constexpr unsigned HighWord(std::uintptr_t in_value) { return static_cast<unsigned>((in_value >> 16) & 0xFFFF); }
constexpr std::uintptr_t MakeCommandParam(unsigned in_id, unsigned in_code)
{
    return (static_cast<std::uintptr_t>(in_code & 0xFFFF) << 16) | (in_id & 0xFFFF);
}
}  // namespace Tarni::Platform
