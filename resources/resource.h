// Identifiers of the dialog templates, controls, strings and icons of the
// Tarni Spark ODBC Driver Configuration program. Every id is defined here and
// only here: the resource script, the dialog code and the tests use these
// names. Control ids are unique within their template; the same number may
// name different controls in different templates.
//
// Only "#define NAME number" lines and comments: the resource script reader
// of the non-Windows builds reads this file as well.

#define IDC_STATIC                      -1

// ---------------------------------------------------------------- icons
#define IDI_PRODUCT                     9129

// ---------------------------------------------------------------- dialog templates
#define IDD_ADVANCED_OPTIONS            129
#define IDD_EDIT_PROPERTY               131
#define IDD_SERVER_SIDE_PROPERTIES      132
#define IDD_TEST_RESULTS                133
#define IDD_TEMP_TABLE_CONFIG           142
#define IDD_OAUTH_OPTIONS               146
#define IDD_ZOOKEEPER_OPTIONS           1051
#define IDD_SSL_OPTIONS_TWO_WAY         1091
#define IDD_DRIVER_CONFIG               1092
#define IDD_DSN_SETUP                   1093
#define IDD_AOSS_OPTIONS                1137
#define IDD_SAML_OPTIONS                8101
#define IDD_DFI_OPTIONS                 8102
#define IDD_LOGGING_OPTIONS             9109
#define IDD_HTTP_PROPERTIES             9110
#define IDD_SSL_OPTIONS                 19136
#define IDD_PASSWORD_OPTIONS            19144
#define IDD_PROXY_OPTIONS               37086

// ---------------------------------------------------------------- main dialogs (1092, 1093)
#define IDC_DSN_NAME                    1002
#define IDC_DSN_DESCRIPTION             1003
#define IDC_VERSION_LABEL               1015
#define IDC_TEST                        1022
#define IDC_HOSTS                       1024
#define IDC_DATABASE                    1027
#define IDC_ADVANCED_OPTIONS            1029
#define IDC_PORT                        1030
#define IDC_SERVER_TYPE                 1038
#define IDC_AUTH_MECH                   1040
#define IDC_KRB_REALM                   1041
#define IDC_KRB_HOST_FQDN               1042
#define IDC_KRB_SERVICE_NAME            1043
#define IDC_USER_NAME                   1044
#define IDC_PASSWORD                    1054
#define IDC_DELEGATION_UID              1072
#define IDC_SERVICE_DISCOVERY_MODE      1084
#define IDC_THRIFT_TRANSPORT            1093
#define IDC_SSL_OPTIONS                 1095
#define IDC_HTTP_OPTIONS                1098
#define IDC_LOGGING_OPTIONS             1118
#define IDC_DELEGATE_KRB_CREDS          1124
#define IDC_CANONICALIZE_PRINCIPAL      1128
#define IDC_OAUTH_OPTIONS               1130
#define IDC_PASSWORD_OPTIONS            1131
#define IDC_PROXY_OPTIONS               1136
#define IDC_SERVICE_DISCOVERY_OPTIONS   1149
#define IDC_SAML_OPTIONS                1158
#define IDC_DFI_OPTIONS                 1160

