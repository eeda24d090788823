#include "dialogs/framework/DSDialogModule.h"

namespace Tarni::DriverSupport
{
std::mutex DSDialogModule::s_moduleLock;
Platform::IDialogHost* DSDialogModule::s_host = nullptr;
tarni_wstring DSDialogModule::s_applicationId;
DSDialogModule::ErrorTextResolver DSDialogModule::s_resolver;

void DSDialogModule::SetHost(Platform::IDialogHost* in_host)
{
    std::lock_guard<std::mutex> lock(s_moduleLock);
    s_host = in_host;
}

Platform::IDialogHost* DSDialogModule::GetHost()
{
    std::lock_guard<std::mutex> lock(s_moduleLock);
    return s_host;
}

void DSDialogModule::SetApplicationId(tarni_wstring_view in_id)
{
    std::lock_guard<std::mutex> lock(s_moduleLock);
    s_applicationId = tarni_wstring(in_id);
}

tarni_wstring DSDialogModule::GetApplicationId()
{
    std::lock_guard<std::mutex> lock(s_moduleLock);
    return s_applicationId;
}

void DSDialogModule::SetErrorTextResolver(ErrorTextResolver in_resolver)
{
    std::lock_guard<std::mutex> lock(s_moduleLock);
    s_resolver = std::move(in_resolver);
}

tarni_wstring DSDialogModule::GetErrorText(const Support::ErrorException& in_error)
{
    ErrorTextResolver resolver;
    {
        std::lock_guard<std::mutex> lock(s_moduleLock);
        resolver = s_resolver;
    }
    if (resolver)
    {
        return resolver(in_error);
    }
    tarni_wstring text = in_error.GetMessageKey();
    const auto& parameters = in_error.GetParameters();
    for (std::size_t i = 0; i < parameters.size(); ++i)
    {
        text += i == 0 ? u": " : u", ";
        text += parameters[i];
    }
    return text;
}
}  // namespace Tarni::DriverSupport
