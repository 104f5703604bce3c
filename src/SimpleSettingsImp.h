// SimpleSettingsImp.h - the one implementation of the settings interface.
//
// Internal. It owns the top-level sequence of line records of one settings
// file: the keys and comments in front of the first section header, then
// the sections with the lines behind each header.
#ifndef ZUN_SIMPLE_SETTINGS_IMP_H
#define ZUN_SIMPLE_SETTINGS_IMP_H

#include <iosfwd>

#include "SettingsRecords.h"
#include "zunConfig.h"

class ZUN_API SimpleSettingsImp
{
public:
    SimpleSettingsImp();
    ~SimpleSettingsImp();
    SimpleSettingsImp(const SimpleSettingsImp &) = delete;
    SimpleSettingsImp & operator=(const SimpleSettingsImp &) = delete;

    /// Appends the records of the stream's lines to m_items, line by line
    /// until the stream fails, so a last line without newline is read too. A
    /// repeated section header continues the first section of that name
    /// (ignoring case) and is dropped with its trailing text; keys repeated
    /// in a section update the first. Throws zunException, with no
    /// description, when a record cannot be allocated or stored; m_items may
    /// then hold part of the file.
    void Read(std::ifstream & stream);
    /// Writes every record in order; gives the stream.
    std::ostream & Write(std::ostream & stream) const;

    unsigned int m_openMode; ///< 0 closed, 1 saved at close, 2 saved at each change
    /// The records read from the file live here; it goes after m_items.
    zunSettingsPrivate::RecordArena m_arena;
    zunSettingsPrivate::RecordList m_items; ///< the top-level sequence; keyed by section names
};

#endif // ZUN_SIMPLE_SETTINGS_IMP_H
