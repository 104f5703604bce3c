// zunSelfTest.h - the library's own check of its container walks.
//
// A host program may call zunFoundation_UnitTest() to see that the walks of
// zunFastMesh and zunStringListT visit what they should in this build. It
// prints its section headings on standard output and, for each check that
// fails, one line:
//
//   ForEach test 3 failed. Expected "123" got "12"
//
// preceded by "const " when the failure was seen through a const reference.
// A correct library prints the headings and nothing else. The routine takes
// no arguments, returns nothing, keeps no state and throws nothing of its own.
#ifndef ZUN_SELF_TEST_H
#define ZUN_SELF_TEST_H

#include "zunConfig.h"

/// Runs the container checks and reports on standard output (see above).
ZUN_API void zunFoundation_UnitTest();

#endif // ZUN_SELF_TEST_H
