// A document of nested chunks with user data, written by the newer version of
// an application and opened by an older one, which knows fewer chunk kinds and
// fewer record types, and by the newer one. The older application runs as a
// process of its own (this program started with --older), because the record
// types a process knows are registered for the life of the process.
//
// What each side keeps:
//  - chunk kinds the older reader does not know are skipped by Ascend; this
//    reader also keeps their bytes and writes them back, so they survive its save;
//  - user-data records of ids it never registered are skipped and dropped by
//    zunUserDataManager::Read: a save by the older application loses them.
//
// Build and run:   cmake --build build --target example_document_versions
//                  build/examples/document_versions
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace
{
    // Tags are numbers; this spells them so that the file shows the characters
    // from the lowest byte up in a little-endian stream.
    constexpr unsigned int Tag(const char (&name)[5])
    {
        return static_cast<unsigned int>(name[0]) | static_cast<unsigned int>(name[1]) << 8 |
               static_cast<unsigned int>(name[2]) << 16 | static_cast<unsigned int>(name[3]) << 24;
    }
    const unsigned int kSceneFCC = Tag("SCNE");
    const unsigned int kMeshFCC = Tag("MESH");
    const unsigned int kMaterialFCC = Tag("MATL"); // nested in a mesh
    const unsigned int kLightFCC = Tag("LGHT");    // new in version 2
    const unsigned int kUserDataFCC = Tag("USER"); // the scene's user-data block

    const char * const kDocument = "scene.doc";
    const char * const kResaved = "scene-resaved.doc";

    // ---- User-data records: both versions know the note, only version 2 the hint.
    const zunGUID kNoteId("8d3a0b52-47c1-4f0e-9a55-0c1e2f3a4b5c");
    const zunGUID kRenderHintId("1f6e7d20-93ab-4c58-b0de-6a7b8c9d0e1f");

    struct Note : zunUserDataManager::UserData
    {
        explicit Note(const char * initial = "") : text(initial) {}
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<Note>(*this); }
        bool IsTransferable() const override { return true; } // follows its scene into copies
        void Read(zunFile & file) override { file.Read_String(text); }
        void Write(zunFile & file) const override { file.Write_String(text); }

        zunString text;
    };

    struct RenderHint : zunUserDataManager::UserData
    {
        int samples = 16;
        bool IsTransferable() const override { return true; }
        std::unique_ptr<UserData> Clone() const override { return std::make_unique<RenderHint>(*this); }
        void Write(zunFile & file) const override { file.Write_Int32(samples); }
        void Read(zunFile & file) override { file.Read_Int32(samples); }
    };

    // ---- A mesh, the same in both versions: a name, a triangle count and a
    // nested material chunk.
    struct Mesh
    {
        zunString name;
        int triangles = 0;
        double roughness = 0.5;

        void Write(zunFile * file) const
        {
            zunChunk chunk(file);
            chunk.Create(kMeshFCC);
            file->Write_String(name);
            file->Write_Int32(triangles);
            zunChunk material(file);
            material.Create(kMaterialFCC);
            file->Write_Float(roughness);
            material.Close(); // inner chunks close first
            chunk.Close();
        }

        // Called with the stream inside a MESH chunk.
        void Read(zunFile * file)
        {
            file->Read_String(name);
            file->Read_Int32(triangles);
            while (!file->IsLimitReached())
            {
                zunChunk part(file);
                part.Descend();
                if (part.GetFCC() == kMaterialFCC)
                    file->Read_Float(roughness);
                part.Ascend();
            }
        }
    };

    // A chunk kept as it was read: its tag and its contents.
    struct RawChunk
    {
        unsigned int fcc = 0;
        zunFastMesh<unsigned char> contents;
    };

    // One chunk of tag `fcc` around what `writeContents` writes.
    template <class Contents> void WriteChunk(zunFile * file, unsigned int fcc, const Contents & writeContents)
    {
        zunChunk chunk(file);
        chunk.Create(fcc);
        writeContents();
        chunk.Close();
    }

    // The user-data block has no tag of its own: a chunk around it lets a
    // reader find it among the scene's other children.
    void WriteUserData(zunFile * file, const zunUserDataManager & userData)
    {
        WriteChunk(file, kUserDataFCC, [&] { userData.Write(*file); });
    }

    // Descends into the chunk at the position if it has the tag `fcc`; else
    // leaves the stream on the tag, as it was.
    bool Enter(zunChunk & chunk, unsigned int fcc)
    {
        chunk.Descend();
        if (chunk.GetFCC() == fcc)
            return true;
        chunk.UnDescend();
        return false;
    }

    std::unique_ptr<zunFile> Open(const char * name, bool forWriting)
    {
        const zunPath path = zunPath::GetCurrentPath() + zunPath(name);
        if (forWriting)
            return zunFileDisk::Create(path, zunFileDisk::ReadWrite, zunFileDisk::CreateAlways);
        return zunFileDisk::Create(path, zunFileDisk::Read, zunFileDisk::OpenExisting);
    }

    // ---- What both versions have: the scene chunk with its meshes and its
    // user data. Each version says what it does with a child of another kind.
    struct SceneBase
    {
        std::vector<Mesh> meshes;
        zunUserDataManager userData;

        // `other` gets each child of another kind, entered, and must leave the
        // stream behind it.
        template <class Other> void ReadChildren(zunFile * file, const Other & other)
        {
            zunChunk scene(file);
            if (!Enter(scene, kSceneFCC))
                return;
            while (!file->IsLimitReached())
            {
                zunChunkHF part;
                part.Descend(file);
                if (part == kMeshFCC)
                {
                    meshes.emplace_back();
                    meshes.back().Read(file);
                    part.Ascend(file);
                }
                else if (part == kUserDataFCC)
                {
                    userData.Read(*file); // skips and drops records of ids not registered
                    part.Ascend(file);
                }
                else
                    other(part);
            }
            scene.Ascend();
        }

        // `other` writes the children of other kinds, between the meshes and
        // the user data.
        template <class Other> void WriteChildren(zunFile * file, const Other & other) const
        {
            WriteChunk(file, kSceneFCC,
                       [&]
                       {
                           for (const Mesh & mesh : meshes)
                               mesh.Write(file);
                           other();
                           WriteUserData(file, userData);
                       });
        }
    };

    // ---- Version 1 knows no lights and no render hints. It keeps children of
    // kinds it does not know as raw chunks and writes them back.
    namespace version1
    {
        struct Scene : SceneBase
        {
            std::vector<RawChunk> unknown;

            void Read(zunFile * file)
            {
                ReadChildren(file,
                             [&](zunChunkHF & part)
                             {
                                 // Back to the tag, then the whole contents as
                                 // bytes; DescendReadAscend lands behind it.
                                 part.UnDescend(file);
                                 unknown.emplace_back();
                                 unknown.back().fcc = part.GetFCC();
                                 part.DescendReadAscend(file, unknown.back().contents);
                             });
            }

            void Write(zunFile * file) const
            {
                WriteChildren(file,
                              [&]
                              {
                                  for (const RawChunk & raw : unknown)
                                      WriteChunk(file, raw.fcc,
                                                 [&] { file->Write_Block(raw.contents.Data(), raw.contents.Count()); });
                              });
            }
        };

        // The older application: opens the newer document, reports, saves it again.
        int Run()
        {
            zunUserDataManager::RegisterSerializableUserData(kNoteId, [] { return std::make_unique<Note>(); });

            Scene scene;
            {
                std::unique_ptr<zunFile> file = Open(kDocument, false);
                if (!file)
                    return EXIT_FAILURE;
                scene.Read(file.get());
            }
            const Note * note = scene.userData.GetUserData<Note>(kNoteId);
            std::printf("version 1 reads %s: meshes %zu, chunks of unknown kinds kept as bytes %zu, note \"%s\"\n",
                        kDocument, scene.meshes.size(), scene.unknown.size(),
                        note != nullptr ? static_cast<const char *>(note->text) : "");

            {
                std::unique_ptr<zunFile> file = Open(kResaved, true);
                if (!file)
                    return EXIT_FAILURE;
                scene.Write(file.get());
                file->Close(); // a write that failed throws here at the latest
            }
            std::printf("version 1 saves it again as %s\n", kResaved);

            const bool ok = scene.meshes.size() == 2 && scene.meshes[1].name == "floor" &&
                            scene.meshes[1].roughness == 0.9 && scene.unknown.size() == 1 &&
                            scene.unknown[0].fcc == kLightFCC && note != nullptr && note->text == "first draft";
            return ok ? EXIT_SUCCESS : EXIT_FAILURE;
        }
    }

    // ---- Version 2 adds lights and the render hint.
    namespace version2
    {
        struct Scene : SceneBase
        {
            std::vector<double> lights; // intensities

            void Read(zunFile * file)
            {
                ReadChildren(file,
                             [&](zunChunkHF & part)
                             {
                                 if (part == kLightFCC)
                                 {
                                     lights.push_back(1.0);
                                     file->Read_Float(lights.back());
                                 }
                                 part.Ascend(file); // an unknown kind costs nothing more
                             });
            }

            void Write(zunFile * file) const
            {
                WriteChildren(file,
                              [&]
                              {
                                  for (double intensity : lights)
                                      WriteChunk(file, kLightFCC, [&] { file->Write_Float(intensity); });
                              });
            }

            void Print(const char * what) const
            {
                const Note * note = userData.GetUserData<Note>(kNoteId);
                const RenderHint * hint = userData.GetUserData<RenderHint>(kRenderHintId);
                std::printf("version 2 reads %s: meshes %zu, lights %zu, note \"%s\", render hint %s\n", what,
                            meshes.size(), lights.size(), note != nullptr ? static_cast<const char *>(note->text) : "",
                            hint != nullptr ? std::to_string(hint->samples).c_str() : "missing");
            }
        };

        Scene ReadScene(const char * name)
        {
            Scene scene;
            std::unique_ptr<zunFile> file = Open(name, false);
            if (file)
                scene.Read(file.get());
            return scene;
        }
    }
}

