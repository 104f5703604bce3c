// The string lists for both encodings and the strings' Split, compiled once
// in the library from the templates of zunStringList.h.
#include "zunStringList.h"

template class zunStringListT<char>;
template class zunStringListT<zunWChar>;

template ZUN_API zunStringListT<char> zunString::Split(const char * separators, unsigned int start) const;
template ZUN_API zunStringListT<zunWChar> zunStringW::Split(const zunWChar * separators, unsigned int start) const;
