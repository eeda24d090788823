#pragma once
// The process-wide slots of the dialog layer: the resource module (the
// dialog host that holds the program's templates and strings), guarded by
// the module lock; the application identifier; and the message catalogue
// through which the text of an ErrorException is produced for a box.
#include <functional>
#include <mutex>

#include "ui/IDialogHost.h"
#include "core/ErrorException.h"

namespace Tarni::DriverSupport
{
class DSDialogModule
{
public:
    /// Resolves the text of an error through the message catalogue.
    using ErrorTextResolver = std::function<tarni_wstring(const Support::ErrorException&)>;

    /// Stores the resource module (null: none).
    static void SetHost(Platform::IDialogHost* in_host);
    /// Reads the resource module; the module lock is entered and left just
    /// before the read.
    static Platform::IDialogHost* GetHost();

    static void SetApplicationId(tarni_wstring_view in_id);
    static tarni_wstring GetApplicationId();

    static void SetErrorTextResolver(ErrorTextResolver in_resolver);
    /// The catalogue's text of the error; without a catalogue, the message key
    /// followed by its parameters, so that the box still says what failed.
    static tarni_wstring GetErrorText(const Support::ErrorException& in_error);

private:
    static std::mutex s_moduleLock;
    static Platform::IDialogHost* s_host;
    static tarni_wstring s_applicationId;
    static ErrorTextResolver s_resolver;
};
}  // namespace Tarni::DriverSupport