int main(int argc, char ** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--older") == 0)
        return version1::Run();

    // ---- The newer application registers both record types and writes.
    zunUserDataManager::RegisterSerializableUserData(kNoteId, [] { return std::make_unique<Note>(); });
    zunUserDataManager::RegisterSerializableUserData(kRenderHintId, [] { return std::make_unique<RenderHint>(); });
    {
        version2::Scene scene;
        scene.meshes.resize(2);
        scene.meshes[0].name = "teapot";
        scene.meshes[0].triangles = 6320;
        scene.meshes[1].name = "floor";
        scene.meshes[1].triangles = 2;
        scene.meshes[1].roughness = 0.9;
        scene.lights.push_back(3.5);
        scene.userData.SetUserData(kNoteId, std::make_unique<Note>("first draft"));
        auto hint = std::make_unique<RenderHint>();
        hint->samples = 256;
        scene.userData.SetUserData(kRenderHintId, std::move(hint));

        std::unique_ptr<zunFile> file = Open(kDocument, true);
        if (!file)
            return EXIT_FAILURE;
        scene.Write(file.get());
        file->Close();
        std::printf("version 2 writes %s: 2 meshes, 1 light, a note and a render hint\n", kDocument);
    }
    bool ok = true;

    // ---- The newer reader gets everything back.
    const version2::Scene read = version2::ReadScene(kDocument);
    read.Print(kDocument);
    const RenderHint * hint = read.userData.GetUserData<RenderHint>(kRenderHintId);
    ok &= read.meshes.size() == 2 && read.meshes[0].triangles == 6320 && read.meshes[1].roughness == 0.9 &&
          read.lights.size() == 1 && read.lights[0] == 3.5 && hint != nullptr && hint->samples == 256;

    // ---- The older application, as a process of its own, reads and saves again.
    std::fflush(stdout); // its output follows ours
    const std::string older = std::string("\"") + argv[0] + "\" --older";
    const int status = std::system(older.c_str());
    ok &= status == 0;

    // ---- The newer reader opens the older application's save: meshes, the
    // light it kept as bytes and the note are there; the render hint is gone.
    const version2::Scene resaved = version2::ReadScene(kResaved);
    resaved.Print(kResaved);
    const Note * note = resaved.userData.GetUserData<Note>(kNoteId);
    ok &= resaved.meshes.size() == 2 && resaved.meshes[0].name == "teapot" && resaved.lights.size() == 1 &&
          resaved.lights[0] == 3.5 && note != nullptr && note->text == "first draft" &&
          resaved.userData.GetUserData<RenderHint>(kRenderHintId) == nullptr;

    std::printf("%s\n", ok ? "every reader saw what it should" : "MISMATCH");
    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
