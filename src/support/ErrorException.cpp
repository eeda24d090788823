#include "support/ErrorException.h"

#include "support/StringConverter.h"

namespace Tarni::Support
{
ErrorException::ErrorException(DiagState in_state, int in_componentId, tarni_wstring in_messageKey,
                               std::vector<tarni_wstring> in_parameters,
                               long long in_nativeErrorCode)
    : m_state(in_state),
      m_componentId(in_componentId),
      m_messageKey(std::move(in_messageKey)),
      m_parameters(std::move(in_parameters)),
      m_nativeErrorCode(in_nativeErrorCode)
{
    m_what = StringConverter::ToUtf8(m_messageKey);
    if (!m_parameters.empty())
    {
        m_what += "(";
        for (size_t i = 0; i < m_parameters.size(); ++i)
        {
            m_what += (i ? ", " : "") + StringConverter::ToUtf8(m_parameters[i]);
        }
        m_what += ")";
    }
}
}  // namespace Tarni::Support
