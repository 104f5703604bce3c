// The build-wide definitions: the wide unit, its literals, and zunFlags.
#include <gtest/gtest.h>

#include <type_traits>

#include <zunFoundation.h>

namespace
{
    struct Door
    {
        enum Part
        {
            Hinge = 1,
            Lock = 2,
            Handle = 4
        };
    };
    using DoorParts = zunFlags<Door::Part, 3>;
}

TEST(Config, WideUnitIsSixteenBits)
{
    EXPECT_EQ(sizeof(zunWChar), 2u);
    EXPECT_TRUE((std::is_same<zunWChar, char16_t>::value));
}

TEST(Config, WideLiteralsAreZunWChar)
{
    const zunWChar * text = ZUN_W("h\u00E9");
    EXPECT_EQ(text[0], u'h');
    EXPECT_EQ(text[1], 0xE9);
    EXPECT_EQ(text[2], 0);
}

TEST(Flags, DefaultIsEmpty)
{
    DoorParts none;
    EXPECT_EQ(none.GetMask(), 0u);
    EXPECT_FALSE(none.IsSet(Door::Hinge));
}

TEST(Flags, OneEnumeratorIsItsMask)
{
    DoorParts lock = Door::Lock;
    EXPECT_EQ(lock.GetMask(), 2u);
    EXPECT_TRUE(lock.IsSet(Door::Lock));
    EXPECT_FALSE(lock.IsSet(Door::Hinge));
}

TEST(Flags, UnionAndRawMask)
{
    DoorParts parts = DoorParts(Door::Hinge) | Door::Handle;
    EXPECT_EQ(parts.GetMask(), 5u);
    EXPECT_TRUE(parts.IsSet(Door::Handle));
    EXPECT_FALSE(parts.IsSet(Door::Lock));
    EXPECT_EQ(DoorParts(7u).GetMask(), 7u);
    EXPECT_TRUE((std::is_constructible<DoorParts, unsigned int>::value));
    EXPECT_FALSE((std::is_convertible<unsigned int, DoorParts>::value)); // explicit from a raw mask
    parts |= DoorParts(Door::Lock);
    EXPECT_EQ(parts, DoorParts(7u));
}
