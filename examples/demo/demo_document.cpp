// The demo's last section: a document written to the current folder, which
// scripts/demo then shows with the chunk inspector (tools/zunchunks).
#include <zunFoundation.h>

#include <cstdio>
#include <fstream>

#include "DemoSection.h"

ZUN_DEMO_SECTION(990, "A document on disk")
{
    zunFastMesh<unsigned char> bytes;
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(bytes);
        zunChunk scene(file.get());
        scene.Create(0x454E4353); // "SCNE"
        {
            zunChunk name(file.get());
            name.Create(0x454D414E); // "NAME"
            file->Write_String(zunString("harbour"));
            name.Close();
        }
        {
            zunChunk mesh(file.get());
            mesh.Create(0x4853454D); // "MESH"
            file->Write_Int32(3);
            const double corners[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
            for (double coordinate : corners)
                file->Write_Float(coordinate);
            mesh.Close();
        }
        scene.Close();
        file->Close();
    }
    std::ofstream("demo-document.kelp", std::ios::binary)
        .write(reinterpret_cast<const char *>(bytes.Data()), bytes.Count());
    std::printf("wrote demo-document.kelp: %u bytes, a scene chunk holding a name and a mesh\n", bytes.Count());
}