// ---------------------------------------------------------------- Advanced Options (129)
#define IDC_ADV_USE_NATIVE_QUERY        1019
#define IDC_ADV_FAST_SQLPREPARE         1020
#define IDC_ADV_INVALID_SESSION_RECOVER 1021
#define IDC_ADV_DEFAULT_STRING_LENGTH   1026
#define IDC_ADV_ROWS_PER_BLOCK          1033
#define IDC_ADV_DECIMAL_SCALE           1046
#define IDC_ADV_ASYNC_POLL_INTERVAL     1063
#define IDC_ADV_TEMP_TABLE_CONFIG       1069
#define IDC_ADV_BINARY_LENGTH           1070
#define IDC_ADV_DRIVER_CONFIG_PRECEDENCE 1074
#define IDC_ADV_USE_ASYNC_EXEC          1075
#define IDC_ADV_GET_TABLES_WITH_QUERY   1077
#define IDC_ADV_SERVER_SIDE_PROPERTIES  1078
#define IDC_ADV_UNICODE_SQL_TYPES       1079
#define IDC_ADV_SHOW_SYSTEM_TABLE       1081
#define IDC_ADV_SOCKET_TIMEOUT          1122
#define IDC_ADV_USE_ONLY_SSPI           1123
#define IDC_ADV_AUTO_RECONNECT          1126
#define IDC_ADV_MAX_BYTES_PER_FETCH     1157
#define IDC_ADV_TRANSLATION_FOR_CTAS    1162
#define IDC_ADV_QUERY_TIMEOUT_OVERRIDE  1163

// ---------------------------------------------------------------- Edit Property (131)
#define IDC_PROP_GROUP                  1049
#define IDC_PROP_KEY                    1050
#define IDC_PROP_VALUE                  1052

// ---------------------------------------------------------------- Server Side Properties (132), HTTP Properties (9110)
#define IDC_PROP_ADD                    1080
#define IDC_PROP_EDIT                   1081
#define IDC_PROP_REMOVE                 1082
#define IDC_PROP_LIST                   1084
#define IDC_SSP_LCASE_KEY_NAME          1085
#define IDC_SSP_APPLY_WITH_QUERIES      1078
#define IDC_HTTP_PATH_LABEL             1001
#define IDC_HTTP_PATH                   1002
#define IDC_HTTP_HEADERS_GROUP          1003

// ---------------------------------------------------------------- Test Results (133)
#define IDC_TEST_RESULTS_TEXT           9128

// ---------------------------------------------------------------- Temporary Table Configuration (142)
#define IDC_TT_HDFS_TEMP_TABLE_DIR      1067
#define IDC_TT_TEMP_TABLE_TTL           1068
#define IDC_TT_ENABLE_TEMP_TABLE        1082
#define IDC_TT_WEB_HDFS_HOST            1100
#define IDC_TT_WEB_HDFS_PORT            1101
#define IDC_TT_HDFS_USER                1102

// ---------------------------------------------------------------- ZooKeeper Options (1051)
#define IDC_ZK_NAMESPACE                1087

// ---------------------------------------------------------------- AOSS Options (1137)
#define IDC_AOSS_AUTH_MECH              1040
#define IDC_AOSS_USER_NAME              1044
#define IDC_AOSS_PASSWORD               1054
#define IDC_AOSS_SSL_OPTIONS            1095
#define IDC_AOSS_PASSWORD_OPTIONS       1131

// ---------------------------------------------------------------- SAML Options (8101)
#define IDC_SAML_COOKIE_CACHING         1000
#define IDC_SAML_IGNORE_NOPROMPT        8102
#define IDC_SAML_AUTH_FLOW              81002

// ---------------------------------------------------------------- DFI Options (8102)
#define IDC_DFI_CONFIG_FILE             1001
#define IDC_DFI_BROWSE                  1002
#define IDC_DFI_PROFILE                 1004
#define IDC_DFI_KEY_FILE_PASSWORD       1006
#define IDC_DFI_PASSWORD_OPTIONS        1007
#define IDC_DFI_IGNORE_NOPROMPT         1008

// ---------------------------------------------------------------- OAuth Options (146)
#define IDC_OAUTH_FLOW                  1401
#define IDC_OAUTH_ACCESS_TOKEN          1402
#define IDC_OAUTH_CLIENT_ID             1403
#define IDC_OAUTH_CLIENT_SECRET         1404
#define IDC_OAUTH_AUTH_END_POINT        1405
#define IDC_OAUTH_TOKEN_END_POINT       1406
#define IDC_OAUTH_SCOPE                 1407
#define IDC_OAUTH_CODE_CHALLENGE        1408
#define IDC_OAUTH_REDIRECT              1409
#define IDC_OAUTH_WEB_SERVER_TIMEOUT    1410
#define IDC_OAUTH_WINDOW_WIDTH          1411
#define IDC_OAUTH_WINDOW_HEIGHT         1412
#define IDC_OAUTH_TOKEN_CACHE           1413
#define IDC_OAUTH_IGNORE_NOPROMPT       1414
#define IDC_OAUTH_ENCRYPTION_OPTIONS    1415
#define IDC_OAUTH_SSL_OPTIONS           1416

