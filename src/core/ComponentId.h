#pragma once
// Components that own message keys. Each component has one message file,
// "<FileName>.xml", per locale (see docs/messages.md).
namespace Tarni::Support
{
enum ComponentId : int
{
    DSI_ERROR = 1,         ///< data-store interface layer, the ODBC layer's file "ODBCMessages"
    SUPPORT_ERROR = 2,     ///< common support library, file "CSCommonMessages"
    OLEDB_ERROR = 3,       ///< built-in OLE DB component, file "OLEDBMessages"
    SQLENGINE_ERROR = 4,   ///< built-in SQL engine component, file "SQLEngineMessages"
    SERVER_ERROR = 5,      ///< built-in server component, file "ServerMessages"
    DS_ERROR = 63,         ///< driver-support layer (configuration, dialogs), file "DSMessages"
    TE_ERROR = 64,         ///< Thrift connection layer, file "TEMessages"
    PRODUCT_ERROR = 100,   ///< the Spark product layer, file "QuillMessages"
};
}  // namespace Tarni::Support
