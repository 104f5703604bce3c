// A persisted class in two versions: each writes itself as one chunk, and an
// older reader opens the newer document while a newer reader opens the older
// one, with no version numbers. docs/adding-a-persisted-class.md explains the
// rules this program follows.
//
// Build and run:   cmake --build build --target example_persisted_class
//                  build/examples/persisted_class
#include <zunFoundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{
    // The chunk tags, as numbers: 0x504D414C is the bytes "LAMP" in a
    // little-endian stream.
    const unsigned int kLampFCC = 0x504D414C;
    const unsigned int kShadowFCC = 0x57444853; // "SHDW"

    // Version 1 of the class: an intensity and a kind.
    namespace version1
    {
        struct Lamp
        {
            double intensity = 1.0;
            int kind = 0;

            Lamp() = default;
            // The reading constructor: the default first, then what the stream holds.
            Lamp(zunFile * file, const Lamp & defaultValue) : Lamp(defaultValue) { Read(file); }

            void Write(zunFile * file) const
            {
                zunChunk chunk(file);
                chunk.Create(kLampFCC);       // the tag and a size placeholder
                file->Write_Float(intensity); // the fields, always in this order
                file->Write_Int32(kind);
                chunk.Close(); // patches the size, comes back behind the chunk
            }

            void Read(zunFile * file)
            {
                zunChunk chunk(file);
                chunk.Descend(); // the stream's limit is now the chunk's end
                if (chunk.GetFCC() != kLampFCC)
                {
                    chunk.UnDescend(); // not a lamp: back to the tag, defaults kept
                    return;
                }
                file->Read_Float(intensity); // a read that would cross the limit
                file->Read_Int32(kind);      // reads nothing and keeps the field
                chunk.Ascend();              // lands behind the chunk, whatever was read
            }
        };
    }

    // Version 2 appends a tint, a member that persists itself, and may carry
    // an optional shadow as a nested chunk. Once nested chunks follow the
    // fields, later versions add chunks only.
    namespace version2
    {
        struct Lamp
        {
            double intensity = 1.0;
            int kind = 0;
            zunColor tint = zunColor::White();
            bool hasShadow = false;
            double shadowSoftness = 0.0;

            Lamp() = default;
            Lamp(zunFile * file, const Lamp & defaultValue) : Lamp(defaultValue) { Read(file); }

            void Write(zunFile * file) const
            {
                zunChunk chunk(file);
                chunk.Create(kLampFCC);
                file->Write_Float(intensity);
                file->Write_Int32(kind);
                tint.Write(file); // new in version 2, behind the old fields
                if (hasShadow)
                {
                    zunChunk shadow(file);
                    shadow.Create(kShadowFCC);
                    file->Write_Float(shadowSoftness);
                    shadow.Close(); // inner chunks close first
                }
                chunk.Close();
            }

            void Read(zunFile * file)
            {
                zunChunk chunk(file);
                chunk.Descend();
                if (chunk.GetFCC() != kLampFCC)
                {
                    chunk.UnDescend();
                    return;
                }
                file->Read_Float(intensity);
                file->Read_Int32(kind);
                tint.Read(file); // a version 1 lamp: the tint keeps its default
                while (!file->IsLimitReached())
                {
                    zunChunk part(file);
                    part.Descend();
                    if (part.GetFCC() == kShadowFCC)
                    {
                        hasShadow = true;
                        file->Read_Float(shadowSoftness);
                    }
                    part.Ascend(); // an unknown part costs a Descend and an Ascend
                }
                chunk.Ascend();
            }
        };
    }

    void PrintBytes(const zunFastMesh<unsigned char> & bytes)
    {
        for (unsigned int i = 0; i < bytes.Count(); ++i)
            std::printf("%02X%s", bytes[i], (i % 16 == 15 || i + 1 == bytes.Count()) ? "\n" : " ");
    }

    // A stream for reading over bytes written before: a memory stream takes
    // its size when it is made.
    std::unique_ptr<zunFile> ReadFrom(const zunFastMesh<unsigned char> & bytes)
    {
        return zunFileMem::Create(bytes);
    }
}