// ---------------------------------------------------------------- Logging Configuration (9109)
#define IDC_LOG_IMPORT                  1003
#define IDC_LOG_EXPORT                  1004
#define IDC_LOG_MAX_FILE_SIZE           8011
#define IDC_LOG_MAX_FILE_COUNT          8012
#define IDC_LOG_PATH                    8013
#define IDC_LOG_LEVEL                   8014
#define IDC_LOG_LEVEL_LABEL             8015
#define IDC_LOG_PATH_LABEL              8016
#define IDC_LOG_MAX_FILE_COUNT_LABEL    8017
#define IDC_LOG_MAX_FILE_SIZE_LABEL     8018
#define IDC_LOG_BROWSE                  8019
#define IDC_LOG_ROTATION_GROUP          8020

// ---------------------------------------------------------------- SSL Options (19136) and two-way SSL Options (1091)
#define IDC_SSL_MIN_TLS                 1005
#define IDC_SSL_MIN_TLS_LABEL           1006
#define IDC_SSL_ENABLE                  19131
#define IDC_SSL_ALLOW_HOST_MISMATCH     19132
#define IDC_SSL_ALLOW_SELF_SIGNED       19133
#define IDC_SSL_TRUSTED_CERTS           19134
#define IDC_SSL_BROWSE_TRUSTED_CERTS    19135
#define IDC_SSL_USE_SYSTEM_TRUST_STORE  19137
#define IDC_SSL_CHECK_REVOCATION        19138
#define IDC_SSL_TWO_WAY                 19139
#define IDC_SSL_CLIENT_CERT             19140
#define IDC_SSL_BROWSE_CLIENT_CERT      19141
#define IDC_SSL_CLIENT_KEY              19142
#define IDC_SSL_BROWSE_CLIENT_KEY       19143
#define IDC_SSL_CLIENT_KEY_PASSWORD     19146
#define IDC_SSL_PASSWORD_OPTIONS        19147

// ---------------------------------------------------------------- Password Options (19144)
#define IDC_PWD_CURRENT_USER_ONLY       1000
#define IDC_PWD_ALL_USERS               1001
#define IDC_PWD_ENCRYPT_FOR_LABEL       19145

// ---------------------------------------------------------------- HTTP Proxy Options (37086)
#define IDC_PROXY_USE                   37088
#define IDC_PROXY_HOST_LABEL            37089
#define IDC_PROXY_HOST                  37090
#define IDC_PROXY_PORT_LABEL            37091
#define IDC_PROXY_PORT                  37092
#define IDC_PROXY_USER_LABEL            37093
#define IDC_PROXY_USER                  37094
#define IDC_PROXY_PASSWORD_LABEL        37095
#define IDC_PROXY_PASSWORD              37096
#define IDC_PROXY_PASSWORD_OPTIONS      37097

