#include "support/messages/DSIXmlMessageReader.h"

#include <expat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>

#include "core/DSIException.h"
#include "platform/FileAccess.h"
#include "platform/SystemError.h"
#include "core/NullLogger.h"
#include "support/StringConverter.h"
#include "core/SupportException.h"

namespace Tarni::Support
{
namespace
{
constexpr const char* LOG_NAMESPACE = "Tarni::Support";
constexpr const char* LOG_CLASS = "DSIXmlMessageReader";

constexpr const char* MESSAGES_ELEMENT = "Messages";
constexpr const char* PACKAGE_ELEMENT = "Package";
constexpr const char* ERROR_ELEMENT = "Error";

[[noreturn]] void ThrowText(const char16_t* in_text)
{
    throw DSI::DSIException::WithText(in_text);
}

const char* FindAttribute(const XML_Char** in_attributes, const char* in_name)
{
    for (size_t i = 0; in_attributes[i] != nullptr; i += 2)
    {
        if (std::strcmp(in_attributes[i], in_name) == 0)
        {
            return in_attributes[i + 1];
        }
    }
    return nullptr;
}

template <typename T>
bool ParseInteger(const char* in_text, T& out_value)
{
    if (in_text == nullptr)
    {
        return false;
    }
    const char* end = in_text + std::strlen(in_text);
    const auto result = std::from_chars(in_text, end, out_value);
    return result.ec == std::errc() && result.ptr == end && end != in_text;
}

std::string Trim(const std::string& in_text)
{
    const char* blanks = " \t\r\n";
    const size_t first = in_text.find_first_not_of(blanks);
    if (first == std::string::npos)
    {
        return {};
    }
    return in_text.substr(first, in_text.find_last_not_of(blanks) - first + 1);
}

std::string ExceptionText(const std::exception& in_error)
{
    if (const auto* error = dynamic_cast<const ErrorException*>(&in_error);
        error != nullptr && error->GetMessageKey() == DSI::DSIException::DSI_INVALID_ERRORCODE &&
        !error->GetParameters().empty())
    {
        return StringConverter::ToUtf8(error->GetParameters()[0]);
    }
    return in_error.what();
}

// The state of one parse, shared with the expat callbacks.
struct ParseContext
{
    XML_Parser parser = nullptr;
    ILogger* logger = nullptr;
    std::string name;

    std::vector<std::string> open;   // the accepted elements from the root down
    unsigned long long depth = 0;    // every open element, skipped ones included
    unsigned long long skipDepth = 0;
    std::exception_ptr error;

    bool hasPackage = false;
    std::string defaultComponent;

    bool inError = false;
    std::string key;
    std::string component;
    long long nativeErrorCode = -1;
    int parameterCount = -1;
    std::string text;

    DSIMessageMap messages;

    unsigned long long Line() const { return static_cast<unsigned long long>(XML_GetCurrentLineNumber(parser)); }

    // An exception must not pass through expat: keep it and stop the parser.
    void Abort()
    {
        error = std::current_exception();
        if (XML_StopParser(parser, XML_TRUE) != XML_STATUS_OK)
        {
            logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse", "XML_StopParser(%p, 1) failed: %d",
                             static_cast<void*>(parser), static_cast<int>(XML_GetErrorCode(parser)));
        }
    }

    void MissingAttribute(const char* in_element, const char* in_attribute)
    {
        logger->LogWarning(LOG_NAMESPACE, LOG_CLASS, "Parse",
                           "'%s' element with no '%s' attribute found in file '%s' line %llu", in_element,
                           in_attribute, name.c_str(), Line());
        skipDepth = 1;
    }

    void StartElement(const XML_Char* in_element, const XML_Char** in_attributes)
    {
        ++depth;
        if (skipDepth > 0)
        {
            ++skipDepth;
            return;
        }
        const char* parent = open.empty() ? nullptr : open.back().c_str();
        const bool allowed = parent == nullptr ? std::strcmp(in_element, MESSAGES_ELEMENT) == 0
                             : std::strcmp(parent, MESSAGES_ELEMENT) == 0 ? std::strcmp(in_element, PACKAGE_ELEMENT) == 0
                             : std::strcmp(parent, PACKAGE_ELEMENT) == 0  ? std::strcmp(in_element, ERROR_ELEMENT) == 0
                                                                          : false;
        if (!allowed)
        {
            logger->LogWarning(LOG_NAMESPACE, LOG_CLASS, "Parse",
                               "Unexpected nested element '%s' found under '%s' element in file '%s' line %llu",
                               in_element, parent != nullptr ? parent : "", name.c_str(), Line());
            skipDepth = 1;
            return;
        }

        if (std::strcmp(in_element, PACKAGE_ELEMENT) == 0)
        {
            long long id = 0;
            if (!ParseInteger(FindAttribute(in_attributes, "ID"), id))
            {
                MissingAttribute(PACKAGE_ELEMENT, "ID");
                return;
            }
            const char* defaultComponent = FindAttribute(in_attributes, "DefaultComponent");
            if (defaultComponent == nullptr)
            {
                MissingAttribute(PACKAGE_ELEMENT, "DefaultComponent");
                return;
            }
            hasPackage = true;
            this->defaultComponent = defaultComponent;
        }
        else if (std::strcmp(in_element, ERROR_ELEMENT) == 0)
        {
            const char* errorKey = FindAttribute(in_attributes, "Key");
            if (errorKey == nullptr)
            {
                MissingAttribute(ERROR_ELEMENT, "Key");
                return;
            }
            if (!ParseInteger(FindAttribute(in_attributes, "NativeErrorCode"), nativeErrorCode))
            {
                MissingAttribute(ERROR_ELEMENT, "NativeErrorCode");
                return;
            }
            const char* errorComponent = FindAttribute(in_attributes, "Component");
            if (!ParseInteger(FindAttribute(in_attributes, "Params"), parameterCount))
            {
                parameterCount = -1;
            }
            inError = true;
            key = errorKey;
            component = errorComponent != nullptr ? errorComponent : defaultComponent;
            text.clear();
        }
        open.emplace_back(in_element);
    }

