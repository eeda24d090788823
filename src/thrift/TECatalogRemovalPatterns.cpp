#include "thrift/TECatalogRemovalPatterns.h"

#include "thrift/TEException.h"

namespace Tarni::ThriftExtension
{
namespace
{
/// The group of the four spellings of the name: back-quoted, double-quoted,
/// bracketed and bare.
std::string Alternatives(const std::string& in_name)
{
    return "(`" + in_name + "`|\"" + in_name + "\"|\\[" + in_name + "\\]|" + in_name + ")";
}

boost::regex Compile(const std::string& in_pattern)
{
    try
    {
        return boost::regex(in_pattern, boost::regex::perl);
    }
    catch (const boost::regex_error& e)
    {
        throw TEException::WithText(u"TERegexError", "The regular expression " + in_pattern +
                                                         " is not valid: " + e.what());
    }
}

void ReplaceAll(std::string& io_text, const boost::regex& in_pattern, const char* in_replacement)
{
    io_text = boost::regex_replace(io_text, in_pattern, in_replacement,
                                   boost::match_default | boost::regex_constants::format_literal);
}

/// The same replacement as ReplaceAll for a name without pattern characters,
/// where every match begins one or two characters before an occurrence of
/// the name (the lead-in, then the name bare or after its opening quote or
/// bracket). The pattern is tried, anchored, only at those places, in
/// ascending order from the end of the previous match: the leftmost match and
/// the same alternative as a full search, without scanning the whole text.
void ReplaceAllNearName(std::string& io_text, const boost::regex& in_pattern, const std::string& in_name,
                        const char* in_replacement, std::string& io_buffer)
{
    io_buffer.clear();
    size_t copied = 0;       // text before this is in the buffer (or was replaced)
    size_t nextCandidate = 0;  // lowest start not yet tried
    boost::smatch match;
    for (size_t occurrence = io_text.find(in_name); occurrence != std::string::npos;
         occurrence = io_text.find(in_name, occurrence + 1))
    {
        for (size_t back = 2; back >= 1; --back)
        {
            if (occurrence < back)
            {
                continue;
            }
            const size_t start = occurrence - back;
            if (start < nextCandidate)
            {
                continue;
            }
            nextCandidate = start + 1;
            if (boost::regex_search(io_text.cbegin() + static_cast<std::ptrdiff_t>(start), io_text.cend(), match,
                                    in_pattern, boost::match_default | boost::match_continuous))
            {
                io_buffer.append(io_text, copied, start - copied);
                io_buffer += in_replacement;
                copied = start + static_cast<size_t>(match.length(0));
                nextCandidate = copied;
                break;
            }
        }
        if (in_name.empty() && occurrence + 1 > io_text.size())
        {
            break;
        }
    }
    if (copied == 0 && io_buffer.empty())
    {
        return;  // no match: the text stays as it is
    }
    io_buffer.append(io_text, copied, std::string::npos);
    io_text.swap(io_buffer);
}
}  // namespace

std::string TECatalogRemovalPatterns::BetweenDotsPattern(const std::string& in_name)
{
    return "\\." + Alternatives(in_name) + "\\.";
}

std::string TECatalogRemovalPatterns::AfterWhiteSpacePattern(const std::string& in_name)
{
    return "[\\s]" + Alternatives(in_name) + "\\.";
}

std::string TECatalogRemovalPatterns::AfterParenthesisPattern(const std::string& in_name)
{
    return "\\(" + Alternatives(in_name) + "\\.";
}

TECatalogRemovalPatterns::TECatalogRemovalPatterns(const std::string& in_name)
    : m_name(in_name),
      m_isPlainName(in_name.find_first_of(".[]{}()\\*+?|^$") == std::string::npos),
      m_betweenDots(Compile(BetweenDotsPattern(in_name))),
      m_afterWhiteSpace(Compile(AfterWhiteSpacePattern(in_name))),
      m_afterParenthesis(Compile(AfterParenthesisPattern(in_name)))
{
}

bool TECatalogRemovalPatterns::MayMatch(const std::string& in_text) const
{
    return !m_isPlainName || in_text.find(m_name) != std::string::npos;
}

void TECatalogRemovalPatterns::Apply(std::string& io_text, bool in_removeBetweenDots) const
{
    if (!m_isPlainName)
    {
        if (in_removeBetweenDots)
        {
            ReplaceAll(io_text, m_betweenDots, ".");
        }
        ReplaceAll(io_text, m_afterWhiteSpace, " ");
        ReplaceAll(io_text, m_afterParenthesis, " (");
        return;
    }
    std::string buffer;
    if (in_removeBetweenDots)
    {
        ReplaceAllNearName(io_text, m_betweenDots, m_name, ".", buffer);
    }
    ReplaceAllNearName(io_text, m_afterWhiteSpace, m_name, " ", buffer);
    ReplaceAllNearName(io_text, m_afterParenthesis, m_name, " (", buffer);
}
}  // namespace Tarni::ThriftExtension
