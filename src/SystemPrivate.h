// SystemPrivate.h - the process-wide key table and cursor hiding of zunSystem.
//
// Internal, exported for tests, which read the working key table and the hide
// count behind the public calls.
#ifndef ZUN_SYSTEM_PRIVATE_H
#define ZUN_SYSTEM_PRIVATE_H

#include "CursorHiding.h"
#include "KeyTable.h"
#include "zunPath.h"
#include "zunString.h"

namespace zunSystemPrivate
{
    /// The command line CreateProcess starts: the program's path in double
    /// quotes, then a space and the arguments unless they are empty.
    ZUN_API zunStringW BuildCommandLine(const zunPath & program, const zunString & arguments);
    /// The table behind zunSystem::IsKeyPressed_Async.
    ZUN_API KeyTable & SystemKeyTable();
    /// The hiding behind zunSystem::HideCursor and RestoreCursor.
    ZUN_API CursorHiding & SystemCursorHiding();
}

#endif // ZUN_SYSTEM_PRIVATE_H
