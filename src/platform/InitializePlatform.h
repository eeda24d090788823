#pragma once
// Platform seam: the process set-up that the user-interface thread of a
// program needs, undone in reverse by UninitializePlatform.
//   Windows: COM on the calling thread in the given apartment model (the
//            shell's folder and file choosers need a single-threaded
//            apartment); undone only when this call initialised it.
//   Linux:   the locale of the environment for the terminal (C.UTF-8 for the
//            character type when the environment's is not UTF-8); the
//            previous locale comes back on uninitialisation.
// Calls nest: only the outermost pair does the work.
namespace Tarni::Platform
{
/// The COM apartment model value of a single-threaded apartment.
inline constexpr unsigned PLATFORM_APARTMENT_SINGLE_THREADED = 2;

/// in_reserved must be 0. in_apartmentModel: PLATFORM_APARTMENT_SINGLE_THREADED
/// for a thread that shows dialogs.
void InitializePlatform(unsigned in_reserved, unsigned in_apartmentModel);

/// Undoes InitializePlatform. Never throws.
void UninitializePlatform() noexcept;
}  // namespace Tarni::Platform
