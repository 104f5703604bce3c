// Demo sections of the containers: the growable array.
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
