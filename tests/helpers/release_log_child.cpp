// A program whose file name carries an extension (release_log_child.exe): it
// writes one release log message with the home folder given as argv[1].
#include <cstdio>

#include "platform/UserFolders.h"
#include "zunFoundation.h"

int main(int argc, char ** argv)
{
    if (argc != 2)
        return 2;
    zunPlatform::OverrideUserHome(argv[1]);
    zunReleaseLog("child %d\n", 7);
    return 0;
}
