// ThrowSite.h - the one shape of every throw site of the library.
//
//   throw ZUN_EXCEPTION("void __cdecl zunFeatureID::Read(struct zunFile *) throw(struct zunException)")
//       .SetDebugDescription("Not enough memory");
//
// The macro makes both strings of the site: the location as a literal
// "src/File.cpp:412" (the build maps the source folder away, so the path is
// relative to the repository) and the function's signature in its documented
// form. Functions holding a throw site throw zunException and nothing else.
#ifndef ZUN_THROW_SITE_H
#define ZUN_THROW_SITE_H

#include "zunException.h"

#define ZUN_STRINGIZE_(x) #x
#define ZUN_STRINGIZE(x) ZUN_STRINGIZE_(x)
#define ZUN_SOURCE_LOCATION __FILE__ ":" ZUN_STRINGIZE(__LINE__)

#define ZUN_EXCEPTION(signature) zunException(ZUN_SOURCE_LOCATION, signature)

#endif // ZUN_THROW_SITE_H
