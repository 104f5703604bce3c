// Demo sections of paths, their disk operations and the debug print channel.
#include <zunFoundation.h>

#include <cstdio>

#include "DemoSection.h"

namespace
{
    void ShowPath(const char * label, const zunPath & path)
    {
        // The canonical text, backslashes and all (the platform form would show slashes).
        const auto text = zunUTF16::ToNew8(path.WinRepresentation().m_pData);
        std::printf("%-34s %s\n", label, text ? text.get() : "");
    }
}

ZUN_DEMO_SECTION(70, "Paths are text in one canonical form")
{
    ShowPath("a/b//c", zunPath("a/b//c"));
    ShowPath("//srv//share (a network name)", zunPath("//srv//share"));
    const zunPath scene("/tmp//work/scene.kelp");
    ShowPath("/tmp//work/scene.kelp", scene);
    std::printf("%-34s %s\n", "  for system calls", scene.OSRepresentation8().m_pData);
    std::printf("%-34s %s, extension %s\n", "  last name without extension",
                scene.GetLastComponent(zunPath::WithoutExtension).m_pData, scene.GetExtension(1).m_pData);
    const zunStringList names = scene.GetComponents();
    std::printf("%-34s %u:", "  names", names.Count());
    for (unsigned int i = 0; i < names.Count(); ++i)
        std::printf(" %s", names[i]);
    std::printf("\n");
    ShowPath("GetParent(1)", scene.GetParent(1));
    ShowPath("GoUp(2) on a\\b\\c", zunPath("a\\b\\c").GoUp(2));
    ShowPath("GoUp(1) on C:\\", zunPath("C:\\").GoUp(1));
    ShowPath(R"(C:\a\b\c relative to C:\A\)", zunPath(R"(C:\a\b\c)").GetRelativePath(zunPath(R"(C:\A\)")));
    ShowPath("b\\c made absolute in \\data", zunPath("b\\c").GetAbsolutePath(zunPath("\\data")));
    std::printf("A\\B == a\\b: %s; A < a: %s (equality is case-blind, order is not)\n",
                zunPath("A\\B") == zunPath("a\\b") ? "true" : "false", zunPath("A") < zunPath("a") ? "true" : "false");
    zunPath joined("models");
    joined += zunPath("/abs"); // refused: the path stays as it was
    ShowPath("models += \\abs (refused)", joined);
}

ZUN_DEMO_SECTION(71, "Paths on the disk")
{
    const zunPath root = zunPath::GetTemporaryPath() + zunPath("kelp_demo_paths");
    root.DeleteFolderRecursive();
    const zunPath folder = root + zunPath("models/ship");
    std::printf("CreateFolder(Recursive) of %s: %s\n", folder.OSRepresentation8().m_pData,
                folder.CreateFolder(zunPath::Recursive, zunPath::PathIsFolder) ? "made" : "failed");
    for (const char * name : {"hull.obj", "sail.obj", "notes.txt"})
    {
        FILE * file = (folder + zunPath(name)).Open("w");
        if (file)
        {
            std::fputs(name, file);
            std::fclose(file);
        }
    }
    std::printf("visiting *.obj below %s:\n", root.OSRepresentation8().m_pData);
    root.VisitFolder("*.obj", zunPath::Recursive,
                     [](const zunPath & path, const zunPath::Info & info, int depth)
                     {
                         std::printf("  depth %d  %-9s %s\n", depth,
                                     (info.attributes & zunPath::Info::Folder) ? "folder" : "file",
                                     path.GetLastComponent(zunPath::WithExtension).m_pData);
                         return true;
                     });
    zunPath hull = folder + zunPath("hull");
    const unsigned int found = hull.FindExtension(zunStringList{"ply", "obj"});
    std::printf("FindExtension(ply, obj) on hull: entry %u, %s\n", found,
                hull.GetLastComponent(zunPath::WithExtension).m_pData);
    const zunPath sail = folder + zunPath("sail.obj");
    sail.MakeWriteable(false);
    // One statement per call: the disk changes in the order shown.
    const bool kept = sail.Delete(zunPath::KeepReadOnly);
    const bool overridden = sail.Delete(zunPath::OverrideReadOnly);
    std::printf("read-only sail.obj: Delete(KeepReadOnly) %s, Delete(OverrideReadOnly) %s\n",
                kept ? "deleted" : "refused", overridden ? "deleted" : "refused");
    const bool masked = folder.Delete("*.txt", zunPath::KeepReadOnly);
    std::printf("Delete(\"*.txt\") in the folder: %s; notes.txt left: %s; the folder left: %s\n",
                masked ? "true" : "false", (folder + zunPath("notes.txt")).ExistsAs(zunPath::File) ? "yes" : "no",
                folder.ExistsAs(zunPath::Folder) ? "yes" : "no");
    const bool removed = root.DeleteFolderRecursive();
    std::printf("DeleteFolderRecursive: %s; anything left: %s\n", removed ? "true" : "false",
                root.ExistsAs(zunPath::AnyObject) ? "yes" : "no");
}

ZUN_DEMO_SECTION(72, "The debug print channel")
{
    const zunPath log = zunPath::GetTemporaryPath() + zunPath("kelp_demo_dprintf.txt");
    log.Delete(zunPath::OverrideReadOnly);
    zunSetDprintfFile(log);
    const int written = zunDprintf("a message of %d words\n", 5);
    zunException("demo.cpp:1", "void demo()").SetDebugDescription("nothing went wrong").Dump();
    zunSetDprintfFile(zunPath::Empty);
    std::printf("zunDprintf wrote %d bytes; %s now reads:\n", written, log.OSRepresentation8().m_pData);
    if (FILE * file = log.Open("r"))
    {
        char line[256];
        while (std::fgets(line, sizeof line, file))
            std::printf("  | %s", line);
        std::fclose(file);
    }
    log.Delete(zunPath::OverrideReadOnly);
}