// ---------------------------------------------------------------- strings
#define IDS_INVALID_DSN_TITLE           112
#define IDS_BITNESS_32                  138
#define IDS_BITNESS_64                  139
#define IDS_TEST_FAILED                 1094
#define IDS_TEST_SUCCEEDED              1095
#define IDS_IMPORT_CONFIGURATION        1096
#define IDS_EXPORT_CONFIGURATION        1097
#define IDS_EXPORT_CHOOSER_TITLE        1098
#define IDS_IMPORT_CHOOSER_TITLE        1099
#define IDS_TEST_ODBC_VERSION           1100
#define IDS_TEST_DRIVER_VERSION         1101
#define IDS_TEST_BITNESS                1102
#define IDS_TEST_LOCALE                 1103
#define IDS_TEST_CONNECTING             1105
#define IDS_TEST_STEPS                  1106
#define IDS_TEST_STEP_LINE              1107
#define IDS_TEST_STEP_PASSED            1108
#define IDS_TEST_STEP_FAILED            1109
#define IDS_TEST_STEP_STOPPED           1110
#define IDS_TEST_STEP_RESOLVE           1111
#define IDS_TEST_STEP_CONNECT           1112
#define IDS_TEST_STEP_TLS               1113
#define IDS_TEST_STEP_DISCOVERY         1114
#define IDS_TEST_STEP_TOKEN             1115
#define IDS_TEST_STEP_AUTHENTICATION    1116
#define IDS_TEST_STEP_OPEN_SESSION      1117
#define IDS_TEST_STEP_SERVER_INFO       1118
#define IDS_TEST_STEP_CLOSE_SESSION     1119
#define IDS_TEST_STEP_OTHER             1120
#define IDS_TEST_CANCELLING             1121
#define IDS_TEST_STEP_SETTINGS          1125
#define IDS_DSN_CONFIG_ERROR_TITLE      9101
#define IDS_SETUP_INVALID_HWND          9102
#define IDS_SETUP_INVALID_KEYWORD_VALUE 9103
#define IDS_SETUP_INVALID_NAME          9104
#define IDS_SETUP_INVALID_REQUEST_TYPE  9105
#define IDS_SETUP_REQUEST_FAILED        9106
#define IDS_SETUP_DRIVER_SPECIFIC       9107
#define IDS_DSN_NAME_EMPTY              9108
#define IDS_DSN_NAME_INVALID_CHARS      9109
#define IDS_SETUP_REGISTRY_WRITE        9110
#define IDS_SETUP_INVALID_LOG_COUNT     9111
#define IDS_SETUP_INVALID_LOG_SIZE      9112
#define IDS_BROWSE                      9113
#define IDS_OK                          9114
#define IDS_CANCEL                      9115
#define IDS_MAX_NUMBER_FILES            9116
#define IDS_MAX_FILE_SIZE               9117
#define IDS_LOG_ROTATION                9118
#define IDS_LOG_DIR_CHOOSER_TITLE       9119
#define IDS_LOGGING_OPTIONS_TITLE       9124
#define IDS_LOG_LEVEL                   9125
#define IDS_LOG_PATH                    9126
#define IDS_CREDENTIALS_NOT_SAVED_TITLE 9130
#define IDS_CREDENTIALS_NOT_SAVED_1     9131
#define IDS_CREDENTIALS_NOT_SAVED_2     9132
#define IDS_CREDENTIALS_NOT_SAVED_3     9133
#define IDS_CREDENTIALS_NOT_SAVED_4     9134
#define IDS_CREDENTIALS_NOT_SAVED_5     9135
#define IDS_DUPLICATE_KEY_TEXT          9136
#define IDS_DUPLICATE_KEY_TITLE         9137
#define IDS_REMOVE_PROPERTY_TEXT        9138
#define IDS_REMOVE_PROPERTY_TITLE       9139
#define IDS_ZK_NAMESPACE_REQUIRED_TITLE 9140
#define IDS_ZK_NAMESPACE_REQUIRED_TEXT  9141
#define IDS_OAUTH_REQUIRED_TITLE        9142
#define IDS_OAUTH_FLOW_MISSING_TEXT     9143
#define IDS_OAUTH_CLIENT_CRED_TEXT      9144
#define IDS_OAUTH_ACCESS_TOKEN_TEXT     9145
#define IDS_DSN_DEFINITION_FILTER       9146
#define IDS_SECRET_NOT_RECOVERED_TITLE  9180
#define IDS_SECRET_NOT_RECOVERED_TEXT   9181
#define IDS_SECRET_NOT_RECOVERED_HINT   9182
