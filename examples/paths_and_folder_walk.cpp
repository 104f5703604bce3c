// Paths and a folder walk: paths built and taken apart as text, a small
// project folder made on disk, walked with a mask and recursively, copied,
// and deleted again.
//
// A zunPath is text only until an operation takes it to the disk. It keeps
// one canonical form with backslashes on every platform; the platform's own
// form (forward slashes on Linux) is made for each system call.
//
// Build and run:   cmake --build build --target example_paths_and_folder_walk
//                  build/examples/paths_and_folder_walk
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>

namespace
{
    // zunString converts to const char *; printf needs the pointer itself.
    const char * Text(const zunString & text)
    {
        return text;
    }

    // The canonical text is UTF-16; assigning it to a zunString converts it.
    zunString Canonical(const zunPath & path)
    {
        zunString text;
        text = path.WinRepresentation();
        return text;
    }

    // Writes a few bytes into a new file; zunPath::Open is fopen of the
    // platform form of the path.
    bool WriteFile(const zunPath & path, const char * text)
    {
        FILE * file = path.Open("wb");
        if (file == nullptr)
            return false;
        std::fputs(text, file);
        return std::fclose(file) == 0;
    }

    const char * Kind(const zunPath::Info & info)
    {
        return (info.attributes & zunPath::Info::Folder) ? "folder" : "file";
    }
}

int main()
{
    // ---- Paths as text: nothing here looks at the disk.
    const zunPath scene("projects//castle/scene.kelp.bak");
    std::printf("canonical:        %s\n", Text(Canonical(scene)));
    std::printf("platform form:    %s\n", Text(scene.OSRepresentation8()));
    std::printf("last name:        %s\n", Text(scene.GetLastComponent()));
    std::printf("without ext.:     %s\n", Text(scene.GetLastComponent(zunPath::WithoutExtension)));
    std::printf("extension 1 / 2:  %s / %s\n", Text(scene.GetExtension(1)), Text(scene.GetExtension(2)));
    std::printf("parent:           %s\n", Text(scene.GetParent().OSRepresentation8()));

    zunPath texture = scene.GetParent() + zunPath("textures/wood.png"); // + inserts one separator
    std::printf("beside it:        %s\n", Text(texture.OSRepresentation8()));

    // Equality ignores case, on every platform.
    const bool same = zunPath("Projects/Castle") == zunPath("projects/castle");
    std::printf("case-blind equal: %s\n", same ? "yes" : "no");

    // ---- On disk: a scratch project below the current folder.
    const zunPath root = zunPath::GetCurrentPath() + zunPath("castle_project");
    root.DeleteFolderRecursive(); // a left-over from an earlier run, if any
    const zunPath textures = root + zunPath("textures");
    if (!textures.CreateFolder()) // makes the missing folders on the way
        return EXIT_FAILURE;
    if (!WriteFile(root + zunPath("scene.kelp"), "scene") || !WriteFile(textures + zunPath("wood.png"), "wood") ||
        !WriteFile(textures + zunPath("stone.PNG"), "stone") || !WriteFile(root + zunPath("notes.txt"), "notes"))
        return EXIT_FAILURE;

    // A walk with a mask: masks match without case, several separated by ";".
    // The visitor gets the path, its Info and the depth, and sees a folder
    // before its contents; its true result goes on (and, walking recursively,
    // into the folder it was given), false ends the whole walk.
    int images = 0;
    root.VisitFolder("*.png;*.kelp", zunPath::Recursive,
                     [&](const zunPath & path, const zunPath::Info & info, int depth)
                     {
                         if (!(info.attributes & zunPath::Info::Folder))
                             ++images;
                         std::printf("  %*s%s (%s, %llu bytes)\n", 2 * depth, "", Text(path.GetLastComponent()),
                                     Kind(info), static_cast<unsigned long long>(info.size));
                         return true;
                     });
    std::printf("matching files:   %d\n", images);

    // Copying a folder copies everything in it; GetInfo tells what is there.
    const zunPath backup = zunPath::GetCurrentPath() + zunPath("castle_backup");
    backup.DeleteFolderRecursive();
    const bool copied = root.CopyTo(backup);
    zunPath::Info info;
    const bool found = (backup + zunPath("textures/wood.png")).GetInfo(info);
    std::printf("backup copied:    %s, wood.png %s\n", copied ? "yes" : "no", found ? "is there" : "is missing");

    // Clean up: each operation on the disk answers with a bool, never throws.
    const bool removed = root.DeleteFolderRecursive() && backup.DeleteFolderRecursive();
    std::printf("removed:          %s\n", removed && !root.ExistsAs(zunPath::AnyObject) ? "yes" : "no");

    return same && images == 3 && copied && found && removed ? EXIT_SUCCESS : EXIT_FAILURE;
}
