// Demo sections of identifiers and user data: GUIDs, versions, feature ids,
// and a document whose records outlive a program that knows only some of them.
#include <zunFoundation.h>

#include <cstdio>
#include <memory>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "DemoSection.h"

ZUN_DEMO_SECTION(150, "Identifiers")
{
    const zunGUID parsed("6B29FC40-CA47-1067-B31D-00DD010662DA");
    std::printf("parsed GUID prints as %s; a fresh one is %s\n", static_cast<const char *>(parsed.ToString()),
                static_cast<const char *>(zunGUID().ToString()));
    std::printf("\"{6b29fc40-...}\" with braces %s Invalid\n",
                zunGUID("{6b29fc40-ca47-1067-b31d-00dd010662da}") == zunGUID::Invalid ? "gives" : "does not give");

    const zunVersion version(0x15120123);
    std::printf("version 0x%08x: short %s, medium %s, full %s, internal %s, %s\n", version.GetRawValue(),
                static_cast<const char *>(version.GetDescription(zunVersion::Short)),
                static_cast<const char *>(version.GetDescription(zunVersion::Medium)),
                static_cast<const char *>(version.GetDescription(zunVersion::Full)),
                static_cast<const char *>(version.GetDescription(zunVersion::Internal)),
                static_cast<const char *>(version.GetDescription(zunVersion::WithBuild)));

    zunFeatureID feature;
    feature.Push(3u);
    feature.Push(0xFFFFFFFFu);
    std::printf("feature id %s, in decimal %s\n", static_cast<const char *>(feature.ToString(true)),
                static_cast<const char *>(feature.ToString(false)));
}

namespace
{
    // Two record types an application hangs on its objects.
    const zunGUID kNoteId("3f1e0c2a-5b8d-4e6f-9a01-23456789abcd");
    const zunGUID kThumbnailId("7d2c9b10-1a2b-4c3d-8e4f-56789abcdef0");

    struct Note : zunUserDataManager::UserData
    {
        zunString text;
        bool IsTransferable() const override { return true; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Note>(*this); }
        void Write(zunFile & file) const override { file.Write_String(text); }
        void Read(zunFile & file) override { file.Read_String(text); }
    };

    struct Thumbnail : zunUserDataManager::UserData
    {
        int width = 0, height = 0;
        bool IsTransferable() const override { return false; } // redrawn for a copy
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Thumbnail>(*this); }
        void Write(zunFile & file) const override
        {
            file.Write_Int32(width);
            file.Write_Int32(height);
        }
        void Read(zunFile & file) override
        {
            file.Read_Int32(width);
            file.Read_Int32(height);
        }
    };

    struct SceneObject
    {
        zunString name;
        zunUserDataManager userData;
    };

    // The document: a count, then each object's name and user-data block.
    void WriteDocument(zunFile & file, const std::vector<SceneObject> & objects)
    {
        file.Write_UInt32(static_cast<unsigned int>(objects.size()));
        for (const SceneObject & object : objects)
        {
            file.Write_String(object.name);
            object.userData.Write(file);
        }
    }

    std::vector<SceneObject> ReadDocument(zunFile & file)
    {
        unsigned int count = 0;
        file.Read_UInt32(count);
        std::vector<SceneObject> objects(count);
        for (SceneObject & object : objects)
        {
            file.Read_String(object.name);
            object.userData.Read(file);
        }
        return objects;
    }

    void RegisterNotes()
    {
        zunUserDataManager::RegisterSerializableUserData(kNoteId, [] { return std::make_unique<Note>(); });
    }

    // The newer program knows notes and thumbnails; it writes the document
    // to `out`.
    void RunNewerProgram(int out)
    {
        RegisterNotes();
        zunUserDataManager::RegisterSerializableUserData(kThumbnailId, [] { return std::make_unique<Thumbnail>(); });

        std::vector<SceneObject> objects(2);
        objects[0].name = "teapot";
        auto note = std::make_unique<Note>();
        note->text = "glaze it blue";
        objects[0].userData.SetUserData(kNoteId, std::move(note));
        auto thumbnail = std::make_unique<Thumbnail>();
        thumbnail->width = 64;
        thumbnail->height = 48;
        objects[0].userData.SetUserData(kThumbnailId, std::move(thumbnail));
        objects[1].name = "floor";
        objects[1].userData.SetUserData(kThumbnailId, std::make_unique<Thumbnail>());

        zunFastMesh<unsigned char> bytes;
        WriteDocument(*zunFileMem::Create(bytes), objects);
        std::printf("newer program (notes and thumbnails): wrote %u bytes, 2 objects, 3 records\n", bytes.Count());
        std::fflush(stdout);
        const ssize_t written = write(out, bytes.Data(), bytes.Count());
        (void)written;
    }

    // The older program knows notes only; it reads what the newer one wrote.
    void RunOlderProgram(const zunFastMesh<unsigned char> & bytes)
    {
        RegisterNotes();
        std::vector<SceneObject> objects = ReadDocument(*zunFileMem::Create(bytes));
        std::printf("older program (notes only): read %zu objects\n", objects.size());
        for (const SceneObject & object : objects)
        {
            const Note * note = object.userData.GetUserData<Note>(kNoteId);
            std::printf("  %s: note %s%s%s, thumbnail %s\n", static_cast<const char *>(object.name),
                        note != nullptr ? "\"" : "", note != nullptr ? static_cast<const char *>(note->text) : "none",
                        note != nullptr ? "\"" : "",
                        object.userData.GetUserData<Thumbnail>(kThumbnailId) != nullptr ? "kept"
                                                                                        : "skipped (unknown here)");
        }
    }
}

// The registry is process-wide and keeps every id for good, so one process
// cannot play a program that lacks a type after registering it. The newer
// program therefore runs in a child process and hands its document over a
// pipe; this process registers notes alone and reads it back.
ZUN_DEMO_SECTION(151, "User data across programs")
{
    int channel[2];
    if (pipe(channel) != 0)
        return;
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0)
    {
        close(channel[0]);
        RunNewerProgram(channel[1]);
        _exit(0);
    }
    close(channel[1]);
    zunFastMesh<unsigned char> bytes;
    unsigned char block[4096];
    for (ssize_t got; (got = read(channel[0], block, sizeof block)) > 0;)
        bytes.InsertRange(0xFFFFFFFF, block, static_cast<unsigned int>(got));
    close(channel[0]);
    waitpid(child, nullptr, 0);
    RunOlderProgram(bytes);
}
