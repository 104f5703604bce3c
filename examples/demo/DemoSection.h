// DemoSection.h - how the demo's sections register themselves.
//
// Each family adds one file with one or more sections:
//
//   ZUN_DEMO_SECTION(30, "Strings")
//   {
//       ...print what the family does...
//   }
//
// Sections run in the order of their numbers, so every file stays independent.
#ifndef ZUN_DEMO_SECTION_H
#define ZUN_DEMO_SECTION_H

namespace demo
{
    using SectionFunction = void (*)();

    /// Adds a section; called by ZUN_DEMO_SECTION at load time.
    bool RegisterSection(int order, const char * title, SectionFunction function);
}

#define ZUN_DEMO_CONCAT_(a, b) a##b
#define ZUN_DEMO_CONCAT(a, b) ZUN_DEMO_CONCAT_(a, b)
#define ZUN_DEMO_SECTION(order, title)                                                                                 \
    static void ZUN_DEMO_CONCAT(DemoSection_, order)();                                                                \
    static const bool ZUN_DEMO_CONCAT(g_demoSectionRegistered_, order) =                                               \
        demo::RegisterSection(order, title, &ZUN_DEMO_CONCAT(DemoSection_, order));                                    \
    static void ZUN_DEMO_CONCAT(DemoSection_, order)()

#endif // ZUN_DEMO_SECTION_H
