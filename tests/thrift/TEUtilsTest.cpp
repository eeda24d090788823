#include <gtest/gtest.h>

#include <random>

#include <boost/regex.hpp>

#include "driversupport/DSBase64.h"
#include "thrift/ErrorCapture.h"
#include "common/RecordingLogger.h"
#include "thrift/TECatalogRemovalPatternCache.h"
#include "thrift/TEUtils.h"

#include <thrift/transport/TTransportException.h>

using namespace Tarni;
using namespace Tarni::ThriftExtension;
using Tarni::Testing::CaptureError;
using Tarni::Testing::RecordingLogger;

namespace
{
std::string Remove(const std::string& in_name, std::string in_query, bool in_betweenDots)
{
    TEUtils::RemoveCatalogOrTempSchemaFromQueryString(in_name, in_query, in_betweenDots, nullptr);
    return in_query;
}

/// The removal written out independently: the patterns as documented for
/// the name "tmp", the name substituted, compiled on every call.
std::string ReferenceRemove(const std::string& in_name, const std::string& in_query, bool in_betweenDots)
{
    const auto pattern = [&](std::string in_frame) {
        for (size_t at = in_frame.find("tmp"); at != std::string::npos; at = in_frame.find("tmp", at + in_name.size()))
        {
            in_frame.replace(at, 3, in_name);
        }
        return boost::regex(in_frame);
    };
    const boost::regex dots = pattern(R"(\.(`tmp`|"tmp"|\[tmp\]|tmp)\.)");
    const boost::regex space = pattern(R"([\s](`tmp`|"tmp"|\[tmp\]|tmp)\.)");
    const boost::regex paren = pattern(R"(\((`tmp`|"tmp"|\[tmp\]|tmp)\.)");
    std::string result;
    std::string piece;
    int index = 1;
    for (size_t i = 0; i <= in_query.size(); ++i)
    {
        if (i < in_query.size() && in_query[i] != '\'')
        {
            piece += in_query[i];
            continue;
        }
        if (index % 2 == 1)
        {
            if (in_betweenDots)
            {
                piece = boost::regex_replace(piece, dots, std::string("."), boost::regex_constants::format_literal);
            }
            piece = boost::regex_replace(piece, space, std::string(" "), boost::regex_constants::format_literal);
            piece = boost::regex_replace(piece, paren, std::string(" ("), boost::regex_constants::format_literal);
        }
        result += piece;
        if (i < in_query.size())
        {
            result += '\'';
        }
        piece.clear();
        ++index;
    }
    return result;
}
}  // namespace

TEST(TECatalogRemovalTest, DocumentedExamples)
{
    EXPECT_EQ(Remove("tmp", "select * from x.tmp.t", true), "select * from x.t");
    EXPECT_EQ(Remove("tmp", "select * from x.tmp.t", false), "select * from x.tmp.t");
    EXPECT_EQ(Remove("tmp", "select * from tmp.t", false), "select * from t");
    EXPECT_EQ(Remove("tmp", "select * from (tmp.t)", false), "select * from  (t)");
    EXPECT_EQ(Remove("tmp", "select * from \"tmp\".t", false), "select * from t");
    EXPECT_EQ(Remove("tmp", "select * from [tmp].t", false), "select * from t");
    EXPECT_EQ(Remove("tmp", "select * from `tmp`.t", false), "select * from t");
    EXPECT_EQ(Remove("tmp", "select 'tmp.t' from tmp.t", false), "select 'tmp.t' from t");
    // White space of any kind becomes one blank; case matters; the start of the text is kept.
    EXPECT_EQ(Remove("tmp", "select *\nfrom\ttmp.t", false), "select *\nfrom t");
    EXPECT_EQ(Remove("tmp", "select * from TMP.t", false), "select * from TMP.t");
    EXPECT_EQ(Remove("tmp", "tmp.t", false), "tmp.t");
    EXPECT_EQ(Remove("tmp", "", true), "");
    // A literal that is never closed keeps the rest of the text as a literal.
    EXPECT_EQ(Remove("tmp", "select ' tmp.t", false), "select ' tmp.t");
}

TEST(TECatalogRemovalTest, NameIsAPatternNotALiteral)
{
    // "t.p" matches "tap" too, because the name is inserted without escaping.
    EXPECT_EQ(Remove("t.p", "select * from tap.x", false), "select * from x");
    EXPECT_EQ(Remove("t+", "select * from ttt.x", false), "select * from x");
    const auto error = CaptureError([] { Remove("(", "select 1 from a.b", false); });
    EXPECT_EQ(error.key, "TERegexError");
    EXPECT_EQ(error.text.rfind("The regular expression \\.(`(`|\"(\"|\\[(\\]|()\\. is not valid: ", 0), 0u)
        << error.text;
}

