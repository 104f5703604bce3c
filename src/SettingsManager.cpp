// The settings manager: one open object per path, kept for the life of the
// process unless the caller asks otherwise.
#include <new>

#include "SimpleSettingsImp.h"
#include "zunException.h"

namespace
{
    // What letting an open object go does: save it unless every change was
    // saved already, mark it closed, and delete it when it is not kept.
    void Close(zunSimpleSettings * settings, bool deleteAtClose)
    {
        SimpleSettingsImp * imp = static_cast<SimpleSettingsImp *>(settings);
        if (imp->m_openMode == 1)
            imp->Save();
        imp->m_openMode = 0;
        if (deleteAtClose || imp->m_bOrphaned)
            delete imp;
    }

    typedef std::pair<zunSimpleSettingsManager::SettingsPointer, zunSimpleSettingsManager::Error> OpenResult;

    OpenResult Failed(zunSimpleSettingsManager::Error error)
    {
        return OpenResult(zunSimpleSettingsManager::SettingsPointer(), error);
    }
}

zunSimpleSettingsManager::zunSimpleSettingsManager() : m_pKept(new KeptSettings) {}

zunSimpleSettingsManager::~zunSimpleSettingsManager()
{
    // An object still open when the library goes is handed to its caller:
    // its closing deletes it, instead of reaching into a manager that is gone.
    for (KeptSettings::value_type & kept : *m_pKept)
    {
        if (kept.second->m_openMode != 0)
        {
            kept.second->m_bOrphaned = true;
            static_cast<void>(kept.second.release()); // the caller's close owns it now
        }
    }
    delete m_pKept;
}

zunSimpleSettingsManager & zunSimpleSettingsManager::Get()
{
    static zunSimpleSettingsManager manager;
    return manager;
}

std::pair<zunSimpleSettingsManager::SettingsPointer, zunSimpleSettingsManager::Error>
zunSimpleSettingsManager::OpenSettings(const zunPath & path, const zunFlags<OpenModeFlag, 2> & flags)
{
    SimpleSettingsImp * settings = nullptr;
    bool deleteAtClose = false;
    const KeptSettings::iterator kept = m_pKept->find(path);
    if (kept != m_pKept->end())
    {
        settings = kept->second.get(); // as it was left, not read again
    }
    else
    {
        std::unique_ptr<SimpleSettingsImp> fresh(new (std::nothrow) SimpleSettingsImp);
        if (!fresh)
            return Failed(OutOfMemory);
        switch (fresh->Load(path))
        {
        case SimpleSettingsImp::Loaded:
            break;
        case SimpleSettingsImp::CannotCreate:
        case SimpleSettingsImp::CannotRead:
            return Failed(CannotOpen);
        case SimpleSettingsImp::ReadThrew:
            return Failed(ReadFailed);
        default:
            zunFixMe("not handled");
            return Failed(Unhandled);
        }
        if (flags.IsSet(Unmanaged))
        {
            deleteAtClose = true;
            settings = fresh.release();
        }
        else
        {
            try
            {
                settings = m_pKept->emplace(path, std::move(fresh)).first->second.get();
            }
            catch (const std::bad_alloc &)
            {
                return Failed(OutOfMemory);
            }
        }
    }

    if (settings->m_openMode != 0)
        return Failed(AlreadyOpen);
    settings->m_openMode = flags.IsSet(WriteThrough) ? 2 : 1;
    return OpenResult(SettingsPointer(settings, [deleteAtClose](zunSimpleSettings * s) { Close(s, deleteAtClose); }),
                      NoError);
}