    void EndElement(const XML_Char*)
    {
        --depth;
        if (skipDepth > 0)
        {
            --skipDepth;
            return;
        }
        if (inError && open.back() == ERROR_ELEMENT)
        {
            inError = false;
            const std::string message = Trim(text);
            if (message.empty())
            {
                logger->LogWarning(LOG_NAMESPACE, LOG_CLASS, "Parse",
                                   "Message for messagekey '%s' in file '%s' is empty.", key.c_str(), name.c_str());
            }
            else
            {
                DSIMessageEntry& entry = messages[StringConverter::FromUtf8(key)];
                entry.text = StringConverter::FromUtf8(message);
                entry.nativeErrorCode = nativeErrorCode;
                entry.component = StringConverter::FromUtf8(component);
                entry.parameterCount = parameterCount;
            }
            text.clear();
        }
        open.pop_back();
    }

    void CharacterData(const XML_Char* in_data, int in_length)
    {
        if (inError && skipDepth == 0)
        {
            text.append(in_data, static_cast<size_t>(in_length));
        }
    }
};

void XMLCALL OnStartElement(void* in_context, const XML_Char* in_element, const XML_Char** in_attributes)
{
    auto* context = static_cast<ParseContext*>(in_context);
    if (context->error)
    {
        return;
    }
    try
    {
        context->StartElement(in_element, in_attributes);
    }
    catch (...)
    {
        context->Abort();
    }
}

void XMLCALL OnEndElement(void* in_context, const XML_Char* in_element)
{
    auto* context = static_cast<ParseContext*>(in_context);
    if (context->error)
    {
        return;
    }
    try
    {
        context->EndElement(in_element);
    }
    catch (...)
    {
        context->Abort();
    }
}

void XMLCALL OnCharacterData(void* in_context, const XML_Char* in_data, int in_length)
{
    auto* context = static_cast<ParseContext*>(in_context);
    if (context->error)
    {
        return;
    }
    try
    {
        context->CharacterData(in_data, in_length);
    }
    catch (...)
    {
        context->Abort();
    }
}

// The name of the end tag at the parser's error position ("" when unknown).
std::string EndTagAtError(XML_Parser in_parser)
{
    int offset = 0;
    int size = 0;
    const char* context = XML_GetInputContext(in_parser, &offset, &size);
    if (context == nullptr || offset < 0 || offset >= size)
    {
        return {};
    }
    const char* cursor = context + offset;
    const char* end = context + size;
    if (end - cursor >= 2 && cursor[0] == '<' && cursor[1] == '/')
    {
        cursor += 2;
    }
    std::string name;
    while (cursor < end && *cursor != '>' && *cursor != ' ' && *cursor != '\t' && *cursor != '\r' &&
           *cursor != '\n' && name.size() < 256)
    {
        name += *cursor++;
    }
    return name;
}

struct ParserFree
{
    void operator()(XML_ParserStruct* in_parser) const { XML_ParserFree(in_parser); }
};

struct FileClose
{
    void operator()(std::FILE* in_file) const { std::fclose(in_file); }
};
}  // namespace

DSIXmlMessageReader::DSIXmlMessageReader(ILogger* in_logger) : m_logger(in_logger)
{
}