int main()
{
    bool ok = true;

    // ---- Version 1 writes one lamp: 20 bytes, laid out as the guide shows.
    zunFastMesh<unsigned char> oldDocument;
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(oldDocument);
        version1::Lamp lamp;
        lamp.intensity = 2.5;
        lamp.kind = 3;
        lamp.Write(file.get());
        file->Close(); // writes throw a zunException on failure; Close reports the last ones
    }
    std::printf("version 1 lamp, %u bytes:\n", oldDocument.Count());
    PrintBytes(oldDocument);
    const unsigned char expected[] = {0x4C, 0x41, 0x4D, 0x50, 0x0C, 0x00, 0x00, 0x00, 0x00, 0x00,
                                      0x00, 0x00, 0x00, 0x00, 0x04, 0x40, 0x03, 0x00, 0x00, 0x00};
    ok &= oldDocument.Count() == sizeof(expected) && std::memcmp(oldDocument.Data(), expected, sizeof(expected)) == 0;

    // ---- The newer reader opens the older document: the new fields keep
    // the defaults given to the reading constructor.
    {
        std::unique_ptr<zunFile> file = ReadFrom(oldDocument);
        version2::Lamp defaults;
        defaults.tint = zunColor(1.0, 0.9, 0.8, zunColor::RGB);
        const version2::Lamp lamp(file.get(), defaults);
        double r, g, b;
        lamp.tint.Get(r, g, b, zunColor::RGB);
        std::printf("version 2 reads it: intensity %.1f, kind %d, tint (%.1f, %.1f, %.1f), shadow %s\n", lamp.intensity,
                    lamp.kind, r, g, b, lamp.hasShadow ? "yes" : "no");
        ok &= lamp.intensity == 2.5 && lamp.kind == 3 && lamp.tint == defaults.tint && !lamp.hasShadow;
    }

    // ---- Version 2 writes a document of two lamps, one with a shadow.
    zunFastMesh<unsigned char> newDocument;
    {
        std::unique_ptr<zunFile> file = zunFileMem::Create(newDocument);
        version2::Lamp key;
        key.intensity = 4.0;
        key.kind = 1;
        key.tint = zunColor(255, 200, 150, 255);
        key.hasShadow = true;
        key.shadowSoftness = 0.25;
        key.Write(file.get());
        version2::Lamp fill;
        fill.intensity = 0.5;
        fill.Write(file.get());
        file->Close();
    }
    std::printf("version 2 document of two lamps, %u bytes\n", newDocument.Count());

    // ---- The older reader opens the newer document: it reads the fields it
    // knows, and each Ascend lands on the next lamp.
    {
        std::unique_ptr<zunFile> file = ReadFrom(newDocument);
        const version1::Lamp first(file.get(), version1::Lamp());
        const version1::Lamp second(file.get(), version1::Lamp());
        std::printf("version 1 reads it: intensities %.2f and %.2f, kinds %d and %d, %s\n", first.intensity,
                    second.intensity, first.kind, second.kind, file->IsEOF() ? "at the end" : "not at the end");
        ok &= first.intensity == 4.0 && first.kind == 1 && second.intensity == 0.5 && file->IsEOF();
    }

    // ---- And the newer reader gets everything back.
    {
        std::unique_ptr<zunFile> file = ReadFrom(newDocument);
        const version2::Lamp key(file.get(), version2::Lamp());
        std::printf("version 2 reads it: shadow %s, softness %.2f\n", key.hasShadow ? "yes" : "no", key.shadowSoftness);
        ok &= key.hasShadow && key.shadowSoftness == 0.25 && key.tint == zunColor(255, 200, 150, 255);
    }

    return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
