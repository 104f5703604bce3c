// demo - a tour of what Kelp_Foundation does, one section per family.
//
// Runs with no arguments and no configuration, in whatever folder it is
// started; every section prints what it did.
#include <cstdio>
#include <map>
#include <string>
#include <utility>

#include "DemoSection.h"

namespace demo
{
    namespace
    {
        std::map<int, std::pair<std::string, SectionFunction>> & Sections()
        {
            static std::map<int, std::pair<std::string, SectionFunction>> sections;
            return sections;
        }
    }

    bool RegisterSection(int order, const char * title, SectionFunction function)
    {
        Sections()[order] = {title, function};
        return true;
    }
}

int main()
{
    std::printf("Kelp_Foundation demo\n");
    for (const auto & section : demo::Sections())
    {
        std::printf("\n== %s ==\n", section.second.first.c_str());
        section.second.second();
    }
    return 0;
}
