#pragma once
// Components that own message keys. Each component has one message file,
// "<FileName>.xml", per locale (see docs/messages.md).
namespace Tarni::Support
{
enum ComponentId : int
{
    DSI_ERROR = 1,         ///< data-store interface layer, file "DSIMessages"
    SUPPORT_ERROR = 2,     ///< support library, file "SupportMessages"
    DS_ERROR = 63,         ///< driver-support layer (configuration, dialogs), file "DSMessages"
    TE_ERROR = 64,         ///< Thrift connection layer, file "TEMessages"
    PRODUCT_ERROR = 100,   ///< the Spark product layer, file "QuillMessages"
};
}  // namespace Tarni::Support