TEST(TECatalogRemovalTest, MatchesTheCompileEveryCallFormOnAGeneratedCorpus)
{
    std::mt19937 random(20240611);
    // Plain names (tried only near their occurrences), overlapping ones and
    // names with pattern characters (searched through the whole text).
    const std::vector<std::string> names = {"tmp", "global_temp", "SPARK", "aa", "", "a a", "t.p", "a b", "x+"};
    const std::vector<std::string> words = {"tmp", "TMP", "tmpx", "xtmp", "global_temp", "SPARK", "t", "tap",
                                            "a b", "a", "aa", "aaa", "a a", "xx", "ttt", ""};
    const std::vector<std::string> leads = {" ", "\t", "\n", "(", ".", "x", "", "'", "((", ". "};
    const std::vector<std::pair<std::string, std::string>> quotes = {
        {"", ""}, {"`", "`"}, {"\"", "\""}, {"[", "]"}, {"`", "\""}, {"[", ""}, {"", "]"}, {"'", "'"}};
    const std::vector<std::string> tails = {".", ".", ".t", "", " ", "..", ".'", "x"};
    const std::vector<std::string> tokens = {"select ", "from", " where ", "*", ",", "'", "(", ")", "=", "1", "\n"};
    const auto pick = [&](const auto& in_list) -> const auto& {
        return in_list[std::uniform_int_distribution<size_t>(0, in_list.size() - 1)(random)];
    };
    for (int i = 0; i < 6000; ++i)
    {
        std::string query;
        for (int n = std::uniform_int_distribution<int>(0, 25)(random); n > 0; --n)
        {
            if (random() % 2 == 0)
            {
                query += pick(tokens);
                continue;
            }
            // A qualifier-like fragment: lead-in, a quoted word, a tail.
            const auto& [open, close] = pick(quotes);
            query += pick(leads) + open + pick(words) + close + pick(tails);
        }
        const std::string& name = pick(names);
        const bool betweenDots = (i % 2) == 0;
        ASSERT_EQ(Remove(name, query, betweenDots), ReferenceRemove(name, query, betweenDots))
            << "name " << name << " query [" << query << "]";
    }
}

TEST(TECatalogRemovalTest, OverlappingAndAdjacentOccurrences)
{
    // Occurrences of the name that overlap or touch, where the lead-in of one
    // match lies inside another occurrence.
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"a a", "select a a a.x"}, {"a a", "select\ta a a a.x a a.y"}, {"aa", "select aaa.x (aa.y"},
        {"tmp", "from tmp.tmp.tmp.t"}, {"tmp", "x.`tmp`.\"tmp\".[tmp].t"}, {"", "select .x (.y ..z"},
        {" ", "a  .b"}};
    for (const auto& [name, query] : cases)
    {
        for (const bool betweenDots : {false, true})
        {
            EXPECT_EQ(Remove(name, query, betweenDots), ReferenceRemove(name, query, betweenDots))
                << "name [" << name << "] query [" << query << "]";
        }
    }
    EXPECT_EQ(Remove("a a", "select a a a.x", false), "select a x");
}

TEST(TECatalogRemovalTest, CacheIsBoundedAndSharesCompiledPatterns)
{
    TECatalogRemovalPatternCache cache(2);
    const auto first = cache.Get("a");
    EXPECT_EQ(cache.Get("a"), first);
    cache.Get("b");
    cache.Get("a");  // "a" is now the most recently used
    cache.Get("c");  // evicts "b"
    EXPECT_EQ(cache.Size(), 2u);
    EXPECT_EQ(cache.Get("a"), first);
    EXPECT_THROW(cache.Get("["), Support::ErrorException);
    EXPECT_EQ(cache.Size(), 2u);
}

TEST(TEUtilsTest, RegexReplaceTakesTheReplacementLiterally)
{
    std::string text = "a1b22c";
    TEUtils::RegexReplace("[0-9]+", "$&\\1", text, nullptr);
    EXPECT_EQ(text, "a$&\\1b$&\\1c");
    std::string empty;
    TEUtils::RegexReplace("^", "x", empty, nullptr);
    EXPECT_EQ(empty, "");
    std::string untouched = "abc";
    EXPECT_EQ(CaptureError([&] { TEUtils::RegexReplace("(", "", untouched, nullptr); }).key, "TERegexError");
    EXPECT_EQ(untouched, "abc");
}

TEST(TEUtilsTest, KerberosHostFQDN)
{
    RecordingLogger log;
    EXPECT_EQ(TEUtils::DeriveKerberosHostFQDN("node1.example.org", "_HOST", &log), "node1.example.org");
    EXPECT_TRUE(log.Has(Support::LOG_INFO, "Special value _HOST specified for Host FQDN configuration. Using "
                                           "node1.example.org for Host FQDN instead."));
    EXPECT_EQ(TEUtils::DeriveKerberosHostFQDN("node1", "kdc.example.org", &log), "kdc.example.org");
    EXPECT_EQ(TEUtils::DeriveKerberosHostFQDN("node1", "_host", &log), "_host");
    EXPECT_EQ(TEUtils::DeriveKerberosHostFQDN("node1", "_HOST", nullptr), "_HOST");
}

