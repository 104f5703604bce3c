// Demo sections of the core: text conversion, memory blocks, failures.
#include <zunFoundation.h>

#include <cstdio>
#include <cstring>

#include "DemoSection.h"

ZUN_DEMO_SECTION(10, "UTF-8 <-> UTF-16")
{
    const char * greeting = "Gr\xC3\xBC\xC3\x9F"
                            "e, \xE4\xB8\x96\xE7\x95\x8C \xF0\x9F\x8C\x8D";
    zunUTF16 wide(greeting, static_cast<unsigned int>(std::strlen(greeting)));
    std::printf("%zu UTF-8 bytes became %u UTF-16 units:", std::strlen(greeting), wide.Length());
    for (unsigned int i = 0; i < wide.Length(); ++i)
        std::printf(" %04X", static_cast<unsigned int>(wide.Get16()[i]));
    std::printf("\n");

    auto back = zunUTF16::ToNew8(zunUTF8::ToNew16(greeting).get());
    std::printf("round trip: %s (%s)\n", back.get(), std::strcmp(back.get(), greeting) == 0 ? "same" : "DIFFERENT");

    zunUTF16 broken("ok\xFF\xE2\x82!", 6);
    std::printf("invalid input never fails: %u units, with U+%04X for each bad run\n", broken.Length(),
                static_cast<unsigned int>(broken.Get16()[2]));
}

ZUN_DEMO_SECTION(11, "Memory blocks")
{
    void * block = nullptr;
    zunMemAlloc(block, 16, true);
    zunMemFill(block, 0x2A, 8);
    zunMemAlloc(block, 4096, true); // grows; the new tail is zeroed
    std::printf("block of %u bytes, byte 0 = 0x%02X, byte 100 = 0x%02X\n", zunMemGetSize(block),
                static_cast<unsigned char *>(block)[0], static_cast<unsigned char *>(block)[100]);
    zunMemFree(block);
    std::printf("freed: pointer is %s\n", block == nullptr ? "null" : "set");
}

ZUN_DEMO_SECTION(12, "Failures")
{
    try
    {
        throw zunException("examples/demo/demo_text.cpp:1", "void __cdecl Demo(void) throw(struct zunException)")
            .SetDebugDescription("write failed with error %d %s", 28, "no space left on device");
    }
    catch (const zunException & e)
    {
        std::printf("caught at %s\n  in %s\n  debug: %s\n  an exception is alive: %s\n", e.GetFileAndLine(),
                    e.GetFunction(), e.GetDebugDescription(), zunException::IsAnyBeingHandled() ? "yes" : "no");
    }
    std::printf("after the handler: %s\n", zunException::IsAnyBeingHandled() ? "alive" : "none alive");
}
