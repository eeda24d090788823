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
    if (in_removeBetweenDots)
    {
        ReplaceAll(io_text, m_betweenDots, ".");
    }
    ReplaceAll(io_text, m_afterWhiteSpace, " ");
    ReplaceAll(io_text, m_afterParenthesis, " (");
}
}  // namespace Tarni::ThriftExtension
