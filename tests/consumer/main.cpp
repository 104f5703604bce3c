// Links the installed library through its package and uses a little of every
// family that has landed; exits non-zero if anything is off.
#include <zunFoundation.h>

#include <cstdio>
#include <cstring>

int main()
{
    int failures = 0;

    zunUTF16 wide("caf\xC3\xA9", 5);
    failures += wide.Length() != 4 || wide.Get16()[3] != 0xE9;

    void * block = nullptr;
    failures += !zunMemAlloc(block, 64, true);
    failures += zunMemGetSize(block) != 64;
    zunMemFree(block);

    try
    {
        throw zunException("consumer:1", "int __cdecl main(void)").SetDebugDescription("%d", 7);
    }
    catch (const zunException & e)
    {
        failures += std::strcmp(e.GetDebugDescription(), "7") != 0;
    }

    std::printf("consumer: %s\n", failures == 0 ? "ok" : "FAILED");
    return failures == 0 ? 0 : 1;
}
