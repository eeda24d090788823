#pragma once
// What a run of the dialog program sets up in the platform before anything
// else and tears down last: on Windows the component model of the dialog
// thread, in the single-threaded apartment that the shell's folder chooser
// and the common file dialogs need; elsewhere nothing needs it.
namespace Tarni::Platform
{
class PlatformInitialization
{
public:
    /// in_reserved must be 0; in_apartment is the component model's
    /// concurrency flag (2: apartment-threaded). False when the thread's
    /// component model could not be initialised (the choosers may then fail).
    static bool InitializePlatform(unsigned in_reserved, unsigned in_apartment);
    /// Undoes a successful InitializePlatform.
    static void UninitializePlatform();
};
}  // namespace Tarni::Platform
