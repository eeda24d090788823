#include "support/messages/GetParameterizedMessage.h"

#include "core/DSIException.h"
#include "support/StringConverter.h"

namespace Tarni::Support
{
namespace
{
// Index numbers longer than this are not placeholders of any real message.
constexpr size_t MAX_INDEX_DIGITS = 9;

[[noreturn]] void ThrowViolation(const char16_t* in_before, long long in_index, const char16_t* in_after,
                                 tarni_wstring_view in_messageKey)
{
    throw DSI::DSIException::WithText(tarni_wstring(in_before) + StringConverter::FromNumber(in_index) + in_after +
                                      tarni_wstring(in_messageKey) + u"\n.");
}
}  // namespace

tarni_wstring GetParameterizedMessage(tarni_wstring_view in_message, const std::vector<tarni_wstring>& in_parameters,
                                      tarni_wstring_view in_messageKey)
{
    tarni_wstring result;
    result.reserve(in_message.size());
    std::vector<bool> used(in_parameters.size(), false);

    size_t position = 0;
    while (position < in_message.size())
    {
        const size_t percent = in_message.find(u'%', position);
        if (percent == tarni_wstring_view::npos)
        {
            result.append(in_message.substr(position));
            break;
        }
        result.append(in_message.substr(position, percent - position));

        const size_t close = in_message.find(u'%', percent + 1);
        const size_t digits = close == tarni_wstring_view::npos ? 0 : close - percent - 1;
        bool isPlaceholder = digits > 0 && digits <= MAX_INDEX_DIGITS;
        long long index = 0;
        for (size_t i = percent + 1; isPlaceholder && i < close; ++i)
        {
            isPlaceholder = in_message[i] >= u'0' && in_message[i] <= u'9';
            index = index * 10 + (in_message[i] - u'0');
        }
        if (!isPlaceholder)
        {
            result += u'%';
            position = percent + 1;
            continue;
        }

        if (index < 1 || static_cast<unsigned long long>(index) > in_parameters.size())
        {
            ThrowViolation(u"The parameter with index = ", index, u" is out of range in error message ",
                           in_messageKey);
        }
        if (used[static_cast<size_t>(index - 1)])
        {
            ThrowViolation(u"The parameter with index = ", index,
                           u" has been used multiple times in error                             message ",
                           in_messageKey);
        }
        used[static_cast<size_t>(index - 1)] = true;
        result += in_parameters[static_cast<size_t>(index - 1)];
        position = close + 1;
    }

    for (size_t i = 0; i < used.size(); ++i)
    {
        if (!used[i])
        {
            ThrowViolation(u"The parameter with index = ", static_cast<long long>(i + 1),
                           u" has not been used in error message ", in_messageKey);
        }
    }
    return result;
}
}  // namespace Tarni::Support
