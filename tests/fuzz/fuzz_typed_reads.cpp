// The typed reads at random positions and limits over arbitrary bytes: narrow
// and wide strings in each stored form, arrays of every element width,
// colors, matrices, ordered numbers and raw blocks. A read that would cross
// the limit must stop on it and leave its output as it was; the only failure
// allowed is a zunException.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "FileArrayAccess.h"
#include "FuzzStream.h"
#include "zunColor.h"
#include "zunFeatureID.h"
#include "zunMatrix44.h"
#include "zunString.h"

namespace
{
    struct Reader
    {
        zunFile & file;
        std::uint64_t fileSize;
        FuzzedDataProvider & program;

        // True when `count` bytes from the position would cross the limit.
        bool Crosses(std::uint64_t count) const
        {
            const std::uint64_t at = file.GetCurrPos();
            const std::uint64_t limit = file.GetLimit();
            return at > limit || count > limit - at;
        }

        std::uint64_t SomePosition() { return program.ConsumeIntegralInRange<std::uint64_t>(0, fileSize + 16); }

        template <typename T> void Number(void (zunFile::*read)(T &), std::uint64_t width)
        {
            T before;
            if constexpr (std::is_integral_v<T>)
                before = program.ConsumeIntegral<T>();
            else
                before = program.ConsumeFloatingPoint<T>();
            T value = before;
            const bool beyond = Crosses(width) || file.GetCurrPos() + width > fileSize;
            (file.*read)(value);
            if (beyond)
                FUZZ_CHECK(std::memcmp(&value, &before, sizeof value) == 0);
        }

        void Array()
        {
            static const std::uint64_t widths[] = {1, 2, 4, 8};
            const std::uint64_t width = widths[program.ConsumeIntegralInRange(0, 3)];
            const unsigned int count = program.ConsumeIntegralInRange(0u, 64u);
            const auto difference = program.ConsumeBool() ? zunFile::DiffersByByteOrder : zunFile::SameInAnyByteOrder;
            unsigned char buffer[8 * 64];
            std::memset(buffer, 0xA5, sizeof buffer);
            const bool crosses = Crosses(width * count);
            const std::uint64_t limit = file.GetLimit();
            zunFileArrayAccess::Read_Array(&file, buffer, width, count, difference);
            if (crosses)
            {
                FUZZ_CHECK(file.GetCurrPos() == limit);
                for (unsigned char byte : buffer)
                    FUZZ_CHECK(byte == 0xA5);
            }
        }

        void Color()
        {
            zunColor color(0.25, 0.5, 0.75, 0.5, zunColor::RGB);
            const zunColor before = color;
            const bool crosses = Crosses(32);
            color.Read(&file);
            if (crosses)
                FUZZ_CHECK(color == before);
        }

        void Matrix()
        {
            zunMatrix44 matrix;
            for (int i = 0; i < 16; ++i)
                matrix.m[i] = i + 0.5;
            const zunMatrix44 before = matrix;
            const bool crosses = Crosses(128);
            matrix.Read(&file);
            if (crosses)
                FUZZ_CHECK(std::memcmp(matrix.m, before.m, sizeof matrix.m) == 0);
        }

        void FeaturePath()
        {
            const unsigned int before[] = {1, 2, 3};
            zunFeatureID path(before, 3);
            const std::uint32_t count = fuzz::PeekLength(file);
            const bool countCrosses = Crosses(4) || file.GetCurrPos() + 4 > fileSize;
            const bool idsCross = Crosses(4 + std::uint64_t(count) * 4);
            const std::uint64_t limit = file.GetLimit();
            fuzz::ReadFeatureIDGuarded(file, path);
            // A stopped count leaves the path empty; stopped ids leave that
            // many ids of 0.
            if (countCrosses)
                FUZZ_CHECK(path.DataCountGet() == 0);
            else if (idsCross && count <= fuzz::kLargestCount / 4)
            {
                FUZZ_CHECK(path.DataCountGet() == count && file.GetCurrPos() == limit);
                for (unsigned int i = 0; i < count; ++i)
                    FUZZ_CHECK(path.DataPtrGet()[i] == 0);
            }
        }

        void Block(bool padded)
        {
            const std::uint64_t count = program.ConsumeIntegralInRange<std::uint64_t>(0, 64);
            unsigned char buffer[64];
            std::memset(buffer, 0xA5, sizeof buffer);
            const bool crosses = Crosses(count);
            const std::uint64_t limit = file.GetLimit();
            if (padded)
            {
                file.Read_BlockPadded(buffer, count);
                return;
            }
            const std::uint64_t read = file.Read_Block(buffer, count);
            FUZZ_CHECK(read <= count);
            if (crosses)
            {
                FUZZ_CHECK(read == 0 && file.GetCurrPos() == limit);
                for (unsigned char byte : buffer)
                    FUZZ_CHECK(byte == 0xA5);
            }
        }

        void Step()
        {
            switch (program.ConsumeIntegralInRange(0, 14))
            {
            case 0:
                file.SetLimit(SomePosition(),
                              program.ConsumeBool() ? zunFile::LimitFromCurrent : zunFile::LimitAbsolute);
                break;
            case 1:
                file.SetLimit(zunFile::NoLimit);
                break;
            case 2:
                file.SetCurrPos(static_cast<std::int64_t>(SomePosition()));
                break;
            case 3:
            {
                zunString text("before");
                const auto option = static_cast<zunFile::ReadStringOption>(program.ConsumeIntegralInRange(0, 2));
                fuzz::ReadStringGuarded(file, text, [&] { file.Read_String(text, option); });
                break;
            }
            case 4:
            {
                zunStringW text(ZUN_W("before"));
                const auto option = static_cast<zunFile::ReadStringOption>(program.ConsumeIntegralInRange(0, 2));
                fuzz::ReadStringGuarded(file, text, [&] { file.Read_String16(text, option); });
                break;
            }
            case 5:
                Array();
                break;
            case 6:
                Color();
                break;
            case 7:
                Matrix();
                break;
            case 8:
                Number<int>(&zunFile::Read_Int32, 4);
                break;
            case 9:
                Number<std::int64_t>(&zunFile::Read_Int64, 8);
                break;
            case 10:
                Number<double>(&zunFile::Read_Float, 8);
                break;
            case 11:
                Number<short>(&zunFile::Read_Int16, 2);
                break;
            case 12:
                Block(program.ConsumeBool());
                break;
            case 13:
                FeaturePath();
                break;
            default:
                file.ReachLimit();
                break;
            }
        }
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    fuzz::Stream stream(data, size);
    if (!stream.file)
        return 0;
    FuzzedDataProvider program(data, size);
    Reader reader{*stream.file, stream.Size(), program};
    for (int step = 0; step < 64 && program.remaining_bytes() != 0; ++step)
    {
        try
        {
            reader.Step();
        }
        catch (const zunException &)
        {
            // a clean failure: an array past the end of the file, a position
            // the storage refused
        }
    }
    return 0;
}
