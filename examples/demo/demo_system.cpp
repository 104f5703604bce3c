// Demo sections of the machine services and the debug aids.
#include <zunFoundation.h>

#include <sys/wait.h>

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

ZUN_DEMO_SECTION(103, "Programs, libraries and folders")
{
    std::printf("this program: %s\n",
                static_cast<const char *>(zunSystem::GetCurrentProcessPath().OSRepresentation8()));
    std::printf("home: %s\ndesktop: %s\ndocuments: %s\n",
                static_cast<const char *>(zunSystem::GetUserHomeFolder().OSRepresentation8()),
                static_cast<const char *>(zunSystem::GetUserDesktopFolder().OSRepresentation8()),
                static_cast<const char *>(zunSystem::GetUserDocumentFolder().OSRepresentation8()));

    void * libm = zunSystem::DLOpen(zunPath("libm.so.6"));
    auto cosine = reinterpret_cast<double (*)(double)>(zunSystem::DLSymbol(libm, zunString("cos")));
    std::printf("cos(0) through a library opened at run time: %.1f\n", cosine != nullptr ? cosine(0.0) : -1.0);
    if (zunSystem::DLOpen(zunPath("libnot-there.so")) == nullptr)
        std::printf("a missing library gives null: %s\n", static_cast<const char *>(zunSystem::DLError()));

    const unsigned int child = zunSystem::CreateProcess(zunPath("/bin/sleep"), zunString("5"));
    const zunPath childPath = zunSystem::GetProcessPath(child);
    const bool killed = zunSystem::KillProcess(child);
    if (killed)
        waitpid(static_cast<pid_t>(child), nullptr, 0); // the child is the caller's to reap
    std::printf("started /bin/sleep as %u, its path %s, killed: %s\n", child,
                static_cast<const char *>(childPath.OSRepresentation8()), killed ? "yes" : "no");
    std::printf("CreateProcess of a missing program: 0x%X\n",
                zunSystem::CreateProcess(zunPath("/no/such/program"), zunString()));
}

ZUN_DEMO_SECTION(104, "Debug log and release log")
{
    // Without a tag file in the home folder only untagged messages pass; they
    // go to a debugger, when one is attached.
    zunDebugLog("render", "filtered out unless the tag file lists render\n");
    zunDebugLog(nullptr, "an untagged message always passes\n");

    // The release log would go to the desktop; the demo keeps it in /tmp.
    const zunPath file("/tmp/kelp_demo/release.log");
    file.Delete(zunPath::OverrideReadOnly);
    zunSetReleaseLogFile(file);
    zunReleaseLog("first message, pid %u\n", zunSystem::GetPid());
    zunReleaseLog("second message\n");
    if (FILE * log = file.Open("r"))
    {
        std::printf("%s holds:\n", static_cast<const char *>(file.OSRepresentation8()));
        char line[128];
        while (std::fgets(line, sizeof(line), log) != nullptr)
            std::printf("  %s", line);
        std::fclose(log);
    }
}
