// Demo sections of the machine services and the debug aids.
#include <zunFoundation.h>

#include <cstdint>
#include <cstdio>

#include "DemoSection.h"

ZUN_DEMO_SECTION(100, "Processes and the machine")
{
    std::printf("this process: %u; processors online: %u; byte order: %s\n", zunSystem::GetPid(),
                zunSystem::GetNumberOfCPUs(), zunSystem::GetEndianness() == zunSystem::Little ? "Little" : "Big");
    const zunFastMesh<unsigned int> running = zunSystem::GetRunningProcesses();
    std::printf("running processes: %u (the list holds at most 8192)\n", running.Count());
    std::printf("KillProcess(0xFFFFFFFF) = %s, KillProcess(0) = %s: neither names one process\n",
                zunSystem::KillProcess(0xFFFFFFFF) ? "true" : "false", zunSystem::KillProcess(0) ? "true" : "false");
}

ZUN_DEMO_SECTION(101, "Cursor and keys")
{
    // Without a display these calls do nothing, but the counting still holds.
    zunSystem::HideCursor();
    zunSystem::HideCursor();
    zunSystem::RestoreCursor();
    zunSystem::RestoreCursor(); // the outermost restore puts the saved cursor back
    zunSystem::RestoreCursor(); // unbalanced: reported as a soft failure, nothing else
    std::printf("cursor hidden twice and restored three times: the extra restore is ignored\n");
    std::printf("Escape down now: %s; either Windows key: %s\n",
                zunSystem::IsKeyPressed_Async(zunSystem::Key_Escape) ? "yes" : "no",
                zunSystem::IsKeyPressed_Async(zunSystem::Key_Windows) ? "yes" : "no");
    zunSystem::Sleep(10);
    std::printf("slept 10 ms\n");
}

namespace
{
    alignas(8) volatile std::uint64_t g_demoCounter = 0;
}

ZUN_DEMO_SECTION(102, "Hardware breakpoints")
{
    namespace Windows = zunDebug::Windows;
    void * watches[5];
    for (void *& watch : watches)
        watch = Windows::SetMemBreak(Windows::CurrentThread(), Windows::MemBreak_Write, Windows::MemBreak_8Bytes,
                                     const_cast<std::uint64_t *>(&g_demoCounter));
    std::printf("five write watches on one variable:");
    for (void * watch : watches)
        std::printf(" %s", watch != nullptr ? "armed" : "null");
    std::printf("  (four debug registers per thread)\n");
    g_demoCounter = g_demoCounter + 1; // caught by the armed ones; a debugger would stop here
    unsigned int removed = 0;
    for (void * watch : watches)
        removed += Windows::RemoveMemBreak(watch) ? 1 : 0;
    std::printf("removed %u; RemoveMemBreak(nullptr) = %s; debug flags: 0x%X\n", removed,
                Windows::RemoveMemBreak(nullptr) ? "true" : "false", Windows::GetDebugFlags().GetMask());
}
