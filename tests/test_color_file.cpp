// The file form of zunColor: red, green, blue and alpha as four doubles,
// always in RGB.
#include <zunFoundation.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{
    std::vector<double> DoublesOf(const zunFastMesh<unsigned char> & mesh, bool reversed)
    {
        std::vector<double> values(mesh.Count() / 8);
        for (std::size_t i = 0; i < values.size(); ++i)
        {
            unsigned char bytes[8];
            std::memcpy(bytes, mesh.Data() + 8 * i, 8);
            if (reversed)
                std::reverse(bytes, bytes + 8);
            std::memcpy(&values[i], bytes, 8);
        }
        return values;
    }

    zunFastMesh<unsigned char> Written(const zunColor & color, zunSystem::Endianness order)
    {
        zunFastMesh<unsigned char> mesh;
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        color.Write(file.get());
        return mesh;
    }

    std::unique_ptr<zunFile> Reader(const zunFastMesh<unsigned char> & mesh, zunSystem::Endianness order)
    {
        auto file = zunFileMem::Create(mesh);
        file->SetEndianness(order);
        return file;
    }
}

TEST(ColorFile, FourDoublesRedGreenBlueAlpha)
{
    const zunFastMesh<unsigned char> mesh = Written(zunColor(0.25, 0.5, 0.75, 0.125, zunColor::RGB), zunSystem::Little);
    ASSERT_EQ(mesh.Count(), 32u);
    EXPECT_EQ(DoublesOf(mesh, false), (std::vector<double>{0.25, 0.5, 0.75, 0.125}));
}

TEST(ColorFile, BigEndianReversesEachDouble)
{
    const zunColor color(0.25, 0.5, 0.75, 0.125, zunColor::RGB);
    const zunFastMesh<unsigned char> mesh = Written(color, zunSystem::Big);
    ASSERT_EQ(mesh.Count(), 32u);
    EXPECT_EQ(DoublesOf(mesh, true), (std::vector<double>{0.25, 0.5, 0.75, 0.125}));

    auto file = Reader(mesh, zunSystem::Big);
    zunColor read;
    read.Read(file.get());
    EXPECT_EQ(read.m_c0, 0.25);
    EXPECT_EQ(read.m_c1, 0.5);
    EXPECT_EQ(read.m_c2, 0.75);
    EXPECT_EQ(read.m_alpha, 0.125);
}

TEST(ColorFile, ColorOfAnotherSpaceIsWrittenInRGB)
{
    // Pure red held in HSV: hue 0, saturation 1, value 1.
    const zunColor red(0.0, 1.0, 1.0, 0.5, zunColor::HSV);
    const zunFastMesh<unsigned char> mesh = Written(red, zunSystem::Little);
    const auto values = DoublesOf(mesh, false);
    ASSERT_EQ(values.size(), 4u);
    EXPECT_DOUBLE_EQ(values[0], 1.0);
    EXPECT_DOUBLE_EQ(values[1], 0.0);
    EXPECT_DOUBLE_EQ(values[2], 0.0);
    EXPECT_EQ(values[3], 0.5);
}

TEST(ColorFile, ReadKeepsItsOwnSpaceAndConverts)
{
    const zunFastMesh<unsigned char> mesh = Written(zunColor(0.0, 0.0, 1.0, 1.0, zunColor::RGB), zunSystem::Little);
    auto file = Reader(mesh, zunSystem::Little);
    zunColor held(0.0, 0.0, 0.0, zunColor::HSV);
    held.Read(file.get());
    EXPECT_EQ(held.GetColorSpace(), zunColor::HSV);
    EXPECT_DOUBLE_EQ(held.m_c0, 240.0); // blue's hue
    EXPECT_DOUBLE_EQ(held.m_c1, 1.0);
    EXPECT_DOUBLE_EQ(held.m_c2, 1.0);
}

TEST(ColorFile, AlphaIsClampedAndComponentsTooOnReading)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        file->Write_Float(1.5);
        file->Write_Float(-0.5);
        file->Write_Float(0.5);
        file->Write_Float(2.0);
    }
    auto file = Reader(mesh, zunSystem::Little);
    zunColor read;
    read.Read(file.get());
    EXPECT_EQ(read.m_c0, 1.0);
    EXPECT_EQ(read.m_c1, 0.0);
    EXPECT_EQ(read.m_c2, 0.5);
    EXPECT_EQ(read.m_alpha, 1.0);
}

TEST(ColorFile, ReadingConstructorKeepsItsDefaultAtAChunkLimit)
{
    zunFastMesh<unsigned char> mesh;
    {
        auto file = zunFileMem::Create(mesh);
        zunChunk chunk(file.get());
        chunk.Create(0x524C4F43);
        file->Write_Float(0.1); // a writer that put fewer than four values in
        file->Write_Float(0.2);
        chunk.Close();
        zunColor::White().Write(file.get());
    }
    auto file = Reader(mesh, zunSystem::Little);
    zunChunk chunk(file.get());
    chunk.Descend();
    const zunColor fallback(0.3, 0.6, 0.9, 0.5, zunColor::RGB);
    const zunColor read(file.get(), fallback);
    EXPECT_EQ(read.GetColorSpace(), zunColor::RGB);
    EXPECT_EQ(read.m_c0, 0.3);
    EXPECT_EQ(read.m_c1, 0.6);
    EXPECT_EQ(read.m_c2, 0.9);
    EXPECT_EQ(read.m_alpha, 0.5);
    EXPECT_TRUE(file->IsLimitReached());
    chunk.Ascend();

    const zunColor next(file.get(), zunColor::Black());
    EXPECT_EQ(next.m_c0, 1.0);
    EXPECT_EQ(next.m_alpha, 1.0);
}

TEST(ColorFile, ReadingConstructorTakesTheSpaceOfItsDefault)
{
    const zunFastMesh<unsigned char> mesh = Written(zunColor(1.0, 1.0, 1.0, 1.0, zunColor::RGB), zunSystem::Little);
    auto file = Reader(mesh, zunSystem::Little);
    const zunColor read(file.get(), zunColor(0.0, 0.0, 0.0, zunColor::HSL));
    EXPECT_EQ(read.GetColorSpace(), zunColor::HSL);
    EXPECT_DOUBLE_EQ(read.m_c2, 1.0); // white's lightness
}
