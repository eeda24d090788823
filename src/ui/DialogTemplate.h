#pragma once
// A dialog template and its controls as the resource script describes them,
// for hosts that build their windows themselves (terminal, scripted). The
// Win32 host uses the compiled template instead.
#include <cstdint>
#include <vector>

#include "core/TarniString.h"

namespace Tarni::Platform
{
/// Window and control style bits that the hosts interpret (Windows values).
namespace DialogStyle
{
constexpr std::uint32_t WS_TABSTOP = 0x00010000;
constexpr std::uint32_t WS_GROUP = 0x00020000;
constexpr std::uint32_t WS_VSCROLL = 0x00200000;
constexpr std::uint32_t WS_BORDER = 0x00800000;
constexpr std::uint32_t WS_DISABLED = 0x08000000;
constexpr std::uint32_t WS_VISIBLE = 0x10000000;
constexpr std::uint32_t WS_CHILD = 0x40000000;

constexpr std::uint32_t BS_TYPEMASK = 0x0000000F;
constexpr std::uint32_t BS_PUSHBUTTON = 0x0;
constexpr std::uint32_t BS_DEFPUSHBUTTON = 0x1;
constexpr std::uint32_t BS_CHECKBOX = 0x2;
constexpr std::uint32_t BS_AUTOCHECKBOX = 0x3;
constexpr std::uint32_t BS_RADIOBUTTON = 0x4;
constexpr std::uint32_t BS_3STATE = 0x5;
constexpr std::uint32_t BS_AUTO3STATE = 0x6;
constexpr std::uint32_t BS_GROUPBOX = 0x7;
constexpr std::uint32_t BS_AUTORADIOBUTTON = 0x9;

constexpr std::uint32_t ES_MULTILINE = 0x0004;
constexpr std::uint32_t ES_PASSWORD = 0x0020;
constexpr std::uint32_t ES_READONLY = 0x0800;
constexpr std::uint32_t ES_NUMBER = 0x2000;

constexpr std::uint32_t CBS_TYPEMASK = 0x0003;
constexpr std::uint32_t CBS_DROPDOWNLIST = 0x0003;
constexpr std::uint32_t CBS_SORT = 0x0100;

constexpr std::uint32_t LBS_NOTIFY = 0x0001;
constexpr std::uint32_t LBS_SORT = 0x0002;

constexpr std::uint32_t SS_TYPEMASK = 0x001F;
constexpr std::uint32_t SS_ICON = 0x0003;
}  // namespace DialogStyle

enum class ControlKind
{
    Static,    ///< LTEXT, RTEXT, CTEXT and "Static" controls
    Icon,      ///< ICON
    Button,    ///< push, default, check, radio buttons and group boxes
    Edit,
    ComboBox,
    ListBox,
    Other,     ///< a class the hosts do not know; drawn as a frame at most
};

struct ControlTemplate
{
    ControlKind kind = ControlKind::Other;
    tarni_wstring className;  ///< "Button", "Edit", "Static", "ComboBox", "ListBox"
    tarni_wstring text;
    int id = -1;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::uint32_t style = 0;
    std::uint32_t exStyle = 0;

    std::uint32_t ButtonType() const { return style & DialogStyle::BS_TYPEMASK; }
    bool IsPushButton() const
    {
        return kind == ControlKind::Button &&
               (ButtonType() == DialogStyle::BS_PUSHBUTTON || ButtonType() == DialogStyle::BS_DEFPUSHBUTTON);
    }
    bool IsDefaultButton() const { return kind == ControlKind::Button && ButtonType() == DialogStyle::BS_DEFPUSHBUTTON; }
    bool IsCheckBox() const
    {
        const auto t = ButtonType();
        return kind == ControlKind::Button && (t == DialogStyle::BS_CHECKBOX || t == DialogStyle::BS_AUTOCHECKBOX ||
                                               t == DialogStyle::BS_3STATE || t == DialogStyle::BS_AUTO3STATE);
    }
    bool IsRadioButton() const
    {
        const auto t = ButtonType();
        return kind == ControlKind::Button && (t == DialogStyle::BS_RADIOBUTTON || t == DialogStyle::BS_AUTORADIOBUTTON);
    }
    bool IsAutomatic() const
    {
        const auto t = ButtonType();
        return t == DialogStyle::BS_AUTOCHECKBOX || t == DialogStyle::BS_AUTORADIOBUTTON || t == DialogStyle::BS_AUTO3STATE;
    }
    bool IsGroupBox() const { return kind == ControlKind::Button && ButtonType() == DialogStyle::BS_GROUPBOX; }
    bool HasStyle(std::uint32_t in_bits) const { return (style & in_bits) == in_bits; }
};

struct DialogTemplate
{
    unsigned id = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::uint32_t style = 0;
    std::uint32_t exStyle = 0;
    tarni_wstring caption;
    int fontSize = 8;
    tarni_wstring fontFace;
    std::vector<ControlTemplate> controls;  ///< in template (tab) order

    /// The first control with the id, or null.
    const ControlTemplate* FindControl(int in_id) const
    {
        for (const auto& control : controls)
        {
            if (control.id == in_id)
            {
                return &control;
            }
        }
        return nullptr;
    }
};
}  // namespace Tarni::Platform
