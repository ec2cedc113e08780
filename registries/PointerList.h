#pragma once

#include <QList>

/// What the nine listener lists and the two registries have in common: a plain `QList` of pointers
/// in order of registration, with no null and no duplicate in it, that owns nothing.
///
/// A walk calls every entry in order, and keeps its promise whatever the called objects add to the
/// list and remove from it meanwhile, from walks inside the walk too:
///
/// - an entry that was there before the walk reached its place, and still is, is called once;
/// - an entry that is removed before its turn is not called;
/// - an entry that is added during the walk is called in the same walk, after the others. One that
///   is removed and added again is such an entry, whether it has been called before or not.
///
/// Typical use:
///
///     void Registry::add(Entry* entry) { PointerList::add(_entries, entry); }
///     void Registry::remove(Entry* entry) { PointerList::remove(_entries, entry); }
///     void Registry::startAll()
///     {
///         PointerList::walk(_entries, [](Entry* entry) { entry->start(); });
///     }
///
/// While a list is being walked, change it with `add` and `remove` only, on the thread that walks,
/// and do not destroy it.
namespace App::PointerList {

/// A walk under way: where it stands. The walks of a thread know of each other, so that whoever
/// changes a list sets right every walk of it. The list is never copied, and a step of a walk asks
/// no more than whether there was a change.
class Walk
{
public:
    explicit Walk(const void* list) : _list(list), _innermost(innermost()), _p_outer(_innermost)
    {
        _innermost = this;
    }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() { _innermost = _p_outer; }

    /// Tells the walks of `list` that an entry was added at its end.
    static void entryAdded(const void* list);
    /// Tells the walks of `list` that the entry at `index` was removed.
    static void entryRemoved(const void* list, int index);

    /// The place of the entry to call next.
    int next = 0;
    /// Set by every change of the list.
    bool changed = false;

private:
    /// The innermost walk of this thread, or null. Each thread has its own, since different lists
    /// may be walked on different threads.
    static Walk*& innermost();

    const void* _list;
    Walk*& _innermost;
    /// The walk inside which this one takes place, of whichever list.
    Walk* _p_outer;
};

/// Appends `entry`, unless it is null or in the list already; tells whether it did.
template <typename T>
bool add(QList<T*>& list, T* entry)
{
    if (!entry || list.contains(entry))
        return false;
    list.append(entry);
    Walk::entryAdded(&list);
    return true;
}

/// Removes `entry` if it is in the list; the others keep their order.
template <typename T>
void remove(QList<T*>& list, T* entry)
{
    const int index = static_cast<int>(list.indexOf(entry));
    if (index < 0)
        return;
    list.removeAt(index);
    Walk::entryRemoved(&list, index);
}

/// Calls `call` with every entry, in order.
template <typename T, typename Call>
void walk(const QList<T*>& list, Call call)
{
    Walk walk(&list);
    while (walk.next < list.size()) {
        // Until the list changes, its entries, its end and the walk's place stay in registers: to
        // read them afresh at every step would take as long as the call.
        walk.changed = false;
        const auto entries = list.constBegin();
        const int end = static_cast<int>(list.size());
        for (int place = walk.next; place < end && !walk.changed; ++place) {
            walk.next = place + 1;
            call(entries[place]);
        }
    }
}

} // namespace App::PointerList
