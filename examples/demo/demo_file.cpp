// Demo section of the binary files: a small document of nested chunks written
// to a temporary file, read back by a reader that knows fewer chunk tags and
// by one that expects more fields than were written.
#include <zunFoundation.h>

#include <cstdio>

#include "DemoSection.h"

namespace
{
    constexpr unsigned int Tag(char a, char b, char c, char d)
    {
        return static_cast<unsigned int>(static_cast<unsigned char>(a)) |
               static_cast<unsigned int>(static_cast<unsigned char>(b)) << 8 |
               static_cast<unsigned int>(static_cast<unsigned char>(c)) << 16 |
               static_cast<unsigned int>(static_cast<unsigned char>(d)) << 24;
    }

    constexpr unsigned int kScene = Tag('S', 'C', 'E', 'N');
    constexpr unsigned int kName = Tag('N', 'A', 'M', 'E');
    constexpr unsigned int kPlacement = Tag('X', 'F', 'R', 'M');
    constexpr unsigned int kPaint = Tag('P', 'N', 'T', ' ');
    constexpr unsigned int kLights = Tag('L', 'I', 'T', 'E');

    // A second version of the writer adds a gloss to the paint chunk and a
    // lights chunk; the first version wrote neither.
    void WriteScene(zunFile & file, bool secondVersion)
    {
        zunChunk scene(&file);
        scene.Create(kScene);
        {
            zunChunk name(&file);
            name.Create(kName);
            zunString("harbour crane").Write(&file);
            name.Close();

            zunChunk placement(&file);
            placement.Create(kPlacement);
            zunMatrix44 matrix;
            matrix.AddTranslation(zunVector4T<double>{12.0, 0.0, -4.0, 1.0});
            matrix.Write(&file);
            placement.Close();

            zunChunk paint(&file);
            paint.Create(kPaint);
            zunColor(0.9, 0.55, 0.1, 1.0, zunColor::RGB).Write(&file);
            if (secondVersion)
                file.Write_Float(0.8); // gloss
            paint.Close();

            if (secondVersion)
            {
                zunChunk lights(&file);
                lights.Create(kLights);
                file.Write_Int32(3);
                lights.Close();
            }
        }
        scene.Close();
    }

    // Reads a scene; a reader of the first version knows no lights and no gloss.
    void ReadScene(zunFile & file, bool secondVersion)
    {
        zunString name("(none)");
        zunMatrix44 placement;
        zunColor paint;
        double gloss = 0.25; // the default of a reader that expects a gloss
        int lights = 0;

        zunChunk scene(&file);
        scene.Descend();
        while (!file.IsLimitReached())
        {
            zunChunk chunk(&file);
            chunk.Descend();
            const unsigned int tag = chunk.GetFCC();
            if (tag == kName)
                name.Read(&file);
            else if (tag == kPlacement)
                placement.Read(&file);
            else if (tag == kPaint)
            {
                paint.Read(&file);
                if (secondVersion)
                    file.Read_Float(gloss);
            }
            else if (tag == kLights && secondVersion)
                file.Read_Int32(lights);
            else
                std::printf("    skipped chunk %.4s of %llu bytes\n", reinterpret_cast<const char *>(&tag),
                            static_cast<unsigned long long>(chunk.GetSize()));
            chunk.Ascend();
        }
        scene.Ascend();

        std::printf("    name \"%s\", placed at (%g, %g, %g), paint (%.2f, %.2f, %.2f)",
                    static_cast<const char *>(name), placement.m[12], placement.m[13], placement.m[14], paint.m_c0,
                    paint.m_c1, paint.m_c2);
        if (secondVersion)
            std::printf(", gloss %.2f, %d lights", gloss, lights);
        std::printf("\n");
    }
}

ZUN_DEMO_SECTION(60, "Binary files: chunks that old and new readers share")
{
    for (int writer = 1; writer <= 2; ++writer)
    {
        const zunPath name = zunPath::GetTemporaryFilename(zunString("scene.kelp"), zunPath::GetTemporaryPath());
        std::unique_ptr<zunFile> out = zunFileDisk::Create(name, zunFileDisk::ReadWrite, zunFileDisk::CreateNew);
        if (!out)
        {
            std::printf("no temporary file could be made\n");
            return;
        }
        WriteScene(*out, writer == 2);
        const unsigned long long size = out->GetCurrPos();
        out->Close();
        std::printf("version %d writer: %llu bytes of nested chunks in a temporary file\n", writer, size);

        for (int reader = 1; reader <= 2; ++reader)
        {
            std::unique_ptr<zunFile> in = zunFileDisk::Create(name, zunFileDisk::Read, zunFileDisk::OpenExisting);
            if (!in)
                continue;
            std::printf("  version %d reader:\n", reader);
            ReadScene(*in, reader == 2);
        }
        name.Delete();
    }
}
