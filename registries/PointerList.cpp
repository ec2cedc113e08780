#include <registries/PointerList.h>

namespace App::PointerList {

namespace {

/// The innermost walk of this thread. Each thread has its own, since different lists may be walked
/// on different threads.
thread_local Walk* innermost = nullptr;

} // namespace

Walk::Walk(const void* list) : _list(list), _p_outer(innermost)
{
    innermost = this;
}

Walk::~Walk()
{
    innermost = _p_outer;
}

void Walk::entryRemoved(const void* list, int index)
{
    for (Walk* walk = innermost; walk; walk = walk->_p_outer) {
        if (walk->_list == list && index < walk->next)
            --walk->next;
    }
}

} // namespace App::PointerList
