// The compiled part of the URL library (Boost.URL), built into the model
// once: the distribution ships its headers only, the same on every target.
#include <boost/url/src.hpp>
