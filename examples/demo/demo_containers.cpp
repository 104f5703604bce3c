// Demo sections of the containers: the growable array, the string list and
// the library's self-test.
#include <zunFoundation.h>

#include <cstdio>

#include "DemoSection.h"

ZUN_DEMO_SECTION(30, "Growable arrays")
{
    zunFastMesh<double> values;
    std::printf("capacity as elements are added:");
    unsigned int lastCapacity = 0;
    for (int i = 0; i < 100; ++i)
    {
        values.Add(1.0 + i * 0.5);
        if (values.Capacity() != lastCapacity)
            std::printf(" %u", lastCapacity = values.Capacity());
    }
    std::printf("\n");

    zunFastMesh<double>::iterator first = values.begin();
    values.Extend(1000, true); // the block moves; iterators keep their place
    std::printf("after Extend(1000): count %u, capacity %u, *begin still %.1f\n", values.Count(), values.Capacity(),
                *first);

    values.Remove(10, 0xFFFFFFFF); // removes to the end, then gives memory back
    std::printf("after removing all but 10: count %u, capacity %u\n", values.Count(), values.Capacity());

    unsigned int found = values.FindIf(0, 0xFFFFFFFF, [](double v) { return v > 3.0; });
    std::printf("first element above 3.0 is at index %u; walking back from index 2:", found);
    values.ForEach(2, 0, [](double v) { std::printf(" %.1f", v); });
    std::printf("\n");
}

ZUN_DEMO_SECTION(31, "String lists")
{
    zunStringList parts = zunString("/usr//local/share/").Split("/", 0);
    std::printf("\"/usr//local/share/\" split on '/' gives %u entries:", parts.Count());
    for (const char * part : parts)
        std::printf(" [%s]", part);
    std::printf("\n");

    parts.Insert("opt", 0);
    parts.InsertList(zunStringList{"fonts", "truetype"}, 0xFFFFFFFF);
    std::printf("after inserts:");
    for (const char * part : parts)
        std::printf(" %s", part);
    std::printf("\n\"share\" is entry %u, \"Share\" is %s\n", parts.Find("share"),
                parts.Find("Share") == 0xFFFFFFFF ? "not found (case counts)" : "found");

    parts.Truncate(2);
    std::printf("truncated to %u entries, in reverse:", parts.Count());
    for (auto it = parts.rbegin(); it != parts.rend(); ++it)
        std::printf(" %s", *it);
    std::printf("\n");
}

ZUN_DEMO_SECTION(32, "The library's self-test")
{
    std::printf("zunFoundation_UnitTest() prints its headings; any other line is a failed check:\n");
    std::fflush(stdout);
    zunFoundation_UnitTest();
}
