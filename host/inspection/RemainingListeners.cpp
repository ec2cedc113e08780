#include "inspection/RemainingListeners.h"

#include <app/Application.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>
#include <ovdoc/Transaction.h>

#include <QMetaObject>

#ifdef Q_OS_LINUX
#include <algorithm>
#include <cstdint>
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace Host {

namespace {

/// Makes the code of a library non-executable while it exists.
class CodeLock
{
public:
    /// `address` is any address in the library.
    explicit CodeLock(const void* address) : _address(address) { protect(false); }
    CodeLock(const CodeLock&) = delete;
    CodeLock& operator=(const CodeLock&) = delete;
    ~CodeLock() { protect(true); }

private:
    void protect(bool isExecutable) const;

    const void* const _address;
};

#ifdef Q_OS_LINUX

struct Protection
{
    std::uintptr_t address;
    int flags;
};

/// Changes the protection if a library contains the address; returns 0 to continue the search.
int protectLibrary(dl_phdr_info* library, std::size_t, void* data)
{
    const auto* protection = static_cast<const Protection*>(data);
    const auto* begin = library->dlpi_phdr;
    const auto* end = begin + library->dlpi_phnum;
    const auto start = [library](const ElfW(Phdr) & segment) {
        return library->dlpi_addr + segment.p_vaddr;
    };
    const bool isFound = std::any_of(begin, end, [&](const ElfW(Phdr) & segment) {
        return segment.p_type == PT_LOAD && protection->address >= start(segment) &&
               protection->address - start(segment) < segment.p_memsz;
    });
    if (!isFound)
        return 0;
    const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    std::for_each(begin, end, [&](const ElfW(Phdr) & segment) {
        if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X))
            return;
        const std::uintptr_t first = start(segment) / page * page;
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the system's tables contain integers
        ::mprotect(reinterpret_cast<void*>(first), start(segment) + segment.p_memsz - first,
                   protection->flags);
    });
    return 1;
}

void CodeLock::protect(bool isExecutable) const
{
    Protection protection{reinterpret_cast<std::uintptr_t>(_address),
                          isExecutable ? PROT_READ | PROT_EXEC : PROT_READ};
    ::dl_iterate_phdr(protectLibrary, &protection);
}

#else

void CodeLock::protect(bool) const
{
}

#endif

} // namespace

void callRemainingListeners(const QMetaObject* metaObject)
{
    const CodeLock lock(metaObject);
    App::Application& application = App::Application::instance();
    Doc::Document document(new Doc::Storage);
    Doc::Transaction transaction;
    application.notifyNewDocumentListener(&document);
    application.notifyCloseDocumentListener(&document);
    application.notifyActiveDocumentListener(&document);
    application.notifyObjectListListener(&document);
    application.notifyTransactionListeners(&document, &transaction);
    application.notifySelectionListeners(&document);
    application.notifyPropertyListeners(&document, true, 0);
    application.notifyPluginStateChangeListener(0);
    application.notifyStartFinishListener();
}

} // namespace Host
