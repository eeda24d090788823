// Boost.URL is used header-only on every platform: this is the one
// translation unit that compiles its implementation. Elsewhere include only
// its ordinary headers (<boost/url/parse.hpp>, <boost/url/url_view.hpp>, ...).
#include <boost/url/src.hpp>