DSIMessageMap DSIXmlMessageReader::Parse(const BlockSource& in_source, const std::string& in_name,
                                         size_t in_blockSize)
{
    static NullLogger s_noLog;
    ILogger* logger = m_logger != nullptr ? m_logger : &s_noLog;

    std::unique_ptr<XML_ParserStruct, ParserFree> parser(XML_ParserCreate(nullptr));
    if (!parser)
    {
        ThrowText(u"Cannot create XML parser (XML_ParserCreate() returned NULL).");
    }
    ParseContext context;
    context.parser = parser.get();
    context.logger = logger;
    context.name = in_name;
    XML_SetUserData(parser.get(), &context);
    XML_SetElementHandler(parser.get(), OnStartElement, OnEndElement);
    XML_SetCharacterDataHandler(parser.get(), OnCharacterData);

    std::vector<char> block(in_blockSize > 0 ? in_blockSize : BLOCK_SIZE);
    unsigned long long total = 0;
    for (;;)
    {
        const size_t length = in_source(block.data(), block.size());
        const bool isFinal = length == 0;
        if (isFinal && total == 0)
        {
            logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse", "Error message file '%s' was empty.",
                             in_name.c_str());
            ThrowText(u"Error message file was empty.");
        }
        total += length;

        const XML_Status status =
            XML_Parse(parser.get(), block.data(), static_cast<int>(length), isFinal ? XML_TRUE : XML_FALSE);
        if (context.error)
        {
            try
            {
                std::rethrow_exception(context.error);
            }
            catch (const std::exception& error)
            {
                logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse", "Exception occured at line %lld of file '%s': %s",
                                 static_cast<long long>(context.Line()), in_name.c_str(), ExceptionText(error).c_str());
                throw;
            }
        }
        if (status == XML_STATUS_ERROR)
        {
            const XML_Error code = XML_GetErrorCode(parser.get());
            const char* description = XML_ErrorString(code);
            if (code == XML_ERROR_TAG_MISMATCH)
            {
                logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse",
                                 "Unexpected end tag '%s' occurred on line %llu of file \"%s\": (%d) %s",
                                 EndTagAtError(parser.get()).c_str(), context.Line(), in_name.c_str(),
                                 static_cast<int>(code), description != nullptr ? description : "");
                ThrowText(u"Unexpected end tag.");
            }
            if (isFinal && context.depth > 0)
            {
                logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse",
                                 "Parsing error occurred at line %llu of file \"%s\": (%d) %s", context.Line(),
                                 in_name.c_str(), static_cast<int>(code), description != nullptr ? description : "");
                ThrowText(u"unexpected EOF while parsing error message file.");
            }
            logger->LogError(LOG_NAMESPACE, LOG_CLASS, "Parse",
                             "Parsing error occurred at line %llu of file \"%s\": (%d) %s", context.Line(),
                             in_name.c_str(), static_cast<int>(code), description != nullptr ? description : "");
            ThrowText(u"XML_Parse() failed while parsing error message file.");
        }
        if (isFinal)
        {
            break;
        }
    }
    if (!context.hasPackage)
    {
        ThrowText(u"Error message file contained no package tag.");
    }
    return std::move(context.messages);
}

DSIMessageMap DSIXmlMessageReader::ReadBytes(std::string_view in_bytes, const std::string& in_name,
                                             size_t in_blockSize)
{
    size_t position = 0;
    return Parse(
        [&](char* out_block, size_t in_size) {
            const size_t length = std::min(in_size, in_bytes.size() - position);
            std::memcpy(out_block, in_bytes.data() + position, length);
            position += length;
            return length;
        },
        in_name, in_blockSize);
}

DSIMessageMap DSIXmlMessageReader::ReadFile(const tarni_wstring& in_path)
{
    std::unique_ptr<std::FILE, FileClose> file(Platform::FileAccess::Open(in_path, "rb"));
    if (!file)
    {
        throw SupportException(u"GetFileErr", {in_path, Platform::SystemError::Text(errno)});
    }
    return Parse(
        [&](char* out_block, size_t in_size) {
            const size_t length = std::fread(out_block, 1, in_size, file.get());
            if (length == 0 && std::ferror(file.get()) != 0)
            {
                throw SupportException(u"GetFileErr", {in_path, Platform::SystemError::Text(errno)});
            }
            return length;
        },
        StringConverter::ToUtf8(in_path), BLOCK_SIZE);
}

std::optional<DSIMessageEntry> DSIXmlMessageReader::GetErrorMessage(DSIMessageCache& io_cache, int in_componentId,
                                                                    const tarni_wstring& in_locale,
                                                                    tarni_wstring_view in_key,
                                                                    const std::vector<tarni_wstring>& in_candidatePaths)
{
    if (io_cache.GetFileState(in_componentId, in_locale) == DSIMessageCache::FileState::NotRead)
    {
        // The first candidate that exists is the file; the others are not tried.
        std::unique_ptr<std::FILE, FileClose> probe;
        const tarni_wstring* found = nullptr;
        for (const tarni_wstring& candidate : in_candidatePaths)
        {
            probe.reset(Platform::FileAccess::Open(candidate, "rb"));
            if (probe)
            {
                found = &candidate;
                break;
            }
        }
        probe.reset();
        if (found == nullptr)
        {
            io_cache.MarkFile(in_componentId, in_locale, DSIMessageCache::FileState::Missing);
            return std::nullopt;
        }
        try
        {
            io_cache.StoreFile(in_componentId, in_locale, ReadFile(*found));
        }
        catch (...)
        {
            io_cache.MarkFile(in_componentId, in_locale, DSIMessageCache::FileState::Failed);
            throw;
        }
    }
    return io_cache.GetErrorMessage(in_componentId, in_key, in_locale);
}
}  // namespace Tarni::Support
