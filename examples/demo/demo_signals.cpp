// Demo sections of the object services: signals and death notices.
#include <zunFoundation.h>

#include <cstdio>
#include <string>

#include "DemoSection.h"

namespace
{
    using Policy = zunSignalPrivate::NoThreadSafe;

    class View : public zunBaseT<Policy>
    {
    public:
        explicit View(const char * name) : m_name(name) {}
        void OnRenamed(const std::string & title) { std::printf("  %s shows \"%s\"\n", m_name, title.c_str()); }
        void OnDocumentGone(zunSignalPrivate::DestroySignalEmitter * document)
        {
            std::printf("  %s saw the document at %p die\n", m_name, static_cast<void *>(document));
        }

    private:
        const char * m_name;
    };

    class Document : public zunBaseT<Policy>
    {
    public:
        zunSignalNoThreadSafe<const std::string &> renamed;
    };

    /// The address a death notice reports for `document`.
    zunSignalPrivate::DestroySignalEmitter * AsEmitter(Document * document)
    {
        return document;
    }
}

ZUN_DEMO_SECTION(140, "Signals")
{
    Document document;
    View * outline = new View("outline");
    View * viewport = new View("viewport");
    document.renamed.Connect(outline, &View::OnRenamed);
    document.renamed.Connect(viewport, &View::OnRenamed);
    std::printf("two views connected:\n");
    document.renamed("draft");

    delete outline; // a receiver's death takes its connection away
    std::printf("after the outline died (%zu connection left):\n", document.renamed.m_handlers.size());
    document.renamed("final");

    document.renamed.Block();
    std::printf("blocked: ");
    document.renamed("unseen");
    std::printf("nothing called\n");
    document.renamed.Unblock();

    document.renamed.Connect(viewport, &View::OnRenamed); // counted, not doubled
    document.renamed("counted once");
    delete viewport;
}

ZUN_DEMO_SECTION(141, "Death notices")
{
    View watcher("watcher");
    Document * document = new Document;
    document->OnDestroySignalEmitterDestroyed().Connect(&watcher, &View::OnDocumentGone);
    Document * copy = new Document(*document); // a copy takes no connections
    std::printf("the document is at %p, its copy at %p\n", static_cast<void *>(AsEmitter(document)),
                static_cast<void *>(AsEmitter(copy)));
    delete copy;
    std::printf("  the copy died unnoticed (one failed look-up)\n");
    delete document;
}
