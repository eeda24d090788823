#pragma once
namespace Tarni::Platform
{
/// A window rectangle in screen coordinates (right and bottom exclusive), as
/// GetWindowRect reports it.
struct DialogRect
{
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool operator==(const DialogRect&) const = default;
};
}  // namespace Tarni::Platform
