#pragma once
// The three regular expressions that remove a catalog or temporary-schema
// name N, used as a qualifier, from query text. N is inserted as given (not
// escaped) into each pattern:
//   1. \.(`N`|"N"|\[N\]|N)\.    replaced by "."   (only between two dots, on request)
//   2. [\s](`N`|"N"|\[N\]|N)\.  replaced by " "
//   3. \((`N`|"N"|\[N\]|N)\.    replaced by " ("
// applied in this order, each replacing every match. Compiling them costs far
// more than applying them to a short statement, so compiled sets are kept in
// TECatalogRemovalPatternCache.
#include <string>

#include <boost/regex.hpp>

namespace Tarni::ThriftExtension
{
class TECatalogRemovalPatterns
{
public:
    /// Compiles the three patterns for the name. Throws TEException
    /// "TERegexError" when the name makes a pattern invalid.
    explicit TECatalogRemovalPatterns(const std::string& in_name);

    /// The pattern texts for a name, in the order above.
    static std::string BetweenDotsPattern(const std::string& in_name);
    static std::string AfterWhiteSpacePattern(const std::string& in_name);
    static std::string AfterParenthesisPattern(const std::string& in_name);

    /// Applies the patterns to one stretch of text outside string literals.
    void Apply(std::string& io_text, bool in_removeBetweenDots) const;

    /// True when the text may hold a match. For a name without pattern
    /// characters every match contains the name itself, so text without it
    /// has none; for any other name this is always true.
    bool MayMatch(const std::string& in_text) const;

    const std::string& GetName() const { return m_name; }

private:
    std::string m_name;
    bool m_isPlainName;
    boost::regex m_betweenDots;
    boost::regex m_afterWhiteSpace;
    boost::regex m_afterParenthesis;
};
}  // namespace Tarni::ThriftExtension