TEST(TEUtilsTest, UrlDecode)
{
    RecordingLogger log;
    EXPECT_EQ(TEUtils::UrlDecode("a%2Bb+c", &log, false), "a+b c");
    EXPECT_TRUE(log.records.size() == 1u);  // only the entry line

    EXPECT_EQ(TEUtils::UrlDecode("100%", &log, false), "100%");
    EXPECT_TRUE(log.Has(Support::LOG_ERROR, "Invalid % found at position 3 in url: 100%. '%' must be followed by two "
                                            "hexadecimal characters (0-9, A-F). It will not be decoded."));
    EXPECT_EQ(TEUtils::UrlDecode("%2f", &log, false), "%2f");
    EXPECT_TRUE(log.Has(Support::LOG_ERROR, "Invalid characters %2f found at position 0 in url: %2f. '%' must be "
                                            "followed by two hexadecimal characters (0-9, A-F). It will not be decoded."));
    EXPECT_EQ(TEUtils::UrlDecode("ab%00cd", &log, false), "ab");
    EXPECT_EQ(TEUtils::UrlDecode("%%41+", &log, false), "%A ");
    EXPECT_EQ(TEUtils::UrlDecode("%4", &log, true), "%4");
    EXPECT_TRUE(log.HasFragment("position 0 in url: ***."));
    EXPECT_FALSE(log.HasFragment("url: %4"));
    EXPECT_EQ(TEUtils::UrlDecode("", &log, false), "");
    EXPECT_TRUE(log.Has(Support::LOG_ERROR, "The url is empty"));
}

TEST(TEUtilsTest, TokenExpiry)
{
    const auto token = [](const std::string& in_payload) {
        std::string encoded = DriverSupport::DSBase64::Encode(in_payload);
        while (!encoded.empty() && encoded.back() == '=') encoded.pop_back();  // as tokens carry it
        return "eyJhbGciOiJSUzI1NiJ9." + encoded + ".c2ln";
    };
    EXPECT_EQ(TEUtils::GetTokenExpiry(token(R"({"sub":"u","exp":1893456000})"), nullptr), 1893456000u);
    EXPECT_EQ(TEUtils::GetTokenExpiry(token(R"({"exp":1893456000.75})"), nullptr), 1893456000u);
    EXPECT_EQ(TEUtils::GetTokenExpiry("h." + DriverSupport::DSBase64::Encode(R"({"exp":5})"), nullptr), 5u);

    RecordingLogger log;
    for (const std::string& payload : {std::string(R"({"sub":"u"})"), std::string("not json"), std::string("[1]"),
                                       std::string(R"({"exp":-1})"), std::string(R"({"exp":"1"})")})
    {
        EXPECT_EQ(CaptureError([&] { TEUtils::GetTokenExpiry(token(payload), &log); }).key, "JSONParseError") << payload;
    }
    EXPECT_EQ(CaptureError([] { TEUtils::GetTokenExpiry("nodots", nullptr); }).key, "JSONParseError");
    EXPECT_EQ(CaptureError([] { TEUtils::GetTokenExpiry("a.abcde.c", nullptr); }).key,
              "DSInvalidBase64EncodedStringLenError");
}

TEST(TEUtilsTest, TransportErrorTextTranslation)
{
    EXPECT_EQ(CaptureError([] { TEUtils::TranslateTransportErrorText("x SSL_read: y", true); }).key,
              "TESASLClientToNOSASLServer");
    const auto noSasl = CaptureError([] { TEUtils::TranslateTransportErrorText("SSL_read: y", false); });
    EXPECT_EQ(noSasl.key, "TENOSASLClientToSASLServer");
    EXPECT_EQ(noSasl.text, "SSL_read: y");
    for (const char* text : {"SSL_connect: errno = 104", "a SSL_connect: error code: 1",
                             "SSL_connect: Resource temporarily unavailable"})
    {
        EXPECT_EQ(CaptureError([&] { TEUtils::TranslateTransportErrorText(text, false); }).key,
                  "TESSLCxnToNonSSLServerError");
    }
    EXPECT_NO_THROW(TEUtils::TranslateTransportErrorText("x SSL_connect: Resource temporarily unavailable", false));
    EXPECT_NO_THROW(TEUtils::TranslateTransportErrorText("No more data to read.", true));
}

TEST(TEUtilsTest, TransportExceptionTranslation)
{
    using apache::thrift::transport::TTransportException;
    const TTransportException sslRead(TTransportException::UNKNOWN, "SSL_read: wrong version number");
    EXPECT_EQ(CaptureError([&] { TEUtils::TranslateTransportException(sslRead, false); }).key,
              "TENOSASLClientToSASLServer");
    EXPECT_NO_THROW(TEUtils::TranslateTransportException(TTransportException(TTransportException::END_OF_FILE), true));

    try
    {
        try
        {
            throw std::runtime_error("the cause");
        }
        catch (...)
        {
            std::throw_with_nested(TTransportException(TTransportException::UNKNOWN, "SSL_read: wrapped"));
        }
    }
    catch (const TTransportException& wrapper)
    {
        try
        {
            TEUtils::TranslateTransportException(wrapper, true);
            FAIL() << "nothing rethrown";
        }
        catch (const std::runtime_error& cause)
        {
            EXPECT_STREQ(cause.what(), "the cause");
        }
    }
}
