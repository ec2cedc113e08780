#include <registries/PointerList.h>

namespace App::PointerList {

Walk*& Walk::innermost()
{
    static thread_local Walk* walk = nullptr;
    return walk;
}

void Walk::entryAdded(const void* list)
{
    for (Walk* walk = innermost(); walk; walk = walk->_p_outer) {
        if (walk->_list == list)
            walk->changed = true;
    }
}

void Walk::entryRemoved(const void* list, int index)
{
    for (Walk* walk = innermost(); walk; walk = walk->_p_outer) {
        if (walk->_list != list)
            continue;
        walk->changed = true;
        if (index < walk->next)
            --walk->next;
    }
}

} // namespace App::PointerList
